#pragma once
// Frames of all sorts, the same ones on every system: what is random about them comes from an integer generator.

#include "host/render.hpp"

#include <filesystem>
#include <string>
#include <vector>

namespace pictures
{
struct hash_case
{
    std::string name;
    host::composition comp;
    host::param_tracks values;
    std::int32_t frame = 0;
    int row_padding = 0; // bytes
};

// Every golden case, every look of the folder at two of its frames, and random values of every parameter.
std::vector<hash_case> hash_cases(const host::plugin& effect, const std::filesystem::path& looks);
} // namespace pictures
