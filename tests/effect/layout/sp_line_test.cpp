#include "effect/layout/sp_line.hpp"

#include "effect/model/curve.hpp"
#include "tests/support/frame_bench.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{
constexpr unsigned char kHorizontal = 0;
constexpr unsigned char kVertical = 1;

std::vector<double> xs(const sp_line& line)
{
    std::vector<double> v;
    for (int i = 0; i < line.num_points; ++i)
        v.push_back(line.points[i].x);
    return v;
}

std::vector<double> ys(const sp_line& line)
{
    std::vector<double> v;
    for (int i = 0; i < line.num_points; ++i)
        v.push_back(line.points[i].y);
    return v;
}

using numbers = std::vector<double>;
} // namespace

TEST(sp_line, from_points_sorts_them_and_has_no_base)
{
    frame_bench b;
    b.frame.lineCompression = 50;
    const fpoint_t pts[] = {{9, 1}, {3, 20}, {6, 10}};
    const sp_line across(&b.frame, kHorizontal, pts, 3);
    EXPECT_EQ(xs(across), (numbers{3, 6, 9}));
    EXPECT_EQ(ys(across), (numbers{20, 10, 1}));
    const sp_line down(&b.frame, kVertical, pts, 3);
    EXPECT_EQ(ys(down), (numbers{1, 10, 20}));
    EXPECT_EQ(down.base_x, 0.0f);
    EXPECT_EQ(down.base_y, 0.0f);
    EXPECT_EQ(down.max_points, 3);
    EXPECT_EQ(down.fixed_points, 0);
    EXPECT_EQ(down.compression_shift, 0.0f);
    EXPECT_EQ(down.points[1].angle, 0.0);
}

TEST(sp_line, without_room_or_points_has_none)
{
    frame_bench b;
    const fpoint_t pts[] = {{9, 1}, {3, 20}, {6, 10}};
    for (const int n : {0, -1, std::numeric_limits<int>::min()})
        EXPECT_FALSE(sp_line(&b.frame, kHorizontal, pts, n).has_points()) << n;
    b.starve();
    sp_line many(&b.frame, kHorizontal, pts, 3);
    EXPECT_EQ(many.points, nullptr);
    const curve_pt_t p = {1, 2, 3};
    sp_line knots(&b.frame, kHorizontal, p, p, p);
    EXPECT_EQ(knots.points, nullptr);
    sp_line straight(&b.frame, kHorizontal, pts[0], pts[1]);
    EXPECT_EQ(straight.points, nullptr);
    EXPECT_EQ(straight.num_points, 0);
    const sp_line copy(&many);
    EXPECT_EQ(copy.points, nullptr);
    for (sp_line* line : {&many, &knots, &straight})
    {
        float v = 7.0f;
        line->insert_distortion(pts, 3);
        line->filter();
        line->affect_compression();
        EXPECT_FALSE(line->value(1.5f, &v));
        EXPECT_EQ(v, 7.0f);
        EXPECT_FALSE(line->has_points());
    }
}

TEST(sp_line, from_three_points_keeps_tangents_and_takes_its_base_from_the_first)
{
    frame_bench b;
    b.frame.lineCompression = 50;
    const sp_line line(&b.frame, kVertical, {4, 30, 10}, {5, 20, 20}, {6, 10, 30});
    EXPECT_EQ(ys(line), (numbers{10, 20, 30}));
    EXPECT_EQ(xs(line), (numbers{6, 5, 4}));
    EXPECT_EQ(line.points[0].angle, 30.0);
    EXPECT_EQ(line.points[2].angle, 10.0);
    EXPECT_EQ(line.base_x, 4.0f);
    EXPECT_EQ(line.base_y, 0.0f);
    EXPECT_EQ(line.fixed_points, 1);
    EXPECT_EQ(line.max_points, 3);
    EXPECT_EQ(line.compression_shift, 0.0f);
    const sp_line flat(&b.frame, kHorizontal, {4, 30, 10}, {5, 20, 20}, {6, 10, 30});
    EXPECT_EQ(flat.base_x, 0.0f);
    EXPECT_EQ(flat.base_y, 30.0f);
}

TEST(sp_line, between_two_points_does_not_sort_and_leaves_room)
{
    frame_bench b;
    const sp_line line(&b.frame, kHorizontal, {90, 5}, {10, 7});
    EXPECT_EQ(xs(line), (numbers{90, 10}));
    EXPECT_EQ(ys(line), (numbers{5, 7}));
    EXPECT_EQ(line.base_y, 5.0f);
    EXPECT_EQ(line.max_points, 576); // 288 / 0.5
    EXPECT_EQ(line.fixed_points, 1);
    b.host.in_data.quality = 0;
    b.set_up();
    EXPECT_EQ(sp_line(&b.frame, kHorizontal, {90, 5}, {10, 7}).max_points, 288);
}

TEST(sp_line, a_straight_line_carves_what_its_crossings_can_append)
{
    frame_bench b;
    b.host.set(18, 10);
    b.host.set_percent(19, 50);
    b.host.set(7, 3);
    b.host.set(8, 2);
    b.set_up();
    // 2 + crossings * (2 * 10 * 1.5 + 1): three rows cross a vertical line, two columns a horizontal one.
    const auto points_carved = [&](unsigned char vertical)
    {
        const std::uint64_t before = b.memory.pool.remaining;
        const sp_line line(&b.frame, vertical, {1, 2}, {3, 4});
        EXPECT_EQ(line.room * static_cast<std::int64_t>(sizeof(curve_pt_t)),
                  static_cast<std::int64_t>(before - b.memory.pool.remaining));
        return line.room;
    };
    EXPECT_EQ(points_carved(kVertical), 95);
    EXPECT_EQ(points_carved(kHorizontal), 64);
    b.frame.angularLines = 1;
    b.frame.tolerance = 4;
    EXPECT_EQ(points_carved(kVertical), 20); // 2 + 3 * (4 + 2)
    b.frame.angularLines = 0;
    b.frame.rows = 100;
    EXPECT_EQ(points_carved(kVertical), 576); // never more than the line may use
}

TEST(sp_line, of_no_quality_has_no_points)
{
    frame_bench b;
    b.host.in_data.quality = -1; // a step without end
    b.set_up();
    const sp_line line(&b.frame, kHorizontal, {90, 5}, {10, 7});
    EXPECT_EQ(line.max_points, 0);
    EXPECT_FALSE(line.has_points());
}

TEST(sp_line, a_maximum_beyond_32_bits_is_kept)
{
    frame_bench b;
    b.frame.qualityStep = static_cast<float>(1.0 / 100000001.0);
    const sp_line line(&b.frame, kHorizontal, {90, 5}, {10, 7});
    EXPECT_EQ(line.max_points, static_cast<std::int64_t>(288.0f / static_cast<float>(1.0 / 100000001.0)));
    EXPECT_GT(line.max_points, 28'000'000'000);
    EXPECT_EQ(line.num_points, 2);
}

TEST(sp_line, appends_only_up_to_its_room)
{
    frame_bench b;
    const fpoint_t pts[] = {{1, 1}, {2, 2}, {3, 3}, {4, 4}};
    sp_line line(&b.frame, kHorizontal, {0, 5}, {9, 5});
    line.max_points = 5;
    line.insert_distortion(pts, 2);
    EXPECT_EQ(xs(line), (numbers{0, 9, 1, 2}));
    line.insert_distortion(pts + 2, 2);
    EXPECT_EQ(xs(line), (numbers{0, 9, 1, 2, 3}));
    EXPECT_EQ(line.points[4].angle, 0.0);
    line.insert_distortion(pts, 4);
    EXPECT_EQ(line.num_points, 5);
    line.insert_distortion(pts, -3);
    EXPECT_EQ(line.num_points, 5);
}

TEST(sp_line, a_copy_has_room_for_its_points_alone)
{
    frame_bench b;
    b.host.set(11, 50);
    b.set_up();
    sp_line line(&b.frame, kVertical, {3, 5}, {4, 50});
    EXPECT_NE(line.compression_shift, 0.0f);
    const std::uint64_t before = b.memory.pool.remaining;
    sp_line copy(&line);
    EXPECT_EQ(before - b.memory.pool.remaining, 2 * sizeof(curve_pt_t));
    EXPECT_EQ(copy.max_points, line.max_points);
    EXPECT_EQ(copy.num_points, 2);
    EXPECT_EQ(copy.vertical, 1);
    EXPECT_EQ(copy.fixed_points, 1);
    EXPECT_EQ(copy.base_x, line.base_x);
    EXPECT_EQ(copy.compression_shift, 0.0f);
    EXPECT_EQ(xs(copy), xs(line));
    EXPECT_NE(copy.points, line.points);
    const fpoint_t more = {1, 1};
    copy.insert_distortion(&more, 1); // its maximum says yes, its memory no
    EXPECT_EQ(copy.num_points, 2);
}

TEST(sp_line, of_a_ripple_samples_every_pixel)
{
    frame_bench b;
    const curve c(&b.frame, 77, 0, 0, 3.0f);
    for (const unsigned char vertical : {kHorizontal, kVertical})
    {
        const sp_line line(&b.frame, vertical, {31.25, 999}, &c, 20, 120);
        ASSERT_EQ(line.num_points, 100);
        EXPECT_EQ(line.max_points, 100);
        EXPECT_EQ(line.fixed_points, 0);
        EXPECT_EQ(vertical != 0 ? line.base_x : line.base_y, 31.25f);
        EXPECT_EQ(vertical != 0 ? line.base_y : line.base_x, 0.0f);
        for (int i = 0; i < 100; ++i)
        {
            float v = 0.0f;
            ASSERT_TRUE(c.F(static_cast<float>(i), &v));
            const curve_pt_t& p = line.points[i];
            EXPECT_EQ(vertical != 0 ? p.y : p.x, 20.0 + i);
            EXPECT_EQ(vertical != 0 ? p.x : p.y, static_cast<double>(v) + 31.25);
        }
    }
}

TEST(sp_line, a_ripple_without_a_value_leaves_a_zero_point)
{
    frame_bench b;
    b.frame.rippleWavelength = 1.0f; // 282 pixels of samples, which octave 2 runs through in 70
    b.host.set(11, 0);
    const curve c(&b.frame, 77, 0, 0, 3.0f);
    const sp_line line(&b.frame, kVertical, {31.25, 0}, &c, 20, 120);
    ASSERT_EQ(line.num_points, 100);
    float v = 0.0f;
    ASSERT_TRUE(c.F(10.0f, &v));
    EXPECT_EQ(line.points[10].y, 30.0);
    ASSERT_FALSE(c.F(90.0f, &v));
    EXPECT_EQ(line.points[90].y, 0.0);
    EXPECT_EQ(line.points[90].x, 0.0);
}

TEST(sp_line, angular_ripples_have_corners_and_a_closing_point)
{
    frame_bench b; // cells of 50
    b.frame.angularLines = 1;
    b.frame.tolerance = 4; // a corner each 12.5 pixels
    const curve c(&b.frame, 77, 0, 0, 3.0f);
    const sp_line line(&b.frame, kHorizontal, {10, 0}, &c, 20, 60);
    EXPECT_EQ(xs(line), (numbers{20, 32.5, 45, 57.5, 59}));
    EXPECT_EQ(line.max_points, 40);
    float v = 0.0f;
    ASSERT_TRUE(c.F(39.0f, &v));
    EXPECT_EQ(line.points[4].y, static_cast<double>(v) + 10.0);
}

TEST(sp_line, angular_corners_follow_the_cell_along_the_line)
{
    frame_bench b(200, 100);
    b.frame.angularLines = 1;
    const curve c(&b.frame, 77, 0, 0, 3.0f);
    EXPECT_EQ(xs(sp_line(&b.frame, kHorizontal, {10, 0}, &c, 0, 100)), (numbers{0, 50, 99}));
    EXPECT_EQ(ys(sp_line(&b.frame, kVertical, {10, 0}, &c, 0, 60)), (numbers{0, 25, 50, 59}));
}

TEST(sp_line, angular_steps_below_a_pixel_have_room)
{
    frame_bench b;
    b.frame.angularLines = 1;
    b.frame.columnSpacing = 1;
    b.frame.tolerance = 20;
    const curve c(&b.frame, 77, 0, 0, 3.0f);
    const std::uint64_t before = b.memory.pool.remaining;
    const sp_line line(&b.frame, kHorizontal, {10, 0}, &c, 0, 5);
    EXPECT_EQ(line.max_points, 5);
    EXPECT_GE(line.num_points, 101);
    EXPECT_LE(line.num_points, 102);
    EXPECT_EQ(before - b.memory.pool.remaining, static_cast<std::uint64_t>(line.num_points) * sizeof(curve_pt_t));
}

TEST(sp_line, angular_steps_that_are_none_count_as_1)
{
    for (const auto& [cell, tolerance] : {std::pair{0, 1}, {0, 0}, {-5, 1}, {5, -1}})
    {
        frame_bench b;
        b.frame.angularLines = 1;
        b.frame.columnSpacing = cell;
        b.frame.tolerance = tolerance;
        const curve c(&b.frame, 77, 0, 0, 3.0f);
        EXPECT_EQ(xs(sp_line(&b.frame, kHorizontal, {10, 0}, &c, 3, 6)), (numbers{3, 4, 5, 5}));
    }
}

TEST(sp_line, angular_steps_without_end_leave_one_corner)
{
    frame_bench b;
    b.frame.angularLines = 1;
    b.frame.tolerance = 0;
    const curve c(&b.frame, 77, 0, 0, 3.0f);
    EXPECT_EQ(xs(sp_line(&b.frame, kHorizontal, {10, 0}, &c, 3, 6)), (numbers{3, 5}));
}

TEST(sp_line, angular_steps_too_fine_for_the_pool_leave_no_points)
{
    frame_bench b;
    b.frame.angularLines = 1;
    b.frame.tolerance = std::numeric_limits<int>::max(); // the step is lost in rounding
    const curve c(&b.frame, 77, 0, 0, 3.0f);
    EXPECT_FALSE(sp_line(&b.frame, kHorizontal, {10, 0}, &c, 3, 200).has_points());
}

TEST(sp_line, of_a_ripple_that_runs_backwards_has_no_points)
{
    frame_bench b;
    b.host.set(11, 50);
    b.set_up();
    const curve c(&b.frame, 77, 0, 0, 3.0f);
    for (const short to : {short{20}, short{19}, short{-32768}})
    {
        const sp_line line(&b.frame, kHorizontal, {10, 0}, &c, 20, to);
        EXPECT_FALSE(line.has_points());
        EXPECT_EQ(line.num_points, 0);
        EXPECT_EQ(line.max_points, to - 20);
        EXPECT_NE(line.compression_shift, 0.0f);
    }
}

TEST(sp_line, linear_value_is_half_open_over_descending_points)
{
    frame_bench b;
    const sp_line line(&b.frame, kHorizontal, {0, 0}, {1, 1});
    const curve_pt_t pts[] = {{30, 3, 0}, {20, 10, 0}, {10, 0, 0}};
    float v = 77.0f;
    EXPECT_FALSE(line.value(pts, 3, 30.0f, &v));
    EXPECT_FALSE(line.value(pts, 3, 9.99f, &v));
    EXPECT_EQ(v, 77.0f);
    EXPECT_TRUE(line.value(pts, 3, 10.0f, &v));
    EXPECT_EQ(v, 0.0f);
    EXPECT_TRUE(line.value(pts, 3, 20.0f, &v));
    EXPECT_EQ(v, 10.0f);
    EXPECT_TRUE(line.value(pts, 3, 15.0f, &v));
    EXPECT_EQ(v, 5.0f);
    EXPECT_FALSE(line.value(pts, 1, 30.0f, &v));
    EXPECT_FALSE(line.value(pts, 0, 30.0f, &v));
    const curve_pt_t down[] = {{3, 30, 0}, {10, 20, 0}};
    const sp_line vertical(&b.frame, kVertical, {0, 0}, {1, 1});
    EXPECT_TRUE(vertical.value(down, 2, 27.5f, &v));
    EXPECT_EQ(v, 4.75f);
}

TEST(sp_line, linear_value_narrows_its_share_before_the_product)
{
    frame_bench b;
    const sp_line line(&b.frame, kHorizontal, {0, 0}, {1, 1});
    const curve_pt_t pts[] = {{10, 1e9, 0}, {7, -1e9, 0}};
    float v = 0.0f;
    ASSERT_TRUE(line.value(pts, 2, 9.0f, &v));
    const float share = static_cast<float>((9.0 - 10.0) / (10.0 - 7.0));
    EXPECT_EQ(v, static_cast<float>(1e9 + static_cast<double>(share) * 2e9));
    EXPECT_NE(v, static_cast<float>(1e9 - 2e9 / 3.0));
}

TEST(sp_line, linear_value_searches_from_the_low_end)
{
    frame_bench b;
    const sp_line line(&b.frame, kHorizontal, {0, 0}, {1, 1});
    const curve_pt_t folded[] = {{30, 0, 0}, {10, 0, 0}, {30, 8, 0}, {10, 8, 0}};
    float v = 0.0f;
    ASSERT_TRUE(line.value(folded, 4, 15.0f, &v));
    EXPECT_EQ(v, 8.0f);
}

TEST(sp_line, hermite_value_is_half_open_over_ascending_points)
{
    frame_bench b;
    const sp_line line(&b.frame, kHorizontal, {10, 5, 0}, {20, 9, 0}, {30, 5, 0});
    float v = 77.0f;
    EXPECT_FALSE(line.value(30.0f, &v));
    EXPECT_FALSE(line.value(9.9f, &v));
    EXPECT_EQ(v, 77.0f);
    EXPECT_TRUE(line.value(10.0f, &v));
    EXPECT_EQ(v, 5.0f);
    EXPECT_TRUE(line.value(20.0f, &v));
    EXPECT_EQ(v, 9.0f);
    EXPECT_TRUE(line.value(15.0f, &v));
    EXPECT_EQ(v, 7.0f);
}

TEST(sp_line, hermite_tangents_are_slopes_per_running_pixel)
{
    frame_bench b;
    // Slope 1 at both ends of a segment of 10 that rises by 10: a straight line.
    const sp_line line(&b.frame, kVertical, {0, 10, 45}, {10, 20, 45}, {20, 30, 45});
    for (const float t : {11.0f, 14.5f, 19.0f, 26.0f})
    {
        float v = 0.0f;
        ASSERT_TRUE(line.value(t, &v));
        EXPECT_NEAR(v, t - 10.0f, 1e-5);
    }
}

TEST(sp_line, hermite_weights_are_single_the_sum_double)
{
    frame_bench b;
    const sp_line line(&b.frame, kHorizontal, {10.1, 1e7, 33}, {23.7, -1e7, -71}, {40, 0, 0});
    for (float t = 10.2f; t < 23.0f; t += 0.37f)
    {
        const float m0 = static_cast<float>(std::tan(33 * 0.017453292519943295));
        const float m1 = static_cast<float>(std::tan(-71 * 0.017453292519943295));
        const double length = 23.7 - 10.1;
        const float s = static_cast<float>((static_cast<double>(t) - 10.1) / length);
        const float square = s * s;
        const float cube = square * s;
        const double sum =
            double{2.0f * cube - 3.0f * square + 1.0f} * 1e7 + double{-2.0f * cube + 3.0f * square} * -1e7 +
            double{m0} * length * double{cube - 2.0f * square + s} + double{m1} * length * double{cube - square};
        float v = 0.0f;
        ASSERT_TRUE(line.value(t, &v));
        EXPECT_EQ(v, static_cast<float>(sum)) << t;
    }
}

TEST(sp_line, compression_of_0_moves_nothing)
{
    frame_bench b;
    const sp_line line(&b.frame, kVertical, {3, 5}, {4, 50});
    EXPECT_EQ(line.compression_shift, 0.0f);
    EXPECT_EQ(line.base_x, 3.0f);
    EXPECT_EQ(xs(line), (numbers{3, 4}));
}

TEST(sp_line, compression_pushes_lines_from_the_centre)
{
    frame_bench b; // centre at (144, 144) of the canvas
    b.host.set(11, 25);
    b.set_up();
    const sp_line down(&b.frame, kVertical, {104, 5}, {106, 50});
    EXPECT_EQ(down.compression_shift, -10.0f);
    EXPECT_EQ(down.base_x, 94.0f);
    EXPECT_EQ(xs(down), (numbers{94, 96}));
    EXPECT_EQ(ys(down), (numbers{5, 50}));
    const sp_line across(&b.frame, kHorizontal, {5, 184}, {50, 184});
    EXPECT_EQ(across.base_y, 194.0f);
    EXPECT_EQ(ys(across), (numbers{194, 194}));
    EXPECT_EQ(xs(across), (numbers{5, 50}));
}

TEST(sp_line, compression_of_minus_100_collapses_onto_the_centre)
{
    frame_bench b;
    b.host.set(11, -100);
    b.set_up();
    const sp_line line(&b.frame, kVertical, {104.5, 5}, {104.5, 50});
    EXPECT_EQ(line.base_x, 144.0f);
    EXPECT_EQ(xs(line), (numbers{144, 144}));
}

TEST(sp_line, compression_keeps_ends)
{
    frame_bench b;
    b.host.set(11, 80);
    b.set_up();
    const curve c(&b.frame, 77, 0, 0, 3.0f);
    const sp_line line(&b.frame, kVertical, {60, 0}, &c, 20, 120);
    EXPECT_EQ(line.num_points, 100);
    EXPECT_EQ(line.points[0].y, 20.0);
    EXPECT_EQ(line.points[99].y, 119.0);
}

TEST(sp_line, compression_centre_goes_through_the_layout_matrix)
{
    frame_bench b;
    b.host.set(11, 100);
    b.set_up();
    b.frame.layoutMatrix = {{{1, 0, 0}, {0, 1, 0}, {-100, 0, 1}}};
    EXPECT_EQ(sp_line(&b.frame, kVertical, {50, 0}, {50, 9}).compression_shift, 6.0f);
    EXPECT_EQ(sp_line(&b.frame, kHorizontal, {0, 50}, {9, 50}).compression_shift, -94.0f);
}

TEST(sp_line, compression_shift_is_rounded_to_single)
{
    frame_bench b;
    b.host.set(11, 33);
    b.set_up();
    const sp_line line(&b.frame, kVertical, {0.1, 0}, {0.1, 9});
    const float shift = static_cast<float>((static_cast<double>(0.1f) - 144.0) * 33.0 / 100.0);
    EXPECT_EQ(line.compression_shift, shift);
    EXPECT_EQ(line.base_x, 0.1f + shift);
    EXPECT_EQ(line.points[0].x, 0.1 + static_cast<double>(shift));
}

TEST(sp_line, filter_carries_an_averaged_value_on)
{
    frame_bench b;
    const fpoint_t pts[] = {{5, 0}, {5.5, 10}, {6, 0}};
    sp_line line(&b.frame, kHorizontal, pts, 3);
    line.filter();
    EXPECT_EQ(ys(line), (numbers{5, 2.5, 2.5}));
    EXPECT_EQ(xs(line), (numbers{5, 5.5, 6}));
}

TEST(sp_line, filter_leaves_what_is_apart_or_level)
{
    frame_bench b;
    const fpoint_t pts[] = {{0, 5}, {50, 6.25}, {53, 7.25}, {99, 8.5}};
    // Running along y: only the middle pair is no more than 1 apart.
    sp_line line(&b.frame, kVertical, pts, 4);
    line.filter();
    EXPECT_EQ(xs(line), (numbers{0, 51.5, 51.5, 99}));
    const fpoint_t level[] = {{0, 5}, {0.5, 6}, {0.75, 5}};
    sp_line flat(&b.frame, kHorizontal, level, 3);
    flat.filter();
    EXPECT_EQ(ys(flat), (numbers{5, 6, 5}));
}

TEST(sp_line, filter_sorts_first)
{
    frame_bench b;
    sp_line line(&b.frame, kHorizontal, {0, 5}, {90, 5});
    const fpoint_t pts[] = {{40, 8}, {20, 7}};
    line.insert_distortion(pts, 2);
    line.filter();
    EXPECT_EQ(xs(line), (numbers{0, 20, 40, 90}));
    EXPECT_EQ(ys(line), (numbers{5, 7, 8, 5}));
}

TEST(sp_line, follows_a_ripple_the_same_at_every_level)
{
    for (const bool angular : {false, true})
        for (const short length : {0, 1, 2, 63, 64, 65, 300, 2000})
        {
            frame_bench b(300, 200);
            b.frame.angularLines = angular ? 1 : 0;
            b.frame.tolerance = 7;
            const curve ripple(&b.frame, 77, 0, 3, 4.5f); // has no value far beyond the grid
            b.frame.lineCreator.level = simd_level::scalar;
            const sp_line plain(&b.frame, 1, fpoint_t{30.25, 0.0}, &ripple, -5, static_cast<short>(length - 5));
            b.frame.lineCreator.level = simd_level::baseline;
            const sp_line fast(&b.frame, 1, fpoint_t{30.25, 0.0}, &ripple, -5, static_cast<short>(length - 5));
            ASSERT_EQ(fast.num_points, plain.num_points) << length;
            ASSERT_EQ(fast.room, plain.room);
            for (int i = 0; i < plain.num_points; ++i)
                ASSERT_EQ(std::memcmp(&fast.points[i], &plain.points[i], sizeof(curve_pt_t)), 0)
                    << length << ", point " << i;
        }
}
