#include "effect/raster/blend.hpp"
#include "raster_stage.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace
{
using raster_test::same;
using raster_test::text;

const PF_Pixel kNormal = {200, 10, 255, 128};
const PF_Pixel kStressed = {100, 250, 0, 128};
const PF_Pixel kBefore = {77, 1, 2, 3};

// Written a second way: which colour is pure up to the band's edge, and how far the other one has come in.
PF_Pixel mixed(int percent, float deviation, float max_deviation)
{
    const bool from_normal = percent >= 50;
    const PF_Pixel& pure = from_normal ? kNormal : kStressed;
    const PF_Pixel& other = from_normal ? kStressed : kNormal;
    const int share = from_normal ? percent - 50 : percent;
    const float edge = static_cast<float>(share) * max_deviation / 50.0f;
    const bool inside = from_normal ? edge + 0.00001f >= deviation : deviation >= edge - 0.00001f;
    if (inside)
        return pure;
    float f = from_normal ? (deviation - edge) / (max_deviation - edge) : (edge - deviation) / edge;
    f = std::fmin(std::fmax(f, -0.99999f), 0.99999f);
    const auto channel = [f](int a, int b)
    {
        const float v = static_cast<float>(a) + static_cast<float>(b - a) * f;
        return static_cast<A_u_char>(v > 254.00001 ? 255 : static_cast<int>(v));
    };
    return {kBefore.alpha, channel(pure.red, other.red), channel(pure.green, other.green),
            channel(pure.blue, other.blue)};
}

PF_Pixel blended(int percent, float deviation, float max_deviation)
{
    PF_Pixel out = kBefore;
    blend_color(kNormal, kStressed, static_cast<short>(percent), deviation, max_deviation, &out);
    return out;
}

TEST(blend_color, agrees_with_a_second_version_at_every_percent)
{
    for (const float max_deviation : {0.25f, 1.0f, 7.3f, 35.0f, 481.9f})
        for (int percent = 0; percent <= 100; ++percent)
            for (int i = 0; i <= 300; ++i)
            {
                const float deviation = max_deviation * static_cast<float>(i) / 300.0f;
                const PF_Pixel got = blended(percent, deviation, max_deviation);
                const PF_Pixel want = mixed(percent, deviation, max_deviation);
                ASSERT_TRUE(same(got, want)) << "percent " << percent << ", deviation " << deviation << " of "
                                             << max_deviation << ": " << text(got) << ", not " << text(want);
            }
}

TEST(blend_color, is_the_normal_colour_everywhere_at_100_and_the_stressed_one_at_0)
{
    for (const float deviation : {0.0f, 3.0f, 9.99999f, 10.0f})
    {
        EXPECT_TRUE(same(blended(100, deviation, 10.0f), kNormal)) << deviation;
        EXPECT_TRUE(same(blended(0, deviation, 10.0f), kStressed)) << deviation;
    }
}

TEST(blend_color, keeps_the_pure_colour_within_a_hundred_thousandth_of_the_band)
{
    // At 75 % of 10 pixels the band of normal colour ends at 5; at 25 % that of the stressed one begins there.
    const auto next = [](float v) { return std::nextafter(v, 100.0f); };
    const auto previous = [](float v) { return std::nextafter(v, -100.0f); };
    const float above = 5.0f + 0.00001f;
    EXPECT_TRUE(same(blended(75, above, 10.0f), kNormal));
    EXPECT_FALSE(same(blended(75, next(above), 10.0f), kNormal));
    const float below = 5.0f - 0.00001f;
    EXPECT_TRUE(same(blended(25, below, 10.0f), kStressed));
    EXPECT_FALSE(same(blended(25, previous(below), 10.0f), kStressed));
}

TEST(blend_color, leaves_the_alpha_alone_where_it_mixes)
{
    EXPECT_EQ(blended(50, 5.0f, 10.0f).alpha, kBefore.alpha);
    EXPECT_EQ(blended(50, 0.0f, 10.0f).alpha, kNormal.alpha);
    EXPECT_EQ(blended(49, 9.9f, 10.0f).alpha, kStressed.alpha);
}

TEST(blend_color, rounds_a_channel_above_254_up)
{
    const PF_Pixel dark = {0, 0, 254, 253};
    const PF_Pixel light = {0, 255, 255, 254};
    PF_Pixel out{};
    // Red runs from 0 to 254.99; green is a little above 254; blue a little above 253.
    blend_color(dark, light, 50, 9.9999f, 10.0f, &out);
    EXPECT_EQ(out.red, 255);
    EXPECT_EQ(out.green, 255);
    EXPECT_EQ(out.blue, 253);
    // 254 exactly stays.
    const PF_Pixel at_254 = {0, 254, 254, 254};
    blend_color(at_254, at_254, 50, 5.0f, 10.0f, &out);
    EXPECT_EQ(out.red, 254);
}

TEST(blend_color, survives_a_line_without_deviation)
{
    // At the very base the share of 50 % and more is pure; a share below is too, for 0 is not below 0.
    EXPECT_TRUE(same(blended(60, 0.0f, 0.0f), kNormal));
    EXPECT_TRUE(same(blended(40, 0.0f, 0.0f), kStressed));
}

TEST(blend_color, holds_a_share_outside_the_colours_just_short_of_one)
{
    EXPECT_TRUE(same(blended(200, 5.0f, 1.0f), mixed(200, 5.0f, 1.0f))) << text(blended(200, 5.0f, 1.0f));
    EXPECT_TRUE(same(blended(50, 500.0f, 1.0f), mixed(50, 500.0f, 1.0f))) << text(blended(50, 500.0f, 1.0f));
}

TEST(blend_color, turns_what_is_not_a_number_into_no_colour)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const PF_Pixel black = {kBefore.alpha, 0, 0, 0};
    EXPECT_TRUE(same(blended(60, nan, 10.0f), black));
    EXPECT_TRUE(same(blended(40, nan, 10.0f), black));
}
} // namespace
