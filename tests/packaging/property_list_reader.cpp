#include "tests/packaging/property_list_reader.hpp"

#include <algorithm>
#include <stdexcept>

namespace packaging_test
{
namespace
{
std::uint8_t byte_at(const bytes& all, std::size_t at)
{
    if (at >= all.size())
        throw std::runtime_error("reads past the end at " + std::to_string(at));
    return all[at];
}

bytes part(const bytes& all, std::size_t at, std::size_t count)
{
    if (at > all.size() || count > all.size() - at)
        throw std::runtime_error("reads past the end at " + std::to_string(at));
    const auto first = all.begin() + static_cast<std::ptrdiff_t>(at);
    return {first, first + static_cast<std::ptrdiff_t>(count)};
}

std::uint32_t big32(const bytes& all, std::size_t at)
{
    return std::uint32_t{byte_at(all, at)} << 24 | std::uint32_t{byte_at(all, at + 1)} << 16 |
           std::uint32_t{byte_at(all, at + 2)} << 8 | byte_at(all, at + 3);
}

std::uint32_t little32(const bytes& all, std::size_t at)
{
    return byte_at(all, at) | std::uint32_t{byte_at(all, at + 1)} << 8 |
           std::uint32_t{byte_at(all, at + 2)} << 16 | std::uint32_t{byte_at(all, at + 3)} << 24;
}

std::uint16_t big16(const bytes& all, std::size_t at)
{
    return static_cast<std::uint16_t>(byte_at(all, at) << 8 | byte_at(all, at + 1));
}

std::string characters(const bytes& all, std::size_t at, bool reversed)
{
    const bytes four = part(all, at, 4);
    std::string text(four.begin(), four.end());
    if (reversed)
        std::reverse(text.begin(), text.end());
    return text;
}

property_list read_list(const bytes& all, std::size_t at, bool little)
{
    const auto number = [&](std::size_t where) { return little ? little32(all, where) : big32(all, where); };
    property_list list;
    list.version = number(at);
    const std::uint32_t count = number(at + 4);
    at += 8;
    for (std::uint32_t i = 0; i < count; ++i)
    {
        property one;
        one.vendor = characters(all, at, little);
        one.key = characters(all, at + 4, little);
        one.id = number(at + 8);
        one.length = number(at + 12);
        one.data = part(all, at + 16, one.length);
        one.fill = part(all, at + 16 + one.length, (4 - one.length % 4) % 4);
        at += 16 + one.data.size() + one.fill.size();
        list.properties.push_back(one);
    }
    list.left_over = all.size() - at;
    return list;
}

// The references of one type, counted from the type list.
void read_references(const bytes& file, std::size_t references, std::size_t count, std::size_t data_offset,
                     const std::string& type, std::vector<resource>& found)
{
    for (std::size_t i = 0; i < count; ++i)
    {
        const std::size_t at = references + 12 * i;
        resource one;
        one.type = type;
        one.id = static_cast<std::int16_t>(big16(file, at));
        one.name_offset = static_cast<std::int16_t>(big16(file, at + 2));
        one.attributes = byte_at(file, at + 4);
        const std::size_t data = data_offset + (big32(file, at + 4) & 0xFFFFFF);
        one.data = part(file, data + 4, big32(file, data));
        found.push_back(one);
    }
}
} // namespace

property_list read_windows(const bytes& resource)
{
    if (byte_at(resource, 0) != 1 || byte_at(resource, 1) != 0)
        throw std::runtime_error("does not begin with 01 00");
    return read_list(resource, 2, true);
}

property_list read_macos(const bytes& resource)
{
    return read_list(resource, 0, false);
}

std::vector<resource> read_resource_file(const bytes& file)
{
    const std::size_t data = big32(file, 0);
    const std::size_t map = big32(file, 4);
    const std::size_t data_length = big32(file, 8);
    const std::size_t map_length = big32(file, 12);
    if (data < 256 || data + data_length > map || map + map_length != file.size())
        throw std::runtime_error("its parts overlap or do not fill it");

    const std::size_t types = map + big16(file, map + 24);
    const std::size_t names = map + big16(file, map + 26);
    std::vector<resource> found;
    const std::size_t type_count = big16(file, types) + std::size_t{1};
    for (std::size_t i = 0; i < type_count; ++i)
    {
        const std::size_t at = types + 2 + 8 * i;
        const std::size_t count = big16(file, at + 4) + std::size_t{1};
        const std::size_t references = types + big16(file, at + 6);
        if (references + 12 * count > names)
            throw std::runtime_error("its references reach into its names");
        read_references(file, references, count, data, characters(file, at, false), found);
    }
    return found;
}
} // namespace packaging_test
