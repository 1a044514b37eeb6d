#include "math_constants.hpp"
#include "portable_math.hpp"
#include "rounding.hpp"

#include <cmath>
#include <utility>

namespace host::maths
{
namespace
{
constexpr double kOneByLog2 = 0x1.71547652b82fep+0; // 1 / log(2), to choose a power of two with

// ---- the exponential and the logarithm
// ---------------------------------------------------------------------------

// exp(r) * 2^exponent
double exponential(dd r, int exponent)
{
    const double twos = std::floor(r.hi * kOneByLog2 + 0.5);
    const dd near = two_sum(r.hi, -twos * kLog2High) + two_sum(-twos * kLog2Middle, -twos * kLog2Low);
    const dd rest = near + dd{r.lo, 0.0};
    constexpr int kTerms = 24; // to 1/25!
    const dd beyond_one = rest + rest * rest * polynomial(kOneByFactorial, kTerms, rest);
    return round_sum({1.0, beyond_one}, exponent + static_cast<int>(twos));
}

// A positive number as part * 2^exponent with the part between sqrt(1/2) and sqrt(2).
split_double split_about_one(double x)
{
    constexpr double kSquareRootOfTwo = 0x1.6a09e667f3bcdp+0;
    const split_double parts = split(x);
    if (parts.part > kSquareRootOfTwo)
        return {0.5 * parts.part, parts.exponent + 1};
    return parts;
}

// log(part), between sqrt(1/2) and sqrt(2). With d = part - 1 and s = d / (2 + d) it is
// 2 (s + s^3/3 + s^5/5 + ...), and 2s = d - d s.
long_sum log_about_one(double part)
{
    const double d = part - 1.0;
    const dd s = dd{d, 0.0} / two_sum(2.0, d);
    const dd square = s * s;
    const dd beyond = s * square * polynomial(kOneByOdd, kOddReciprocals, square) * 2.0;
    return {d, beyond - s * d};
}

long_sum natural_log(double x)
{
    const split_double parts = split_about_one(x);
    const long_sum rest = log_about_one(parts.part);
    if (parts.exponent == 0)
        return rest;
    const double twos = parts.exponent;
    return {twos * kLog2High, two_sum(twos * kLog2Middle, rest.a) + rest.b + dd{twos * kLog2Low, 0.0}};
}

dd whole(const long_sum& sum)
{
    return dd{sum.a, 0.0} + sum.b;
}

// ---- powers
// ------------------------------------------------------------------------------------------------------

bool is_whole(double y)
{
    return std::floor(y) == y;
}

bool is_odd(double y)
{
    return is_whole(y) && !is_whole(0.5 * y);
}

// A positive number as odd * 2^exponent.
struct odd_and_exponent
{
    std::uint64_t odd;
    int exponent;
};

odd_and_exponent odd_part(double x)
{
    const split_double parts = split(x);
    const std::uint64_t mantissa = (bits_of(parts.part) & ((1ULL << 52U) - 1)) | 1ULL << 52U;
    const int zeros = std::countr_zero(mantissa);
    return {mantissa >> zeros, parts.exponent - 52 + zeros};
}

// x^y where it has at most 64 bits, so that it may lie on the middle between two doubles, where no approximation
// can tell to which side it belongs; false where it has more. x is positive.
bool short_power(double x, double y, double& result)
{
    odd_and_exponent base = odd_part(x);
    if (base.odd == 1)
    {
        const dd exponent = two_product(y, base.exponent);
        if (exponent.lo != 0.0 || !is_whole(exponent.hi))
            return false;
        constexpr double kFar = 2000.0;
        result = round_scaled(1, 0, static_cast<int>(std::fmax(-kFar, std::fmin(exponent.hi, kFar))));
        return true;
    }
    constexpr double kMost = 40.0; // 3^41 has more than 64 bits
    if (!(y > 0.0 && y <= kMost))
        return false;
    // A fraction of y asks for square roots, which have to come out even.
    while (!is_whole(y))
    {
        const auto root = static_cast<std::uint64_t>(std::sqrt(static_cast<double>(base.odd)));
        if (root * root != base.odd || base.exponent % 2 != 0)
            return false;
        base = {root, base.exponent / 2};
        y *= 2.0;
        if (root == 1 || y > kMost)
            return false;
    }
    std::uint64_t power = 1;
    const int times = static_cast<int>(y);
    for (int i = 0; i < times; ++i)
    {
        if (power > ~0ULL / base.odd)
            return false;
        power *= base.odd;
    }
    result = round_scaled(power, 0, base.exponent * times);
    return true;
}

// x^y for positive finite x other than 1, and finite y other than 0.
double positive_power(double x, double y)
{
    // What one rounded operation gives.
    if (y == 1.0)
        return x;
    if (y == 2.0)
        return x * x;
    if (y == -1.0)
        return 1.0 / x;
    if (y == 0.5)
        return std::sqrt(x);

    // Beyond this every x but 1 runs over; below its reciprocal every power is 1.
    constexpr double kFar = 0x1p65;
    if (std::fabs(y) > kFar)
        return (x > 1.0) == (y > 0.0) ? kInfinity : 0.0;
    if (std::fabs(y) < 1.0 / kFar)
        return 1.0;
    if (double exact = 0.0; short_power(x, y, exact))
        return exact;

    const split_double parts = split_about_one(x);
    const dd log_part = whole(log_about_one(parts.part));
    const double twos = y * (parts.exponent + log_part.hi * kOneByLog2);
    constexpr double kOut = 1100.0;
    if (twos > kOut)
        return kInfinity;
    if (twos < -kOut)
        return 0.0;
    // x^y = 2^(exponent * y) * part^y; whole twos are kept apart, for they lose nothing.
    const dd exponent = two_product(y, parts.exponent);
    const double whole_exponent = std::floor(exponent.hi + 0.5);
    const dd fraction = two_sum(exponent.hi, -whole_exponent) + dd{exponent.lo, 0.0};
    dd power = log_part * y;
    if (fraction.hi != 0.0)
        power = power + fraction * kLog2;
    return exponential(power, static_cast<int>(whole_exponent));
}

// x^y where x is 0 or infinite, or y is infinite; neither is not-a-number, x is not 1 and y not 0.
double power_at_the_edges(double x, double y)
{
    const double magnitude = std::fabs(x);
    if (std::isinf(y))
        return magnitude == 1.0 ? 1.0 : (magnitude > 1.0) == (y > 0.0) ? kInfinity : 0.0;
    const double size = (magnitude == 0.0) == (y > 0.0) ? 0.0 : kInfinity;
    return std::signbit(x) && is_odd(y) ? -size : size;
}

// ---- the length of a right triangle's long side
// ------------------------------------------------------------------

// The sign of an exact sum, carried as parts that do not overlap (J. Shewchuk, Adaptive precision floating-point
// arithmetic, 1997).
template <int Count>
int sign_of_sum(const double (&terms)[Count])
{
    double parts[Count] = {};
    int used = 0;
    for (const double term : terms)
    {
        double carry = term;
        for (int i = 0; i < used; ++i)
        {
            const dd sum = two_sum(carry, parts[i]);
            parts[i] = sum.lo;
            carry = sum.hi;
        }
        parts[used++] = carry;
    }
    for (int i = Count - 1; i >= 0; --i)
        if (parts[i] != 0.0)
            return parts[i] > 0.0 ? 1 : -1;
    return 0;
}

// sqrt(a * a + b * b), for 1 <= a < 2 and 2^-28 < b <= 2, with the second part on the right side of the middle
// between two doubles.
dd long_side(double a, double b)
{
    const dd aa = two_product(a, a);
    const dd bb = two_product(b, b);
    dd root = square_root(aa + bb);
    const bool above_two = root.hi > 2.0 || (root.hi == 2.0 && root.lo > 0.0);
    const double half = root.lo < 0.0 ? (above_two ? -0x1p-52 : -0x1p-53) : (above_two ? 0x1p-52 : 0x1p-53);
    constexpr double kTrace = 0x1p-30;
    if (std::fabs(root.lo / half - 1.0) < kTrace)
    {
        const dd square = two_product(root.hi, root.hi);
        const int side =
            sign_of_sum({aa.hi, aa.lo, bb.hi, bb.lo, -square.hi, -square.lo, -2.0 * root.hi * half, -half * half});
        root.lo = half + side * std::fabs(half) * kTrace;
    }
    return root;
}
} // namespace

double exp(double x)
{
    if (std::isnan(x))
        return kNaN;
    if (x > 710.0)
        return kInfinity;
    if (x < -746.0)
        return 0.0;
    if (std::fabs(x) < 0x1p-54)
        return 1.0;
    return exponential({x, 0.0}, 0);
}

double log(double x)
{
    if (x == 0.0)
        return -kInfinity;
    if (!(x > 0.0))
        return kNaN;
    if (x == 1.0 || std::isinf(x))
        return x == 1.0 ? 0.0 : x;
    return round_sum(natural_log(x));
}

double log10(double x)
{
    if (x == 0.0)
        return -kInfinity;
    if (!(x > 0.0))
        return kNaN;
    if (x == 1.0 || std::isinf(x))
        return x == 1.0 ? 0.0 : x;
    return round_sum({0.0, whole(natural_log(x)) * kOneByLog10});
}

double pow(double x, double y)
{
    if (y == 0.0 || x == 1.0)
        return 1.0;
    if (std::isnan(x) || std::isnan(y))
        return kNaN;
    if (x == 0.0 || std::isinf(x) || std::isinf(y))
        return power_at_the_edges(x, y);
    const double magnitude = std::fabs(x);
    if (x < 0.0 && !is_whole(y))
        return kNaN;
    const double size = magnitude == 1.0 ? 1.0 : positive_power(magnitude, y);
    return x < 0.0 && is_odd(y) ? -size : size;
}

double hypot(double x, double y)
{
    if (std::isinf(x) || std::isinf(y))
        return kInfinity;
    if (std::isnan(x) || std::isnan(y))
        return kNaN;
    double a = std::fabs(x);
    double b = std::fabs(y);
    if (a < b)
        std::swap(a, b);
    if (b == 0.0)
        return a;
    const split_double longer = split(a);
    const split_double shorter = split(b);
    const int apart = longer.exponent - shorter.exponent;
    constexpr int kFar = 28; // the shorter side then adds less than half of the longer one's last bit
    if (apart > kFar)
        return a;
    const dd root = long_side(longer.part, shorter.part * power_of_two(-apart));
    return round_sum({root.hi, {root.lo, 0.0}}, longer.exponent);
}
} // namespace host::maths
