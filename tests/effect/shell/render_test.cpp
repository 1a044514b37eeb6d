#include "effect/shell/render.hpp"

#include "tests/support/effect_fixture.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{
using call_list = std::vector<std::string>;

std::optional<std::uint64_t> size_of(effect_fixture& host)
{
    return pool_size(&host.in_data, host.params());
}

call_list handle_calls(const effect_fixture& host)
{
    return host.calls({"new_handle", "lock_handle", "unlock_handle", "dispose_handle"});
}

// A grid without lines: a render that is soon done.
void make_empty(effect_fixture& host)
{
    host.set(7, 0);
    host.set(8, 0);
}
} // namespace

TEST(pool_size, of_the_default_grid_of_200_by_200)
{
    effect_fixture host(64, 48);
    host.set(4, 0); // sliders: 200 x 200
    EXPECT_EQ(size_of(host), 2097152u);
}

TEST(pool_size, follows_the_layer_or_the_sliders_never_both)
{
    effect_fixture host(64, 48);
    const auto small = size_of(host);
    host.set(2, 2000);
    host.set(3, 2000);
    EXPECT_EQ(size_of(host), small);
    host.set(4, 0);
    const auto large = size_of(host);
    // D = A = 2828; K = 16 * 12 * 2828 = 542976; S = 7997584 + 542976; (S + 2^20) / 2^20 = 9.14...
    EXPECT_EQ(large, 10u * 1048576u);
    host.in_data.width = 20000;
    host.in_data.height = 30000;
    EXPECT_EQ(size_of(host), large);
}

TEST(pool_size, counts_of_zero_are_ones)
{
    effect_fixture host;
    host.set_number(53, 7.0);
    host.in_data.current_time = 30000;
    host.set(7, 1);
    host.set(8, 100);
    const auto one_row = size_of(host);
    host.set(7, 0);
    EXPECT_EQ(size_of(host), one_row);
    host.set(7, 2);
    EXPECT_NE(size_of(host), one_row);
    host.set(8, 1);
    const auto one_column = size_of(host);
    host.set(8, 0);
    EXPECT_EQ(size_of(host), one_column);
}

TEST(pool_size, grows_with_the_frame_when_ripples_move)
{
    effect_fixture host;
    const auto first = size_of(host);
    host.in_data.current_time = 10000;
    EXPECT_GT(size_of(host), first);
    host.set(51, 0); // speed
    EXPECT_EQ(size_of(host), first);
}

TEST(pool_size, in_double_precision_in_the_stated_order)
{
    // Worked by hand: D = 80; f = 90001 / 2 = 45000; s = 45000 * 7; A = 315080;
    // B = (65536 / 655.36 / 200 + 1) * 6.5 * 4 * A = 1.5 * 6.5 * 4 * 315080 = 12288120; K = 35 * B = 430084200;
    // S = 6400 + K; (S + 1048576) / 1048576 = 411.16...
    effect_fixture host(64, 48);
    host.in_data.current_time = 90001;
    host.in_data.time_step = 2;
    host.set(51, 7);
    host.set(54, 65536);
    host.set_number(53, 6.5);
    host.set(7, 5);
    host.set(8, 7);
    EXPECT_EQ(size_of(host), 412u * 1048576u);
}

TEST(pool_size, whole_mebibytes_stay)
{
    // S = 0: exactly one mebibyte, not two.
    effect_fixture host(0, 0);
    EXPECT_EQ(size_of(host), 1048576u);
}

TEST(pool_size, integer_products_wrap)
{
    effect_fixture host;
    make_empty(host);
    host.in_data.current_time = 65536;
    host.set(51, 65536); // 2^32 wraps to 0
    EXPECT_EQ(size_of(host), 2097152u);
    host.set(51, 32768); // 2^31 wraps to the negative: A < 0
    EXPECT_FALSE(size_of(host).has_value());
}

TEST(pool_size, no_division_traps)
{
    effect_fixture host;
    make_empty(host);
    const auto at_start = size_of(host);
    host.in_data.current_time = 5000;
    host.in_data.time_step = 0;
    EXPECT_EQ(size_of(host), at_start);
    host.in_data.current_time = std::numeric_limits<A_long>::min();
    host.in_data.time_step = -1;
    host.set(51, 2); // the wrapped frame number times 2 is 0
    EXPECT_EQ(size_of(host), at_start);
}

TEST(pool_size, what_is_no_number_of_bytes_is_no_memory)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    for (const double turbulence : {nan, inf, -inf, -1e9, 1e30, -1e30})
    {
        effect_fixture host;
        host.set_number(53, turbulence);
        EXPECT_EQ(size_of(host), std::nullopt) << turbulence;
        EXPECT_EQ(host.render(), PF_Err_OUT_OF_MEMORY) << turbulence;
        EXPECT_TRUE(host.log.empty()) << turbulence;
    }
}

TEST(render, takes_one_block_and_gives_it_back)
{
    effect_fixture host;
    EXPECT_EQ(host.render(), PF_Err_NONE);
    EXPECT_EQ(handle_calls(host),
              (call_list{"new_handle 2097152", "lock_handle", "unlock_handle", "dispose_handle"}));
    EXPECT_EQ(host.log.front(), "new_handle 2097152");
    EXPECT_EQ(host.log[1], "lock_handle");
    EXPECT_EQ(host.log[host.log.size() - 2], "unlock_handle");
    EXPECT_EQ(host.log.back(), "dispose_handle");
    EXPECT_EQ(host.handles_alive(), 0u);
}

TEST(render, no_block_is_out_of_memory)
{
    effect_fixture host;
    host.on_call = [](std::string_view name) { return name == "new_handle" ? PF_Err{1} : PF_Err_NONE; };
    EXPECT_EQ(host.render(), 4);
    EXPECT_EQ(host.log, call_list{"new_handle 2097152"});
}

TEST(render, a_block_that_cannot_be_locked_is_disposed_of_unlocked)
{
    effect_fixture host;
    host.on_call = [](std::string_view name) { return name == "lock_handle" ? PF_Err{1} : PF_Err_NONE; };
    EXPECT_EQ(host.render(), 4);
    EXPECT_EQ(host.log, (call_list{"new_handle 2097152", "lock_handle", "dispose_handle"}));
    EXPECT_EQ(host.handles_alive(), 0u);
}

TEST(render, says_none_whatever_the_drawing_met)
{
    effect_fixture host;
    host.set(59, 1);
    host.on_call = [](std::string_view name)
    { return name == "new_handle" || name == "lock_handle" ? PF_Err_NONE : PF_Err{99}; };
    EXPECT_EQ(host.render(), PF_Err_NONE);
    EXPECT_EQ(host.handles_alive(), 0u);
}

TEST(render, an_exception_leaves_the_block_taken)
{
    effect_fixture host;
    host.on_call = [](std::string_view name) -> PF_Err { return name == "transform" ? throw 1 : PF_Err_NONE; };
    EXPECT_EQ(host.render(), 512);
    EXPECT_EQ(handle_calls(host), (call_list{"new_handle 2097152", "lock_handle"}));
    EXPECT_EQ(host.handles_alive(), 1u);
    EXPECT_EQ(host.worlds_alive, 0);
}

// Each of the sixteen ways in which handle callbacks can be missing. A block of ours has a master pointer, through
// which the host may lock it; the host's block without the host's disposal is left alone.
TEST(render, every_handle_callback_may_be_missing)
{
    for (int missing = 0; missing < 16; ++missing)
    {
        effect_fixture host;
        make_empty(host);
        call_list expected;
        const auto keep_or_drop = [&](int bit, auto& callback, const char* call, bool called = true)
        {
            if ((missing & bit) != 0)
                callback = nullptr;
            else if (called)
                expected.push_back(call);
        };
        const bool hosts_own = (missing & 1) == 0;
        keep_or_drop(1, host.utils.host_new_handle, "new_handle 2097152");
        keep_or_drop(2, host.utils.host_lock_handle, "lock_handle");
        keep_or_drop(4, host.utils.host_unlock_handle, "unlock_handle");
        keep_or_drop(8, host.utils.host_dispose_handle, "dispose_handle", hosts_own);
        EXPECT_EQ(host.render(), PF_Err_NONE) << missing;
        EXPECT_EQ(handle_calls(host), expected) << missing;
        // What the host made and may not be told to dispose of stays.
        EXPECT_EQ(host.handles_alive(), hosts_own && (missing & 8) != 0 ? 1u : 0u) << missing;
        // The drawing went on all the same.
        EXPECT_EQ(host.calls({"transform"}).size(), 1u) << missing;
    }
}

TEST(render, a_block_of_ours_that_the_host_cannot_lock_is_given_back_by_us)
{
    effect_fixture host;
    host.utils.host_new_handle = nullptr;
    host.on_call = [](std::string_view name) { return name == "lock_handle" ? PF_Err{1} : PF_Err_NONE; };
    EXPECT_EQ(host.render(), 4);
    EXPECT_EQ(host.log, call_list{"lock_handle"});
}
