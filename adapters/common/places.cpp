#include "adapters/common/places.hpp"

#include "adapters/common/own_file.hpp"

#include "host/error.hpp"

#include <cstdlib>
#include <system_error>

namespace adapter
{
namespace
{
#ifdef _WIN32
constexpr const char* plugin_name = "Filigrane.aex";
#else
constexpr const char* plugin_name = "Filigrane.so";
#endif

std::filesystem::path from_environment(const char* variable)
{
    const char* value = std::getenv(variable);
    return value ? value : "";
}

bool is_file(const std::filesystem::path& path)
{
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored);
}

bool is_folder(const std::filesystem::path& path)
{
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}
} // namespace

std::filesystem::path plugin_file()
{
    if (std::filesystem::path named = from_environment("FILIGRANE_PLUGIN"); !named.empty())
    {
        if (!is_file(named))
            throw host::error("FILIGRANE_PLUGIN names " + named.string() + ", and there is no such file");
        return named;
    }
    const std::filesystem::path here = own_file().parent_path();
    const std::filesystem::path above = here.parent_path();
    std::string searched;
    for (const std::filesystem::path& folder :
         {here, above, above / "Resources", above / "filigrane", std::filesystem::path("/usr/local/lib/filigrane"),
          std::filesystem::path("/usr/lib/filigrane")})
    {
        if (is_file(folder / plugin_name))
            return folder / plugin_name;
        searched += (searched.empty() ? "" : ", ") + folder.string();
    }
    throw host::error(std::string(plugin_name) + " is in none of " + searched +
                      "; put it there, or name the file in FILIGRANE_PLUGIN");
}

std::vector<std::filesystem::path> look_folders(const std::filesystem::path& plugin)
{
    const std::filesystem::path beside = plugin.parent_path();
    const std::filesystem::path here = own_file().parent_path();
    const std::filesystem::path shared = std::filesystem::path("share") / "filigrane" / "presets";
    std::vector<std::filesystem::path> folders = {from_environment("FILIGRANE_PRESETS"),
                                                  beside / "presets",
                                                  here / "presets",
                                                  here.parent_path() / "Resources" / "presets",
                                                  beside.parent_path().parent_path() / shared,
                                                  std::filesystem::path("/usr/local") / shared,
                                                  std::filesystem::path("/usr") / shared,
                                                  FILIGRANE_SOURCE_PRESETS};
    std::erase_if(folders,
                  [](const std::filesystem::path& folder) { return folder.empty() || !is_folder(folder); });
    return folders;
}
} // namespace adapter
