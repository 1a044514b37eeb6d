#include "rounding.hpp"

namespace host::maths
{
double round_scaled(std::uint64_t mantissa, int rest_sign, int exponent)
{
    if (mantissa == 0)
        return 0.0;
    constexpr int kPrecision = 53;
    constexpr int kLowest = -1074; // exponent of the last bit of a subnormal
    constexpr int kHighest = 971;  // of the last bit of the largest double
    const int length = 64 - std::countl_zero(mantissa);

    // How many bits are dropped at the end; below the normal range more than the length asks for.
    int drop = length > kPrecision ? length - kPrecision : 0;
    if (exponent + drop < kLowest)
        drop = kLowest - exponent;
    if (drop > length)
        return 0.0;
    std::uint64_t kept = drop < 64 ? mantissa >> drop : 0;
    if (drop > 0)
    {
        const std::uint64_t half = 1ULL << (drop - 1);
        const std::uint64_t dropped = drop < 64 ? mantissa & (2 * half - 1) : mantissa;
        const bool beyond = dropped > half || (dropped == half && rest_sign > 0);
        const bool tie = dropped == half && rest_sign == 0;
        if (beyond || (tie && (kept & 1U) != 0))
            ++kept;
    }
    exponent += drop;

    // A carry may have made one bit more, which is then followed by zeros.
    if (kept == 1ULL << kPrecision)
    {
        kept >>= 1U;
        ++exponent;
    }
    while (exponent > kLowest && kept < 1ULL << (kPrecision - 1))
    {
        kept <<= 1U;
        --exponent;
    }
    if (exponent > kHighest)
        return kInfinity;
    // A subnormal has the exponent field 0; else the field counts from the last bit's place.
    if (kept < 1ULL << (kPrecision - 1))
        return std::bit_cast<double>(kept);
    const auto field = static_cast<std::uint64_t>(std::int64_t{exponent} - kLowest + 1);
    return std::bit_cast<double>((field << 52U) | (kept & ((1ULL << 52U) - 1)));
}

namespace
{
// The double next to v in the direction of `towards`' sign, for v other than 0.
double neighbour(double v, double towards)
{
    const bool away_from_zero = (v > 0.0) == (towards > 0.0);
    return std::bit_cast<double>(away_from_zero ? bits_of(v) + 1 : bits_of(v) - 1);
}
} // namespace

double round_sum(const long_sum& sum, int exponent)
{
    // Three parts, each at most half a unit of the one before.
    const dd top = two_sum(sum.a, sum.b.hi);
    const dd middle = two_sum(top.lo, sum.b.lo);
    const dd high = quick_two_sum(top.hi, middle.hi);
    dd low = two_sum(high.lo, middle.lo);

    // The lower two as one number, rounded to odd: its last bit then keeps a tie from looking like one (S. Boldo
    // and G. Melquiond, Emulation of FMA and correctly rounded sums: proved algorithms using rounding to odd,
    // 2008).
    if (low.lo != 0.0 && !is_odd_bits(low.hi))
        low.hi = neighbour(low.hi, low.lo);
    const dd rounded = quick_two_sum(high.hi, low.hi);
    if (rounded.hi == 0.0)
        return 0.0;
    const split_double parts = split(rounded.hi);
    const int result_exponent = parts.exponent + exponent;
    if (exponent == 0 && result_exponent >= -1022)
        return rounded.hi;
    if (result_exponent > 1023)
        return rounded.hi < 0.0 ? -kInfinity : kInfinity;
    if (result_exponent >= -1022)
        return parts.part * power_of_two(result_exponent);

    const std::uint64_t mantissa = (bits_of(parts.part) & ((1ULL << 52U) - 1)) | 1ULL << 52U;
    const double rest = rounded.hi < 0.0 ? -rounded.lo : rounded.lo;
    const int rest_sign = rest > 0.0 ? 1 : rest < 0.0 ? -1 : 0;
    const double magnitude = round_scaled(mantissa, rest_sign, result_exponent - 52);
    return rounded.hi < 0.0 ? -magnitude : magnitude;
}
} // namespace host::maths
