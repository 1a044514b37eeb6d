// Scales, pixels that are not square, parts of frames, fields.

#include "tests/adapters/openfx/ofx_session.hpp"

#include <cmath>

namespace
{
using namespace ofx;

TEST(openfx_geometry, draws_at_the_hosts_scale)
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

TEST(openfx_geometry, draws_at_scales_that_are_no_whole_part_or_differ)
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

TEST(openfx_geometry, does_not_believe_a_scale_that_the_sizes_deny)
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
TEST(openfx_geometry, counts_in_the_hosts_pixels)
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
TEST(openfx_geometry, draws_a_part_as_it_is_in_the_whole)
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

TEST(openfx_geometry, draws_a_field_as_every_other_row_of_the_frame)
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
} // namespace
