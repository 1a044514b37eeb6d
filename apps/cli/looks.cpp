#include "looks.hpp"

#include "host/error.hpp"
#include "host/near_names.hpp"
#include "host/plugin.hpp"

#include <algorithm>
#include <cstdlib>
#include <map>
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
    std::map<std::string, std::filesystem::path> by_name;
    for (const std::filesystem::path& folder : look_folders())
    {
        std::error_code failed;
        for (const auto& entry : std::filesystem::directory_iterator(folder, failed))
            if (std::error_code ignored; entry.path().extension() == ".json" && entry.is_regular_file(ignored))
                by_name.try_emplace(entry.path().stem().string(), entry.path());
    }
    std::vector<std::filesystem::path> files;
    files.reserve(by_name.size());
    for (const auto& [name, file] : by_name)
        files.push_back(file);
    return files;
}

std::filesystem::path find_look(const std::string& name_or_file)
{
    std::filesystem::path file = name_or_file;
    if (file.has_parent_path() || file.extension() == ".json")
        return file;
    std::string names;
    std::vector<host::known_name> known;
    for (const std::filesystem::path& look : all_looks())
    {
        const std::string name = look.stem().string();
        if (name == name_or_file)
            return look;
        names += (names.empty() ? "" : ", ") + name;
        known.push_back({name, {name}});
    }
    const std::string wrong = "no preset is called \"" + name_or_file + "\": ";
    if (const std::string hint = host::did_you_mean(name_or_file, known); !hint.empty())
        throw host::error(wrong + hint + "'filigrane presets' lists all");
    throw host::error(wrong + (names.empty() ? "none is installed" : "there are " + names) +
                      ", or give the path of a .json file");
}
} // namespace cli
