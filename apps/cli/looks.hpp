#pragma once
// The looks (presets) that ship with the tool: where they are, and finding one by name.

#include <filesystem>
#include <string>
#include <vector>

namespace cli
{
// Folders that are there, in the order in which they are searched: FILIGRANE_PRESETS from the environment,
// `presets` beside the binary, `../share/filigrane/presets` of an installed one, the source tree of a built one.
std::vector<std::filesystem::path> look_folders();
// All looks, by name; of equal names the first folder's.
std::vector<std::filesystem::path> all_looks();
// A look's file by its name, or a file that is named itself. Throws host::error that lists the names.
std::filesystem::path find_look(const std::string& name_or_file);
} // namespace cli
