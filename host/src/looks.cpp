#include "host/looks.hpp"

#include "host/error.hpp"
#include "host/near_names.hpp"

#include <map>
#include <system_error>

namespace host
{
std::vector<std::filesystem::path> all_looks(const std::vector<std::filesystem::path>& folders)
{
    std::map<std::string, std::filesystem::path> by_name;
    for (const std::filesystem::path& folder : folders)
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

std::filesystem::path find_look(const std::string& name_or_file, const std::vector<std::filesystem::path>& folders)
{
    std::filesystem::path file = name_or_file;
    if (file.has_parent_path() || file.extension() == ".json")
        return file;
    std::string names;
    std::vector<known_name> known;
    for (const std::filesystem::path& look : all_looks(folders))
    {
        const std::string name = look.stem().string();
        if (name == name_or_file)
            return look;
        names += (names.empty() ? "" : ", ") + name;
        known.push_back({name, {name}});
    }
    const std::string wrong = "no preset is called \"" + name_or_file + "\": ";
    if (const std::string hint = did_you_mean(name_or_file, known); !hint.empty())
        throw error(wrong + hint + "'filigrane presets' lists all");
    throw error(wrong + (names.empty() ? "none is installed" : "there are " + names) +
                ", or give the path of a .json file");
}
} // namespace host
