#include "presets_command.hpp"

#include "host/error.hpp"
#include "looks.hpp"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>

namespace cli
{
namespace
{
using json = nlohmann::ordered_json;

// Only for showing: whether names and values are right is for loading to say.
json read_look(const std::filesystem::path& file)
{
    std::ifstream in(file);
    const json look = json::parse(in, nullptr, false);
    if (!look.is_object())
        throw host::error(file.string() + (in.is_open() ? ": is no preset (no JSON object)" : ": cannot be read"));
    return look;
}

std::string description_of(const json& look)
{
    const auto found = look.find("description");
    return found != look.end() && found->is_string() ? found->get<std::string>() : std::string();
}

std::string value_text(const json& value)
{
    return value.is_string() ? value.get<std::string>() : value.dump();
}
} // namespace

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
            description = description_of(read_look(look));
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
    const json look = read_look(file);
    const bool wrapped = look.contains("values") && look["values"].is_object();
    std::cout << file.stem().string() << " (" << file.string() << ")\n";
    if (const std::string description = description_of(look); !description.empty())
        std::cout << description << '\n';
    for (const auto& [name, value] : (wrapped ? look["values"] : look).items())
        if (wrapped || name != "description")
            std::cout << "  " << name << " = " << value_text(value) << '\n';
}
} // namespace cli
