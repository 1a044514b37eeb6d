#include "stated_size.hpp"

#include <bit>
#include <sys/types.h>
#include <unistd.h>

namespace media
{
namespace
{
// An element begins with its number, four bytes for these two, and its size.
constexpr std::uint32_t header_id = 0x1A45DFA3;
constexpr std::uint32_t segment_id = 0x18538067;
constexpr std::uint64_t id_bytes = 4;
// No file is that long; below it, places fit every type they are put in.
constexpr std::uint64_t most_bytes = std::uint64_t{1} << 60;

std::optional<std::uint8_t> byte_at(int descriptor, std::uint64_t place)
{
    std::uint8_t byte = 0;
    if (::pread(descriptor, &byte, 1, static_cast<off_t>(place)) != 1)
        return std::nullopt;
    return byte;
}

bool has_id(int descriptor, std::uint64_t place, std::uint32_t id)
{
    for (unsigned i = 0; i < id_bytes; ++i)
        if (byte_at(descriptor, place + i) != static_cast<std::uint8_t>(id >> (24 - 8 * i)))
            return false;
    return true;
}

// Where the element that begins at `place` ends. Its size is a number of 1 to 8 bytes; the zero bits before the
// first one of them tell how many follow. All ones after it: not known.
std::optional<std::uint64_t> end_of_element(int descriptor, std::uint64_t place)
{
    const std::optional<std::uint8_t> first = byte_at(descriptor, place + id_bytes);
    if (!first || *first == 0)
        return std::nullopt;
    const unsigned following = static_cast<unsigned>(std::countl_zero(*first));
    std::uint64_t size = *first & (0x7Fu >> following);
    for (unsigned i = 1; i <= following; ++i)
    {
        const std::optional<std::uint8_t> next = byte_at(descriptor, place + id_bytes + i);
        if (!next)
            return std::nullopt;
        size = size << 8 | *next;
    }
    const std::uint64_t unknown = (std::uint64_t{1} << 7 * (following + 1)) - 1;
    if (size == unknown || size >= most_bytes)
        return std::nullopt;
    return place + id_bytes + 1 + following + size;
}
} // namespace

std::optional<std::uint64_t> stated_size(int descriptor)
{
    if (!has_id(descriptor, 0, header_id))
        return std::nullopt;
    const std::optional<std::uint64_t> segment = end_of_element(descriptor, 0);
    if (!segment || *segment >= most_bytes || !has_id(descriptor, *segment, segment_id))
        return std::nullopt;
    return end_of_element(descriptor, *segment);
}
} // namespace media
