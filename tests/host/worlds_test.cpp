#include "worlds.hpp"

#include "scripted_effect.hpp"

#include <gtest/gtest.h>

namespace
{
using scripted::padded_world;

bool contains(const PF_Rect& rect, int x, int y)
{
    return x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
}

template <class Random>
PF_Rect random_rect(Random& random)
{
    const auto number = [&random] { return static_cast<A_long>(random() % 40) - 15; };
    return {number(), number(), number(), number()};
}

TEST(fill_world, colours_exactly_the_rectangle_inside_the_world)
{
    std::mt19937 random(1);
    for (int round = 0; round < 500; ++round)
    {
        padded_world world(13, 11);
        world.scatter(random);
        padded_world expected(world);
        const PF_Rect rect = random_rect(random);
        const PF_Pixel color{1, 2, 3, 4};
        for (int y = 0; y < 11; ++y)
            for (int x = 0; x < 13; ++x)
                if (contains(rect, x, y))
                    expected.at(x, y) = color;
        host::fill_world(world.world(), &rect, &color);
        ASSERT_EQ(world.difference(expected), "") << "round " << round;
    }
}

TEST(fill_world, null_means_everything_and_transparent_black)
{
    std::mt19937 random(2);
    padded_world world(5, 4);
    world.scatter(random);
    padded_world expected(world);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            expected.at(x, y) = {};
    host::fill_world(world.world(), nullptr, nullptr);
    EXPECT_EQ(world.difference(expected), "");
}

TEST(copy_world, moves_what_both_rectangles_and_both_worlds_hold)
{
    std::mt19937 random(3);
    for (int round = 0; round < 2000; ++round)
    {
        padded_world src(10, 12), dst(13, 9);
        src.scatter(random);
        dst.scatter(random);
        padded_world expected(dst);
        PF_Rect from = random_rect(random), to = random_rect(random);
        const bool whole_from = round % 5 == 0, whole_to = round % 7 == 0;
        if (whole_from)
            from = {0, 0, 10, 12};
        if (whole_to)
            to = {0, 0, 13, 9};
        for (int y = 0; y < 9; ++y)
            for (int x = 0; x < 13; ++x)
            {
                const int sx = x - to.left + from.left, sy = y - to.top + from.top;
                if (contains(to, x, y) && contains(from, sx, sy) && contains({0, 0, 10, 12}, sx, sy))
                    expected.at(x, y) = src.at(sx, sy);
            }
        host::copy_world(src.world(), whole_from ? nullptr : &from, dst.world(), whole_to ? nullptr : &to);
        ASSERT_EQ(dst.difference(expected), "") << "round " << round;
    }
}

TEST(copy_world, within_one_world_reads_before_it_writes)
{
    std::mt19937 random(4);
    padded_world world(8, 8);
    world.scatter(random);
    padded_world before(world), expected(world);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            if (x >= 2 && y >= 1)
                expected.at(x, y) = before.at(x - 2, y - 1);
    const PF_Rect from{0, 0, 8, 8}, to{2, 1, 10, 9};
    host::copy_world(world.world(), &from, world.world(), &to);
    EXPECT_EQ(world.difference(expected), "");
}

TEST(transfer, blends_the_clipped_rectangle_through_the_mask)
{
    std::mt19937 random(5);
    for (int round = 0; round < 2000; ++round)
    {
        padded_world src(10, 12), dst(13, 9), cover(6, 7);
        src.scatter(random);
        dst.scatter(random);
        cover.scatter(random);
        padded_world expected(dst);
        const PF_Rect from = random_rect(random);
        const int dest_x = static_cast<int>(random() % 30) - 12, dest_y = static_cast<int>(random() % 30) - 12;
        const host::blend how{static_cast<PF_TransferMode>(random() % 3), random() % 2 ? 255u : 131u,
                              random() % 4 == 0};
        PF_MaskWorld mask{};
        mask.mask = cover.world();
        mask.offset = {static_cast<A_long>(random() % 9) - 4, static_cast<A_long>(random() % 9) - 4};
        const bool masked = round % 3 == 0;
        for (int y = 0; y < 9; ++y)
            for (int x = 0; x < 13; ++x)
            {
                const int sx = x - dest_x + from.left, sy = y - dest_y + from.top;
                if (!contains(from, sx, sy) || !contains({0, 0, 10, 12}, sx, sy))
                    continue;
                const unsigned alpha =
                    masked ? cover.at_or_nothing(sx - mask.offset.h, sy - mask.offset.v).alpha : 255u;
                expected.at(x, y) = host::blended(how, src.at(sx, sy), dst.at(x, y), alpha);
            }
        host::transfer(how, src.world(), &from, masked ? &mask : nullptr, dst.world(), dest_x, dest_y);
        ASSERT_EQ(dst.difference(expected), "") << "round " << round;
    }
}

TEST(transfer, far_away_numbers_draw_nothing)
{
    std::mt19937 random(6);
    padded_world src(4, 4), dst(4, 4);
    src.scatter(random);
    dst.scatter(random);
    padded_world before(dst);
    const A_long far = 2147483647;
    const PF_Rect rects[] = {{far, far, far, far}, {-far - 1, -far - 1, 0, 0}, {3, 3, -far, -far}};
    for (const PF_Rect& rect : rects)
        host::transfer({PF_Xfer_COPY}, src.world(), &rect, nullptr, dst.world(), -far - 1, far);
    host::transfer({PF_Xfer_COPY}, src.world(), nullptr, nullptr, dst.world(), far, -far - 1);
    EXPECT_EQ(dst.difference(before), "");
    // The far left of a rectangle that covers everything lands on the far left: its middle is this world.
    const PF_Rect all{-far - 1, -far - 1, far, far};
    host::transfer({PF_Xfer_COPY}, src.world(), &all, nullptr, dst.world(), -far - 1, -far - 1);
    EXPECT_EQ(dst.difference(src), "");
}
} // namespace
