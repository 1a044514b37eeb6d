#include "effect/model/displacement.hpp"

#include "tests/support/frame_bench.hpp"

#include <gtest/gtest.h>

#include <random>
#include <utility>
#include <vector>

namespace
{
constexpr A_long kInputWidth = 8;
constexpr A_long kInputHeight = 6;

// An input whose every pixel tells its place, and a matte to be painted by the test.
class displacement : public testing::Test
{
protected:
    displacement() : bench(kInputWidth, kInputHeight)
    {
        bench.host.set(59, 1);
        bench.host.utils.new_world(bench.host.in_data.effect_ref, kInputWidth, kInputHeight, 1,
                                   &bench.frame.scratch);
        for (A_long y = 0; y < kInputHeight; ++y)
            for (A_long x = 0; x < kInputWidth; ++x)
                *effect_fixture::pixel(bench.host.input(), x, y) = place(x, y);
    }

    ~displacement() override
    {
        bench.host.on_call = nullptr;
        bench.host.utils.dispose_world(bench.host.in_data.effect_ref, &bench.frame.scratch);
    }

    static PF_Pixel place(A_long x, A_long y)
    {
        return {255, static_cast<A_u_char>(x + 1), static_cast<A_u_char>(y + 1), 0};
    }

    void vector(double degrees, A_long amount)
    {
        bench.host.set_angle(60, degrees);
        bench.host.set(61, amount);
        const PF_EffectWorld scratch = bench.frame.scratch;
        bench.set_up();
        bench.frame.scratch = scratch;
        bench.host.log.clear();
    }

    void matte(A_long x, A_long y, A_u_char alpha)
    {
        *effect_fixture::pixel(bench.frame.scratch, x, y) = {alpha, 9, 8, 7};
    }

    PF_Pixel at(A_long x, A_long y)
    {
        PF_Pixel out = {1, 2, 3, 4};
        EXPECT_EQ(displace_img(&bench.frame, x, y, effect_fixture::pixel(bench.frame.scratch, x, y), &out), 0);
        return out;
    }

    frame_bench bench;
};

bool operator==(const PF_Pixel& a, const PF_Pixel& b)
{
    return a.alpha == b.alpha && a.red == b.red && a.green == b.green && a.blue == b.blue;
}
} // namespace

TEST_F(displacement, of_amount_0_is_the_input)
{
    vector(40.0, 0);
    matte(3, 3, 255);
    for (A_long y = 0; y < kInputHeight; ++y)
        for (A_long x = 0; x < kInputWidth; ++x)
            EXPECT_TRUE(at(x, y) == place(x, y)) << x << ' ' << y;
}

TEST_F(displacement, shifts_under_opaque_lines_only)
{
    vector(0.0, 2); // (0, 2)
    matte(4, 3, 255);
    EXPECT_TRUE(at(4, 3) == place(4, 5));
    EXPECT_TRUE(at(5, 3) == place(5, 3));
    EXPECT_TRUE(at(4, 2) == place(4, 2));
}

TEST_F(displacement, samples_the_matte_then_the_input)
{
    vector(0.0, 2);
    matte(4, 3, 51); // a fifth of 2 pixels
    at(4, 3);
    EXPECT_EQ(bench.host.log,
              (std::vector<std::string>{"sample 262144 196608 world1", "sample 262144 222822 input"}));
}

TEST_F(displacement, shows_the_matte_along_the_edges_the_offset_reaches)
{
    vector(0.0, 3);
    ASSERT_EQ(bench.frame.displaceY, 3 << 16);
    for (A_long y = 0; y < kInputHeight; ++y)
    {
        matte(2, y, 0);
        *effect_fixture::pixel(bench.frame.scratch, 2, y) = {0, 77, 66, 55};
        const bool is_matte = at(2, y) == PF_Pixel{0, 77, 66, 55};
        EXPECT_EQ(is_matte, y < 3 || kInputHeight - y < 3) << y;
    }
}

TEST_F(displacement, shows_the_matte_along_the_sides_too)
{
    vector(30.0, 10); // (5, 8): every pixel of this layer is nearer than that
    ASSERT_EQ(bench.frame.displaceX, 5 << 16);
    bench.frame.displaceY = 0;
    for (A_long x = 0; x < kInputWidth; ++x)
    {
        *effect_fixture::pixel(bench.frame.scratch, x, 2) = {0, 77, 66, 55};
        const bool is_matte = at(x, 2) == PF_Pixel{0, 77, 66, 55};
        EXPECT_EQ(is_matte, x < 5 || kInputWidth - x < 5) << x;
    }
}

TEST_F(displacement, a_negative_offset_excludes_no_row)
{
    vector(180.0, 3);
    ASSERT_EQ(bench.frame.displaceY, -2 * 65536);
    for (A_long y = 0; y < kInputHeight; ++y)
        matte(2, y, 255);
    EXPECT_TRUE(at(2, 0) == (PF_Pixel{0, 0, 0, 0})); // the host's zero edge
    EXPECT_TRUE(at(2, 1) == (PF_Pixel{0, 0, 0, 0}));
    EXPECT_TRUE(at(2, 2) == place(2, 0));
    EXPECT_TRUE(at(2, 5) == place(2, 3));
}

TEST_F(displacement, answers_the_second_samples_error_alone)
{
    vector(0.0, 0);
    for (const int failing : {1, 2})
    {
        int seen = 0;
        bench.host.on_call = [&](std::string_view) { return ++seen == failing ? PF_Err{55} : PF_Err_NONE; };
        PF_Pixel out = {0, 0, 0, 0};
        PF_Pixel in = {0, 0, 0, 0};
        EXPECT_EQ(displace_img(&bench.frame, 1, 1, &in, &out), failing == 2 ? 55 : 0);
        EXPECT_EQ(seen, 2);
    }
}

TEST_F(displacement, positions_are_single_precision)
{
    // 8001 of 65536ths times 200 / 255, on a y of 20003 pixels: the sum is rounded to single precision.
    // The input says so without having the rows: its sample is refused.
    bench.host.input().height = 30000;
    int samples = 0;
    bench.host.on_call = [&](std::string_view) { return ++samples == 2 ? PF_Err{1} : PF_Err_NONE; };
    bench.frame.displaceX = 0;
    bench.frame.displaceY = 8001;
    PF_Pixel in = {0, 0, 0, 0};
    PF_Pixel out = {0, 0, 0, 0};
    bench.host.log.clear();
    matte(1, 4, 200);
    displace_img(&bench.frame, 1, 20003, &in, &out);
    const float share = 20003.0f / 30000.0f;
    const int matte_row = static_cast<int>(6.0f * share);
    EXPECT_EQ(matte_row, 4);
    EXPECT_EQ(bench.host.log[0], "sample 65536 262144 world1");
    const float y = static_cast<float>(20003 * 65536) + 8001.0f * (200.0f / 255.0f);
    EXPECT_EQ(bench.host.log[1], "sample 65536 " + std::to_string(static_cast<int>(y)) + " input");
}

TEST_F(displacement, of_an_empty_input_is_harmless)
{
    bench.host.input().width = 0;
    bench.host.input().height = 0;
    vector(180.0, 3);
    PF_Pixel in = {0, 0, 0, 0};
    PF_Pixel out = {0, 0, 0, 0};
    EXPECT_EQ(displace_img(&bench.frame, 0, 0, &in, &out), 0);
}

// The planned pixels against the plain ones: what they are, and what they ask the host for.
TEST_F(displacement, planned_is_displacement_pixel_by_pixel)
{
    std::mt19937 random(5);
    for (int round = 0; round < 60; ++round)
    {
        vector(static_cast<double>(random() % 360), static_cast<A_long>(random() % 6));
        if (round % 10 == 9) // farther than any picture is wide
        {
            bench.frame.displaceX = static_cast<PF_Fixed>(random() >> 2) * (round % 20 == 9 ? 1 : -1);
            bench.frame.displaceY = static_cast<PF_Fixed>(random() >> 2);
        }
        for (A_long y = 0; y < kInputHeight; ++y)
            for (A_long x = 0; x < kInputWidth; ++x)
                matte(x, y, static_cast<A_u_char>(random()));
        void* const mark = bench.frame.pool->next;
        displacement_plan* const plan = plan_displacement(bench.frame);
        ASSERT_NE(plan, nullptr);
        // Hosts ask for the pixels of the matte, but may ask for others.
        for (A_long y = -2; y < kInputHeight + 2; ++y)
            for (A_long x = -2; x < kInputWidth + 2; ++x)
            {
                PF_Pixel in = {9, 8, 7, static_cast<A_u_char>(x)};
                PF_Pixel want = {1, 2, 3, 4};
                PF_Pixel got = {1, 2, 3, 4};
                bench.host.log.clear();
                const PF_Err expected = displace_img(&bench.frame, x, y, &in, &want);
                const std::vector<std::string> calls = std::exchange(bench.host.log, {});
                EXPECT_EQ(displace_img_planned(plan, x, y, &in, &got), expected);
                EXPECT_EQ(bench.host.log, calls) << x << ' ' << y;
                EXPECT_TRUE(got == want) << x << ' ' << y;
            }
        pool_release(bench.frame.pool, mark);
    }
}

TEST_F(displacement, is_not_planned_where_the_pool_is_short)
{
    vector(30.0, 3);
    const mem_pool whole = *bench.frame.pool;
    const std::uint64_t all = sizeof(displacement_plan) + (kInputWidth + kInputHeight) * std::uint64_t{12};
    for (std::uint64_t room = 0; room <= all; room += 8)
    {
        *bench.frame.pool = whole;
        bench.frame.pool->remaining = room;
        EXPECT_EQ(plan_displacement(bench.frame) != nullptr, room == all) << room;
    }
    *bench.frame.pool = whole;
    bench.host.input().width = -5;
    EXPECT_EQ(plan_displacement(bench.frame), nullptr);
    *bench.frame.pool = whole;
}

TEST_F(displacement, is_not_planned_where_a_position_may_not_fit)
{
    vector(30.0, 3);
    void* const mark = bench.frame.pool->next;
    const auto planned = [&](A_long width, A_long height, PF_Fixed x, PF_Fixed y)
    {
        bench.host.input().width = width;
        bench.host.input().height = height;
        bench.frame.displaceX = x;
        bench.frame.displaceY = y;
        const bool made = plan_displacement(bench.frame) != nullptr;
        pool_release(bench.frame.pool, mark);
        return made;
    };
    constexpr PF_Fixed kFar = 16384 * 65536;
    EXPECT_TRUE(planned(16384, 16384, kFar - 1, 1 - kFar));
    EXPECT_FALSE(planned(16385, 1, 0, 0));
    EXPECT_FALSE(planned(1, 16385, 0, 0));
    EXPECT_FALSE(planned(1, 1, kFar, 0));
    EXPECT_FALSE(planned(1, 1, 0, -kFar));
}
