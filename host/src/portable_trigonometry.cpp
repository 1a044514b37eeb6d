#include "math_constants.hpp"
#include "portable_math.hpp"
#include "rounding.hpp"

#include <cmath>

namespace host::maths
{
namespace
{
// Below this, sin, tan, asin and atan differ from their argument by less than half its last bit.
constexpr double kOwnImage = 0x1p-27;

// ---- an angle's quarter turn, and what is left of it
// -------------------------------------------------------------

struct reduced_angle
{
    int quarter; // 0 to 3: the nearest multiple of pi/2
    dd rest;     // from there, at most pi/4 to either side
};

constexpr int kWords = 9; // of 2/pi, 32 bits each: 2 for quarters, the longest run of zeros or ones, and 130 more
constexpr int kProductWords = kWords + 2;

// The low `bits` bits of a number in words, least significant first, as a sum of doubles times 2^-bits.
dd fraction_of(const std::uint32_t* words, int bits)
{
    dd sum;
    for (int i = (bits - 1) / 32; i >= 0; --i)
    {
        const int inside = bits - 32 * i; // bits of this word and those above it, which were masked away
        const std::uint32_t word = inside >= 32 ? words[i] : words[i] & ((1U << inside) - 1U);
        sum = sum + dd{static_cast<double>(word) * power_of_two(32 * i - bits), 0.0};
    }
    return sum;
}

// For |x| above pi/4. The product of x's 53 bits with those bits of 2/pi that can count, whole quarters beyond
// four left out (M. Payne and R. Hanek, Radian reduction for trigonometric functions, 1983).
reduced_angle reduce(double magnitude)
{
    const split_double parts = split(magnitude);
    const std::uint64_t mantissa = (bits_of(parts.part) & ((1ULL << 52U) - 1)) | 1ULL << 52U;
    const int exponent = parts.exponent - 52; // magnitude = mantissa * 2^exponent

    // Words before `first` give multiples of four quarters.
    const int first = exponent > 1 ? (exponent - 1 + 31) / 32 - 1 : 0;
    std::uint32_t product[kProductWords] = {};
    const std::uint64_t factors[2] = {mantissa & 0xFFFFFFFFU, mantissa >> 32U};
    for (int f = 0; f < 2; ++f)
    {
        std::uint64_t carry = 0;
        for (int i = 0; i < kWords; ++i)
        {
            const std::uint64_t word = kTwoByPiBits[first + kWords - 1 - i];
            const std::uint64_t sum = factors[f] * word + product[i + f] + carry;
            product[i + f] = static_cast<std::uint32_t>(sum);
            carry = sum >> 32U;
        }
        product[kWords + f] = static_cast<std::uint32_t>(carry);
    }

    const int point = 32 * (first + kWords) - exponent; // bits after the binary point
    const auto bit = [&product](int n) { return static_cast<int>(product[n / 32] >> (n % 32) & 1U); };
    int quarter = bit(point) + 2 * bit(point + 1);
    const bool upper_half = bit(point - 1) != 0;
    if (upper_half)
    {
        // Counted down from the next quarter: the negative in two's complement.
        std::uint64_t carry = 1;
        for (std::uint32_t& word : product)
        {
            const std::uint64_t sum = static_cast<std::uint64_t>(~word) + carry;
            word = static_cast<std::uint32_t>(sum);
            carry = sum >> 32U;
        }
        quarter = (quarter + 1) % 4;
    }
    const dd rest = fraction_of(product, point) * kHalfPi;
    return {quarter, upper_half ? -rest : rest};
}

reduced_angle quarters_of(double magnitude)
{
    if (magnitude <= kQuarterPi)
        return {0, {magnitude, 0.0}};
    return reduce(magnitude);
}

// ---- sine and cosine to pi/4
// -------------------------------------------------------------------------------------

constexpr int kTerms = 14;

// Every second of 1/n!, with changing signs, from 1/first! on.
struct alternating_factorials
{
    dd at[kTerms];
    constexpr explicit alternating_factorials(int first)
    {
        for (int i = 0; i < kTerms; ++i)
        {
            const dd value = kOneByFactorial[first + 2 * i - 2];
            at[i] = i % 2 == 0 ? -value : value;
        }
    }
};

constexpr alternating_factorials kSineTerms(3);   // to 1/29!
constexpr alternating_factorials kCosineTerms(2); // to 1/28!

// sin(r) - r
dd sine_beyond(dd r)
{
    const dd square = r * r;
    return polynomial(kSineTerms.at, kTerms, square) * square * r;
}

// cos(r) - 1
dd cosine_beyond(dd r)
{
    const dd square = r * r;
    return polynomial(kCosineTerms.at, kTerms, square) * square;
}

long_sum sine_of(dd r)
{
    return {r.hi, dd{r.lo, 0.0} + sine_beyond(r)};
}

long_sum cosine_of(dd r)
{
    return {1.0, cosine_beyond(r)};
}

// sin(angle + quarter * pi/2)
double sine_at(int quarter, dd rest)
{
    const double value = round_sum(quarter % 2 == 0 ? sine_of(rest) : cosine_of(rest));
    return quarter >= 2 ? -value : value;
}

double tangent_at(int quarter, dd r)
{
    const dd sine = sine_beyond(r);
    const dd cosine = cosine_beyond(r);
    const dd whole_cosine = dd{1.0, 0.0} + cosine;
    if (quarter % 2 == 0)
        return round_sum(
            {r.hi, dd{r.lo, 0.0} + (sine - r * cosine) / whole_cosine}); // tan r = r + (sin r - r cos r) / cos r
    return -round_sum({0.0, whole_cosine / (r + sine)});
}

double whole_tangent(double x)
{
    const double magnitude = std::fabs(x);
    const reduced_angle angle = quarters_of(magnitude);
    const double value = tangent_at(angle.quarter, angle.rest);
    return x < 0.0 ? -value : value;
}

// ---- the angle of a ratio
// ----------------------------------------------------------------------------------------

constexpr int kAtanTerms = 11;

struct alternating_odd_reciprocals
{
    dd at[kAtanTerms];
    constexpr alternating_odd_reciprocals()
    {
        for (int i = 0; i < kAtanTerms; ++i)
            at[i] = i % 2 == 0 ? -kOneByOdd[i] : kOneByOdd[i];
    }
};

constexpr alternating_odd_reciprocals kAtanSeries;

// atan(t) - t, for |t| up to a little above 1/32
dd atan_beyond(dd t)
{
    const dd square = t * t;
    return polynomial(kAtanSeries.at, kAtanTerms, square) * square * t;
}

dd whole(const long_sum& sum)
{
    return dd{sum.a, 0.0} + sum.b;
}

// atan(y / x), for 0 < y <= x: the nearest sixteenth's angle, and the small one between.
long_sum atan_below_one(dd y, dd x)
{
    // NOLINTNEXTLINE(bugprone-incorrect-roundings): any sixteenth near by will do
    const int sixteenth = static_cast<int>(16.0 * (y.hi / x.hi) + 0.5);
    if (sixteenth == 0)
    {
        const dd t = y / x;
        return {t.hi, dd{t.lo, 0.0} + atan_beyond(t)};
    }
    const double near = sixteenth / 16.0;
    const dd t = (y - x * near) / (x + y * near);
    return {0.0, kAtanOfSixteenths[sixteenth] + (t + atan_beyond(t))};
}

// The same for any 0 < y and 0 < x.
long_sum atan_of_ratio(dd y, dd x)
{
    if (y.hi < x.hi || (y.hi == x.hi && y.lo <= x.lo))
        return atan_below_one(y, x);
    return {0.0, kHalfPi - whole(atan_below_one(x, y))};
}

double with_sign_of(double sign, double magnitude)
{
    return std::signbit(sign) ? -magnitude : magnitude;
}

// Where one of both is 0 or infinite.
double atan2_at_the_edges(double y, double x)
{
    if (std::isinf(y))
        return with_sign_of(y, !std::isinf(x) ? kHalfPi.hi : x > 0.0 ? kQuarterPi : kThreeQuarterPi);
    if (y == 0.0 || std::isinf(x))
        return with_sign_of(y, std::signbit(x) ? kPi.hi : 0.0);
    return with_sign_of(y, kHalfPi.hi);
}

// sqrt((1 - x) * (1 + x)): the other side of a right triangle
dd other_side(double x)
{
    return square_root(two_sum(1.0, -x) * two_sum(1.0, x));
}
} // namespace

double sin(double x)
{
    if (!std::isfinite(x))
        return kNaN;
    const double magnitude = std::fabs(x);
    if (magnitude < kOwnImage)
        return x;
    const reduced_angle angle = quarters_of(magnitude);
    const double value = sine_at(angle.quarter, angle.rest);
    return x < 0.0 ? -value : value;
}

double cos(double x)
{
    if (!std::isfinite(x))
        return kNaN;
    const double magnitude = std::fabs(x);
    if (magnitude < kOwnImage)
        return 1.0;
    const reduced_angle angle = quarters_of(magnitude);
    return sine_at((angle.quarter + 1) % 4, angle.rest);
}

double tan(double x)
{
    if (!std::isfinite(x))
        return kNaN;
    if (std::fabs(x) < kOwnImage)
        return x;
    // Effects ask for the slopes at a curve's ends again for each of its samples.
    struct answer
    {
        double x = 0.0;
        double tangent = 0.0;
    };
    thread_local answer last;
    if (x != last.x)
        last = {x, whole_tangent(x)};
    return last.tangent;
}

double asin(double x)
{
    const double magnitude = std::fabs(x);
    if (!(magnitude <= 1.0))
        return kNaN;
    if (magnitude < kOwnImage)
        return x;
    if (magnitude == 1.0)
        return with_sign_of(x, kHalfPi.hi);
    const dd side = other_side(magnitude);
    if (magnitude >= 1.0 / 32.0)
        return with_sign_of(x, round_sum(atan_of_ratio({magnitude, 0.0}, side)));
    // t = x / side = x + x^3 / (side * (1 + side)), so that the result is x and a small rest.
    const dd cube = two_product(magnitude, magnitude) * magnitude;
    const dd beyond = cube / (side * (dd{1.0, 0.0} + side));
    const dd t = dd{magnitude, 0.0} + beyond;
    return with_sign_of(x, round_sum({magnitude, beyond + atan_beyond(t)}));
}

double acos(double x)
{
    const double magnitude = std::fabs(x);
    if (!(magnitude <= 1.0))
        return kNaN;
    if (magnitude == 1.0)
        return x > 0.0 ? 0.0 : kPi.hi;
    if (magnitude < 0x1p-60)
        return kHalfPi.hi;
    const long_sum angle = atan_of_ratio(other_side(magnitude), {magnitude, 0.0});
    return x > 0.0 ? round_sum(angle) : round_sum({0.0, kPi - whole(angle)});
}

double atan(double x)
{
    if (std::isnan(x))
        return kNaN;
    const double magnitude = std::fabs(x);
    if (magnitude < kOwnImage)
        return x;
    if (magnitude > 0x1p60)
        return with_sign_of(x, kHalfPi.hi);
    return with_sign_of(x, round_sum(atan_of_ratio({magnitude, 0.0}, {1.0, 0.0})));
}

double atan2(double y, double x)
{
    if (std::isnan(y) || std::isnan(x))
        return kNaN;
    if (y == 0.0 || x == 0.0 || std::isinf(y) || std::isinf(x))
        return atan2_at_the_edges(y, x);
    const split_double up = split(std::fabs(y));
    const split_double across = split(std::fabs(x));
    const int apart = up.exponent - across.exponent;
    constexpr int kFar = 62; // exponents apart: pi and pi/2 are then their own nearest
    if (apart > kFar)
        return with_sign_of(y, kHalfPi.hi);
    if (apart < -kFar && x < 0.0)
        return with_sign_of(y, kPi.hi);
    if (apart < -kFar)
    {
        // The ratio, and a trace less: atan(t) = t - t^3 / 3.
        const double ratio = up.part / across.part;
        const dd back = two_product(ratio, across.part);
        const double rest = ((up.part - back.hi) - back.lo) / across.part;
        return with_sign_of(y, round_sum({ratio, {rest, -0x1p-120}}, apart));
    }
    const long_sum angle = atan_of_ratio({up.part * power_of_two(apart), 0.0}, {across.part, 0.0});
    return with_sign_of(y, x > 0.0 ? round_sum(angle) : round_sum({0.0, kPi - whole(angle)}));
}
} // namespace host::maths
