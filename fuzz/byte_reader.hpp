#pragma once
// An input's bytes, read from the front. Past the end every byte is 0, so that a short input describes something
// simple and every input describes something.

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace fuzz
{
class byte_reader
{
public:
    byte_reader(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

    bool more() const { return next_ != end_; }
    std::uint8_t byte() { return more() ? *next_++ : std::uint8_t{0}; }
    std::uint16_t u16() { return static_cast<std::uint16_t>(byte() | byte() << 8); }
    std::uint32_t u32() { return u16() | static_cast<std::uint32_t>(u16()) << 16; }
    std::uint64_t u64() { return u32() | static_cast<std::uint64_t>(u32()) << 32; }

    // 0 to 1, both included.
    double share() { return u16() / 65535.0; }

    // A whole number of lo to hi; both fit an int, and so does their difference.
    int whole(int lo, int hi) { return lo + u16() % (hi - lo + 1); }

    // Near 0, larger, on an edge, or any bits at all. The first byte says which.
    std::int32_t any_i32()
    {
        constexpr std::array<std::int32_t, 16> kEdges = {1,
                                                         2,
                                                         -1,
                                                         100,
                                                         32767,
                                                         32768,
                                                         -32768,
                                                         65535,
                                                         65536,
                                                         46341,
                                                         100000,
                                                         1 << 24,
                                                         1 << 30,
                                                         -(1 << 30),
                                                         std::numeric_limits<std::int32_t>::max(),
                                                         std::numeric_limits<std::int32_t>::min()};
        switch (byte() % 4)
        {
        case 0:
            return static_cast<std::int8_t>(byte());
        case 1:
            return static_cast<std::int16_t>(u16());
        case 2:
            return kEdges[byte() % kEdges.size()];
        default:
            return static_cast<std::int32_t>(u32());
        }
    }

    // The same for a number: quarters, sixteenths, edges, bits.
    double any_f64()
    {
        using limits = std::numeric_limits<double>;
        constexpr std::array<double, 20> kEdges = {1.0,
                                                   -0.0,
                                                   limits::quiet_NaN(),
                                                   limits::infinity(),
                                                   -limits::infinity(),
                                                   limits::max(),
                                                   limits::lowest(),
                                                   limits::min(),
                                                   limits::denorm_min(),
                                                   limits::epsilon(),
                                                   32767.5,
                                                   -32769.0,
                                                   2147483647.0,
                                                   2147483648.0,
                                                   -2147483649.0,
                                                   9223372036854775808.0,
                                                   3.5e38,
                                                   1e30,
                                                   16777217.0,
                                                   0.5};
        switch (byte() % 4)
        {
        case 0:
            return static_cast<std::int8_t>(byte()) * 0.25;
        case 1:
            return static_cast<std::int16_t>(u16()) * 0.0625;
        case 2:
            return kEdges[byte() % kEdges.size()];
        default:
            return std::bit_cast<double>(u64());
        }
    }

    float any_f32()
    {
        using limits = std::numeric_limits<float>;
        constexpr std::array<float, 16> kEdges = {1.0f,
                                                  -0.0f,
                                                  limits::quiet_NaN(),
                                                  limits::infinity(),
                                                  -limits::infinity(),
                                                  limits::max(),
                                                  limits::lowest(),
                                                  limits::min(),
                                                  limits::denorm_min(),
                                                  limits::epsilon(),
                                                  32767.5f,
                                                  -32769.0f,
                                                  2147483648.0f,
                                                  1e30f,
                                                  16777216.0f,
                                                  0.5f};
        switch (byte() % 4)
        {
        case 0:
            return static_cast<std::int8_t>(byte()) * 0.25f;
        case 1:
            return static_cast<std::int16_t>(u16()) * 0.0625f;
        case 2:
            return kEdges[byte() % kEdges.size()];
        default:
            return std::bit_cast<float>(u32());
        }
    }

    // All that is left.
    std::string_view rest()
    {
        const std::string_view text(reinterpret_cast<const char*>(next_), static_cast<std::size_t>(end_ - next_));
        next_ = end_;
        return text;
    }

private:
    const std::uint8_t* next_;
    const std::uint8_t* end_;
};
} // namespace fuzz
