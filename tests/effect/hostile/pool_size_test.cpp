// Renders in pools of every size, from nothing to the frame's own: what does not fit is left out, nothing is
// written outside the block (the checked host looks at the bytes around it), and all worlds are given back.

#include "hostile_cases.hpp"

#include "effect/model/frame_data.hpp"
#include "effect/model/grid.hpp"
#include "effect/raster/aeg.hpp"
#include "effect/shell/render.hpp"
#include "tests/support/effect_fixture.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace
{
using hostile::frame_case;
using hostile::outcome;

constexpr std::uint64_t kCanvasSide = 96;
constexpr std::uint64_t kFullSize = 2 << 20;

// What a render carves before its first line, in this order; the sum so far.
constexpr std::uint64_t kWithGrid = sizeof(grid);
constexpr std::uint64_t kWithRecord = kWithGrid + sizeof(frame_data);
constexpr std::uint64_t kWithContext = kWithRecord + sizeof(aeg);
constexpr std::uint64_t kWithMask = kWithContext + kCanvasSide * kCanvasSide;
constexpr std::uint64_t kWithTable =
    kWithMask + std::uint64_t{LineCreatorClass::kTableRows} * LineCreatorClass::kTableColumns * sizeof(float);

// More than the lines of any frame here take at once; found by trying.
constexpr std::uint64_t kLinesAtMost = 24 << 10;

thread_local std::uint64_t pool_bytes = 0;
thread_local int strokes = 0;
thread_local PF_Rect last_tile{};
thread_local decltype(PF_UtilCallbacks::transfer_rect) hosts_transfer_rect = nullptr;

// A stroke's tiles come in rows from the top, each from the left: where the order goes back, a new stroke began.
PF_Err counted_transfer_rect(PF_ProgPtr ref, PF_Quality quality, PF_ModeFlags flags, PF_Field field,
                             const PF_Rect* tile, const PF_EffectWorld* src, const PF_CompositeMode* mode,
                             const PF_MaskWorld* mask, A_long x, A_long y, PF_EffectWorld* dst)
{
    const bool onwards = tile->top > last_tile.top || (tile->top == last_tile.top && tile->left > last_tile.left);
    if (strokes == 0 || !onwards)
        ++strokes;
    last_tile = *tile;
    return hosts_transfer_rect(ref, quality, flags, field, tile, src, mode, mask, x, y, dst);
}

PF_Err entry_with_pool(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                       PF_LayerDef* output, void* extra)
{
    if (cmd != PF_Cmd_RENDER)
        return PluginEntry(cmd, in_data, out_data, params, output, extra);
    hosts_transfer_rect = in_data->utils->transfer_rect;
    in_data->utils->transfer_rect = counted_transfer_rect;
    strokes = 0;
    return render_with_pool(in_data, out_data, params, output, pool_bytes);
}

outcome render_in(std::uint64_t bytes, const frame_case& c, bool no_handle_callbacks = false)
{
    static const host::plugin effect(&entry_with_pool, "the effect");
    pool_bytes = bytes;
    return hostile::render(effect, c, {}, no_handle_callbacks);
}

// Multiples of 8: every one up to the record, about the end of each fixed object and where the first line's
// objects begin; small steps among the lines, large ones elsewhere.
std::set<std::uint64_t> pool_sizes()
{
    std::set<std::uint64_t> sizes = {kFullSize};
    const auto every_8 = [&](std::uint64_t from, std::uint64_t to)
    {
        for (std::uint64_t size = from; size <= to; size += 8)
            sizes.insert(size);
    };
    every_8(0, kWithRecord + 64);
    for (const std::uint64_t end : {kWithContext, kWithMask, kWithTable})
        every_8(end - 64, end + 64);
    for (std::uint64_t size = kWithRecord; size < kWithTable; size += 1001 * 8)
        sizes.insert(size);
    every_8(kWithTable, kWithTable + 512);
    for (std::uint64_t size = kWithTable; size < kWithTable + kLinesAtMost; size += 14 * 8)
        sizes.insert(size);
    for (std::uint64_t size = kWithTable + kLinesAtMost; size < kFullSize; size += 8191 * 8)
        sizes.insert(size);
    return sizes;
}

class pool_size : public testing::TestWithParam<const char*>
{
};

TEST_P(pool_size, of_any_number_of_bytes_is_enough_to_return)
{
    const frame_case& c = hostile::case_named(GetParam());
    const outcome ordinary = hostile::render(c);
    const std::vector<std::uint8_t> bare = hostile::render(c.without_lines()).pixels;
    const std::vector<std::uint8_t> untouched(bare.size(), 0);
    const bool wraps = c.has("Line Wrapping", "on");
    std::set<std::vector<std::uint8_t>> pictures;
    bool whole = false; // everything fitted into the size before
    const std::set<std::uint64_t> sizes = pool_sizes();
    for (const std::uint64_t size : sizes)
    {
        SCOPED_TRACE(testing::Message() << size << " bytes");
        const outcome o = render_in(size, c);
        ASSERT_EQ(o.result, PF_Err_NONE);
        ASSERT_EQ(o.complaint, "");
        ASSERT_EQ(o.count("new_world"), o.count("dispose_world"));
        ASSERT_EQ(o.count("transform_world"), size < kWithRecord ? 0 : 1);
        if (size < kWithTable)
        {
            ASSERT_EQ(o.pixels, size < kWithRecord ? untouched : bare);
            ASSERT_EQ(o.count("transfer_rect"), 0);
            ASSERT_EQ(o.count("checkout_param"), 0);
        }
        if (!wraps)
        {
            ASSERT_LE(strokes, 2 * hostile::kLines);
        }
        ASSERT_TRUE(!whole || o.pixels == ordinary.pixels) << "there was room for more in less";
        whole = o.pixels == ordinary.pixels;
        if (size > kWithTable + kLinesAtMost)
        {
            ASSERT_TRUE(whole);
        }
        pictures.insert(o.pixels);
    }
    const outcome full = render_in(kFullSize, c);
    EXPECT_EQ(full.pixels, ordinary.pixels);
    EXPECT_EQ(full.calls, ordinary.calls);
    RecordProperty("sizes", static_cast<int>(sizes.size()));
    RecordProperty("pictures", static_cast<int>(pictures.size()));
}

// The effect's own block ends where it ends: a sanitizer sees the first byte past it.
TEST_P(pool_size, of_the_effects_own_block_draws_the_same)
{
    const frame_case& c = hostile::case_named(GetParam());
    int tried = 0;
    for (const std::uint64_t size : pool_sizes())
    {
        if (size / 8 % 5 != 0 && size != kFullSize)
            continue;
        const outcome own = render_in(size, c, true);
        ASSERT_EQ(own.result, PF_Err_NONE) << size;
        ASSERT_EQ(own.complaint, "") << size;
        ASSERT_EQ(own.pixels, render_in(size, c).pixels) << size;
        ++tried;
    }
    RecordProperty("sizes", tried);
}

INSTANTIATE_TEST_SUITE_P(frames, pool_size,
                         testing::Values("both_ripple", "columns_ripple", "rows_ripple", "angular", "ends",
                                         "wrapping", "displaced"),
                         [](const testing::TestParamInfo<const char*>& one) { return std::string(one.param); });

TEST(pool_sizes, go_up_to_what_the_frame_asks_for)
{
    const frame_case& c = hostile::case_named("both_ripple");
    EXPECT_EQ(hostile::render(c).block_bytes, kFullSize);
    EXPECT_EQ(render_in(40, c).block_bytes, 40u);
    render_in(kFullSize, c);
    EXPECT_EQ(strokes, 2 * hostile::kLines); // the counter finds every line
}

// On a canvas of 608 pixels a side the mask is larger than the table that is carved after it and would still fit.
TEST(pool_sizes, that_hold_the_table_but_not_the_mask_draw_no_line)
{
    const frame_case c = hostile::case_named("one_colour")
                             .with("Make Size Match Layer Size", "off")
                             .with("Width", "480")
                             .with("Height", "360");
    const std::uint64_t mask = 608 * 608;
    const outcome o = render_in(kWithContext + mask - 8, c);
    EXPECT_EQ(o.complaint, "");
    EXPECT_EQ(o.count("transform_world"), 1);
    EXPECT_EQ(o.count("transfer_rect"), 0);
    EXPECT_GT(render_in(kFullSize, c).count("transfer_rect"), 0);
}
} // namespace
