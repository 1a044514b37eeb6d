#include "adapters/openfx/library.hpp"

#include <algorithm>
#include <cctype>
#include <map>
#include <mutex>
#include <system_error>

namespace openfx
{
namespace
{
std::string look_label(std::string name)
{
    std::replace(name.begin(), name.end(), '-', ' ');
    std::string label = plain_label(name);
    if (!label.empty())
        label[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(label[0])));
    return label;
}

// Of looks with the same name the one in the first folder.
std::vector<look> looks_in(const std::vector<std::filesystem::path>& folders)
{
    std::map<std::string, std::filesystem::path> by_name;
    for (const std::filesystem::path& folder : folders)
    {
        std::error_code failed;
        for (const auto& entry : std::filesystem::directory_iterator(folder, failed))
            if (std::error_code ignored; entry.path().extension() == ".json" && entry.is_regular_file(ignored))
                by_name.try_emplace(entry.path().stem().string(), entry.path());
    }
    std::vector<look> looks;
    looks.reserve(by_name.size());
    for (const auto& [name, file] : by_name)
        looks.push_back({look_label(name), file});
    return looks;
}
} // namespace

library::library(std::shared_ptr<const adapter::loaded_effect> loaded)
    : effect(std::move(loaded)), params(effect->plugin.params()), looks(looks_in(effect->look_folders)),
      description(effect->plugin.about_utf8())
{
}

const library& the_library()
{
    static std::mutex guard;
    static std::unique_ptr<const library> made;
    const std::lock_guard hold(guard);
    if (!made)
        made = std::make_unique<const library>(adapter::borrow_effect());
    return *made;
}
} // namespace openfx
