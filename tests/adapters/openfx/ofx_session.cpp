#include "tests/adapters/openfx/ofx_session.hpp"

#include "host/param_text.hpp"

#include "tests/support/bit_generator.hpp"

#include <cstring>

namespace ofx
{
session::session(const std::string& context) : library(FILIGRANE_OFX_FILE), plugin(*library.plugin(0))
{
    EXPECT_EQ(host.load(plugin), kOfxStatOK);
    descriptor = host.describe(plugin, context);
    instance = host.create(plugin, *descriptor, context);
}

session::~session()
{
    EXPECT_EQ(host.destroy(plugin, std::move(instance)), kOfxStatOK);
    strict::host::forget(*descriptor);
    EXPECT_EQ(host.act(plugin, "OfxActionUnload"), kOfxStatOK);
    if (expect_clean)
    {
        EXPECT_EQ(host.complaints(), std::vector<std::string>());
    }
}

OfxParamStruct& session::param(const std::string& name)
{
    OfxParamStruct* found = instance->params.find(name);
    if (!found)
        throw std::runtime_error("no parameter " + name);
    return *found;
}

void session::show(const plain_picture& source, const image_manner& manner)
{
    // Lent anew each time, as what is released is spoilt.
    connect(
        *instance, "Source",
        [source, manner](double) -> std::shared_ptr<host_image>
        {
            if (source.rgba.empty())
                return nullptr;
            auto image = std::make_shared<host_image>(source.width, source.height, manner);
            image->fill(source);
            return image;
        },
        manner);
    instance->clips.at("Source")->defined =
        OfxRectD{manner.left / manner.scale, manner.bottom / manner.scale,
                 (manner.left + source.width) / manner.scale, (manner.bottom + source.height) / manner.scale};
}

std::shared_ptr<host_image> session::draw(int width, int height, const image_manner& manner,
                                          strict::render_call what, OfxStatus expected)
{
    auto image = std::make_shared<host_image>(width, height, manner);
    connect(
        *instance, "Output", [image](double) { return image; }, manner);
    auto& clip = *instance->clips.at("Output");
    if (!clip.defined)
        clip.defined = OfxRectD{manner.left / what.scale_x, manner.bottom / what.scale_y,
                                (manner.left + width) / what.scale_x, (manner.bottom + height) / what.scale_y};
    if (what.window.x1 == what.window.x2)
        what.window = image->bounds();
    EXPECT_EQ(host.render(plugin, *instance, what), expected);
    clip.defined.reset();
    clip.image = {};
    return image;
}

const host::plugin& effect()
{
    static const host::plugin loaded{std::filesystem::path(FILIGRANE_PLUGIN_FILE)};
    return loaded;
}

host::composition composition(int width, int height)
{
    host::composition comp;
    comp.width = width;
    comp.height = height;
    return comp;
}

plain_picture reference(const host::composition& comp, const host::param_tracks& values, int frame,
                        const plain_picture* input)
{
    plain_picture result(comp.picture_width(), comp.picture_height());
    std::vector<std::uint8_t> in(result.rgba.size());
    std::vector<std::uint8_t> out(result.rgba.size());
    for (std::size_t i = 0; input && i < in.size(); i += 4)
    {
        const std::uint8_t argb[] = {input->rgba[i + 3], input->rgba[i], input->rgba[i + 1], input->rgba[i + 2]};
        std::memcpy(&in[i], argb, 4);
    }
    const int rowbytes = 4 * result.width;
    host::render_frame(effect(), comp, values, frame, {in.data(), result.width, result.height, rowbytes},
                       {out.data(), result.width, result.height, rowbytes});
    for (std::size_t i = 0; i < out.size(); i += 4)
    {
        const std::uint8_t rgba[] = {out[i + 1], out[i + 2], out[i + 3], out[i]};
        std::memcpy(&result.rgba[i], rgba, 4);
    }
    return result;
}

host::param_tracks defaults()
{
    return host::param_tracks(effect().params());
}

void set(host::param_tracks& values, const std::string& label, const std::string& value)
{
    const host::param_info& info = host::find_param(effect().params(), label);
    values.set(info.index, host::parse_value(info, value));
}

void draw_over_source(session& s)
{
    s.param("compositeOnOriginal").value[0] = 1;
    s.param("rows").value[0] = 7;
    s.param("rotation").value[0] = -30.0;
    s.param("position").value = {0.4, 0.7};
    s.param("normalColor").value = {0.2, 0.4, 1.0, 1.0};
    s.param("opacity").value[0] = 0.8;
}

host::param_tracks drawn_over_source()
{
    host::param_tracks values = defaults();
    set(values, "Composite On Original", "on");
    set(values, "Rows", "7");
    set(values, "Rotation", "30deg");
    set(values, "Position", "40%,30%");
    set(values, "Normal Color", "#3366ff");
    set(values, "Opacity", "80%");
    return values;
}

plain_picture sample_picture(int width, int height)
{
    plain_picture picture(width, height);
    bit_generator dice{42};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
        {
            std::uint8_t* p = picture.at(x, y);
            p[0] = static_cast<std::uint8_t>(x * 255 / width);
            p[1] = static_cast<std::uint8_t>(y * 255 / height);
            p[2] = static_cast<std::uint8_t>(dice.below(256));
            p[3] = static_cast<std::uint8_t>(x < width / 3 ? 255 : dice.below(256));
            if (p[3] == 0)
                p[0] = p[1] = p[2] = 0;
        }
    return picture;
}

std::string difference(const plain_picture& expected, const plain_picture& got)
{
    if (expected.width != got.width || expected.height != got.height)
        return "sizes differ";
    int wrong = 0;
    std::string first;
    for (int y = 0; y < got.height; ++y)
        for (int x = 0; x < got.width; ++x)
            if (std::memcmp(expected.at(x, y), got.at(x, y), 4) != 0 && ++wrong == 1)
            {
                first = "(" + std::to_string(x) + "," + std::to_string(y) + ")";
                for (const std::uint8_t* p : {expected.at(x, y), got.at(x, y)})
                    for (int c = 0; c < 4; ++c)
                        first += (c == 0 ? ": " : ",") + std::to_string(p[c]);
            }
    return wrong == 0 ? "" : std::to_string(wrong) + " pixels differ, first " + first;
}
} // namespace ofx
