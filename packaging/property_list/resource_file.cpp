#include "packaging/property_list/resource_file.hpp"

namespace packaging
{
namespace
{
constexpr std::uint32_t data_offset = 256;
constexpr std::uint16_t map_head = 28;  // bytes before the type list
constexpr std::uint16_t type_list = 10; // bytes of one with one type
constexpr std::uint16_t reference = 12; // bytes
constexpr std::uint32_t map_size = map_head + type_list + reference;

void write_map(byte_writer& file, std::string_view type, std::int16_t id)
{
    file.zeros(16 + 4 + 2);
    file.u16(0);
    file.u16(map_head);
    file.u16(map_size); // no names

    file.u16(0);
    file.code(type);
    file.u16(0);
    file.u16(type_list);

    file.u16(static_cast<std::uint16_t>(id));
    file.u16(0xFFFF);
    file.u32(0); // attributes, and the first of the data
    file.u32(0);
}
} // namespace

byte_string resource_file(std::string_view type, std::int16_t id, const byte_string& resource)
{
    const auto data_size = static_cast<std::uint32_t>(4 + resource.size());
    byte_writer file(byte_order::big);
    file.u32(data_offset);
    file.u32(data_offset + data_size);
    file.u32(data_size);
    file.u32(map_size);
    file.zeros(data_offset - file.size());

    file.u32(static_cast<std::uint32_t>(resource.size()));
    file.append(resource);
    write_map(file, type, id);
    return file.bytes();
}
} // namespace packaging
