#include "effect_file.hpp"

#include "host/plugin.hpp"

#include <system_error>

namespace cli
{
std::filesystem::path effect_file()
{
    const std::filesystem::path beside = host::plugin_beside_binary();
    const std::filesystem::path installed =
        beside.parent_path().parent_path() / "lib" / "filigrane" / beside.filename();
    std::error_code ignored;
    const bool is_installed =
        !std::filesystem::exists(beside, ignored) && std::filesystem::exists(installed, ignored);
    return is_installed ? installed : beside;
}
} // namespace cli
