// The pieces that swept regions are made of, by themselves.
#include "effect/raster/nearest_sample.hpp"
#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/swept_plane.hpp"
#include "raster_stage.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <vector>

TEST(spans, join_where_they_meet_or_touch)
{
    const auto is = [](span s, int first, int last) { return s.first == first && s.last == last; };
    EXPECT_TRUE(is(joined({2, 5}, {4, 9}), 2, 9));
    EXPECT_TRUE(is(joined({4, 9}, {2, 5}), 2, 9));
    EXPECT_TRUE(is(joined({2, 5}, {6, 9}), 2, 9));
    EXPECT_TRUE(is(joined({6, 9}, {2, 5}), 2, 9));
    EXPECT_TRUE(is(joined({2, 5}, {7, 9}), 2, 5)); // apart: the first
    EXPECT_TRUE(is(joined({7, 9}, {2, 5}), 7, 9));
    EXPECT_TRUE(is(joined({2, 5}, {1, 0}), 2, 5)); // one is empty
    EXPECT_TRUE(is(joined({1, 0}, {2, 5}), 2, 5));
}

TEST(bridges, that_have_no_positions_are_near_to_nothing)
{
    const StrokePoint from{10.0f, 10.0f, 1.0f, {}};
    const StrokePoint beside{9.5f, 10.5f, 1.0f, {}};
    const gap_bridge none(from, beside, false, 2);
    ASSERT_EQ(none.count, 0);
    const gap_bridge::numbers near = none.nearest_to(10.0f, 10.0f, 100.0f);
    EXPECT_EQ(near.begin, near.end);
}

// Only stretches with holes are noted pixel by pixel: those between them stay as they were.
TEST(swept_pixels, of_stretches_with_holes_are_told_apart)
{
    constexpr int kWidth = 4 * swept_plane::kStretch - 10;
    constexpr int kHeight = 40;
    std::vector<StrokePoint> samples;
    for (int i = 0; i <= 2 * kWidth; ++i)
        samples.push_back({static_cast<float>(kWidth) - 0.5f * static_cast<float>(i), 20.0f, 3.0f, {}});
    LineCreatorClass creator;
    creator.points = samples.data();
    creator.pointCount = static_cast<std::int32_t>(samples.size());
    creator.width = kWidth;
    creator.height = kHeight;
    creator.outerRadius = 4.0f;
    creator.innerRadius = 2.0f;
    std::array<std::byte, 256> notes;
    scratch_memory memory(notes.data(), notes.size());
    swept_plane plane;
    ASSERT_TRUE(plane.take(kWidth, memory));
    EXPECT_FALSE(plane.any());
    plane.note_hole(5);
    plane.note_hole(3 * swept_plane::kStretch);
    EXPECT_TRUE(plane.any());

    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(kWidth) * kHeight, std::uint8_t{0x55});
    plane.fill(creator, true, bytes.data());
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
        {
            const std::uint8_t byte = bytes[static_cast<std::size_t>(y) * kWidth + static_cast<std::size_t>(x)];
            const int stretch = x / swept_plane::kStretch;
            if (stretch == 1 || stretch == 2)
            {
                ASSERT_EQ(byte, 0x55) << x << ", " << y;
                ASSERT_FALSE(plane.holed(x));
                continue;
            }
            // Boxes from 4 (2) pixels above the samples to as many below, truncated.
            const bool swept = 16 <= y && y <= 24;
            const bool core = 18 <= y && y <= 22;
            ASSERT_EQ(byte, (swept ? swept_plane::kSwept : 0) | (core ? swept_plane::kCore : 0)) << x << ", " << y;
            ASSERT_EQ(plane.bits(x, 1, y, swept_plane::kSwept), swept ? 1U : 0U);
        }
    const int last = 3 * swept_plane::kStretch;
    EXPECT_EQ(plane.bits(last, kWidth - last, 20, swept_plane::kCore),
              (std::uint64_t{1} << static_cast<unsigned>(kWidth - last)) - 1);
    EXPECT_EQ(plane.bits(last, kWidth - last, 30, swept_plane::kCore), 0U);
}

TEST(swept_pixels, need_room_for_their_notes)
{
    std::array<std::byte, 4> little;
    scratch_memory memory(little.data(), little.size());
    swept_plane plane;
    EXPECT_FALSE(plane.take(100000, memory));
}
