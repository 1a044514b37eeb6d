// Frames through the adapter are the host library's frames, however the host keeps its pictures.

#include "tests/adapters/openfx/ofx_session.hpp"

#include <cfenv>
#include <cmath>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace
{
using namespace ofx;

// Lines over the source, in values that the two sides are given in their own ways.
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

TEST(openfx_render, draws_the_frames_of_the_host_library)
{
    const plain_picture source = sample_picture(61, 43);
    for (const std::string& context : {filter, general})
    {
        session s(context);
        s.show(source);
        draw_over_source(s);
        for (const double time : {0.0, 1.0, 17.0})
            EXPECT_EQ(
                difference(reference(composition(61, 43), drawn_over_source(), static_cast<int>(time), &source),
                           s.draw(61, 43, {}, {.time = time})->read()),
                "")
                << context << " frame " << time;
    }
}

TEST(openfx_render, draws_on_nothing_as_a_generator)
{
    session s(generator);
    EXPECT_EQ(difference(reference(composition(50, 40), defaults(), 3), s.draw(50, 40, {}, {.time = 3.0})->read()),
              "");
}

TEST(openfx_render, takes_rows_of_any_order_place_and_distance)
{
    const plain_picture source = sample_picture(37, 29);
    const plain_picture expected = reference(composition(37, 29), drawn_over_source(), 4, &source);
    for (const bool in_top_down : {false, true})
        for (const bool out_top_down : {false, true})
            for (const int padding : {0, 3, 64})
            {
                image_manner in, out;
                in.top_down = in_top_down;
                in.left = out.left = -11;
                in.bottom = out.bottom = 7;
                in.padding = 5;
                out.top_down = out_top_down;
                out.padding = padding;
                session s;
                s.show(source, in);
                draw_over_source(s);
                EXPECT_EQ(difference(expected, s.draw(37, 29, out, {.time = 4.0})->read()), "")
                    << in_top_down << out_top_down << padding;
            }
}

TEST(openfx_render, takes_blue_first_where_the_host_says_so)
{
    const plain_picture source = sample_picture(20, 20);
    image_manner blue_first;
    blue_first.blue_first = true;
    session s;
    s.show(source, blue_first);
    draw_over_source(s);
    EXPECT_EQ(difference(reference(composition(20, 20), drawn_over_source(), 0, &source),
                         s.draw(20, 20, blue_first)->read()),
              "");
}

TEST(openfx_render, writes_inside_the_window_alone)
{
    const plain_picture source = sample_picture(40, 30);
    const plain_picture expected = reference(composition(40, 30), drawn_over_source(), 2, &source);
    session s;
    s.show(source);
    draw_over_source(s);
    // From below the image to above its middle; y points up.
    const plain_picture got = s.draw(40, 30, {}, {.time = 2.0, .window = {5, -3, 31, 12}})->read();
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x)
        {
            const bool inside = x >= 5 && x < 31 && 29 - y < 12;
            for (int c = 0; c < 4; ++c)
                ASSERT_EQ(got.at(x, y)[c], inside ? expected.at(x, y)[c] : 0xCD) << x << "," << y;
        }
}

TEST(openfx_render, takes_what_the_source_lacks_for_transparent_black)
{
    const plain_picture small = sample_picture(21, 17);
    image_manner in;
    in.left = 6;
    in.bottom = -4; // sticks out at the bottom
    plain_picture seen(40, 30);
    for (int y = 0; y < 17; ++y)
        for (int x = 0; x < 21; ++x)
            if (const int row = 30 - 13 + y; row < 30)
                std::copy_n(small.at(x, y), 4, seen.at(6 + x, row));
    session s;
    s.show(small, in);
    draw_over_source(s);
    EXPECT_EQ(difference(reference(composition(40, 30), drawn_over_source(), 2, &seen),
                         s.draw(40, 30, {}, {.time = 2.0})->read()),
              "");
}

TEST(openfx_render, does_without_a_source)
{
    const plain_picture expected = reference(composition(40, 30), drawn_over_source(), 2);
    session s(general);
    draw_over_source(s);
    EXPECT_EQ(difference(expected, s.draw(40, 30, {}, {.time = 2.0})->read()), "") << "unconnected";
    s.show(plain_picture(0, 0));
    EXPECT_EQ(difference(expected, s.draw(40, 30, {}, {.time = 2.0})->read()), "") << "connected, no image";
}

// What the effect is given of a stored channel, and what is stored of the effect's: worked out in double
// precision.
double white_of(const image_manner& m)
{
    return m.depth == "OfxBitDepthByte" ? 255.0 : m.depth == "OfxBitDepthShort" ? 65535.0 : 1.0;
}

plain_picture as_the_effect_sees(const host_image& image)
{
    plain_picture seen = image.read();
    if (image.manner().premultiplication == "OfxImageOpaque" || image.channels() == 3)
        for (std::size_t i = 3; i < seen.rgba.size(); i += 4)
            seen.rgba[i] = 255;
    return seen;
}

void expect_stored(const plain_picture& drawn, const host_image& image)
{
    const image_manner& m = image.manner();
    const double white = white_of(m);
    const bool opaque = m.premultiplication == "OfxImageOpaque" || image.channels() == 3;
    const bool multiplied = opaque || m.premultiplication == "OfxImageAlphaPremultiplied";
    for (int y = 0; y < drawn.height; ++y)
        for (int x = 0; x < drawn.width; ++x)
            for (int c = 0; c < image.channels(); ++c)
            {
                const std::uint8_t* p = drawn.at(x, y);
                // One division, so that it is rounded once.
                const int of_255 = c == 3 ? (opaque ? 255 : p[3]) * 255 : p[c] * (multiplied ? p[3] : 255);
                const double expected =
                    of_255 * (white > 1.0 ? white / 255.0 : 1.0) / (white > 1.0 ? 255.0 : 65025.0);
                if (white > 1.0)
                    ASSERT_EQ(image.stored(x, y, c), std::round(expected)) << x << "," << y << " channel " << c;
                else
                    ASSERT_FLOAT_EQ(static_cast<float>(image.stored(x, y, c)), static_cast<float>(expected));
            }
}

TEST(openfx_render, takes_every_depth_and_kind_of_alpha)
{
    const plain_picture source = sample_picture(31, 23);
    for (const char* depth : {"OfxBitDepthByte", "OfxBitDepthShort", "OfxBitDepthFloat"})
        for (const char* components : {"OfxImageComponentRGBA", "OfxImageComponentRGB"})
            for (const char* alpha :
                 {"OfxImageAlphaUnPremultiplied", "OfxImageAlphaPremultiplied", "OfxImageOpaque"})
            {
                SCOPED_TRACE(std::string(depth) + " " + components + " " + alpha);
                image_manner manner;
                manner.depth = depth;
                manner.components = components;
                manner.premultiplication = components[17] == 'G' && components[18] == 'B' && components[19] == 0
                                               ? "OfxImageOpaque"
                                               : alpha;
                host_image lent(31, 23, manner);
                lent.fill(source);
                const plain_picture seen = as_the_effect_sees(lent);
                for (const char* over : {"on", "off"})
                {
                    session s;
                    s.show(source, manner);
                    draw_over_source(s);
                    s.param("compositeOnOriginal").value[0] = std::string(over) == "on" ? 1 : 0;
                    host::param_tracks values = drawn_over_source();
                    set(values, "Composite On Original", over);
                    expect_stored(reference(composition(31, 23), values, 5, &seen),
                                  *s.draw(31, 23, manner, {.time = 5.0}));
                }
            }
}

// Shown as they are, by a shift of nothing.
TEST(openfx_render, rounds_deep_values_to_the_nearest_of_eight_bits)
{
    const auto through = [](const image_manner& manner, const std::vector<float>& floats)
    {
        const int count = static_cast<int>(floats.size());
        session s;
        s.param("useDisplacement").value[0] = 1;
        s.param("amountOfDisplacement").value[0] = 0;
        auto source = std::make_shared<host_image>(count, 1, manner);
        for (int i = 0; i < count; ++i)
            for (int c = 0; c < 3; ++c)
                source->put(i, 0, c, floats[static_cast<std::size_t>(i)]);
        strict::connect(
            *s.instance, "Source", [source](double) { return source; }, manner);
        const auto drawn = s.draw(count, 1, manner);
        std::vector<double> bytes;
        for (int i = 0; i < count; ++i)
            bytes.push_back(drawn->stored(i, 0, 1));
        return bytes;
    };
    image_manner manner;
    manner.components = "OfxImageComponentRGB";
    manner.depth = "OfxBitDepthFloat";
    std::vector<float> floats = {-1.0f, -0.0f, NAN, INFINITY, -INFINITY, 7.0f, 1e-30f, 0.0019607841f};
    std::vector<double> expected = {0, 0, 0, 255, 0, 255, 0, 0};
    for (int k = 0; k < 255; ++k)
    {
        const auto half = static_cast<float>((k + 0.5) / 255.0);
        for (const float v : {std::nextafter(half, 0.0f), half, std::nextafter(half, 1.0f)})
        {
            floats.push_back(v);
            expected.push_back(std::floor(static_cast<double>(v) * 255.0 + 0.5));
        }
    }
    std::vector<double> drawn = through(manner, floats);
    for (std::size_t i = 0; i < floats.size(); ++i)
        EXPECT_FLOAT_EQ(static_cast<float>(drawn[i]), static_cast<float>(expected[i] / 255.0)) << floats[i];

    manner.depth = "OfxBitDepthShort";
    std::vector<float> words;
    for (int v = 0; v < 65536; v += 127)
        words.push_back(static_cast<float>(v));
    drawn = through(manner, words);
    for (std::size_t i = 0; i < words.size(); ++i)
        EXPECT_EQ(drawn[i], std::round(static_cast<double>(words[i]) / 257.0) * 257.0) << words[i];
}

TEST(openfx_render, looks_at_the_image_not_at_the_clip)
{
    const plain_picture source = sample_picture(20, 20);
    image_manner floats;
    floats.depth = "OfxBitDepthFloat";
    session s;
    s.show(source, {});
    draw_over_source(s);
    auto image = std::make_shared<host_image>(20, 20, floats);
    strict::connect(*s.instance, "Output", [image](double) { return image; }, {});
    EXPECT_EQ(s.host.render(s.plugin, *s.instance, {.window = {0, 0, 20, 20}}), kOfxStatOK);
    EXPECT_EQ(difference(reference(composition(20, 20), drawn_over_source(), 0, &source), image->read()), "");
}

TEST(openfx_render, refuses_pictures_that_it_cannot_draw)
{
    session s;
    image_manner alpha;
    alpha.components = "OfxImageComponentAlpha";
    s.draw(20, 20, alpha, {}, kOfxStatErrImageFormat);
    image_manner half;
    half.depth = "OfxBitDepthHalf";
    s.draw(20, 20, half, {}, kOfxStatErrImageFormat);
    strict::connect(*s.instance, "Output", [](double) { return nullptr; }, {});
    EXPECT_EQ(s.host.render(s.plugin, *s.instance, {.window = {0, 0, 20, 20}}), kOfxStatFailed);
}

TEST(openfx_render, draws_at_the_hosts_scale)
{
    const struct
    {
        int full_width, full_height;
        double scale;
        int downsample;
    } cases[] = {{101, 81, 0.5, 2}, {90, 60, 1.0 / 3.0, 3}, {90, 61, 0.3333, 3}, {128, 64, 0.25, 4}};
    for (const auto& c : cases)
    {
        host::composition comp = composition(c.full_width, c.full_height);
        comp.downsample = c.downsample;
        const plain_picture source = sample_picture(comp.picture_width(), comp.picture_height());
        image_manner manner;
        manner.scale = c.scale;
        session s;
        s.show(source, manner);
        draw_over_source(s);
        s.instance->clips.at("Output")->defined =
            OfxRectD{0.0, 0.0, static_cast<double>(c.full_width), static_cast<double>(c.full_height)};
        const auto drawn =
            s.draw(source.width, source.height, manner, {.time = 3.0, .scale_x = c.scale, .scale_y = c.scale});
        EXPECT_EQ(difference(reference(comp, drawn_over_source(), 3, &source), drawn->read()), "") << c.scale;
    }
}

TEST(openfx_render, draws_at_scales_that_are_no_whole_part_or_differ)
{
    host::composition comp = composition(100, 80);
    comp.reduce_x = {600000, 1000000};
    comp.reduce_y = {1, 8};
    const plain_picture source = sample_picture(60, 10);
    session s;
    s.show(source);
    draw_over_source(s);
    s.instance->clips.at("Output")->defined = OfxRectD{0.0, 0.0, 100.0, 80.0};
    const auto drawn = s.draw(60, 10, {}, {.time = 3.0, .scale_x = 0.6, .scale_y = 0.125});
    EXPECT_EQ(difference(reference(comp, drawn_over_source(), 3, &source), drawn->read()), "");
}

TEST(openfx_render, does_not_believe_a_scale_that_the_sizes_deny)
{
    const plain_picture source = sample_picture(60, 40);
    const plain_picture expected = reference(composition(60, 40), drawn_over_source(), 3, &source);
    session s;
    s.show(source);
    draw_over_source(s);
    for (const double scale : {0.5, 3.0, 0.0, -1.0, std::nan("")})
    {
        s.instance->clips.at("Output")->defined = OfxRectD{0.0, 0.0, 60.0, 40.0};
        const auto drawn = s.draw(60, 40, {}, {.time = 3.0, .scale_x = scale, .scale_y = scale});
        EXPECT_EQ(difference(expected, drawn->read()), "") << scale;
    }
    // No region told: the project's size stands in.
    s.instance->props.put("OfxImageEffectPropProjectSize", {60.0, 40.0});
    s.instance->clips.at("Output")->defined = OfxRectD{-2147483648.0, -2147483648.0, 2147483647.0, 2147483647.0};
    const auto drawn = s.draw(60, 40, {}, {.time = 3.0, .scale_x = 0.5, .scale_y = 0.5});
    EXPECT_EQ(difference(expected, drawn->read()), "");
}

// A region of 80 by 40 square pixels has 40 by 40 that are twice as wide.
TEST(openfx_render, counts_in_the_hosts_pixels)
{
    const plain_picture source = sample_picture(40, 40);
    image_manner wide;
    wide.pixel_aspect = 2.0;
    session s;
    s.show(source, wide);
    draw_over_source(s);
    s.instance->clips.at("Output")->defined = OfxRectD{0.0, 0.0, 80.0, 40.0};
    EXPECT_EQ(difference(reference(composition(40, 40), drawn_over_source(), 3, &source),
                         s.draw(40, 40, wide, {.time = 3.0})->read()),
              "");
    host::composition half = composition(40, 40);
    half.downsample = 2;
    const plain_picture small = sample_picture(20, 20);
    wide.scale = 0.5;
    s.show(small, wide);
    s.instance->clips.at("Output")->defined = OfxRectD{0.0, 0.0, 80.0, 40.0};
    EXPECT_EQ(difference(reference(half, drawn_over_source(), 3, &small),
                         s.draw(20, 20, wide, {.time = 3.0, .scale_x = 0.5, .scale_y = 0.5})->read()),
              "");
}

// A host that has tiles all the same: lines lie where they lie in the whole frame.
TEST(openfx_render, draws_a_part_as_it_is_in_the_whole)
{
    const plain_picture source = sample_picture(60, 50);
    const plain_picture whole = reference(composition(60, 50), drawn_over_source(), 3, &source);
    session s;
    s.show(source);
    draw_over_source(s);
    image_manner manner;
    manner.left = 21;
    manner.bottom = 8;
    auto tile = std::make_shared<host_image>(30, 20, manner);
    tile->defined = {0, 0, 60, 50};
    strict::connect(
        *s.instance, "Output", [tile](double) { return tile; }, manner);
    s.instance->clips.at("Output")->defined = OfxRectD{0.0, 0.0, 60.0, 50.0};
    EXPECT_EQ(s.host.render(s.plugin, *s.instance, {.time = 3.0, .window = tile->bounds()}), kOfxStatOK);
    plain_picture expected(30, 20);
    for (int y = 0; y < 20; ++y)
        std::copy_n(whole.at(21, 50 - 28 + y), 4 * 30, expected.at(0, y));
    EXPECT_EQ(difference(expected, tile->read()), "");
}

TEST(openfx_render, draws_a_field_as_every_other_row_of_the_frame)
{
    const plain_picture frame = sample_picture(40, 31);
    for (const bool upper : {false, true})
        for (const bool doubled : {false, true})
        {
            SCOPED_TRACE(std::string(upper ? "upper" : "lower") + (doubled ? " doubled" : " single"));
            // Row 0 of the lower field is the bottom row. The source shows that field's rows on both.
            const int rows = upper ? 15 : 16;
            plain_picture field(40, doubled ? 31 : rows), seen(40, 31);
            const auto line_of = [&](int line)
            {
                const int own = (line & ~1) + (upper ? 1 : 0);
                return own > 30 ? own - 2 : own;
            };
            const auto copy = [](const plain_picture& from, int from_line, plain_picture& to, int to_line)
            { std::copy_n(from.at(0, from.height - 1 - from_line), 4 * 40, to.at(0, to.height - 1 - to_line)); };
            for (int line = 0; line < 31; ++line)
                copy(frame, line_of(line), seen, line);
            for (int row = 0; row < field.height; ++row)
                copy(frame, doubled ? line_of(row) : 2 * row + (upper ? 1 : 0), field, row);

            image_manner manner;
            manner.field = upper ? "OfxFieldUpper" : "OfxFieldLower";
            session s;
            s.show(field, manner);
            draw_over_source(s);
            s.instance->clips.at("Source")->defined = OfxRectD{0.0, 0.0, 40.0, 31.0};
            s.instance->clips.at("Output")->defined = OfxRectD{0.0, 0.0, 40.0, 31.0};
            const plain_picture got =
                s.draw(40, field.height, manner, {.time = 4.5, .field = manner.field})->read();
            const plain_picture whole = reference(composition(40, 31), drawn_over_source(), 4, &seen);
            for (int row = 0; row < field.height; ++row)
            {
                const int line = doubled ? std::min((row & ~1) + (upper ? 1 : 0), 30) : 2 * row + (upper ? 1 : 0);
                ASSERT_EQ(std::vector(got.at(0, got.height - 1 - row), got.at(0, got.height - 1 - row) + 160),
                          std::vector(whole.at(0, 30 - line), whole.at(0, 30 - line) + 160))
                    << "row " << row;
            }
        }
}

TEST(openfx_render, finds_the_frame_of_a_time)
{
    const plain_picture ninth = reference(composition(30, 30), defaults(), 9);
    session s(generator);
    for (const double time : {9.0, 8.99999, 9.25, 9.5})
        EXPECT_EQ(difference(ninth, s.draw(30, 30, {}, {.time = time})->read()), "") << time;
    EXPECT_EQ(
        difference(reference(composition(30, 30), defaults(), -2), s.draw(30, 30, {}, {.time = -2.0})->read()),
        "");
    EXPECT_EQ(difference(reference(composition(30, 30), defaults(), 0),
                         s.draw(30, 30, {}, {.time = std::nan("")})->read()),
              "");
}

TEST(openfx_render, gives_up_what_the_host_no_longer_wants)
{
    for (int from = 1; from < 8; ++from)
    {
        session s;
        s.show(sample_picture(20, 200));
        strict::the_watch().abort_from = from;
        s.draw(20, 200);
        EXPECT_GE(strict::the_watch().aborts_asked, std::min(from, 4));
    }
}

TEST(openfx_render, is_not_misled_by_a_threads_rounding)
{
    const plain_picture expected = reference(composition(64, 48), drawn_over_source(), 6);
    session s(general);
    draw_over_source(s);
    const int before = std::fegetround();
    for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO})
    {
        std::fesetround(mode);
        const auto image = s.draw(64, 48, {}, {.time = 6.0});
        const int after = std::fegetround();
        std::fesetround(before);
        EXPECT_EQ(after, mode);
        EXPECT_EQ(difference(expected, image->read()), "");
    }
}

#if defined(__SSE2__)
// Threads of some hosts take numbers near 0 for 0.
TEST(openfx_render, is_not_misled_by_flushed_numbers)
{
    const plain_picture expected = reference(composition(64, 48), drawn_over_source(), 6);
    session s(general);
    draw_over_source(s);
    const unsigned before = _mm_getcsr();
    constexpr unsigned flush = 0x8040; // results and operands
    _mm_setcsr(before | flush);
    const auto image = s.draw(64, 48, {}, {.time = 6.0});
    const unsigned after = _mm_getcsr();
    _mm_setcsr(before);
    EXPECT_EQ(after & flush, flush);
    EXPECT_EQ(difference(expected, image->read()), "");
}
#endif
} // namespace
