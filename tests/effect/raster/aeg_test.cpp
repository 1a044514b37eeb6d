#include "raster_stage.hpp"

#include <gtest/gtest.h>

#include <utility>

namespace
{
using raster_test::host_call;
using raster_test::same;
using raster_test::stage;

bool equal(const PF_Rect& a, const PF_Rect& b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

TEST(aeg, divides_the_canvas_into_32_tiles_each_way)
{
    stage s(96, 128);
    const aeg& context = *s.context;
    EXPECT_EQ(context.tileWidth, 3);
    EXPECT_EQ(context.tileHeight, 4);
    for (int x = 0; x < 32; ++x)
        for (int y = 0; y < 32; ++y)
        {
            const PF_Rect want = {3 * x, 4 * y, 3 * x + 3, 4 * y + 4};
            ASSERT_TRUE(equal(context.tileRect[x * 32 + y], want)) << x << ", " << y;
            ASSERT_EQ(context.tileDirty[x * 32 + y], 0);
        }
}

TEST(aeg, counts_pixels_of_a_padded_row)
{
    stage s(96, 32, 16);
    EXPECT_EQ(s.context->rowPixels, 100);
}

TEST(aeg, keeps_what_it_is_given)
{
    stage s(64, 64);
    const aeg context(&s.pool, &s.in_data, s.destination.layer(), s.canvas.layer(), 1, -3, 4);
    EXPECT_EQ(context.destination, s.destination.layer());
    EXPECT_EQ(context.canvas, s.canvas.layer());
    EXPECT_EQ(context.pool, &s.pool);
    EXPECT_EQ(context.in_data, &s.in_data);
    EXPECT_EQ(context.flag, 1);
    EXPECT_EQ(context.a, -3);
    EXPECT_EQ(context.b, 4);
}

TEST(aeg, marks_the_tile_that_holds_a_pixel)
{
    stage s(96, 128);
    for (int y = 0; y < 128; ++y)
        for (int x = 0; x < 96; ++x)
        {
            s.context->mark(x, y);
            for (int tile = 0; tile < 1024; ++tile)
                ASSERT_EQ(s.context->tileDirty[tile], tile == x / 3 * 32 + y / 4 ? 1 : 0) << x << ", " << y;
            s.context->tileDirty[x / 3 * 32 + y / 4] = 0;
        }
}

TEST(aeg, holds_the_strip_beyond_the_tiles_to_the_last_of_them)
{
    stage s(127, 95); // tiles of 3 by 2: columns from 96 and rows from 64 are left over
    s.context->mark(126, 0);
    EXPECT_EQ(s.context->tileDirty[31 * 32 + 0], 1);
    s.context->mark(0, 94);
    EXPECT_EQ(s.context->tileDirty[0 * 32 + 31], 1);
    s.context->mark(126, 94);
    EXPECT_EQ(s.context->tileDirty[31 * 32 + 31], 1);
}

TEST(aeg, holds_pixels_of_a_canvas_below_32_to_the_last_tile)
{
    stage s(20, 31);
    EXPECT_EQ(s.context->tileWidth, 0);
    s.context->mark(0, 0);
    s.context->mark(19, 30);
    for (int tile = 0; tile < 1024; ++tile)
        EXPECT_EQ(s.context->tileDirty[tile], tile == 1023 ? 1 : 0);
    s.context->flush();
    EXPECT_EQ(s.context->tileDirty[1023], 0);
}

TEST(aeg, flushes_dirty_tiles_row_by_row_and_no_other)
{
    stage s(64, 64);
    // Column of tiles, row of tiles.
    const std::pair<int, int> marked[] = {{31, 31}, {5, 0}, {0, 31}, {2, 7}, {1, 7}, {7, 2}};
    const std::pair<int, int> flushed[] = {{5, 0}, {7, 2}, {1, 7}, {2, 7}, {0, 31}, {31, 31}};
    for (const auto& [x, y] : marked)
        s.context->mark(2 * x, 2 * y);
    s.context->flush();

    ASSERT_EQ(s.calls.size(), 12U);
    for (std::size_t i = 0; i < 6; ++i)
    {
        const auto& [x, y] = flushed[i];
        const PF_Rect rect = {2 * x, 2 * y, 2 * x + 2, 2 * y + 2};
        EXPECT_EQ(s.calls[2 * i].name, "transfer_rect");
        EXPECT_TRUE(equal(s.calls[2 * i].rect, rect)) << i;
        EXPECT_EQ(s.calls[2 * i + 1].name, "fill");
        EXPECT_TRUE(equal(s.calls[2 * i + 1].rect, rect)) << i;
    }
    for (const std::uint8_t dirty : s.context->tileDirty)
        EXPECT_EQ(dirty, 0);
    s.context->flush();
    EXPECT_EQ(s.calls.size(), 12U);
}

TEST(aeg, lays_a_tile_in_front_and_clears_it)
{
    stage s(64, 96);
    s.in_data.quality = PF_Quality_LO;
    s.context->mark(10, 20);
    s.context->flush();
    ASSERT_EQ(s.calls.size(), 2U);

    const host_call& transfer = s.calls[0];
    EXPECT_EQ(transfer.effect_ref, s.in_data.effect_ref);
    EXPECT_EQ(transfer.quality, PF_Quality_LO);
    EXPECT_TRUE(transfer.plain);
    EXPECT_EQ(transfer.mode.xfer, PF_Xfer_IN_FRONT);
    EXPECT_EQ(transfer.mode.rand_seed, 3256874);
    EXPECT_EQ(transfer.mode.opacity, 255);
    EXPECT_EQ(transfer.mode.rgb_only, 0);
    EXPECT_EQ(transfer.from, s.canvas.layer());
    EXPECT_EQ(transfer.to, s.destination.layer());
    EXPECT_EQ(transfer.dest_x, 10);
    EXPECT_EQ(transfer.dest_y, 18);

    const host_call& fill = s.calls[1];
    EXPECT_EQ(fill.effect_ref, s.in_data.effect_ref);
    EXPECT_TRUE(same(fill.color, {0, 0, 0, 0}));
    EXPECT_EQ(fill.to, s.canvas.layer());
}

TEST(aeg, never_clears_the_strip_beyond_the_tiles)
{
    stage s(65, 33);
    s.canvas.at(64, 32) = {1, 2, 3, 4};
    s.context->mark(64, 32);
    s.context->flush();
    ASSERT_EQ(s.calls.size(), 2U);
    EXPECT_TRUE(equal(s.calls[0].rect, {62, 31, 64, 32}));
    EXPECT_TRUE(same(s.canvas.at(64, 32), {1, 2, 3, 4}));
}
} // namespace
