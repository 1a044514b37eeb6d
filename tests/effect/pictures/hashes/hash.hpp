#pragma once
// A hash of bytes that is easy to write anywhere (FNV-1a, 64 bits).

#include <cstddef>
#include <cstdint>

namespace pictures
{
class byte_hash
{
public:
    void add(std::uint8_t byte)
    {
        value_ ^= byte;
        value_ *= 0x100000001B3U;
    }
    // Least significant byte first, on every machine.
    void add(std::uint64_t number)
    {
        for (int i = 0; i < 8; ++i)
            add(static_cast<std::uint8_t>(number >> (8 * i)));
    }
    void add(const std::uint8_t* bytes, std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i)
            add(bytes[i]);
    }
    std::uint64_t value() const { return value_; }

private:
    std::uint64_t value_ = 0xCBF29CE484222325U;
};
} // namespace pictures
