// Each function against MPFR's answer, correctly rounded to double, bit for bit.
// FILIGRANE_MATHS_ARGUMENTS=10000000 tries so many random arguments of each kind and function instead of the usual
// few thousand.

#include "portable_math.hpp"

#include "tests/support/bit_generator.hpp"

#include <gtest/gtest.h>
#include <mpfr.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

namespace
{
namespace maths = host::maths;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct generator : bit_generator
{
    double sign() { return below(2) == 0 ? 1.0 : -1.0; }
    // From 0 to 1.
    double unit() { return static_cast<double>(next() >> 11U) * 0x1p-53; }
};

double any_bits(generator& g)
{
    return std::bit_cast<double>(g.next());
}

// A mantissa of a few bits only, which exact cases and ties are made of.
double few_bits(generator& g, int lowest, int highest)
{
    const auto bits = static_cast<double>(1 + g.below(1 << (1 + g.below(13))));
    return g.sign() * std::ldexp(bits, lowest + g.below(highest - lowest + 1));
}

double full_bits(generator& g, int lowest, int highest)
{
    return g.sign() * std::ldexp(1.0 + g.unit(), lowest + g.below(highest - lowest + 1));
}

// A few units in the last place off a number of few bits.
double nearly(generator& g, double v)
{
    const std::uint64_t off = g.next() % 2048;
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(v);
    return std::bit_cast<double>(g.below(2) == 0 ? bits + off : bits - off);
}

constexpr int kKinds = 6;

double argument(generator& g, int kind)
{
    switch (kind)
    {
    case 0:
        return any_bits(g);
    case 1:
        return few_bits(g, -40, 12);
    case 2:
        return full_bits(g, -30, 12);
    case 3:
        return nearly(g, few_bits(g, -12, 4));
    case 4:
        return g.sign() * g.unit();
    default:
        return g.sign() * g.unit() * 720.0;
    }
}

const std::vector<double>& special_arguments()
{
    static const std::vector<double> all = []
    {
        std::vector<double> some = {0.0, kInf, kNaN, 5e-324, 2.2250738585072014e-308, 2.225073858507201e-308};
        some.insert(some.end(), {1.7976931348623157e308,
                                 8.98846567431158e307,
                                 0x1.921fb54442d18p+0,
                                 0x1.921fb54442d18p-1,
                                 0x1.921fb54442d18p+1,
                                 709.782712893384,
                                 709.7827128933841,
                                 745.1332191019411,
                                 745.1332191019412,
                                 708.3964185322641,
                                 6381956970095103.0 * 0x1p797,
                                 0x1.6ac5b262ca1ffp+849,
                                 0x1p-1073,
                                 0x1p-1022,
                                 3.0,
                                 5.0,
                                 0.1,
                                 1e15,
                                 1e16,
                                 1e17});
        for (int n = -60; n <= 60; ++n)
            for (const double around : {1.0, 0x1.fffffffffffffp-1, 0x1.0000000000001p+0, 1.5})
                some.push_back(std::ldexp(around, n));
        for (int n = 0; n <= 22; ++n)
            some.push_back(std::pow(10.0, n));
        for (int n = 1; n <= 12; ++n)
            some.push_back(n * 0x1.921fb54442d18p-1);
        const std::size_t count = some.size();
        for (std::size_t i = 0; i < count; ++i)
            some.push_back(-some[i]);
        return some;
    }();
    return all;
}

int random_arguments()
{
    const char* const asked = std::getenv("FILIGRANE_MATHS_ARGUMENTS");
    return asked != nullptr ? std::atoi(asked) : 4000;
}

// MPFR's numbers with the range of doubles, so that it can round to subnormals as well.
class reference
{
public:
    reference()
    {
        mpfr_set_emin(-1073);
        mpfr_set_emax(1024);
        mpfr_inits2(53, x_, y_, result_, nullptr);
    }
    ~reference() { mpfr_clears(x_, y_, result_, nullptr); }
    reference(const reference&) = delete;
    reference& operator=(const reference&) = delete;

    double of(int (*function)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t), double x)
    {
        mpfr_set_d(x_, x, MPFR_RNDN);
        return rounded(function(result_, x_, MPFR_RNDN));
    }
    double of(int (*function)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t), double x, double y)
    {
        mpfr_set_d(x_, x, MPFR_RNDN);
        mpfr_set_d(y_, y, MPFR_RNDN);
        return rounded(function(result_, x_, y_, MPFR_RNDN));
    }

private:
    double rounded(int inexact)
    {
        mpfr_subnormalize(result_, inexact, MPFR_RNDN);
        return mpfr_get_d(result_, MPFR_RNDN);
    }

    mpfr_t x_;
    mpfr_t y_;
    mpfr_t result_;
};

bool same(double a, double b)
{
    return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// Counts what differs and names the first.
class differences
{
public:
    void check(double mine, double right, double x, double y = 0.0)
    {
        ++tried_;
        if (same(mine, right))
            return;
        if (++count_ == 1)
            ADD_FAILURE() << std::hexfloat << "of " << x << ", " << y << ": " << mine << " for " << right;
    }
    ~differences() { EXPECT_EQ(count_, 0) << "of " << tried_; }

private:
    int count_ = 0;
    int tried_ = 0;
};

struct one_argument
{
    const char* name;
    double (*mine)(double);
    int (*right)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
};

class portable_math : public testing::TestWithParam<one_argument>
{
};

TEST_P(portable_math, rounds_correctly)
{
    const one_argument& f = GetParam();
    reference exact;
    differences found;
    const auto check = [&](double x) { found.check(f.mine(x), exact.of(f.right, x), x); };
    for (const double x : special_arguments())
        check(x);
    generator g{1};
    for (int kind = 0; kind < kKinds; ++kind)
        for (int i = 0; i < random_arguments(); ++i)
            check(argument(g, kind));
}

INSTANTIATE_TEST_SUITE_P(
    functions, portable_math,
    testing::Values(one_argument{"sin", maths::sin, mpfr_sin}, one_argument{"cos", maths::cos, mpfr_cos},
                    one_argument{"tan", maths::tan, mpfr_tan}, one_argument{"asin", maths::asin, mpfr_asin},
                    one_argument{"acos", maths::acos, mpfr_acos}, one_argument{"atan", maths::atan, mpfr_atan},
                    one_argument{"exp", maths::exp, mpfr_exp}, one_argument{"log", maths::log, mpfr_log},
                    one_argument{"log10", maths::log10, mpfr_log10}),
    [](const auto& one) { return std::string(one.param.name); });

struct two_arguments
{
    const char* name;
    double (*mine)(double, double);
    int (*right)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t);
};

class portable_math_of_two : public testing::TestWithParam<two_arguments>
{
};

TEST_P(portable_math_of_two, rounds_correctly)
{
    const two_arguments& f = GetParam();
    reference exact;
    differences found;
    const auto check = [&](double x, double y) { found.check(f.mine(x, y), exact.of(f.right, x, y), x, y); };
    const std::vector<double>& special = special_arguments();
    for (std::size_t i = 0; i < special.size(); ++i)
        for (std::size_t k = 0; k < special.size(); k += 1 + (i * 7 + k) % 11)
            check(special[i], special[k]);
    generator g{2};
    for (int kind = 0; kind < kKinds; ++kind)
        for (int other = 0; other < kKinds; ++other)
            for (int i = 0; i < random_arguments() / 4; ++i)
            {
                const double x = argument(g, kind);
                check(x, argument(g, other));
            }
}

INSTANTIATE_TEST_SUITE_P(functions, portable_math_of_two,
                         testing::Values(two_arguments{"atan2", maths::atan2, mpfr_atan2},
                                         two_arguments{"pow", maths::pow, mpfr_pow},
                                         two_arguments{"hypot", maths::hypot, mpfr_hypot}),
                         [](const auto& one) { return std::string(one.param.name); });

// Powers that have 53 bits, or 54 and so lie on the middle between two doubles; and those next to them.
TEST(portable_math_ties, of_powers_go_to_even)
{
    reference exact;
    differences found;
    generator g{3};
    const auto check = [&](double x, double y) { found.check(maths::pow(x, y), exact.of(mpfr_pow, x, y), x, y); };
    for (int i = 0; i < random_arguments(); ++i)
    {
        const int power = 2 + g.below(8);
        const double base =
            std::ldexp(1.0 + 2.0 * std::floor(g.unit() * std::exp2(54.0 / power - 1.0)), g.below(9) - 4);
        check(base, power);
        check(nearly(g, base), power);
        check(base, -power);
        check(std::ldexp(base, -1080 / power), power); // subnormal
        const double root = 1 + g.below(8191);
        check(root * root * root * root, 0.25 * (1 + g.below(17)));
        check(1.0 + (g.below(4001) - 2000) * 0x1p-52, 0.25 * (g.below(65) - 32));
        check(full_bits(g, -2, 2) * 0x1p-300, 3.4 + 0.2 * g.unit());
    }
}

// Pythagorean triples whose longest side has 54 bits, and sides next to such.
TEST(portable_math_ties, of_hypot_go_to_even)
{
    reference exact;
    differences found;
    generator g{4};
    int ties = 0;
    for (int i = 0; i < 8 * random_arguments(); ++i)
    {
        const std::uint64_t m = (1U << 26U) + g.next() % (1U << 26U);
        const std::uint64_t n = 1 + g.next() % m;
        const double a = static_cast<double>(2 * m * n);
        const double b = static_cast<double>(m * m - n * n);
        ties += m * m + n * n > 1ULL << 53U && (m + n) % 2 == 1 && m * m - n * n < 1ULL << 53U ? 1 : 0;
        found.check(maths::hypot(a, b), exact.of(mpfr_hypot, a, b), a, b);
        const double c = nearly(g, b);
        found.check(maths::hypot(a, c), exact.of(mpfr_hypot, a, c), a, c);
    }
    EXPECT_GT(ties, random_arguments());
}

TEST(portable_math_specials, give_not_a_number_and_infinities_where_the_standard_does)
{
    EXPECT_TRUE(std::isnan(maths::sin(kInf)));
    EXPECT_TRUE(std::isnan(maths::log(-1.0)));
    EXPECT_TRUE(std::isnan(maths::acos(1.0000000000000002)));
    EXPECT_TRUE(std::isnan(maths::pow(-8.0, 1.0 / 3.0)));
    EXPECT_EQ(maths::pow(kNaN, 0.0), 1.0);
    EXPECT_EQ(maths::pow(1.0, kNaN), 1.0);
    EXPECT_EQ(maths::hypot(kNaN, -kInf), kInf);
    EXPECT_EQ(maths::pow(-0.0, -3.0), -kInf);
    EXPECT_TRUE(std::signbit(maths::atan2(-0.0, 1.0)));
    EXPECT_TRUE(std::signbit(maths::tan(-0.0)));
}
} // namespace
