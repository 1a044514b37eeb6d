#include "drawn_line.hpp"
#include "effect/model/work_limits.hpp"

#include <limits>

namespace
{
using raster_test::drawn_line;
using raster_test::kSide;
using raster_test::piece;
using raster_test::same;

const std::vector<fpoint_t> kWave = {{20.0, 60.0}, {40.0, 70.5}, {71.25, 48.0}, {100.0, 66.0}};

TEST_F(drawn_line, is_sampled_every_half_pixel_from_its_far_end)
{
    sp_line& l = line(false, {{20.0, 60.0}, {100.0, 60.0}, {101.0, 63.0}});
    const auto& got = draw(l, 3.0f);
    ASSERT_EQ(got.size(), 1U);
    const std::vector<StrokePoint>& samples = got[0].samples;
    // Turned about (64, 64) the line runs from 108 down to 27. The first position is the first point's own and
    // lies outside the half-open segments; the last point's is not reached.
    ASSERT_EQ(samples.size(), 161U);
    for (std::size_t i = 0; i < samples.size(); ++i)
        EXPECT_EQ(samples[i].x, 107.5f - 0.5f * static_cast<float>(i));
    EXPECT_EQ(samples[0].y, 68.0f);
    EXPECT_EQ(samples.back().x, 27.5f);
    EXPECT_EQ(samples.back().y, 66.5f);
    EXPECT_EQ(got[0].axis, 0);
}

TEST_F(drawn_line, is_sampled_every_pixel_at_low_quality)
{
    frame_.qualityStep = 1.0f;
    sp_line& l = line(true, {{20.0, 60.0}, {100.0, 60.0}, {101.0, 63.0}});
    const auto& got = draw(l, 3.0f);
    ASSERT_EQ(got.size(), 1U);
    ASSERT_EQ(got[0].samples.size(), 80U);
    EXPECT_EQ(got[0].samples[0].y, 107.0f);
    EXPECT_EQ(got[0].samples[0].x, 68.0f);
    EXPECT_EQ(got[0].samples.back().y, 28.0f);
    EXPECT_EQ(got[0].axis, 1);
}

TEST_F(drawn_line, has_the_samples_of_a_second_version)
{
    turn_as_a_frame_does();
    for (const bool vertical : {false, true})
        for (const float step : {1.0f, 0.5f})
            for (const int stressed : {-100, -37, 0, 55, 100})
                for (const float width : {0.6f, 4.25f, 11.0f})
                {
                    frame_.qualityStep = step;
                    frame_.stressedWidth = stressed;
                    sp_line& l = line(vertical, kWave);
                    const std::vector<StrokePoint> want = expected(l, width);
                    const auto& got = draw(l, width);
                    ASSERT_EQ(got.size(), 1U);
                    expect_samples(got[0].samples, want);
                }
}

TEST_F(drawn_line, doubles_its_radius_or_loses_it_where_it_is_farthest_off_its_base)
{
    const auto radii = [this](int stressed)
    {
        frame_.stressedWidth = stressed;
        sp_line& l = line(false, {{20.0, 60.0}, {60.0, 60.0}, {61.0, 70.0}, {100.0, 70.0}});
        return draw(l, 8.0f).at(0).samples;
    };
    EXPECT_EQ(radii(100).front().halfWidth, 8.0f);
    EXPECT_EQ(radii(100).back().halfWidth, 16.0f);
    EXPECT_EQ(radii(-100).back().halfWidth, 0.0f);
    EXPECT_EQ(radii(-50).front().halfWidth, 8.0f);
    EXPECT_EQ(radii(-50).back().halfWidth, 4.0f);
    EXPECT_EQ(radii(0).back().halfWidth, 8.0f);
}

TEST_F(drawn_line, has_the_radii_of_its_thinnest_and_widest_place)
{
    const auto radii = [this](int stressed, float width)
    {
        frame_.stressedWidth = stressed;
        sp_line& l = line(false, kWave);
        const piece p = draw(l, width).at(0);
        return std::pair(p.inner_radius, p.outer_radius);
    };
    // Half the diagonal of the inner square is the thinnest radius, less 1.5 pixels of its side.
    EXPECT_EQ(radii(0, 10.0f), std::pair(5.571067811865475f, 11.5f));
    EXPECT_EQ(radii(50, 10.0f), std::pair(5.571067811865475f, 16.5f));
    EXPECT_EQ(radii(100, 10.0f), std::pair(5.571067811865475f, 21.5f));
    EXPECT_EQ(radii(-50, 10.0f), std::pair(2.0355339059327378f, 11.5f));
    EXPECT_EQ(radii(-100, 10.0f), std::pair(-1.5f, 11.5f));
}

TEST_F(drawn_line, turns_opacity_into_alpha)
{
    for (int opacity = 0; opacity <= 100; ++opacity)
    {
        frame_.opacity = opacity;
        sp_line& l = line(false, kWave);
        draw(l, 2.0f);
        EXPECT_EQ(frame_.normalColor.alpha, opacity * 255 / 100) << opacity;
        EXPECT_EQ(frame_.stressedColor.alpha, opacity * 255 / 100) << opacity;
        EXPECT_EQ(pieces_.at(0).samples.at(0).color.alpha, opacity * 255 / 100) << opacity;
    }
}

TEST_F(drawn_line, holds_a_random_opacity_to_a_byte)
{
    bool held_high = false;
    bool held_low = false;
    frame_.opacity = 90;
    frame_.opacityRandomness = 150;
    for (unsigned seed = 1; seed < 200; ++seed)
    {
        rng_.ReSeed(seed * 7919);
        Loom::RandomGenerator32 twin = rng_;
        const float drawn = rand_param(twin, 90.0f, 150.0f);
        const int whole = static_cast<int>(static_cast<float>(static_cast<double>(drawn) * 2.55));
        const int want = whole < 0 ? 0 : whole > 255 ? 255 : whole;
        held_high |= whole > 255;
        held_low |= whole < 0;
        sp_line& l = line(false, kWave);
        draw(l, 1.0f);
        ASSERT_EQ(frame_.normalColor.alpha, want) << seed;
        ASSERT_EQ(rng_.GetNextRandomInt(), twin.GetNextRandomInt()) << seed;
    }
    EXPECT_TRUE(held_high && held_low);
}

TEST_F(drawn_line, has_the_normal_colour_at_100_and_the_stressed_one_at_0)
{
    one_colour(100);
    sp_line& normal = line(false, kWave);
    EXPECT_TRUE(same(draw(normal, 8.0f).at(0).samples[0].color, {255, 255, 100, 0}));
    one_colour(0);
    sp_line& stressed = line(false, kWave);
    EXPECT_TRUE(same(draw(stressed, 8.0f).at(0).samples[0].color, {255, 0, 200, 255}));
    one_colour(30); // as a displacement matte has it
    frame_.useDisplacement = 1;
    sp_line& matte = line(false, kWave);
    EXPECT_TRUE(same(draw(matte, 8.0f).at(0).samples[0].color, {255, 255, 100, 0}));
}

TEST_F(drawn_line, gives_its_colour_to_the_first_sample_alone)
{
    one_colour(100);
    sp_line& l = line(true, kWave);
    const std::vector<StrokePoint> samples = draw(l, 8.0f).at(0).samples;
    for (std::size_t i = 1; i < samples.size(); ++i)
        ASSERT_TRUE(same(samples[i].color, {0, 0, 0, 0})) << i;
}

TEST_F(drawn_line, is_laid_over_the_destination_when_it_is_done)
{
    sp_line& l = line(false, kWave);
    draw(l, 3.0f);
    EXPECT_FALSE(stage_.calls.empty());
    for (const std::uint8_t dirty : stage_.context->tileDirty)
        ASSERT_EQ(dirty, 0);
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x)
            ASSERT_TRUE(same(stage_.canvas.at(x, y), {0, 0, 0, 0})) << x << ", " << y;
}

TEST_F(drawn_line, is_left_out_once_strokes_have_swept_the_canvas_hundreds_of_times)
{
    constexpr std::int64_t kCanvas = std::int64_t{kSide} * kSide;
    static_assert(kMostCanvases * kCanvas < kMostSweptPixels);
    std::int64_t& swept = frame_.lineCreator.sweptPixels;
    draw(line(false, kWave), 3.0f);
    EXPECT_EQ(swept, kCanvas);

    stage_.calls.clear();
    swept = kMostSweptPixels;
    draw(line(false, kWave), 3.0f);
    EXPECT_FALSE(stage_.calls.empty());
    EXPECT_EQ(swept, kMostSweptPixels + kCanvas);

    stage_.calls.clear();
    draw(line(false, kWave), 3.0f);
    EXPECT_TRUE(stage_.calls.empty());
}

// What is left out may not depend on how strokes are drawn.
TEST_F(drawn_line, counts_what_it_sweeps_the_same_at_every_level)
{
    std::vector<std::int64_t> counts;
    for (const simd_level level : {simd_level::scalar, simd_level::baseline, chosen_simd_level()})
        for (const bool wraps : {false, true})
        {
            frame_.lineCreator.sweptPixels = 0;
            frame_.lineCreator.level = level;
            frame_.linesHaveEnds = frame_.lineWrapping = wraps ? 1 : 0;
            draw(line(false, kWave), 3.0f);
            counts.push_back(frame_.lineCreator.sweptPixels);
        }
    for (std::size_t i = 2; i < counts.size(); ++i)
        EXPECT_EQ(counts[i], counts[i - 2]) << i;
    EXPECT_GT(counts[1], 100 * 6);
    EXPECT_LE(counts[1], counts[0] + 2 * kPixelsOfPiece);
}

TEST_F(drawn_line, switches_the_core_off_for_good_once_it_is_too_thin)
{
    one_colour(100);
    const float widest_without = std::nextafter(3.5355339f, 0.0f); // 2.5 times the square root of 2
    sp_line& wide = line(false, kWave);
    EXPECT_TRUE(draw(wide, 3.54f).at(0).solid_core);
    sp_line& thin = line(false, kWave);
    EXPECT_FALSE(draw(thin, widest_without).at(0).solid_core);
    sp_line& wide_again = line(false, kWave);
    EXPECT_FALSE(draw(wide_again, 12.0f).at(0).solid_core);
}

TEST_F(drawn_line, gives_its_samples_back)
{
    sp_line& l = line(false, kWave);
    const mem_pool before = stage_.pool;
    draw(l, 3.0f);
    EXPECT_EQ(stage_.pool.next, before.next);
    EXPECT_EQ(stage_.pool.remaining, before.remaining);
}

TEST_F(drawn_line, keeps_its_empty_array_where_there_is_nothing_to_sample)
{
    sp_line& l = line(false, {{50.0, 60.0}});
    const std::uint64_t before = stage_.pool.remaining;
    EXPECT_TRUE(draw(l, 3.0f).empty());
    EXPECT_EQ(before - stage_.pool.remaining, 32U); // one point at two samples a pixel
    EXPECT_TRUE(stage_.calls.empty());
}

TEST_F(drawn_line, is_not_drawn_where_the_pool_is_short)
{
    // 80 pixels take 160 slots and the one past the end.
    const auto drawn_with = [this](std::uint64_t slots)
    {
        sp_line& l = line(false, {{20.0, 60.0}, {100.0, 61.0}});
        const std::uint64_t all = stage_.pool.remaining;
        stage_.pool.remaining = slots * sizeof(StrokePoint);
        Loom::RandomGenerator32 twin = rng_;
        rand_param(twin, 100.0f, 0.0f);
        const bool drawn = !draw(l, 3.0f).empty();
        EXPECT_EQ(rng_.GetNextRandomInt(), twin.GetNextRandomInt()) << slots; // the opacity is drawn either way
        EXPECT_EQ(stage_.pool.remaining, slots * sizeof(StrokePoint));
        stage_.pool.remaining = all;
        return drawn;
    };
    EXPECT_TRUE(drawn_with(161));
    EXPECT_FALSE(drawn_with(160));
    EXPECT_FALSE(drawn_with(0));
}

TEST_F(drawn_line, of_many_points_needs_room_for_them)
{
    // 40 points over less than 10 pixels: 20 samples would do, but the array is as large as the points make it.
    std::vector<fpoint_t> dense;
    for (int i = 0; i < 40; ++i)
        dense.push_back({40.0 + i * 0.25, 60.0 + i % 2});
    const auto drawn_with = [&](std::uint64_t bytes)
    {
        sp_line& l = line(false, dense);
        const std::uint64_t all = stage_.pool.remaining;
        stage_.pool.remaining = bytes;
        const bool drawn = !draw(l, 2.0f).empty();
        stage_.pool.remaining = all;
        return drawn;
    };
    EXPECT_TRUE(drawn_with(40 * 16 * 2));
    EXPECT_FALSE(drawn_with(40 * 16 * 2 - 8));
}

TEST_F(drawn_line, without_points_takes_its_opacity_draw_alone)
{
    frame_.opacity = 40;
    const fpoint_t none[1] = {};
    sp_line l(&frame_, 0, none, 0);
    Loom::RandomGenerator32 twin = rng_;
    rand_param(twin, 40.0f, 0.0f);
    EXPECT_TRUE(draw(l, 3.0f).empty());
    EXPECT_EQ(frame_.normalColor.alpha, 102);
    EXPECT_EQ(rng_.GetNextRandomInt(), twin.GetNextRandomInt());
}

TEST_F(drawn_line, stops_where_an_end_is_not_finite)
{
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double bad : {inf, -inf, nan})
        for (const bool at_first : {true, false})
        {
            sp_line& l = line(false, kWave);
            l.points[at_first ? 0 : l.num_points - 1].x = bad;
            const std::uint64_t before = stage_.pool.remaining;
            EXPECT_TRUE(draw(l, 3.0f).empty()) << bad;
            EXPECT_EQ(stage_.pool.remaining, before) << bad;
        }
}

TEST_F(drawn_line, too_long_to_be_stepped_along_is_not_drawn)
{
    sp_line& l = line(false, {{-1e9, 60.0}, {1e9, 61.0}});
    const std::uint64_t before = stage_.pool.remaining;
    EXPECT_TRUE(draw(l, 3.0f).empty());
    EXPECT_EQ(stage_.pool.remaining, before);
}

TEST_F(drawn_line, on_its_base_has_radii_that_are_not_numbers_and_no_picture)
{
    sp_line& l = line(true, {{20.0, 60.0}, {100.0, 60.0}});
    const std::vector<piece> got = draw(l, 3.0f);
    ASSERT_EQ(got.size(), 1U);
    for (const StrokePoint& s : got[0].samples)
        ASSERT_TRUE(std::isnan(s.halfWidth));
    EXPECT_TRUE(stage_.calls.empty());
}
} // namespace
