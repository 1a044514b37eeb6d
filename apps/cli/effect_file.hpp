#pragma once

#include <filesystem>

namespace cli
{
// The tool's own effect: beside the tool where both were built, in ../lib/filigrane where they were installed.
// Beside the tool where neither is there, for the message that says so.
std::filesystem::path effect_file();
} // namespace cli
