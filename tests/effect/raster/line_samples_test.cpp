// Samples taken in blocks against those taken one by one.

#include "effect/raster/line_samples.hpp"

#include "effect/layout/sp_line.hpp"
#include "effect/model/frame_data.hpp"
#include "effect/raster/blend.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace
{
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

double real(std::mt19937& gen, double lo, double hi)
{
    return lo + (hi - lo) * static_cast<double>(gen() % 65536) / 65536;
}

std::vector<curve_pt_t> random_points(int kind, bool vertical, std::mt19937& gen)
{
    const double odd[] = {kNan, kInfinity, -kInfinity, 1e300, -1e300, 0.0, -0.0};
    std::vector<curve_pt_t> points(1 + gen() % 300);
    double run = 200.0;
    for (curve_pt_t& p : points)
    {
        double at = run;
        double across = real(gen, -50.0, 50.0);
        if (kind == 1) // bends
            at += real(gen, -3.0, 3.0);
        if (kind == 2 && gen() % 6 == 0) // zero points
            at = across = 0.0;
        if (kind == 3 && gen() % 9 == 0)
            at = odd[gen() % 7];
        if (kind == 3 && gen() % 9 == 0)
            across = odd[gen() % 7];
        p = vertical ? curve_pt_t{across, at, 0.0} : curve_pt_t{at, across, 0.0};
        run -= kind == 0 || gen() % 4 != 0 ? 1.0 : real(gen, 0.0, 2.0);
    }
    return points;
}

// Bit by bit, but for the sign of what is no number.
bool same(float a, float b)
{
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

bool same(const StrokePoint& a, const StrokePoint& b)
{
    return same(a.x, b.x) && same(a.y, b.y) && same(a.halfWidth, b.halfWidth) &&
           std::memcmp(&a.color, &b.color, sizeof a.color) == 0;
}

line_sampling random_sampling(std::mt19937& gen)
{
    const float steps[] = {1.0f, 0.5f, 1.0f / 3.0f, 0.125f};
    const float odd[] = {0.0f,
                         -0.0f,
                         1e38f,
                         1e-40f,
                         std::numeric_limits<float>::infinity(),
                         std::numeric_limits<float>::quiet_NaN()};
    const auto strange = [&](float usual) { return gen() % 10 == 0 ? odd[gen() % 6] : usual; };
    line_sampling s{};
    s.first = gen() % 2 == 0 ? 200.0f : static_cast<float>(real(gen, -20.0, 260.0));
    s.last = real(gen, -120.0, 210.0);
    s.step = steps[gen() % 4];
    s.base_across = gen() % 10 == 0 ? kNan : real(gen, -20.0, 20.0);
    s.max_deviation = strange(static_cast<float>(real(gen, 1.0, 60.0)));
    s.width = strange(static_cast<float>(real(gen, 0.6, 30.0)));
    s.stressed_width = strange(static_cast<float>(real(gen, -100.0, 100.0)));
    s.one_color = gen() % 4 == 0;
    const auto channel = [&] { return static_cast<A_u_char>(gen()); };
    const A_u_char alpha = channel();
    s.normal_color = {alpha, channel(), channel(), channel()};
    s.stressed_color = {alpha, channel(), channel(), channel()};
    s.normal_share = static_cast<std::int16_t>(gen() % 8 == 0 ? gen() : gen() % 101);
    return s;
}
} // namespace

TEST(line_samples, in_blocks_are_those_taken_one_by_one)
{
    std::mt19937 gen(3);
    std::vector<std::uint64_t> memory(512);
    std::int64_t found = 0;
    for (int round = 0; round < 4000; ++round)
    {
        auto* const base = reinterpret_cast<std::byte*>(memory.data());
        mem_pool pool = {base, base, memory.size() * 8};
        frame_data frame;
        frame.pool = &pool;
        const bool vertical = gen() % 2 == 0;
        std::vector<curve_pt_t> points = random_points(round % 4, vertical, gen);
        sp_line line(&frame, vertical ? 1 : 0, curve_pt_t{}, curve_pt_t{}, curve_pt_t{});
        line.points = points.data();
        line.num_points = static_cast<std::int32_t>(points.size());
        const line_sampling s = random_sampling(gen);
        const std::uint64_t positions = count_positions(s.first, s.last, s.step, 10000);
        ASSERT_LE(positions, 10000U);
        std::vector<StrokePoint> want(positions + 1);
        std::vector<StrokePoint> got(positions + 1);
        std::memset(static_cast<void*>(got.data()), 0xA5, got.size() * sizeof(StrokePoint));
        if (round % 5 == 0)
            pool.remaining = 0;
        const mem_pool before = pool;
        const int count = sample_line(line, s, want.data());
        ASSERT_EQ(sample_line_fast(line, s, &pool, got.data()), count) << "round " << round;
        ASSERT_EQ(pool.next, before.next);
        ASSERT_EQ(pool.remaining, before.remaining);
        for (int i = 0; i < count; ++i)
        {
            const auto at = static_cast<std::size_t>(i);
            ASSERT_TRUE(same(got[at], want[at]))
                << "round " << round << ", sample " << i << ": " << got[at].x << ' ' << got[at].y << ' '
                << got[at].halfWidth << ", not " << want[at].x << ' ' << want[at].y << ' ' << want[at].halfWidth;
        }
        unsigned char past[sizeof(StrokePoint)];
        std::memcpy(past, &got[static_cast<std::size_t>(count)], sizeof past);
        ASSERT_EQ(past[0], 0xA5) << "a sample too many";
        found += count;
    }
    EXPECT_GT(found, 200000);
}

TEST(line_samples, positions_are_counted_at_once_as_they_are_one_by_one)
{
    std::mt19937 gen(4);
    const float odd_steps[] = {0.0f, -0.5f, 1e-30f, 3.0f, std::numeric_limits<float>::infinity()};
    for (int round = 0; round < 20000; ++round)
    {
        const float steps[] = {1.0f, 0.5f, 1.0f / 3.0f, 0.25f, 0.2f, 0.125f, odd_steps[round % 5]};
        const float step = steps[gen() % 7];
        float first = static_cast<float>(real(gen, -300.0, 300.0));
        if (gen() % 2 == 0)
            first = std::floor(first);
        if (gen() % 8 == 0)
            first = static_cast<float>(real(gen, -1.0, 1.0)) * (gen() % 2 == 0 ? 8192.5f : 2e7f);
        double last = static_cast<double>(first) - real(gen, -3.0, 400.0);
        if (gen() % 2 == 0) // at a position, or a hair to either side
            last = static_cast<double>(first) - static_cast<double>(gen() % 500) * static_cast<double>(step);
        if (gen() % 4 == 0)
            last = std::nextafter(last, gen() % 2 == 0 ? 1e9 : -1e9);
        const std::uint64_t limit = gen() % 4 == 0 ? gen() % 100 : 3000;
        ASSERT_EQ(count_positions_fast(first, last, step, limit), count_positions(first, last, step, limit))
            << "from " << first << " to " << last << " by " << step << ", limit " << limit;
    }
}

TEST(line_samples, colours_in_blocks_are_those_blended_one_by_one)
{
    std::mt19937 gen(6);
    const float odd[] = {0.0f,
                         -0.0f,
                         std::numeric_limits<float>::quiet_NaN(),
                         std::numeric_limits<float>::infinity(),
                         -std::numeric_limits<float>::infinity(),
                         1e38f,
                         -3.0f,
                         1e-42f};
    for (int round = 0; round < 4000; ++round)
    {
        line_sampling s = random_sampling(gen);
        float deviation[kBlendBlock];
        for (float& d : deviation)
            d = gen() % 10 == 0
                    ? odd[gen() % 8]
                    : static_cast<float>(real(gen, 0.0, 1.1)) * (round % 3 == 0 ? 10.0f : s.max_deviation);
        PF_Pixel got[kBlendBlock];
        blend_colors(s.normal_color, s.stressed_color, s.normal_share, deviation, s.max_deviation, got);
        for (int i = 0; i < kBlendBlock; ++i)
        {
            PF_Pixel want = {s.normal_color.alpha, 0, 0, 0};
            blend_color(s.normal_color, s.stressed_color, s.normal_share, deviation[i], s.max_deviation, &want);
            ASSERT_EQ(std::memcmp(&got[i], &want, sizeof want), 0)
                << "share " << s.normal_share << ", " << deviation[i] << " of " << s.max_deviation;
        }
    }
}

TEST(line_samples, a_channel_is_rounded_up_right_above_254)
{
    // From 254 to 255 by shares around 0, and from 255 down by shares around one.
    const PF_Pixel low = {9, 254, 253, 255};
    const PF_Pixel high = {9, 255, 255, 254};
    for (int step = -40; step < 40; ++step)
        for (const float near : {1e-5f, 2e-5f, 0.5f, 0.99998f})
        {
            float deviation[kBlendBlock] = {};
            for (int i = 0; i < kBlendBlock; ++i)
                deviation[i] = near * (1.0f + 1e-7f * static_cast<float>(step * kBlendBlock + i));
            PF_Pixel got[kBlendBlock];
            blend_colors(low, high, 50, deviation, 1.0f, got);
            for (int i = 0; i < kBlendBlock; ++i)
            {
                PF_Pixel want = {9, 0, 0, 0};
                blend_color(low, high, 50, deviation[i], 1.0f, &want);
                ASSERT_EQ(std::memcmp(&got[i], &want, sizeof want), 0) << deviation[i];
            }
        }
}
