#pragma once
// Numbers of more than double precision, rounded once to the nearest double, ties to even: subnormal results and
// overflow included.

#include "double_double.hpp"

#include <bit>
#include <cstdint>
#include <limits>

namespace host::maths
{
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// a + b, with a far above b or 0: what a function of a small argument begins with is exact, and only the rest is
// rounded to 104 bits.
struct long_sum
{
    double a = 0.0;
    dd b;
};

constexpr std::uint64_t bits_of(double v)
{
    return std::bit_cast<std::uint64_t>(v);
}

constexpr bool is_odd_bits(double v)
{
    return (bits_of(v) & 1U) != 0;
}

// 2^exponent, for an exponent of a normal double (-1022 to 1023).
constexpr double power_of_two(int exponent)
{
    return std::bit_cast<double>(static_cast<std::uint64_t>(exponent + 1023) << 52U);
}

// A finite number other than 0 as part * 2^exponent, 1 <= |part| < 2.
struct split_double
{
    double part;
    int exponent;
};

constexpr split_double split(double v)
{
    constexpr double kLift = 0x1p54;
    constexpr int kLiftBits = 54;
    int exponent = 0;
    if ((bits_of(v) >> 52U & 0x7FFU) == 0) // subnormal
    {
        v *= kLift;
        exponent = -kLiftBits;
    }
    exponent += static_cast<int>(bits_of(v) >> 52U & 0x7FFU) - 1023;
    constexpr std::uint64_t kExponentBits = 0x7FFULL << 52U;
    return {std::bit_cast<double>((bits_of(v) & ~kExponentBits) | bits_of(1.0)), exponent};
}

// (mantissa + rest) * 2^exponent, of which only the sign of the rest is known and that it is smaller than 1/2 (and
// 0 unless the mantissa has 53 bits).
double round_scaled(std::uint64_t mantissa, int rest_sign, int exponent);

// (sum.a + sum.b) * 2^exponent.
double round_sum(const long_sum& sum, int exponent = 0);
} // namespace host::maths
