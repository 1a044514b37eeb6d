#include "effect/model/curve.hpp"

#include "tests/support/frame_bench.hpp"
#include "tests/support/reference_field.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace
{
// The same ripple twice: the effect's and the plainly written one.
struct ripple_pair
{
    ripple_pair(frame_bench& bench, unsigned seed, std::int64_t phase, float turbulence, int skip = 0)
        : effect(&bench.frame, seed, skip, phase, turbulence),
          plain(seed, skip, phase, turbulence, bench.frame.width, bench.frame.height, bench.frame.rippleSize,
                bench.frame.sizeRandomness, bench.frame.rippleWavelength, bench.frame.frequencyRandomness,
                bench.frame.speed, bench.frame.speedRandomness)
    {
    }

    curve effect;
    reference::ripple plain;
};

// -1 where there is no value; else its bits.
template <class Evaluate>
std::int64_t bits(Evaluate evaluate)
{
    float value = 0.0f;
    if (!evaluate(&value))
        return -1;
    std::uint32_t word = 0;
    std::memcpy(&word, &value, sizeof word);
    return word;
}

// How many of the values compared exist.
int expect_same(const ripple_pair& pair, float t)
{
    int found = 0;
    const auto compare = [&](const std::string& what, auto effect, auto plain)
    {
        const std::int64_t actual = bits(effect);
        EXPECT_EQ(actual, bits(plain)) << what << " at " << t;
        found += actual >= 0 ? 1 : 0;
    };
    compare(
        "base", [&](float* v) { return pair.effect.f(t, v); }, [&](float* v) { return pair.plain.base(t, v); });
    compare(
        "sum", [&](float* v) { return pair.effect.F(t, v); }, [&](float* v) { return pair.plain.sum(t, v); });
    for (int k = 0; k <= 8; ++k)
        compare(
            "octave " + std::to_string(k), [&](float* v) { return pair.effect.F(k, t, v); },
            [&](float* v) { return pair.plain.octave(k, t, v); });
    return found;
}
} // namespace

TEST(curve, is_the_plainly_written_ripple)
{
    std::mt19937 random(8);
    int found = 0;
    for (int n = 0; n < 200; ++n)
    {
        frame_bench b(20 + static_cast<A_long>(random() % 300), 20 + static_cast<A_long>(random() % 300));
        b.host.set_percent(47, random() % 101);
        b.host.set_percent(48, random() % 60 + 0.37);
        b.host.set(49, static_cast<A_long>(random() % 100) + 1);
        b.host.set(50, static_cast<A_long>(random() % 200));
        b.host.set(51, static_cast<A_long>(random() % 20));
        b.host.set(52, static_cast<A_long>(random() % 90));
        b.set_up();
        const float turbulence = 1.0f + static_cast<float>(random() % 700) / 100.0f;
        const ripple_pair pair(b, static_cast<unsigned>(random()), random() % 40, turbulence, n % 3);
        ASSERT_TRUE(pair.effect.sampled());
        EXPECT_EQ(pair.effect.harmonics(), pair.plain.octaves);
        for (int i = 0; i < 40; ++i)
            found += expect_same(pair, static_cast<float>(random() % 100000) / 71.0f);
        for (const float t : {0.0f, 1.0f, 9.999f, 10.0f})
            found += expect_same(pair, t);
    }
    EXPECT_GT(found, 40000);
}

TEST(curve, octaves_follow_the_turbulence)
{
    frame_bench b;
    struct
    {
        float turbulence;
        int octaves;
        float last_weight;
    } const cases[] = {{1.0f, 2, 0.0f}, {1.5f, 2, 0.5f}, {2.0f, 2, 0.0f}, {2.75f, 2, 0.75f},
                       {3.0f, 3, 0.0f}, {7.0f, 7, 0.0f}, {7.5f, 7, 0.5f}, {-0.25f, 2, 0.75f}};
    for (const auto& c : cases)
    {
        const ripple_pair pair(b, 99, 0, c.turbulence);
        EXPECT_EQ(pair.effect.harmonics(), c.octaves) << c.turbulence;
        // The sum less the sum of the full octaves is the last one, weighted.
        float sum = 0.0f;
        float last = 0.0f;
        ASSERT_TRUE(pair.effect.F(3.0f, &sum));
        ASSERT_TRUE(pair.effect.F(0, 3.0f, &last));
        float expected = last;
        for (int k = 1; k < c.octaves; ++k)
        {
            ASSERT_TRUE(pair.effect.F(k, 3.0f, &last));
            expected += last / static_cast<float>(2 * k);
        }
        ASSERT_TRUE(pair.effect.F(c.octaves, 3.0f, &last));
        expected += c.last_weight * last / static_cast<float>(2 * c.octaves);
        EXPECT_EQ(sum, expected) << c.turbulence;
    }
}

TEST(curve, carves_its_samples_and_a_zero)
{
    // 200 x 200: 282 samples a band. Turbulence 3: 6 bands and one; 1: 2 bands and one.
    for (const auto& [turbulence, floats] :
         {std::pair{3.0f, 282u * 7 + 1}, {1.0f, 282u * 3 + 1}, {2.5f, 282u * 3 + 1}, {7.5f, 282u * 15 + 1}})
    {
        frame_bench b;
        const std::uint64_t before = b.memory.pool.remaining;
        const curve c(&b.frame, 5, 0, 0, turbulence);
        EXPECT_EQ(before - b.memory.pool.remaining, (floats * 4 + 7) / 8 * 8) << turbulence;
    }
}

TEST(curve, at_frame_0_octaves_do_not_move)
{
    frame_bench still;
    still.host.set(51, 0);
    still.set_up();
    frame_bench fast;
    fast.host.set(51, 100);
    fast.set_up();
    const curve a(&still.frame, 5, 0, 0, 3.0f);
    const curve b(&fast.frame, 5, 0, 0, 3.0f);
    for (float t = 0.0f; t < 200.0f; t += 13.0f)
    {
        float va = 0.0f;
        float vb = 0.0f;
        ASSERT_TRUE(a.F(t, &va));
        ASSERT_TRUE(b.F(t, &vb));
        EXPECT_EQ(va, vb);
    }
}

TEST(curve, samples_lie_within_the_size)
{
    frame_bench b; // size 15, wavelength 50
    const curve c(&b.frame, 4711, 0, 0, 3.0f);
    float largest = 0.0f;
    for (int i = 0; i < 282; ++i)
    {
        float v = 0.0f;
        ASSERT_TRUE(c.f(static_cast<float>(i * 50), &v));
        largest = std::max(largest, std::fabs(v));
    }
    EXPECT_LE(largest, 15.0f);
    EXPECT_GT(largest, 14.0f);
}

TEST(curve, has_no_value_outside_its_samples)
{
    frame_bench b; // 282 samples, 50 apart
    const curve c(&b.frame, 4711, 0, 0, 3.0f);
    float v = 77.0f;
    EXPECT_FALSE(c.f(-50.0f, &v));
    EXPECT_FALSE(c.f(-1e9f, &v));
    EXPECT_FALSE(c.f(282.0f * 50.0f, &v));
    EXPECT_EQ(v, 77.0f);
    EXPECT_TRUE(c.f(1e30f, &v));  // an index that does not fit is sample 0
    EXPECT_TRUE(c.f(-49.0f, &v)); // truncates to sample 0
    EXPECT_TRUE(c.f(282.0f * 50.0f - 1.0f, &v));
    EXPECT_FALSE(c.F(4, 0.0f, &v));
    EXPECT_TRUE(c.F(3, 0.0f, &v));
}

TEST(curve, an_inner_octave_out_of_range_ends_the_sum_the_last_does_not)
{
    frame_bench b; // 14100 pixels of samples; turbulence 2.5: octaves at 1, 2 and 4 times (50 + t)
    const ripple_pair pair(b, 31, 0, 2.5f);
    float sum = 0.0f;
    float base = 0.0f;
    float first = 0.0f;
    const float last_fails = 14100.0f / 4.0f - 50.0f;
    ASSERT_TRUE(pair.effect.F(last_fails, &sum));
    ASSERT_TRUE(pair.effect.F(0, last_fails, &base));
    ASSERT_TRUE(pair.effect.F(1, last_fails, &first));
    float second = 0.0f;
    EXPECT_FALSE(pair.effect.F(2, last_fails, &second));
    EXPECT_EQ(sum, base + first / 2.0f);
    EXPECT_FALSE(pair.effect.F(14100.0f / 2.0f - 50.0f, &sum));
}

TEST(curve, without_room_has_no_samples_and_no_values)
{
    frame_bench b;
    b.memory.pool.remaining = 7904; // 1975 floats, rounded up
    const curve c(&b.frame, 5, 0, 0, 3.0f);
    EXPECT_TRUE(c.sampled());
    b.memory.pool.remaining = 7896;
    const curve none(&b.frame, 5, 0, 0, 3.0f);
    EXPECT_FALSE(none.sampled());
    EXPECT_EQ(b.memory.pool.remaining, 7896u);
    float v = 1.0f;
    EXPECT_FALSE(none.f(0.0f, &v));
    EXPECT_FALSE(none.F(0.0f, &v));
    EXPECT_FALSE(none.F(1, 0.0f, &v));
}

TEST(curve, of_more_samples_than_can_be_counted_has_none)
{
    frame_bench b;
    const std::uint64_t before = b.memory.pool.remaining;
    const curve c(&b.frame, 1, 0, std::int64_t{1} << 60, 3.0f); // 5 pixels a frame
    EXPECT_FALSE(c.sampled());
    EXPECT_EQ(b.memory.pool.remaining, before);
}

// Indices are 16 bits wide: what lies beyond keeps its room, but is neither cleared nor drawn.
TEST(curve, draws_only_the_samples_that_an_index_can_name)
{
    constexpr std::size_t kPool = 8 << 20;
    frame_bench b(200, 200, kPool);
    b.host.set(kSpeed, 1);
    b.set_up();
    std::byte* const carved = b.memory.pool.next;
    const std::byte poison = *(carved + (4 << 20));
    const ripple_pair pair(b, 7, 100000, 2.0f);
    EXPECT_GT(b.memory.pool.next - carved, (100000 + 282) * 3 * 4);
    std::byte* const named_end = carved + 32769 * sizeof(float);
    for (const std::byte* p = named_end; p < b.memory.pool.next; ++p)
        ASSERT_EQ(*p, poison) << p - carved;
    // The base octave alone stays below 2^15 steps, up to the last sample that an index can name.
    float value = 0.0f;
    float plain = 0.0f;
    const float last = (32767.0f + 0.5f) * b.frame.rippleWavelength;
    for (float t = last - 40.0f; t < last; t += 7.0f)
    {
        ASSERT_TRUE(pair.effect.f(t, &value));
        ASSERT_TRUE(pair.plain.base(t, &plain));
        EXPECT_EQ(value, plain) << t;
    }
}

TEST(curve, a_wavelength_of_0_has_no_value)
{
    frame_bench b;
    b.frame.rippleWavelength = 0.5f;
    const curve c(&b.frame, 5, 0, 0, 3.0f);
    EXPECT_TRUE(c.sampled());
    float v = 0.0f;
    EXPECT_FALSE(c.f(0.0f, &v));
    EXPECT_FALSE(c.F(3.0f, &v));
}

TEST(curve, odd_frames_and_turbulences_are_defined)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    for (const std::int64_t phase : {std::int64_t{-1000000}, std::int64_t{2147483647}, std::int64_t{-2147483648}})
    {
        for (const float turbulence : {nan, inf, -inf, 3.0f})
        {
            frame_bench b;
            const curve c(&b.frame, 5, 0, phase, turbulence);
            EXPECT_FALSE(c.sampled()); // a negative count, or one that no pool holds
        }
    }
    frame_bench b;
    const curve c(&b.frame, 5, 0, 0, nan);
    EXPECT_EQ(c.harmonics(), 0);
    float v = 0.0f;
    for (const float t : {nan, inf, -inf, 1e38f, -1e38f})
        c.F(t, &v);
    EXPECT_FALSE(c.f(-51.0f, &v));
}

TEST(curve, negative_sizes_mirror)
{
    // A size of 2000 percent randomness may come out negative: the range is then turned round.
    frame_bench b;
    b.host.set(50, 2000);
    b.set_up();
    int negative = 0;
    for (unsigned seed = 1; seed < 30; ++seed)
    {
        const ripple_pair pair(b, seed * 7919, 0, 3.0f);
        negative += pair.plain.size < 0 ? 1 : 0;
        expect_same(pair, 17.0f);
    }
    EXPECT_GT(negative, 5);
}

TEST(curve, sums_in_blocks_are_those_one_by_one)
{
    std::mt19937 random(12);
    int found = 0;
    int missing = 0;
    const float odd[] = {0.0f,
                         -0.0f,
                         1e9f,
                         -1e9f,
                         3e38f,
                         std::numeric_limits<float>::infinity(),
                         -std::numeric_limits<float>::infinity(),
                         std::numeric_limits<float>::quiet_NaN()};
    for (int n = 0; n < 600; ++n)
    {
        frame_bench b(2 + static_cast<A_long>(random() % 300), 2 + static_cast<A_long>(random() % 300));
        b.host.set_percent(47, random() % 101);
        b.host.set_percent(48, random() % 160 + 0.37); // waves of no length and of a negative one, too
        b.host.set(49, static_cast<A_long>(random() % 100) + 1);
        b.host.set(51, static_cast<A_long>(random() % 20));
        b.host.set(52, static_cast<A_long>(random() % 200));
        b.set_up();
        float turbulence = 1.0f + static_cast<float>(random() % 700) / 100.0f;
        if (n % 50 == 49)
            turbulence = std::numeric_limits<float>::quiet_NaN();
        if (n % 50 == 48)
            b.starve();
        const curve c(&b.frame, static_cast<unsigned>(random()), 0, random() % 60, turbulence);
        for (int block = 0; block < 20; ++block)
        {
            float at[curve::kBlock];
            float got[curve::kBlock];
            std::int32_t there[curve::kBlock];
            for (int i = 0; i < curve::kBlock; ++i)
                at[i] = block < 10 ? static_cast<float>(block * curve::kBlock + i)
                                   : static_cast<float>(random() % 100000) / 71.0f - 100.0f;
            if (block == 19)
                std::copy(odd, odd + 8, at);
            c.sums(at, got, there);
            for (int i = 0; i < curve::kBlock; ++i)
            {
                float want = 0.0f;
                const bool has = c.F(at[i], &want);
                ASSERT_EQ(there[i], has ? -1 : 0) << at[i];
                // The sign of what is no number is nobody's.
                ASSERT_TRUE(!has || std::memcmp(&got[i], &want, sizeof want) == 0 ||
                            (std::isnan(got[i]) && std::isnan(want)))
                    << at[i] << ": " << got[i] << ", not " << want;
                (has ? found : missing) += 1;
            }
        }
    }
    EXPECT_GT(found, 100000);
    EXPECT_GT(missing, 100000);
}
