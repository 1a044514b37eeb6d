// The fast way to draw a stroke against the plain one: the same bytes and the same dirty tiles, for strokes of
// every kind.

#include "effect/model/work_limits.hpp"
#include "effect/raster/fast_stroke.hpp"
#include "stroke_comparison.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace
{
using raster_test::compare;
using raster_test::dice;
using raster_test::levels;
using raster_test::scene;
using raster_test::stage;
using raster_test::tally;

enum class shape
{
    wave,    // smooth, with a radius that swells with the wave
    flat,    // along a pixel's middle or edge: ties everywhere
    walk,    // at random, a little
    steep,   // jumps of many pixels across
    zigzag,  // back and forth at every sample
    gaps,    // samples missing along the main axis
    hostile, // numbers that are none, infinite or huge
};

scene random_scene(unsigned seed, shape form, float max_radius, int max_side)
{
    dice d(seed);
    scene s;
    s.width = d.whole(1, max_side);
    s.height = d.whole(1, max_side);
    s.axis = d.whole(0, 1);
    s.k = d.once_in(4) ? 1 : 2;
    s.one_color = d.once_in(2);
    s.core_opacity = s.one_color && d.once_in(4) ? d.real(0.0f, 1.0f) : 1.0f;
    const float radius = std::max(0.6f, d.real(0.0f, max_radius));
    const float stress = d.once_in(3) ? 0.0f : d.real(-1.0f, 1.0f);
    s.inner = (stress < 0.0f ? radius * (1.0f + stress) : radius) / 1.4142135f - 1.5f;
    s.outer = (stress < 0.0f ? radius : radius * (1.0f + stress)) + 1.5f;
    s.core = s.one_color && s.core_opacity == 1.0f && s.inner >= 1.0f;

    const auto side = static_cast<float>(s.axis == 0 ? s.width : s.height);
    const auto across = static_cast<float>(s.axis == 0 ? s.height : s.width);
    float main = d.real(0.2f * side, side + 30.0f);
    if (d.once_in(2))
        main = std::floor(main) + 0.5f * static_cast<float>(d.whole(0, 1));
    const float end = d.once_in(3) ? d.real(-20.0f, main) : -20.0f;
    const float base = d.once_in(5) ? d.real(-40.0f, across + 40.0f) : d.real(0.0f, across);
    const float amplitude = d.real(0.0f, 0.6f * across);
    const float length = d.real(6.0f, 200.0f);
    const float half_pixel = 0.5f * std::floor(2.0f * base);
    float cross = base;
    const PF_Pixel color = {static_cast<A_u_char>(d.whole(0, 255)), 10, 200,
                            static_cast<A_u_char>(d.whole(0, 255))};
    int i = 0;
    for (float step = 1.0f / static_cast<float>(s.k); main > end || i == 0; main -= step, ++i)
    {
        const float swing = std::sin(main / length * 6.2831853f);
        if (form == shape::wave)
            cross = base + amplitude * swing;
        else if (form == shape::flat)
            cross = half_pixel;
        else if (form == shape::walk)
            cross += d.real(-1.0f, 1.0f);
        else if (form == shape::steep)
            cross += d.once_in(4) ? d.real(-40.0f, 40.0f) : d.real(-2.0f, 2.0f);
        else if (form == shape::zigzag)
            cross = base + (i % 2 == 0 ? 0.4f : -0.4f) * amplitude + d.real(-3.0f, 3.0f);
        else if (form == shape::gaps)
            cross = base + amplitude * swing;
        else
            cross = base + amplitude * swing * (d.once_in(6) ? 20.0f : 1.0f);
        if (form == shape::gaps && d.once_in(8))
            main -= step * static_cast<float>(d.whole(1, 40));
        StrokePoint p{};
        (s.axis == 0 ? p.x : p.y) = main;
        (s.axis == 0 ? p.y : p.x) = cross;
        p.halfWidth = radius + radius * stress * (form == shape::wave ? std::fabs(swing) : d.real(0.0f, 1.0f));
        p.color = s.one_color ? (i == 0 ? color : PF_Pixel{0, 0, 0, 0})
                              : PF_Pixel{color.alpha, static_cast<A_u_char>(d.whole(0, 255)),
                                         static_cast<A_u_char>(i % 256), color.blue};
        if (form == shape::hostile)
        {
            const float odd[] = {std::numeric_limits<float>::quiet_NaN(),
                                 std::numeric_limits<float>::infinity(),
                                 -std::numeric_limits<float>::infinity(),
                                 5e9f,
                                 -2e3f,
                                 3e38f};
            if (d.once_in(40))
                (s.axis == 0 ? p.y : p.x) = odd[d.whole(0, 5)];
            if (d.once_in(40))
                p.halfWidth = odd[d.whole(0, 5)];
        }
        s.points.push_back(p);
    }
    return s;
}

struct family
{
    const char* name;
    shape form;
    float max_radius;
    int max_side;
    unsigned scenes;
};

class fast_stroke : public ::testing::TestWithParam<family>
{
};

TEST_P(fast_stroke, draws_what_the_plain_way_draws)
{
    const family& f = GetParam();
    tally count;
    for (unsigned seed = 1; seed <= f.scenes && !HasFailure(); ++seed)
        compare(random_scene(seed, f.form, f.max_radius, f.max_side), "seed " + std::to_string(seed), count);
    EXPECT_EQ(count.left, 0);
    EXPECT_GT(count.pixels, 0);
    RecordProperty("pixels", std::to_string(count.pixels));
}

TEST(fast_stroke_of, radii_past_the_integers_is_the_plain_one)
{
    scene s;
    s.width = 48;
    s.height = 40;
    s.one_color = true;
    s.outer = 5e9f;
    for (int i = 0; i < 60; ++i)
        s.points.push_back({45.0f - 0.5f * static_cast<float>(i), 20.0f, 5e9f, {255, 1, 2, 3}});
    tally count;
    compare(s, "huge radius", count);
    EXPECT_EQ(count.drawn, static_cast<int>(levels().size()));
}

// The sanitizers see that nothing is read past the samples.
TEST(fast_stroke_of, a_first_sample_that_is_no_number_is_the_plain_one)
{
    for (const float odd : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()})
    {
        scene s;
        s.width = 48;
        s.height = 40;
        s.one_color = true;
        s.outer = 3.0f;
        for (int i = 0; i < 60; ++i)
            s.points.push_back({45.0f - 0.5f * static_cast<float>(i), 20.0f, 3.0f, {255, 1, 2, 3}});
        s.points.back().y = odd;
        tally count;
        compare(s, "first sample at " + std::to_string(odd), count);
        EXPECT_EQ(count.drawn, static_cast<int>(levels().size()));
    }
}

TEST_P(fast_stroke, draws_the_same_without_memory_for_its_places)
{
    const family& f = GetParam();
    tally count;
    for (unsigned seed = 1; seed <= f.scenes / 3 && !HasFailure(); ++seed)
    {
        const scene s = random_scene(seed, f.form, std::min(f.max_radius, 60.0f), std::min(f.max_side, 60));
        compare(s, "seed " + std::to_string(seed), count, raster_test::room_for_runs(s));
    }
    EXPECT_EQ(count.left, 0);
}

TEST_P(fast_stroke, draws_the_same_of_samples_in_any_order)
{
    const family& f = GetParam();
    tally count;
    for (unsigned seed = 1; seed <= f.scenes / 3 && !HasFailure(); ++seed)
    {
        scene s = random_scene(seed, f.form, std::min(f.max_radius, 60.0f), std::min(f.max_side, 60));
        std::shuffle(s.points.begin() + 1, s.points.end(), std::mt19937(seed));
        compare(s, "seed " + std::to_string(seed), count);
    }
    EXPECT_EQ(count.left, 0);
}

TEST(fast_stroke_of, samples_out_of_order_ends_where_the_render_has_looked_at_enough)
{
    scene s;
    s.width = 48;
    s.height = 40;
    s.one_color = true;
    s.outer = 5.5f;
    for (const float x : {20.0f, 30.0f, 10.0f})
        s.points.push_back({x, 20.0f, 4.0f, {255, 1, 2, 3}});
    for (const bool enough : {false, true})
    {
        stage st(s.width, s.height, 8);
        LineCreatorClass creator;
        std::vector<StrokePoint> points;
        set_up(s, st, creator, points);
        const std::int64_t before = enough ? kMostSampleLooks : 0;
        creator.sampleLooks = before;
        ASSERT_TRUE(draw_stroke_fast(creator));
        EXPECT_EQ(creator.sampleLooks > before, !enough);
        EXPECT_EQ(st.canvas.at(20, 20).alpha, enough ? 0 : 255);
    }
}

INSTANTIATE_TEST_SUITE_P(strokes, fast_stroke,
                         ::testing::Values(family{"thin_waves", shape::wave, 4.0f, 200, 120},
                                           family{"wide_waves", shape::wave, 60.0f, 160, 60},
                                           family{"huge_waves", shape::wave, 400.0f, 120, 40},
                                           family{"flat_lines", shape::flat, 30.0f, 120, 60},
                                           family{"walks", shape::walk, 12.0f, 160, 80},
                                           family{"steep_steps", shape::steep, 25.0f, 100, 60},
                                           family{"zigzags", shape::zigzag, 15.0f, 80, 30},
                                           family{"gaps", shape::gaps, 20.0f, 150, 60},
                                           family{"hostile_numbers", shape::hostile, 20.0f, 60, 30}),
                         [](const auto& of) { return std::string(of.param.name); });
} // namespace
