#include "raster_stage.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace
{
using raster_test::same;
using raster_test::stage;
using raster_test::text;

constexpr PF_Pixel kColor = {200, 10, 20, 30};
constexpr PF_Pixel kOther = {100, 200, 30, 255};
constexpr PF_Pixel kNothing = {0, 0, 0, 0};

// A rasteriser on a 64 x 64 canvas with a stroke of its own, deciding single pixels.
class one_pixel : public testing::Test
{
protected:
    one_pixel() { stage_.set_up(creator_); }

    void stroke(std::vector<StrokePoint> samples, int axis, float outer_radius)
    {
        samples_ = std::move(samples);
        creator_.points = samples_.data();
        creator_.pointCount = static_cast<std::int32_t>(samples_.size());
        creator_.axis = axis;
        creator_.outerRadius = outer_radius;
    }

    PF_Pixel mono(int x, int y)
    {
        creator_.CalculatePixelMonocolor(x, y);
        return stage_.canvas.at(x, y);
    }
    PF_Pixel multi(int x, int y)
    {
        creator_.CalculatePixelMulticolor(x, y);
        return stage_.canvas.at(x, y);
    }
    bool marked(int x, int y) const { return stage_.context->tileDirty[x / 2 * 32 + y / 2] != 0; }
    float table(int row, int column) const { return creator_.coverageTable[row * 256 + column]; }

    stage stage_{64, 64, 12};
    LineCreatorClass creator_;
    std::vector<StrokePoint> samples_;
};

void expect_pixel(const PF_Pixel& got, const PF_Pixel& want)
{
    EXPECT_TRUE(same(got, want)) << text(got) << ", not " << text(want);
}

TEST_F(one_pixel, is_left_alone_exactly_one_pixel_beyond_the_rim)
{
    stroke({{20.5f, 20.5f, 4.0f, kColor}}, 0, 7.0f);
    expect_pixel(multi(20, 25), kNothing); // 5 away: edge 0
    expect_pixel(mono(20, 25), kNothing);
    EXPECT_FALSE(marked(20, 25));
    stroke({{20.5f, 20.5f, std::nextafter(4.0f, 5.0f), kColor}}, 0, 7.0f);
    // The least edge above 0 is a row of the table that covers nothing: written, and transparent.
    expect_pixel(multi(20, 25), {0, 10, 20, 30});
    EXPECT_TRUE(marked(20, 25));
}

TEST_F(one_pixel, has_the_full_colour_from_one_pixel_within_the_rim)
{
    stroke({{20.5f, 20.5f, 4.0f, kColor}}, 0, 7.0f);
    for (int i = 0; i < 300 * 256; ++i)
        creator_.coverageTable[i] = 0.0f; // not looked at there
    expect_pixel(multi(20, 23), kColor);  // 3 away: edge 2
    expect_pixel(mono(23, 20), kColor);
    expect_pixel(mono(24, 20), {0, 10, 20, 30}); // 4 away: edge 1
}

TEST_F(one_pixel, is_covered_as_the_table_says_at_the_rim)
{
    stroke({{20.5f, 20.5f, 4.25f, kColor}}, 0, 7.0f);
    // 5 to the right: edge 0.25, sine 0; 5 below: sine 1; 3 and 4: the same distance, sine 0.8.
    creator_.coverageTable[25 * 256 + 0] = 0.5f;
    creator_.coverageTable[25 * 256 + 255] = 0.25f;
    creator_.coverageTable[25 * 256 + 204] = 0.75f;
    expect_pixel(multi(25, 20), {100, 10, 20, 30});
    expect_pixel(multi(15, 20), {100, 10, 20, 30});
    expect_pixel(multi(20, 25), {50, 10, 20, 30});
    expect_pixel(multi(20, 15), {50, 10, 20, 30});
    expect_pixel(multi(23, 24), {150, 10, 20, 30});
    expect_pixel(multi(17, 16), {150, 10, 20, 30});
}

TEST_F(one_pixel, takes_the_row_offset_for_the_sine_on_either_axis)
{
    stroke({{20.5f, 20.5f, 4.25f, kColor}}, 1, 7.0f);
    creator_.coverageTable[25 * 256 + 0] = 0.5f;
    creator_.coverageTable[25 * 256 + 255] = 0.25f;
    expect_pixel(multi(25, 20), {100, 10, 20, 30});
    expect_pixel(multi(20, 25), {50, 10, 20, 30});
}

TEST_F(one_pixel, fades_from_the_centre_line_to_the_core_opacity_at_the_rim)
{
    stroke({{20.5f, 20.5f, 8.0f, kColor}}, 0, 10.0f);
    creator_.coreOpacity = 0.5f;
    expect_pixel(mono(20, 20), kColor);
    expect_pixel(mono(20, 22), {175, 10, 20, 30}); // 1 - 0.5 * 2 / 8
    expect_pixel(multi(20, 24), {150, 10, 20, 30});
    creator_.coreOpacity = 0.0f;
    expect_pixel(mono(20, 26), {50, 10, 20, 30});
    // Beyond the radius the fall-off would be negative.
    expect_pixel(mono(20, 28), {0, 10, 20, 30});
    creator_.coverageTable[50 * 256 + 255] = 1.0f;
    stroke({{20.5f, 20.0f, 8.0f, kColor}}, 0, 10.0f); // 8.5 away: edge 0.5
    expect_pixel(multi(20, 28), {0, 10, 20, 30});
}

TEST_F(one_pixel, has_its_own_alpha_at_low_quality)
{
    creator_.samplesPerPixel = 1;
    creator_.coreOpacity = 0.0f;
    stroke({{20.5f, 20.5f, 4.25f, kColor}}, 0, 7.0f);
    expect_pixel(mono(25, 20), kColor);
    expect_pixel(multi(20, 25), kColor);
    expect_pixel(multi(20, 26), kNothing);
}

TEST_F(one_pixel, takes_radius_and_colour_of_the_nearest_sample)
{
    stroke({{24.5f, 20.5f, 9.0f, kColor}, {24.0f, 20.5f, 9.0f, kColor}, {23.5f, 20.5f, 2.0f, kOther}}, 0, 11.0f);
    expect_pixel(multi(25, 20), kColor);
    expect_pixel(multi(23, 20), kOther);
    expect_pixel(multi(23, 24), kNothing); // 4 from the thin sample: the thick ones are farther
    expect_pixel(mono(23, 20), kColor);    // one colour: the first sample's
}

TEST_F(one_pixel, keeps_the_sample_visited_first_on_a_tie)
{
    // The pixel's centre is half way between the two; the higher index is visited first.
    stroke({{21.0f, 20.5f, 4.0f, kColor}, {20.0f, 20.5f, 4.0f, kOther}}, 0, 7.0f);
    expect_pixel(multi(20, 20), kOther);
}

TEST_F(one_pixel, is_bridged_between_samples_over_1_2_apart_at_high_quality_only)
{
    // 20 rows apart: without the bridge no sample is near the pixel.
    const std::vector<StrokePoint> samples = {{30.5f, 10.5f, 2.0f, kColor}, {30.0f, 30.5f, 2.0f, kOther}};
    stroke(samples, 0, 5.0f);
    const PF_Pixel middle = multi(30, 20);
    EXPECT_GT(middle.alpha, kOther.alpha);
    EXPECT_LT(middle.alpha, kColor.alpha);
    expect_pixel(mono(30, 20), kColor);

    stage_.canvas.clear();
    creator_.samplesPerPixel = 1;
    expect_pixel(multi(30, 20), kNothing);
    expect_pixel(mono(30, 20), kNothing);
}

TEST_F(one_pixel, mixes_bridged_samples_by_their_place)
{
    // 4 rows, k 2: 8 positions in 9 steps. Position 3 of 8 is three parts short of the first: t = 6/8.
    stroke({{40.0f, 14.5f, 1.0f, {0, 0, 0, 0}}, {39.5f, 10.0f, 5.0f, {240, 80, 160, 8}}}, 0, 7.0f);
    const float across = 10.0f + 4.5f / 10.0f * 3.0f;
    ASSERT_NEAR(across, 11.35f, 1e-5f);
    // dy 4.5: n = 9, parts 10; t of m = 3 is 7/9. Pixel (39, 11): centre 11.5; nearest of 11.35 (m 3), 11.8 (m 4).
    const float t = 7.0f / 9.0f;
    expect_pixel(multi(39, 11), {static_cast<A_u_char>(240.0f * t), static_cast<A_u_char>(80.0f * t),
                                 static_cast<A_u_char>(160.0f * t), static_cast<A_u_char>(8.0f * t)});
}

TEST_F(one_pixel, is_bridged_by_the_first_step_above_1_2)
{
    // Only the bridge is near enough: the samples are thin, and their centres are 0.6 and more away.
    const auto drawn = [this](float step)
    {
        stage_.canvas.clear();
        stroke({{30.0f, 20.5f + step / 2.0f, 0.01f, kColor}, {29.5f, 20.5f - step / 2.0f, 0.01f, kColor}}, 0,
               3.0f);
        return multi(29, 20).alpha;
    };
    const float last_without = 1.2f < 1.2 ? 1.2f : std::nextafter(1.2f, 0.0f);
    const float with = std::nextafter(last_without, 2.0f);
    ASSERT_LT(static_cast<double>(last_without), 1.2);
    ASSERT_GT(static_cast<double>(with), 1.2);
    EXPECT_GT(drawn(with + 0.001f), drawn(last_without - 0.001f));
}

TEST_F(one_pixel, is_not_drawn_without_a_sample_in_range)
{
    stroke({{60.0f, 60.0f, 3.0f, kColor}}, 0, 5.0f);
    expect_pixel(multi(2, 2), kNothing);
    expect_pixel(mono(2, 2), kNothing);
    EXPECT_FALSE(marked(2, 2));
}

TEST_F(one_pixel, ignores_samples_outside_its_box_across)
{
    // A radius larger than the outer one would reach the pixel, but the box ends 5 rows off.
    stroke({{20.5f, 40.5f, 30.0f, kColor}}, 0, 5.0f);
    expect_pixel(multi(20, 20), kNothing);
    expect_pixel(multi(20, 35), kColor); // box up to y + 1 + 5 = 41
}

TEST_F(one_pixel, is_written_the_same_twice)
{
    stroke({{20.5f, 20.5f, 4.25f, kColor}}, 0, 7.0f);
    creator_.coreOpacity = 0.75f;
    for (int y = 10; y < 32; ++y)
        for (int x = 10; x < 32; ++x)
        {
            const PF_Pixel once = multi(x, y);
            expect_pixel(multi(x, y), once);
        }
}

TEST_F(one_pixel, is_not_drawn_by_a_radius_that_is_not_a_number)
{
    stroke({{20.5f, 20.5f, std::numeric_limits<float>::quiet_NaN(), kColor}}, 0, 7.0f);
    expect_pixel(multi(20, 20), kNothing);
    expect_pixel(mono(20, 20), kNothing);
    EXPECT_FALSE(marked(20, 20));
}

TEST_F(one_pixel, has_no_fall_off_at_the_sample_itself_whatever_the_radius)
{
    creator_.coreOpacity = 0.25f;
    stroke({{20.5f, 20.5f, 0.0f, kColor}}, 0, 3.0f);
    // Radius 0 at distance 0: edge 1, half covered as if along a row.
    expect_pixel(multi(20, 20), {100, 10, 20, 30});
}

TEST_F(one_pixel, is_transparent_off_a_sample_of_radius_0_with_fall_off)
{
    creator_.coreOpacity = 0.25f;
    stroke({{20.0f, 20.5f, 0.0f, kColor}}, 0, 3.0f);
    expect_pixel(multi(20, 20), {0, 10, 20, 30}); // half a pixel away: the fall-off is below 0
    creator_.coreOpacity = 1.0f;
    EXPECT_EQ(table(50, 0), 0.0f);
    stroke({{20.25f, 20.5f, 0.0f, kColor}}, 0, 3.0f);
    expect_pixel(multi(20, 20), {static_cast<A_u_char>(200.0f * table(75, 0)), 10, 20, 30});
}

TEST_F(one_pixel, is_not_drawn_on_an_unknown_axis)
{
    stroke({{20.5f, 20.5f, 4.0f, kColor}}, 2, 7.0f);
    expect_pixel(multi(20, 20), kNothing);
}

TEST_F(one_pixel, marks_its_tile)
{
    stroke({{63.5f, 63.5f, 4.0f, kColor}}, 0, 7.0f);
    multi(63, 62);
    EXPECT_TRUE(marked(63, 62));
    EXPECT_FALSE(marked(61, 62));
    EXPECT_TRUE(stage_.canvas.padding_is_untouched());
}
} // namespace
