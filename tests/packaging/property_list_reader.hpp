#pragma once
// A second, plain reading of property lists and resource files, so that what is written is not checked by what
// wrote it. Every reader throws std::runtime_error where the bytes do not make sense.

#include <cstdint>
#include <string>
#include <vector>

namespace packaging_test
{
using bytes = std::vector<std::uint8_t>;

struct property
{
    std::string vendor;
    std::string key;
    std::uint32_t id = 0;
    std::uint32_t length = 0; // as it says
    bytes data;               // `length` bytes
    bytes fill;               // what follows up to a multiple of four
};

struct property_list
{
    std::uint32_t version = 0;
    std::vector<property> properties; // as many as the count says
    std::size_t left_over = 0;        // bytes behind the last one
};

// Codes come out the right way round.
property_list read_windows(const bytes& resource);
property_list read_macos(const bytes& resource);

struct resource
{
    std::string type;
    std::int16_t id = 0;
    std::int16_t name_offset = 0;
    std::uint8_t attributes = 0;
    bytes data;
};

// Every resource of a .rsrc file. Also throws where parts overlap or reach past the end of the file.
std::vector<resource> read_resource_file(const bytes& file);
} // namespace packaging_test
