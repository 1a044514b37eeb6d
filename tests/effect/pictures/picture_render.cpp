#include "picture_render.hpp"

#include "host/param_text.hpp"

#include <cstdlib>

namespace pictures
{
const host::plugin& effect()
{
    static const host::plugin the_effect = []
    {
        const char* const chosen = std::getenv("FILIGRANE_PLUGIN");
        return host::plugin(chosen != nullptr ? chosen : FILIGRANE_BUILT_PLUGIN);
    }();
    return the_effect;
}

host::composition composition_of(const picture_case& c)
{
    host::composition comp;
    comp.width = c.width;
    comp.height = c.height;
    comp.total_frames = 50;
    comp.downsample = c.downsample;
    comp.quality = c.low_quality ? PF_Quality_LO : PF_Quality_HI;
    return comp;
}

host::render_options options_of(const picture_case& c)
{
    host::render_options options;
    options.checked = true;
    options.row_padding = c.row_padding;
    return options;
}

host::param_tracks values_of(const picture_case& c)
{
    const std::vector<host::param_info>& params = effect().params();
    host::param_tracks values(params);
    for (const auto& [label, text] : c.settings)
    {
        const host::param_info& info = host::find_param(params, label);
        values.set(info.index, host::parse_value(info, text));
    }
    return values;
}

media::picture input_picture(int width, int height)
{
    media::picture p(width, height);
    const media::image_view v = p.view();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
        {
            std::uint8_t* const pixel = v.row(y) + 4 * static_cast<std::ptrdiff_t>(x);
            const bool dark = (x / 8 + y / 8) % 2 != 0;
            pixel[0] = static_cast<std::uint8_t>(x + y < 24 ? 96 : 255);
            pixel[1] = static_cast<std::uint8_t>(255 * x / width);
            pixel[2] = static_cast<std::uint8_t>(255 * y / height);
            pixel[3] = dark ? 60 : 190;
        }
    return p;
}

media::picture render(const picture_case& c)
{
    const host::composition comp = composition_of(c);
    const media::picture input = input_picture(comp.picture_width(), comp.picture_height());
    media::picture output(comp.picture_width(), comp.picture_height());
    host::render_frame(effect(), comp, values_of(c), c.frame, as_host(input.view()), as_host(output.view()),
                       options_of(c));
    return output;
}
} // namespace pictures
