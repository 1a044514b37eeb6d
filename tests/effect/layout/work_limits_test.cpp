// Settings that no slider offers, which would otherwise keep a host waiting for ever.

#include "effect/model/work_limits.hpp"

#include "tests/support/effect_fixture.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace
{
constexpr A_long kMost = std::numeric_limits<A_long>::max();

std::size_t check_outs(const effect_fixture& host)
{
    return host.calls({"checkout"}).size();
}

TEST(work_limits, draw_no_more_lines_than_the_limit)
{
    // One time step of growth a line tells how many lines there are.
    for (const A_long columns : {A_long{kMostLines - 1}, A_long{kMostLines}, A_long{kMostLines + 1}, A_long{5000}})
    {
        effect_fixture host(16, 16);
        host.set(kLinesHaveEnds, 1);
        host.set(kRows, 0);
        host.set(kColumns, columns);
        ASSERT_EQ(host.render(), PF_Err_NONE);
        EXPECT_EQ(check_outs(host), 2 * static_cast<std::size_t>(std::min(columns, A_long{kMostLines})));
    }
}

TEST(work_limits, end_a_render_of_every_count_there_is)
{
    for (const A_long count : {kMost, -kMost - 1, A_long{-1}, A_long{100000}})
        for (const int affect : {1, 2, 3})
        {
            effect_fixture host(16, 16);
            host.recording = false;
            host.set(kAffect, affect);
            host.set(kRows, count);
            host.set(kColumns, affect == 3 ? count : 2);
            host.set(kShowGrid, 1);
            const PF_Err err = host.render();
            EXPECT_TRUE(err == PF_Err_NONE || err == PF_Err_OUT_OF_MEMORY) << count << ", affect " << affect;
        }
}

TEST(work_limits, sum_growth_over_every_frame_up_to_the_limit)
{
    effect_fixture host(16, 16);
    host.set(kLinesHaveEnds, 1);
    host.set(kRows, 1);
    host.set(kColumns, 1);
    host.set(kSpeed, 0);
    host.in_data.current_time = 200;
    host.in_data.time_step = 1;
    ASSERT_EQ(host.render(), PF_Err_NONE);
    EXPECT_EQ(check_outs(host), 2U * 2U * 201U);
}

TEST(work_limits, end_a_render_at_a_frame_number_of_billions)
{
    effect_fixture host(16, 16);
    host.recording = false;
    int asked = 0;
    host.on_checkout = [&asked](PF_ParamIndex, A_long, PF_ParamDef&) { ++asked; };
    host.set(kLinesHaveEnds, 1);
    host.set(kRows, 2);
    host.set(kColumns, 2);
    host.set(kSpeed, 0);
    host.in_data.current_time = kMost;
    host.in_data.time_step = 1;
    ASSERT_EQ(host.render(), PF_Err_NONE);
    EXPECT_EQ(asked, 2 * 4 * (kMostGrowthFrames / 4 + 1));
}

TEST(work_limits, end_lines_of_endless_tolerance)
{
    for (const int affect : {1, 2, 3})
    {
        effect_fixture host(32, 32);
        host.recording = false;
        host.set(kAffect, affect);
        host.set(kAngularLines, 1);
        host.set(kTolerance, kMost - 1);
        host.set(kDistortion, 1000000);
        EXPECT_EQ(host.render(), PF_Err_NONE);
    }
}

} // namespace
