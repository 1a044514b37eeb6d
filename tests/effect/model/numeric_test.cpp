#include "effect/model/numeric.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace
{
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr std::int32_t kMin32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kMin64 = std::numeric_limits<std::int64_t>::min();
} // namespace

TEST(trunc_i32, goes_toward_zero)
{
    EXPECT_EQ(trunc_i32(0.0), 0);
    EXPECT_EQ(trunc_i32(-0.0), 0);
    EXPECT_EQ(trunc_i32(0.999999), 0);
    EXPECT_EQ(trunc_i32(-0.999999), 0);
    EXPECT_EQ(trunc_i32(2.999999999999997), 2);
    EXPECT_EQ(trunc_i32(-2.9), -2);
}

TEST(trunc_i32, what_does_not_fit_is_the_minimum)
{
    EXPECT_EQ(trunc_i32(2147483647.0), 2147483647);
    EXPECT_EQ(trunc_i32(2147483647.9), 2147483647);
    EXPECT_EQ(trunc_i32(std::nextafter(2147483648.0, 0.0)), 2147483647);
    EXPECT_EQ(trunc_i32(2147483648.0), kMin32);
    EXPECT_EQ(trunc_i32(-2147483648.0), kMin32);
    EXPECT_EQ(trunc_i32(-2147483648.9), kMin32);
    EXPECT_EQ(trunc_i32(-2147483649.0), kMin32);
    EXPECT_EQ(trunc_i32(-2147483647.9), kMin32 + 1);
    for (const double v : {kNan, -kNan, kInf, -kInf, 1e300, -1e300})
        EXPECT_EQ(trunc_i32(v), kMin32) << v;
}

TEST(trunc_i16, is_the_low_half)
{
    EXPECT_EQ(trunc_i16(32767.9), 32767);
    EXPECT_EQ(trunc_i16(32768.0), -32768);
    EXPECT_EQ(trunc_i16(65537.0), 1);
    EXPECT_EQ(trunc_i16(-32769.0), 32767);
    EXPECT_EQ(trunc_i16(2147483647.0), -1);
    for (const double v : {kNan, kInf, -kInf, 4e9, -4e9})
        EXPECT_EQ(trunc_i16(v), 0) << v;
}

TEST(trunc_u8, is_the_low_byte)
{
    EXPECT_EQ(trunc_u8(255.9), 255);
    EXPECT_EQ(trunc_u8(256.0), 0);
    EXPECT_EQ(trunc_u8(-1.0), 255);
    EXPECT_EQ(trunc_u8(kNan), 0);
}

TEST(trunc_i64, what_does_not_fit_is_the_minimum)
{
    EXPECT_EQ(trunc_i64(-3.7), -3);
    EXPECT_EQ(trunc_i64(9223372036854774784.0), 9223372036854774784);
    EXPECT_EQ(trunc_i64(-9223372036854775808.0), kMin64);
    for (const double v : {9223372036854775808.0, -9223372036854777856.0, kNan, kInf, -kInf})
        EXPECT_EQ(trunc_i64(v), kMin64) << v;
}

TEST(wrapping, sums_and_products_are_those_of_64_bits_cut)
{
    std::mt19937 random(3);
    const std::int32_t edges[] = {0, 1, -1, 2, 65536, -65536, 32768, 2147483647, kMin32, kMin32 + 1, 46341};
    const auto cut = [](std::int64_t v) { return static_cast<std::int32_t>(static_cast<std::uint64_t>(v)); };
    for (int n = 0; n < 2000; ++n)
    {
        const auto pick = [&]
        { return random() % 2 != 0 ? edges[random() % std::size(edges)] : static_cast<std::int32_t>(random()); };
        const std::int32_t a = pick();
        const std::int32_t b = pick();
        EXPECT_EQ(wrap_add(a, b), cut(std::int64_t{a} + b)) << a << ' ' << b;
        EXPECT_EQ(wrap_sub(a, b), cut(std::int64_t{a} - b)) << a << ' ' << b;
        EXPECT_EQ(wrap_mul(a, b), cut(std::int64_t{a} * b)) << a << ' ' << b;
        EXPECT_EQ(to_fixed(a), cut(std::int64_t{a} * 65536)) << a;
        EXPECT_EQ(low_i16(a), a - ((a + 32768ll) >> 16 << 16)) << a;
    }
}

TEST(div_i32, never_traps)
{
    EXPECT_EQ(div_i32(7, 2), 3);
    EXPECT_EQ(div_i32(-7, 2), -3);
    EXPECT_EQ(div_i32(7, 0), 0);
    EXPECT_EQ(div_i32(kMin32, 0), 0);
    EXPECT_EQ(div_i32(kMin32, -1), kMin32);
    EXPECT_EQ(div_i32(kMin32, 1), kMin32);
}

TEST(trunc_i32_select, is_trunc_i32_of_every_kind_of_float)
{
    // Every 4099th float there is, and the ends of what fits.
    const auto float_of = [](std::uint32_t bits)
    {
        float v = 0.0f;
        std::memcpy(&v, &bits, sizeof v);
        return v;
    };
    const auto same = [](float v) { return trunc_i32_select(v) == trunc_i32(static_cast<double>(v)); };
    for (std::uint64_t bits = 0; bits <= 0xFFFFFFFFU; bits += 4099)
        ASSERT_TRUE(same(float_of(static_cast<std::uint32_t>(bits)))) << bits;
    for (const float end : {2147483648.0f, -2147483648.0f, 0.0f, 1.0f, -1.0f})
        for (const float v : {std::nextafter(end, -1e30f), end, std::nextafter(end, 1e30f)})
            EXPECT_TRUE(same(v)) << v;
}

TEST(trunc_i32_fitting, is_trunc_i32_below_2_to_the_31)
{
    for (const float v : {0.0f, -0.0f, 0.99f, -0.99f, 254.5f, -3.7f, 2147483520.0f, -2147483520.0f})
        EXPECT_EQ(trunc_i32_fitting(v), trunc_i32(static_cast<double>(v))) << v;
}
