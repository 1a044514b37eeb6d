#include "preset_json.hpp"

#include "host/error.hpp"
#include "value_text.hpp"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <set>
#include <utility>
#include <vector>

namespace host
{
namespace
{
constexpr std::size_t largest_file = std::size_t{1024} * 1024;
constexpr int deepest_nesting = 32;
// No effect has as many parameters; members in the file's order are found one by one.
constexpr std::size_t most_members = 4096;

// The library's own line, without its tag, cut to what fits a terminal.
std::string syntax_message(const nlohmann::json::exception& failure)
{
    std::string message = failure.what();
    if (const auto tag_end = message.find("] "); tag_end != std::string::npos)
    {
        message.erase(0, tag_end + 2);
    }
    return "no valid JSON: " + one_line(message, 240);
}

void refuse_other_text(std::string_view text)
{
    if (text.size() > largest_file)
    {
        throw error("larger than 1 MiB: this is no preset");
    }
    if (text.find_first_not_of(" \t\r\n") == std::string_view::npos)
    {
        throw error("no valid JSON: the file is empty; a preset is an object such as {\"values\": {...}}");
    }
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF"))
    {
        throw error("no valid JSON: the text is UTF-16; save it as UTF-8");
    }
}

// A later member silently wins over an earlier one in most readers of JSON; here it is refused.
template <class Json>
Json parse_strictly(std::string_view text)
{
    std::vector<std::set<std::string>> members; // of every object that is open
    const auto check = [&members](int depth, typename Json::parse_event_t event, Json& parsed)
    {
        switch (event)
        {
        case Json::parse_event_t::object_start:
            members.emplace_back();
            [[fallthrough]];
        case Json::parse_event_t::array_start:
            if (depth >= deepest_nesting)
            {
                throw error("nested more than " + std::to_string(deepest_nesting) + " deep: a preset needs 5");
            }
            break;
        case Json::parse_event_t::object_end:
            members.pop_back();
            break;
        case Json::parse_event_t::key:
            if (const auto& key = parsed.template get_ref<const std::string&>();
                !members.back().insert(key).second)
            {
                throw error(in_quotes(key) + " is there twice: keep one");
            }
            if (members.back().size() > most_members)
            {
                throw error("more than " + std::to_string(most_members) +
                            " entries in one object: this is no preset");
            }
            break;
        default:
            break;
        }
        return true;
    };
    try
    {
        return Json::parse(text, check);
    }
    catch (const nlohmann::json::exception& failure)
    {
        throw error(syntax_message(failure));
    }
}

template <class Json>
std::string description_in(const Json& root)
{
    const auto found = root.find("description");
    if (found == root.end())
    {
        return {};
    }
    if (!found->is_string())
    {
        throw error("\"description\" is a text, not a JSON " + std::string(found->type_name()));
    }
    auto text = found->template get<std::string>();
    for (const char c : text)
    {
        if (static_cast<unsigned char>(c) < 0x20U)
        {
            throw error("\"description\" is one line of text without control characters");
        }
    }
    return text;
}
} // namespace

std::string preset_text_of(const std::filesystem::path& file)
{
    std::error_code ignored;
    const std::string remedy = "give the path of a preset file";
    if (std::filesystem::is_directory(file, ignored))
    {
        throw error(file.string() + ": is a folder: " + remedy);
    }
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
    {
        throw error(file.string() + ": cannot be read (" + std::strerror(errno) + "): " + remedy);
    }
    // One byte more than is allowed is enough to see that a file is too large.
    std::string text(largest_file + 1, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (stream.bad())
    {
        throw error(file.string() + ": cannot be read to its end");
    }
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

template <class Json>
preset_parts<Json> preset_parts_of(std::string_view text)
{
    refuse_other_text(text);
    Json root = parse_strictly<Json>(text);
    if (!root.is_object())
    {
        throw error("a preset is a JSON object such as {\"values\": {...}}, not a JSON " +
                    std::string(root.type_name()));
    }
    preset_parts<Json> parts{description_in(root), {}};
    if (!root.contains("values"))
    {
        root.erase("description");
        parts.values = std::move(root);
        return parts;
    }
    for (const auto& [member, unused] : root.items())
    {
        if (member != "values" && member != "description")
        {
            throw error("unknown entry " + in_quotes(member) + ": there are \"description\" and \"values\"");
        }
    }
    parts.values = std::move(root["values"]);
    if (!parts.values.is_object())
    {
        throw error("\"values\" is an object of parameters, not a JSON " + std::string(parts.values.type_name()));
    }
    return parts;
}

template preset_parts<nlohmann::json> preset_parts_of(std::string_view text);
template preset_parts<nlohmann::ordered_json> preset_parts_of(std::string_view text);
} // namespace host
