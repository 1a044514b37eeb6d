// Renders that are short of memory, and parameters that no slider can hold: nothing may crash, leak or hang.
#include "effect/model/frame_data.hpp"
#include "effect/model/grid.hpp"
#include "tests/support/effect_fixture.hpp"
#include "tests/support/heap_count.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <random>

namespace
{
void make_busy(effect_fixture& host)
{
    host.set_percent(12, 80);
    host.set(16, 90);
    host.set_percent(19, 50);
    host.set_percent(24, 70);
    host.set(18, 9);
    host.set(9, 1);
    host.in_data.current_time = 3;
}

// A render in a pool of that many bytes; the grid's own destructor does not run, as in the effect.
PF_Err draw_in(effect_fixture& host, std::size_t bytes)
{
    pool_block memory(bytes);
    alignas(grid) std::byte room[sizeof(grid)];
    grid* const g = new (room) grid(&memory.pool);
    return g->draw(&host.in_data, &host.out_data, host.params(), &host.output);
}

// Bytes that the frame takes up to its first line: record, context, mask, coverage table.
std::size_t before_lines(effect_fixture& host)
{
    host.set(7, 0);
    host.set(8, 0);
    pool_block memory(4 << 20);
    grid g(&memory.pool);
    g.draw(&host.in_data, &host.out_data, host.params(), &host.output);
    host.set(7, 4);
    host.set(8, 4);
    return (4 << 20) - memory.pool.remaining;
}
} // namespace

TEST(starvation, every_way_of_drawing_survives_every_pool)
{
    for (const A_long affect : {1, 2, 3, 31, 44})
    {
        effect_fixture host(24, 20);
        make_busy(host);
        host.set(31, affect > 3);
        host.set(44, affect == 44);
        host.set(55, affect > 3 ? 3 : affect);
        const std::size_t fixed = before_lines(host);
        host.recording = false;
        for (std::size_t bytes = 0; bytes < fixed; bytes += 14999 * 8)
            EXPECT_EQ(draw_in(host, bytes), PF_Err_NONE);
        for (std::size_t bytes = fixed - 64; bytes < fixed + 16000; bytes += 168)
        {
            EXPECT_EQ(draw_in(host, bytes / 8 * 8), PF_Err_NONE);
            ASSERT_EQ(host.worlds_alive, 0);
        }
    }
}

TEST(starvation, without_context_mask_or_table_the_canvas_is_transformed_all_the_same)
{
    effect_fixture host(24, 20);
    make_busy(host);
    host.set(31, 1);
    const std::size_t fixed = before_lines(host);
    for (const std::size_t bytes : {sizeof(frame_data), sizeof(frame_data) + 4096, fixed - 8})
    {
        host.log.clear();
        draw_in(host, bytes / 8 * 8);
        EXPECT_EQ(host.calls({"transform"}).size(), 1u);
        EXPECT_EQ(host.calls({"dispose_world"}).size(), 2u);
        EXPECT_EQ(host.calls({"fill"}).size(), 7u); // the output, and the grid
        EXPECT_EQ(host.calls({"transfer"}).size(), 0u);
        EXPECT_EQ(host.calls({"checkout"}).size(), 0u);
    }
    host.log.clear();
    draw_in(host, fixed + 100000);
    EXPECT_GT(host.calls({"checkout"}).size(), 0u);
    EXPECT_GT(host.calls({"transfer"}).size(), 0u);
}

TEST(starvation, nothing_of_a_render_stays_on_the_heap)
{
    for (const A_long affect : {1, 2, 3})
    {
        for (const bool throws : {false, true})
        {
            effect_fixture host(64, 48);
            make_busy(host);
            host.set(55, affect);
            host.recording = false;
            if (throws)
                host.on_call = [](std::string_view name) -> PF_Err
                { return name == "transform" || name == "transfer" ? throw 5 : PF_Err_NONE; };
            pool_block memory(4 << 20);
            alignas(grid) std::byte room[sizeof(grid)];
            grid* const g = new (room) grid(&memory.pool);
            const long alive = heap_blocks_alive();
            const long made = heap_blocks_made();
            try
            {
                g->draw(&host.in_data, &host.out_data, host.params(), &host.output);
                EXPECT_FALSE(throws);
            }
            catch (int)
            {
                EXPECT_TRUE(throws);
            }
            const long left = heap_blocks_alive() - alive;
            const bool seen = heap_blocks_made() > made;
            EXPECT_EQ(left, 0) << affect;
            EXPECT_EQ(g->lines.size(), 0u);
            EXPECT_TRUE(seen || affect == 3) << affect; // the list's nodes were counted
        }
    }
}

TEST(starvation, a_quality_of_minus_1_draws_what_it_can)
{
    for (const A_long affect : {1, 2, 3})
    {
        effect_fixture host(64, 48);
        make_busy(host);
        host.set(55, affect);
        host.in_data.quality = -1;
        EXPECT_EQ(host.render(), PF_Err_NONE);
        EXPECT_EQ(host.calls({"transform"}).size(), 1u);
        EXPECT_EQ(host.worlds_alive, 0);
    }
}

TEST(starvation, tiny_layers_are_rendered)
{
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 9}, {9, 1}, {2, 2}})
    {
        for (const A_long affect : {1, 2, 3, 31, 59})
        {
            effect_fixture host(width, height);
            make_busy(host);
            host.set(55, affect > 3 ? 3 : affect);
            host.set(31, affect == 31);
            host.set(59, affect == 59);
            EXPECT_EQ(host.render(), PF_Err_NONE);
            EXPECT_EQ(host.calls({"transform"}).size(), 1u);
        }
    }
}

TEST(starvation, one_row_and_twenty_columns_of_a_wide_frame_leave_room_for_the_lines)
{
    effect_fixture host(640, 360);
    host.set(7, 1);
    host.set(8, 20);
    host.set(55, 2);
    host.recording = true;
    EXPECT_EQ(host.render(), PF_Err_NONE);
    EXPECT_GT(host.calls({"transfer"}).size(), 300u);
}

TEST(starvation, numbers_that_no_slider_holds_are_survived)
{
    std::mt19937 random(17);
    const A_long edges[] = {0,     1,     -1,    2,      7,          100,
                            32767, 32768, 65536, -65536, 2147483647, std::numeric_limits<A_long>::min()};
    const double doubles[] = {0.0,
                              -1.0,
                              7.5,
                              1e300,
                              -1e300,
                              std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN()};
    for (int n = 0; n < 400; ++n)
    {
        effect_fixture host(16, 12);
        host.recording = false;
        for (int id = 2; id < 63; ++id)
        {
            PF_ParamDef& def = host.defs[static_cast<std::size_t>(id)];
            if (random() % 6 != 0 || id == 7 || id == 8)
                continue;
            if (def.param_type == PF_Param_FLOAT_SLIDER)
                def.u.fs_d.value = doubles[random() % std::size(doubles)];
            else if ((id >= 15 && id <= 17) || id == 49 ||
                     id == 50) // sizes that cost time: what a slider may hold
                def.u.sd.value = static_cast<A_long>(random() % 201) - 100;
            else if (def.param_type != PF_Param_GROUP_START && def.param_type != PF_Param_GROUP_END)
                def.u.sd.value = edges[random() % std::size(edges)];
        }
        host.set(31, n % 4 == 0);
        host.set(55, n % 5);
        host.in_data.current_time = static_cast<A_long>(random() % 3);
        const PF_Err err = host.render();
        EXPECT_TRUE(err == PF_Err_NONE || err == PF_Err_OUT_OF_MEMORY) << n;
        EXPECT_EQ(host.worlds_alive, 0) << n;
        EXPECT_EQ(host.handles_alive(), 0u) << n;
    }
}
