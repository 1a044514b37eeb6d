#pragma once
// Where the effect's own file and the looks lie, as seen from an adapter. Nothing is searched for in the working
// folder.

#include <filesystem>
#include <string>
#include <vector>

namespace adapter
{
// The effect's plug-in file, `Filigrane.so` (`Filigrane.aex` on Windows). The first that is there of
//   1. the file that FILIGRANE_PLUGIN names,
//   2. in the adapter's own folder, the folder above, and `../Resources` (a bundle's),
//   3. `../filigrane` of the adapter's folder: lib/filigrane beside lib/frei0r-1,
//   4. /usr/local/lib/filigrane and /usr/lib/filigrane.
// Throws host::error that lists these where there is none, or where FILIGRANE_PLUGIN names what is not there.
std::filesystem::path plugin_file();

// The folders of looks that are there, in the order in which they are searched: FILIGRANE_PRESETS, `presets` in
// the plug-in file's folder and in the adapter's, `../Resources/presets` of a bundle, share/filigrane/presets two
// folders above the plug-in file, that of /usr/local and of /usr, and the source tree that this was built from.
std::vector<std::filesystem::path> look_folders(const std::filesystem::path& plugin);
} // namespace adapter
