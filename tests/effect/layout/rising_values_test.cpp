// The evaluation that keeps a segment's tangents, against the one that asks for them each time.

#include "effect/layout/rising_values.hpp"

#include "tests/support/frame_bench.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace
{
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// Bit by bit, but for the sign of what is no number.
bool same(float a, float b)
{
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

// Points mostly in rising order; with `trouble` some are no numbers, huge, or where others are.
std::vector<curve_pt_t> random_points(bool vertical, bool trouble, std::mt19937& gen)
{
    const auto real = [&gen](double lo, double hi)
    { return lo + (hi - lo) * static_cast<double>(gen() % 4096) / 4096; };
    const double odd[] = {kNan, kInfinity, -kInfinity, 1e300, -1e300, 0.0, -0.0, 50.0};
    std::vector<curve_pt_t> points(gen() % 7);
    double run = -20.0;
    for (curve_pt_t& p : points)
    {
        const auto pick = [&](double usual) { return trouble && gen() % 6 == 0 ? odd[gen() % 8] : usual; };
        run += gen() % 5 == 0 ? real(-10.0, 0.0) : real(0.0, 40.0);
        const double at = pick(run);
        const double across = pick(real(-500.0, 500.0));
        const double angle = gen() % 2 == 0 ? 0.0 : pick(real(-400.0, 400.0));
        p = vertical ? curve_pt_t{across, at, angle} : curve_pt_t{at, across, angle};
    }
    return points;
}
} // namespace

TEST(rising_values, are_those_that_ask_for_tangents_each_time)
{
    std::mt19937 gen(11);
    frame_bench b;
    int found = 0;
    for (int round = 0; round < 2000; ++round)
    {
        const bool vertical = round % 2 == 0;
        std::vector<curve_pt_t> points = random_points(vertical, round % 4 >= 2, gen);
        sp_line line(&b.frame, vertical ? 1 : 0, curve_pt_t{}, curve_pt_t{}, curve_pt_t{});
        line.points = points.empty() ? nullptr : points.data();
        line.num_points = static_cast<std::int32_t>(points.size());
        tangent_memory tangents(b.host.utils.ansi);
        rising_values values(line, tangents);
        for (int i = 0; i < 100; ++i)
        {
            const float odd[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                                 -1e30f, 1e30f};
            const float t = i % 25 == 24 ? odd[i / 25] : static_cast<float>(gen() % 4096) / 16.0f - 50.0f;
            float want = -1.0f;
            float got = -1.0f;
            const bool there = line.value(t, &want);
            ASSERT_EQ(values.value(t, &got), there) << "round " << round << ", t " << t;
            ASSERT_TRUE(same(got, want)) << "round " << round << ", t " << t << ": " << got << ", not " << want;
            found += there;
        }
        b.memory.pool.remaining += static_cast<std::uint64_t>(b.memory.pool.next - b.memory.pool.base);
        b.memory.pool.next = b.memory.pool.base;
    }
    EXPECT_GT(found, 20000);
}

namespace
{
int asked = 0;

double counted_tan(double angle)
{
    ++asked;
    return std::tan(angle);
}
} // namespace

TEST(rising_values, ask_for_a_tangent_once)
{
    frame_bench b;
    b.host.utils.ansi.tan = counted_tan;
    const sp_line first(&b.frame, 0, {0.0, 0.0, 0.0}, {10.0, 5.0, 30.0}, {20.0, 0.0, 0.0});
    const sp_line second(&b.frame, 0, {0.0, 0.0, 0.0}, {10.0, 5.0, -70.0}, {20.0, 0.0, 0.0});
    tangent_memory tangents(b.host.utils.ansi);
    rising_values of_first(first, tangents);
    rising_values of_second(second, tangents);
    asked = 0;
    float v = 0.0f;
    for (float t = 0.0f; t < 20.0f; t += 0.25f)
        EXPECT_TRUE(of_first.value(t, &v));
    EXPECT_EQ(asked, 2); // 0 and 30 degrees
    for (float t = 0.0f; t < 20.0f; t += 0.25f)
        EXPECT_TRUE(of_second.value(t, &v));
    EXPECT_EQ(asked, 4); // -70 degrees, and 0 once more: only the latest are kept
}
