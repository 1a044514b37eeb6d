#include "presets_command.hpp"

#include "looks.hpp"

#include "host/error.hpp"
#include "host/preset.hpp"

#include <algorithm>
#include <iostream>

namespace cli
{
void list_presets()
{
    const std::vector<std::filesystem::path> looks = all_looks();
    if (looks.empty())
        throw host::error(
            "no presets are installed; put .json files into a folder and name it in FILIGRANE_PRESETS");
    std::size_t width = 0;
    for (const std::filesystem::path& look : looks)
        width = std::max(width, look.stem().string().size());
    for (const std::filesystem::path& look : looks)
    {
        const std::string name = look.stem().string();
        std::string description;
        try
        {
            description = host::outline_preset(look).description;
        }
        catch (const host::error& broken)
        {
            // One broken file hides none of the others.
            std::cerr << "filigrane: note: " << broken.what() << '\n';
            continue;
        }
        std::cout << name;
        if (!description.empty())
            std::cout << std::string(width - name.size() + 2, ' ') << description;
        std::cout << '\n';
    }
}

void show_preset(const std::string& name_or_file)
{
    const std::filesystem::path file = find_look(name_or_file);
    const host::preset_outline look = host::outline_preset(file);
    std::cout << file.stem().string() << " (" << file.string() << ")\n";
    if (!look.description.empty())
        std::cout << look.description << '\n';
    for (const host::preset_outline::entry& value : look.values)
        std::cout << "  " << value.name << " = " << value.value << '\n';
}
} // namespace cli
