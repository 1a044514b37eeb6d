#pragma once
// A preset's file as text and as JSON, before names and values in it mean anything.

#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <string_view>

namespace host
{
// The file's text, or a little more than is allowed of it. Throws host::error naming the file.
std::string preset_text_of(const std::filesystem::path& file);

template <class Json>
struct preset_parts
{
    std::string description;
    Json values; // an object
};

// Throws host::error, without a file's name, for text that is too large, no JSON, nested too deep, with a member
// twice, or built otherwise than a preset. Made for nlohmann::json (members by name) and ordered_json (as they
// stand).
template <class Json>
preset_parts<Json> preset_parts_of(std::string_view text);
} // namespace host
