#include "maths_hashes.hpp"

#include "hash.hpp"
#include "host/src/portable_math.hpp"
#include "tests/support/bit_generator.hpp"

#include <bit>
#include <cmath>

namespace pictures
{
namespace
{
// Of all sizes, or such as angles and lengths have.
double argument(bit_generator& g)
{
    if (g.below(4) == 0)
        return std::bit_cast<double>(g.next());
    const double sign = g.below(2) == 0 ? 1.0 : -1.0;
    const double size = std::bit_cast<double>(static_cast<std::uint64_t>(1023 - 8 + g.below(16)) << 52U);
    return sign * size * (1.0 + static_cast<double>(g.next() >> 12U) * 0x1p-52);
}

template <class Function>
std::uint64_t hash_of(Function function)
{
    constexpr int kArguments = 4000;
    byte_hash hash;
    bit_generator g{7};
    for (int i = 0; i < kArguments; ++i)
    {
        const double x = argument(g);
        const double y = argument(g);
        const double result = function(x, y);
        hash.add(std::isnan(result) ? ~std::uint64_t{0} : std::bit_cast<std::uint64_t>(result));
    }
    return hash.value();
}

// Of one argument: also of one that asin and its like take.
std::uint64_t hash_of(double (*function)(double))
{
    return hash_of([function](double x, double y)
                   { return function(std::fabs(y) < 1.0 ? std::fmod(x, 1.0) : x); });
}

std::uint64_t hash_of(double (*function)(double, double))
{
    return hash_of([function](double x, double y) { return function(x, y); });
}
} // namespace

std::vector<std::pair<std::string, std::uint64_t>> maths_hashes()
{
    namespace maths = host::maths;
    return {{"sin", hash_of(maths::sin)},     {"cos", hash_of(maths::cos)},   {"tan", hash_of(maths::tan)},
            {"asin", hash_of(maths::asin)},   {"acos", hash_of(maths::acos)}, {"atan", hash_of(maths::atan)},
            {"atan2", hash_of(maths::atan2)}, {"exp", hash_of(maths::exp)},   {"log", hash_of(maths::log)},
            {"log10", hash_of(maths::log10)}, {"pow", hash_of(maths::pow)},   {"hypot", hash_of(maths::hypot)}};
}
} // namespace pictures
