// The search that remembers where it was, against the one that starts from the end each time.

#include "effect/layout/falling_values.hpp"

#include "effect/model/frame_data.hpp"
#include "tests/support/effect_fixture.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace
{
enum class order
{
    falling,
    equal_neighbours,
    nearly_falling,
    shuffled,
    with_zero_points,
    with_no_numbers,
};

std::vector<curve_pt_t> random_points(order kind, bool vertical, std::mt19937& gen)
{
    const auto real = [&gen](double lo, double hi)
    { return lo + (hi - lo) * static_cast<double>(gen() % 4096) / 4096; };
    std::vector<curve_pt_t> points(2 + gen() % 60);
    double run = 100.0;
    for (curve_pt_t& p : points)
    {
        double at = run;
        if (kind == order::nearly_falling)
            at += real(-2.0, 2.0);
        if (kind == order::shuffled)
            at = real(0.0, 100.0);
        if (kind == order::with_zero_points && gen() % 8 == 0)
            at = 250.0;
        if (kind == order::with_no_numbers && gen() % 8 == 0)
            at = std::numeric_limits<double>::quiet_NaN();
        const double across = real(-50.0, 50.0);
        p = vertical ? curve_pt_t{across, at, 0.0} : curve_pt_t{at, across, 0.0};
        run -= kind == order::equal_neighbours && gen() % 2 == 0 ? 0.0 : real(0.1, 3.0);
    }
    return points;
}

class falling : public ::testing::TestWithParam<order>
{
};

TEST_P(falling, values_are_those_of_a_search_from_the_end)
{
    std::mt19937 gen(7);
    std::vector<std::uint64_t> memory(4096);
    for (int round = 0; round < 300; ++round)
    {
        auto* const base = reinterpret_cast<std::byte*>(memory.data());
        mem_pool pool = {base, base, memory.size() * 8};
        frame_data frame;
        frame.pool = &pool;
        const bool vertical = round % 2 == 0;
        std::vector<curve_pt_t> points = random_points(GetParam(), vertical, gen);
        sp_line line(&frame, vertical ? 1 : 0, curve_pt_t{}, curve_pt_t{}, curve_pt_t{});
        line.points = points.data();
        line.num_points = static_cast<std::int32_t>(points.size());
        std::vector<double> highest(points.size());
        for (double* const room : {highest.data(), static_cast<double*>(nullptr)})
        {
            falling_values values(line, room);
            int found = 0;
            for (float t = 260.0f; t > -60.0f; t -= 0.5f)
            {
                float want = -1.0f;
                float got = -1.0f;
                const bool there = line.value(points.data(), line.num_points, t, &want);
                ASSERT_EQ(values.value(t, &got), there) << "round " << round << ", t " << t;
                if (there)
                {
                    ASSERT_EQ(got, want) << "round " << round << ", t " << t;
                }
                found += there;
            }
            if (GetParam() == order::falling)
            {
                ASSERT_GT(found, 0);
            }
        }
        EXPECT_TRUE(GetParam() != order::falling || falling_values::fall(line));
    }
}

INSTANTIATE_TEST_SUITE_P(points, falling,
                         ::testing::Values(order::falling, order::equal_neighbours, order::nearly_falling,
                                           order::shuffled, order::with_zero_points, order::with_no_numbers));
} // namespace
