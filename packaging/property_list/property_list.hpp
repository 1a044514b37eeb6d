#pragma once
// The plug-in property list: what a host reads from an effect's file before it loads it.
//
//     version 0 (32 bits), number of properties (32 bits), then for each property
//     vendor 8BIM, key (four characters each), id 0, length in bytes (32 bits each), data
//
// macOS: big-endian; the length leaves out the zero bytes that fill the data up to a multiple of four.
// Windows: little-endian, codes too (so their characters stand reversed), two bytes 01 00 before everything;
// strings are filled up inside the data, and the length counts that.

#include "packaging/property_list/byte_writer.hpp"
#include "packaging/property_list/description.hpp"

namespace packaging
{
// The resource's type and number, on both platforms.
inline constexpr std::string_view resource_type = "PiPL";
inline constexpr std::int16_t resource_id = 16000;

// Throws std::length_error where a name is longer than its length byte can say.
byte_string windows_property_list(const effect_description& effect);
byte_string macos_property_list(const effect_description& effect);
} // namespace packaging
