#pragma once
// Numbers and codes as bytes, in either byte order.

#include <cstdint>
#include <string_view>
#include <vector>

namespace packaging
{
using byte_string = std::vector<std::uint8_t>;

enum class byte_order
{
    little,
    big
};

class byte_writer
{
public:
    explicit byte_writer(byte_order order) : order_(order) {}

    void u8(std::uint8_t value) { bytes_.push_back(value); }
    void u16(std::uint16_t value) { number(value, 2); }
    void u32(std::uint32_t value) { number(value, 4); }
    // A four-character code is a 32-bit number whose highest byte is the first character.
    void code(std::string_view four)
    {
        std::uint32_t value = 0;
        for (const char character : four)
            value = value << 8 | static_cast<std::uint8_t>(character);
        u32(value);
    }
    void text(std::string_view characters) { bytes_.insert(bytes_.end(), characters.begin(), characters.end()); }
    void zeros(std::size_t count) { bytes_.insert(bytes_.end(), count, 0); }
    void append(const byte_string& more) { bytes_.insert(bytes_.end(), more.begin(), more.end()); }
    // Zero bytes up to the next multiple of four.
    void pad() { zeros((4 - bytes_.size() % 4) % 4); }

    std::size_t size() const { return bytes_.size(); }
    const byte_string& bytes() const { return bytes_; }

private:
    void number(std::uint32_t value, unsigned count)
    {
        for (unsigned i = 0; i < count; ++i)
        {
            const unsigned place = order_ == byte_order::little ? i : count - 1 - i;
            bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * place)));
        }
    }

    byte_order order_;
    byte_string bytes_;
};
} // namespace packaging
