// The rows of every level against the definition, pixel by pixel.
#include "composite.hpp"
#include "scripted_effect.hpp"
#include "simd_level.hpp"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

namespace
{
using host::blend;
using host::simd_level;
using scripted::operator_equal;

constexpr blend in_front{PF_Xfer_IN_FRONT, 255, false};

class blend_rows : public testing::TestWithParam<simd_level>
{
protected:
    void SetUp() override
    {
        if (!host::machine_has(GetParam()))
            GTEST_SKIP() << "this processor has no such instructions";
    }
};

// Blends the row and holds it against blended().
void expect_defined(simd_level level, const blend& how, scripted::padded_world& src, scripted::padded_world& dst,
                    int start, int count, const std::string& what)
{
    scripted::padded_world expected(dst), source(src);
    for (int x = start; x < start + count; ++x)
        expected.at(x, 0) = host::blended(how, src.at(x, 0), dst.at(x, 0), 255);
    host::blend_rows_at(level, how, {&src.at(start, 0), 0, &dst.at(start, 0), 0, count, 1});
    ASSERT_EQ(dst.difference(expected), "") << what;
    ASSERT_EQ(src.difference(source), "") << what;
}

TEST_P(blend_rows, are_right_for_every_pair_of_alphas_and_channels)
{
    // All sources with an alpha over all destinations with one, in rows of 256; the channels run through all pairs
    // in different orders, ends included.
    for (int s = 0; s < 256; ++s)
        for (int d = 0; d < 256; ++d)
        {
            scripted::padded_world src(256, 1), dst(256, 1);
            for (int x = 0; x < 256; ++x)
            {
                const auto byte = [](int value) { return static_cast<A_u_char>(value); };
                src.at(x, 0) = {byte(s), byte(x), byte(x * 7 + d), byte(x < 128 ? 255 : 0)};
                dst.at(x, 0) = {byte(d), byte(x * 3 + s), byte(x), byte(x % 2 ? 255 : 0)};
            }
            expect_defined(GetParam(), in_front, src, dst, 0, 256, std::to_string(s) + " on " + std::to_string(d));
            if (HasFatalFailure())
                return;
        }
}

TEST_P(blend_rows, are_right_for_every_pair_of_alphas_and_difference_of_channels)
{
    // What a channel moves by depends on the alphas and on how far source and destination are apart: all there is.
    // Once in a long row, once by few at a time.
    constexpr int count = 511 / 3 + 1;
    constexpr int few = 19;
    static_assert(count % few == 0);
    for (int s = 0; s < 256; ++s)
        for (int d = 0; d < 256; ++d)
        {
            scripted::padded_world src(count, 1), dst(count, 1);
            for (int x = 0; x < count; ++x)
            {
                PF_Pixel& from = src.at(x, 0);
                PF_Pixel& to = dst.at(x, 0);
                from.alpha = static_cast<A_u_char>(s);
                to.alpha = static_cast<A_u_char>(d);
                int difference = std::min(3 * x - 255, 255);
                for (A_u_char PF_Pixel::*const channel : {&PF_Pixel::red, &PF_Pixel::green, &PF_Pixel::blue})
                {
                    const int apart = std::abs(difference);
                    const int low = (s * 7 + d * 3) % (256 - apart);
                    from.*channel = static_cast<A_u_char>(difference > 0 ? low + apart : low);
                    to.*channel = static_cast<A_u_char>(difference > 0 ? low : low + apart);
                    difference = std::min(difference + 1, 255);
                }
            }
            scripted::padded_world by_few(dst);
            expect_defined(GetParam(), in_front, src, dst, 0, count,
                           std::to_string(s) + " on " + std::to_string(d));
            if (HasFatalFailure())
                return;
            host::blend_rows_at(GetParam(), in_front,
                                {&src.at(0, 0), 4 * few, &by_few.at(0, 0), 4 * few, few, count / few});
            ASSERT_EQ(by_few.difference(dst), "") << s << " on " << d;
        }
}

// Alphas as pictures have them: whole runs of nothing and of full cover, some of one value, some of any.
void scatter_runs(scripted::padded_world& world, std::mt19937& random, unsigned length = 12)
{
    world.scatter(random);
    int kind = 0;
    for (int x = 0; x < world.world().width; ++x)
    {
        if (x == 0 || random() % length == 0)
            kind = static_cast<int>(random() % 5);
        PF_Pixel& pixel = world.at(x, 0);
        if (kind == 0)
            pixel.alpha = 0;
        if (kind == 1)
            pixel.alpha = 255;
        if (kind == 2)
            pixel.alpha = static_cast<A_u_char>(random() % 2 * 255);
        if (kind == 3 && random() % 8 == 0)
            pixel = {};
    }
}

TEST_P(blend_rows, are_right_at_every_width_and_start)
{
    std::mt19937 random(11);
    for (int round = 0; round < 40; ++round)
        for (int count = 0; count <= 140; ++count)
        {
            const int start = static_cast<int>(random() % 9);
            scripted::padded_world src(start + count, 1, 5), dst(start + count, 1, 5);
            scatter_runs(src, random);
            scatter_runs(dst, random);
            if (round == 0)
                for (int x = 0; x < count; ++x)
                    src.at(start + x, 0).alpha = x == count / 2 ? 9 : 0;
            expect_defined(GetParam(), in_front, src, dst, start, count,
                           "round " + std::to_string(round) + ", " + std::to_string(count) + " from " +
                               std::to_string(start));
            if (HasFatalFailure())
                return;
        }
}

TEST_P(blend_rows, are_right_where_long_runs_begin_and_end)
{
    std::mt19937 random(14);
    for (int round = 0; round < 600; ++round)
    {
        const int start = static_cast<int>(random() % 9);
        const int count = static_cast<int>(random() % 1200);
        scripted::padded_world src(start + count, 1, 5), dst(start + count, 1, 5);
        scatter_runs(src, random, 200);
        scatter_runs(dst, random, 500);
        expect_defined(GetParam(), in_front, src, dst, start, count, "round " + std::to_string(round));
        if (HasFatalFailure())
            return;
    }
}

TEST_P(blend_rows, are_right_one_below_the_other)
{
    std::mt19937 random(13);
    for (int round = 0; round < 300; ++round)
    {
        // Rows of up to 256 pixels are asked for ahead, and passed over where nothing is on them.
        const int width = static_cast<int>(random() % (round % 4 == 0 ? 300 : 80)) + 1;
        const int height = static_cast<int>(random() % 24);
        scripted::padded_world src(width + 4, height + 3, 5), dst(width + 7, height + 2, 2);
        src.scatter(random);
        dst.scatter(random);
        for (int y = 0; y < height; ++y)
        {
            const auto kind = random() % 3;
            const int only = static_cast<int>(random() % static_cast<unsigned>(width));
            for (int x = 0; x < width; ++x)
                if (kind == 0 || (kind == 1 && x != only))
                    src.at(x + 3, y + 2).alpha = 0;
        }
        scripted::padded_world expected(dst);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                expected.at(x + 7, y + 1) =
                    host::blended(in_front, src.at(x + 3, y + 2), dst.at(x + 7, y + 1), 255);
        host::blend_rows_at(
            GetParam(), in_front,
            {&src.at(3, 2), src.world().rowbytes, &dst.at(7, 1), dst.world().rowbytes, width, height});
        ASSERT_EQ(dst.difference(expected), "") << "round " << round << ", " << width << "x" << height;
    }
}

TEST_P(blend_rows, are_right_for_every_mode)
{
    std::mt19937 random(12);
    for (int round = 0; round < 1000; ++round)
    {
        const PF_TransferMode modes[] = {PF_Xfer_COPY, PF_Xfer_BEHIND, PF_Xfer_IN_FRONT};
        const blend how{modes[random() % 3], random() % 2 ? 255u : static_cast<unsigned>(random() % 256),
                        random() % 4 == 0};
        scripted::padded_world src(37, 1), dst(37, 1);
        scatter_runs(src, random);
        scatter_runs(dst, random);
        expect_defined(GetParam(), how, src, dst, 0, 37, "round " + std::to_string(round));
        if (HasFatalFailure())
            return;
    }
}

std::string level_name(const testing::TestParamInfo<simd_level>& level)
{
    return level.param == simd_level::scalar ? "scalar" : level.param == simd_level::sse2 ? "sse2" : "avx2";
}

INSTANTIATE_TEST_SUITE_P(levels, blend_rows,
                         testing::Values(simd_level::scalar, simd_level::sse2, simd_level::avx2), level_name);

// What the vectors do instead of dividing whole numbers, over all inputs.

TEST(division_by_255, is_two_shifts_within_16_bits)
{
    for (std::uint32_t a = 0; a <= 255 * 255; ++a)
    {
        const std::uint32_t t = a + 128;
        ASSERT_LT(t + (t >> 8), 65536u);
        ASSERT_EQ((t + (t >> 8)) >> 8, (2 * a + 255) / 510) << a;
    }
}

TEST(division_in_single_precision, rounds_as_the_exact_quotient_does)
{
    // For every sum of weights and every result, the least weighted sum that gives it and the one below. All
    // others lie between such two, and neither division nor addition of a half ever reverses an order.
    const auto in_floats = [](std::uint32_t a, std::uint32_t sum)
    { return static_cast<std::uint32_t>(static_cast<float>(a) / static_cast<float>(sum) + 0.5f); };
    for (std::uint32_t sum = 1; sum <= 255 * 255; ++sum)
    {
        ASSERT_EQ(in_floats(0, sum), 0u);
        ASSERT_EQ(in_floats(255 * sum, sum), 255u);
        for (std::uint32_t result = 1; result < 256; ++result)
        {
            // 2a + sum >= 2 * sum * result
            const std::uint32_t least = (sum * (2 * result - 1) + 1) / 2;
            if (in_floats(least, sum) != result || in_floats(least - 1, sum) != result - 1)
                FAIL() << least << " / " << sum;
        }
    }
}
} // namespace
