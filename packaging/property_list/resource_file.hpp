#pragma once
// A classic macOS resource fork with one resource, as it stands in the data of a .rsrc file. Big-endian:
//
//     0    offset of the data, offset of the map, length of the data, length of the map (32 bits each)
//     16   240 bytes for the system and the application, zero
//     256  data: length (32 bits), bytes
//          map:  16 bytes for a copy of the header, 4 and 2 for handles of the system, attributes (16 bits),
//                offsets in the map of the type list and the name list (16 bits each);
//                type list: number of types less one, then type, number of its resources less one, offset of
//                their references from the type list;
//                references: id, offset of the name or -1 (16 bits each), attributes (8 bits), offset of the
//                data in the data (24 bits), 4 bytes for the system

#include "packaging/property_list/byte_writer.hpp"

namespace packaging
{
// `type` has four characters.
byte_string resource_file(std::string_view type, std::int16_t id, const byte_string& resource);
} // namespace packaging
