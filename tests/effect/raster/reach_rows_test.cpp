// The rows that a stroke's places reach, against a look at every place for every pixel.
#include "effect/raster/reach_rows.hpp"
#include "stroke_comparison.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace
{
using raster_test::dice;

constexpr int kSize = 120;
constexpr int kAcross = 150;

struct placed
{
    float main;
    float cross;
    float radius;
};

// Wherever a pixel lies within a pixel of a place's disc, its row is one of its tile's. `slack` gets how many rows
// more than these there are, at most.
void expect_reached(const std::vector<placed>& stroke, float farthest, int* slack)
{
    std::vector<float> main;
    std::vector<float> cross;
    std::vector<float> radius;
    for (const placed& p : stroke)
    {
        main.push_back(p.main);
        cross.push_back(p.cross);
        radius.push_back(p.radius);
    }
    stroke_candidates places;
    places.count = static_cast<int>(main.size());
    for (std::vector<float>* values : {&main, &cross, &radius})
        values->resize(values->size() + stroke_candidates::kPadding, stroke_candidates::kFarAway);
    places.main = main.data();
    places.cross = cross.data();
    places.radius = radius.data();

    std::vector<std::byte> room(1U << 16U);
    scratch_memory memory(room.data(), room.size());
    reach_rows reached;
    ASSERT_TRUE(reached.take(places, farthest, kAcross, memory));
    for (int at = 0; at < kSize; at += kLanes)
    {
        const span rows = reached.of(at);
        span seen = {kAcross, -1};
        for (int row = 0; row < kAcross; ++row)
            for (int lane = 0; lane < kLanes; ++lane)
                for (const placed& p : stroke)
                {
                    const double off = std::hypot(at + lane + 0.5 - static_cast<double>(p.main),
                                                  row + 0.5 - static_cast<double>(p.cross));
                    if (off < static_cast<double>(p.radius) + 1.0)
                        seen = {std::min(seen.first, row), std::max(seen.last, row)};
                }
        if (seen.first > seen.last)
            continue;
        EXPECT_LE(rows.first, seen.first) << "tile at " << at;
        EXPECT_GE(rows.last, seen.last) << "tile at " << at;
        *slack = std::max({*slack, seen.first - rows.first, rows.last - seen.last});
    }
}
} // namespace

TEST(reach_rows, are_all_that_a_disc_reaches_and_few_more)
{
    int slack = 0;
    for (unsigned seed = 1; seed <= 25; ++seed)
    {
        dice d(seed);
        const int k = d.whole(1, 3);
        const float base = d.real(-20.0f, static_cast<float>(kAcross) + 20.0f);
        const float rise = d.real(-0.5f, 0.5f);
        const float widest = d.real(1.0f, 60.0f);
        std::vector<placed> stroke;
        const float end = d.real(30.0f, static_cast<float>(kSize) + 20.0f);
        for (float at = d.real(-20.0f, 25.0f); at < end; at += 1.0f / static_cast<float>(k))
            stroke.push_back({at, base + rise * at, widest * (1.0f - 0.3f * std::sin(at * 0.05f))});
        expect_reached(stroke, 1.3f * widest + 2.0f, &slack);
    }
    // Eight places count as one where they lie farthest out, and discs end steeply.
    EXPECT_LE(slack, 24);
}

TEST(reach_rows, leave_out_what_counts_for_nothing)
{
    std::vector<placed> stroke;
    for (int i = 0; i < 40; ++i)
        stroke.push_back({static_cast<float>(i), 20.0f, 5.0f});
    stroke[3].cross = stroke_candidates::kFarAway;
    stroke[5].radius = std::numeric_limits<float>::quiet_NaN();
    stroke[6].radius = -3.0f;
    int slack = 0;
    expect_reached(stroke, 8.0f, &slack);
    EXPECT_LE(slack, 3);
}

TEST(reach_rows, are_none_beside_the_stroke)
{
    float values[3][40];
    for (int i = 0; i < 40; ++i)
    {
        values[0][i] = static_cast<float>(i);
        values[1][i] = 20.0f;
        values[2][i] = 5.0f;
    }
    stroke_candidates places;
    places.count = 24;
    places.main = values[0];
    places.cross = values[1];
    places.radius = values[2];
    std::vector<std::byte> room(1U << 12U);
    scratch_memory memory(room.data(), room.size());
    reach_rows reached;
    ASSERT_TRUE(reached.take(places, 8.0f, kAcross, memory));
    EXPECT_LE(reached.of(0).first, reached.of(0).last);
    EXPECT_GT(reached.of(80).first, reached.of(80).last);
    scratch_memory little(room.data(), 64);
    EXPECT_FALSE(reach_rows().take(places, 8.0f, kAcross, little));
}
