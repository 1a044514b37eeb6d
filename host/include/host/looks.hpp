#pragma once
// Looks (presets) by name, in folders. Which folders is for the program to say.

#include <filesystem>
#include <string>
#include <vector>

namespace host
{
// All looks, by name; of equal names the first folder's. Folders that cannot be read have none.
std::vector<std::filesystem::path> all_looks(const std::vector<std::filesystem::path>& folders);
// A look's file by its name, or a file that is named itself: with a folder or `.json`. Throws host::error that
// lists the names, or the nearest.
std::filesystem::path find_look(const std::string& name_or_file,
                                const std::vector<std::filesystem::path>& folders);
} // namespace host
