#pragma once
// A number as the sum of two doubles, the second at most half a unit in the last place of the first: about 104
// bits from nothing but IEEE additions, multiplications, divisions and square roots, so the same bits on every
// system. (T. J. Dekker, A floating-point technique for extending the available precision, 1971; Y. Hida, X. Li
// and D. Bailey, Algorithms for quad-double precision floating point arithmetic, 2001.) Holds for parts between
// about 2^-900 and 2^990; the callers bring their arguments there first.

#include <cfloat>
#include <cmath>

static_assert(FLT_EVAL_METHOD == 0, "every step must be rounded to double: use SSE2 arithmetic");

namespace host::maths
{
struct dd
{
    double hi = 0.0;
    double lo = 0.0;
};

// a + b, exactly.
constexpr dd two_sum(double a, double b)
{
    const double sum = a + b;
    const double b_part = sum - a;
    return {sum, (a - (sum - b_part)) + (b - b_part)};
}

// The same where |a| >= |b|, or a is 0.
constexpr dd quick_two_sum(double a, double b)
{
    const double sum = a + b;
    return {sum, b - (sum - a)};
}

// a * b, exactly: both factors are cut into halves of 26 bits, whose products fit a double. No fused multiply-add,
// which not every machine has.
constexpr dd two_product(double a, double b)
{
    constexpr double kCut = 134217729.0; // 2^27 + 1
    const double wide_a = kCut * a;
    const double a_hi = wide_a - (wide_a - a);
    const double a_lo = a - a_hi;
    const double wide_b = kCut * b;
    const double b_hi = wide_b - (wide_b - b);
    const double b_lo = b - b_hi;
    const double product = a * b;
    return {product, ((a_hi * b_hi - product) + a_hi * b_lo + a_lo * b_hi) + a_lo * b_lo};
}

constexpr dd operator-(dd a)
{
    return {-a.hi, -a.lo};
}

constexpr dd operator+(dd a, dd b)
{
    const dd high = two_sum(a.hi, b.hi);
    const dd low = two_sum(a.lo, b.lo);
    const dd sum = quick_two_sum(high.hi, high.lo + low.hi);
    return quick_two_sum(sum.hi, sum.lo + low.lo);
}

constexpr dd operator-(dd a, dd b)
{
    return a + -b;
}

constexpr dd operator*(dd a, dd b)
{
    const dd product = two_product(a.hi, b.hi);
    return quick_two_sum(product.hi, product.lo + (a.hi * b.lo + a.lo * b.hi));
}

constexpr dd operator*(dd a, double b)
{
    const dd product = two_product(a.hi, b);
    return quick_two_sum(product.hi, product.lo + a.lo * b);
}

constexpr dd operator/(dd a, dd b)
{
    const double first = a.hi / b.hi;
    dd rest = a - b * first;
    const double second = rest.hi / b.hi;
    rest = rest - b * second;
    const double third = rest.hi / b.hi;
    const dd quotient = quick_two_sum(first, second);
    return quotient + dd{third, 0.0};
}

inline dd square_root(dd a)
{
    const double root = std::sqrt(a.hi);
    if (root == 0.0)
        return {};
    const dd rest = a - two_product(root, root);
    return quick_two_sum(root, rest.hi / (2.0 * root));
}

// coefficients[0] + x * (coefficients[1] + x * (... coefficients[count - 1])).
constexpr dd polynomial(const dd* coefficients, int count, dd x)
{
    dd sum = coefficients[count - 1];
    for (int i = count - 2; i >= 0; --i)
        sum = sum * x + coefficients[i];
    return sum;
}
} // namespace host::maths
