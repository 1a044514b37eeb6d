#pragma once
// Conversions and integer arithmetic with a defined answer for every input. No other place in the effect turns a
// float into an integer or lets a product run over.

#include <cstdint>
#include <limits>
#include <optional>

// Toward zero; what does not fit 32 bits, and NaN, is the 32-bit minimum. (A float widens to double exactly.)
constexpr std::int32_t trunc_i32(double v) noexcept
{
    if (v > -2147483649.0 && v < 2147483648.0)
        return static_cast<std::int32_t>(v);
    return std::numeric_limits<std::int32_t>::min();
}

// trunc_i32 of a float without a branch, so that a loop of them can be done in lanes.
constexpr std::int32_t trunc_i32_select(float v) noexcept
{
    constexpr float kEnd = 2147483648.0f;
    const float below = v < kEnd ? v : -kEnd; // of what is no number, too
    return static_cast<std::int32_t>(below >= -kEnd ? below : -kEnd);
}

// The same of a value that is known to fit: less than 2^31 either way.
constexpr std::int32_t trunc_i32_fitting(float v) noexcept
{
    return static_cast<std::int32_t>(v);
}

// The low 16 bits of trunc_i32, signed: 0 for what does not fit 32 bits.
constexpr std::int16_t trunc_i16(double v) noexcept
{
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(static_cast<std::uint32_t>(trunc_i32(v))));
}

// The low 8 bits of trunc_i32.
constexpr std::uint8_t trunc_u8(double v) noexcept
{
    return static_cast<std::uint8_t>(static_cast<std::uint32_t>(trunc_i32(v)));
}

// Toward zero; what does not fit 64 bits, and NaN, is the 64-bit minimum.
constexpr std::int64_t trunc_i64(double v) noexcept
{
    if (v >= -9223372036854775808.0 && v < 9223372036854775808.0)
        return static_cast<std::int64_t>(v);
    return std::numeric_limits<std::int64_t>::min();
}

// Toward zero; nothing for what is negative, does not fit 64 bits, or is no number.
constexpr std::optional<std::uint64_t> trunc_u64(double v) noexcept
{
    if (v >= 0.0 && v < 18446744073709551616.0)
        return static_cast<std::uint64_t>(v);
    return std::nullopt;
}

// 32-bit sums, differences, products and left shifts that wrap around.
constexpr std::int32_t wrap_add(std::int32_t a, std::int32_t b) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

constexpr std::int32_t wrap_sub(std::int32_t a, std::int32_t b) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

constexpr std::int32_t wrap_mul(std::int32_t a, std::int32_t b) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

// Whole pixels to 16.16.
constexpr std::int32_t to_fixed(std::int32_t pixels) noexcept
{
    return wrap_mul(pixels, 65536);
}

// Quotient toward zero that never traps: 0 for a divisor of 0, and the one quotient that does not fit wraps
// around.
constexpr std::int32_t div_i32(std::int32_t a, std::int32_t b) noexcept
{
    if (b == 0)
        return 0;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::int64_t>(a) / b));
}

// The low 16 bits of an int, signed.
constexpr std::int16_t low_i16(std::int32_t v) noexcept
{
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(static_cast<std::uint32_t>(v)));
}
