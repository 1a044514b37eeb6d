#pragma once
// Conversions of parameter values to the integers that an effect reads.

#include <cmath>
#include <cstdint>
#include <limits>

namespace host
{
// The nearest whole number, halves upwards; what does not fit becomes the nearest limit, not-a-number 0.
inline std::int32_t nearest_int(double value)
{
    using limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(value))
        return 0;
    if (value >= limits::max())
        return limits::max();
    if (value <= limits::min())
        return limits::min();
    const double below = std::floor(value);
    return static_cast<std::int32_t>(value - below >= 0.5 ? below + 1.0 : below);
}

// The nearest 16.16 number (multiplying by a power of two loses nothing).
inline std::int32_t nearest_fixed(double value)
{
    return nearest_int(value * 65536.0);
}
} // namespace host
