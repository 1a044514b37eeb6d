#include "looks.hpp"

#include "host/looks.hpp"
#include "host/plugin.hpp"

#include <cstdlib>
#include <system_error>

namespace cli
{
std::vector<std::filesystem::path> look_folders()
{
    const std::filesystem::path binary_folder = host::plugin_beside_binary().parent_path();
    std::vector<std::filesystem::path> candidates;
    if (const char* own = std::getenv("FILIGRANE_PRESETS"); own != nullptr && *own != '\0')
        candidates.emplace_back(own);
    candidates.push_back(binary_folder / "presets");
    candidates.push_back(binary_folder.parent_path() / "share" / "filigrane" / "presets");
    candidates.emplace_back(FILIGRANE_SOURCE_PRESETS);
    std::erase_if(candidates,
                  [](const std::filesystem::path& folder)
                  {
                      std::error_code ignored;
                      return !std::filesystem::is_directory(folder, ignored);
                  });
    return candidates;
}

std::vector<std::filesystem::path> all_looks()
{
    return host::all_looks(look_folders());
}

std::filesystem::path find_look(const std::string& name_or_file)
{
    return host::find_look(name_or_file, look_folders());
}
} // namespace cli
