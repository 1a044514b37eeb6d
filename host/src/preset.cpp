#include "host/preset.hpp"

#include "host/error.hpp"
#include "host/param_text.hpp"
#include "param_checks.hpp"
#include "value_text.hpp"

#include <nlohmann/json.hpp>

#include <cmath>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace host
{
namespace
{
using nlohmann::json;

constexpr std::size_t largest_file = std::size_t{1024} * 1024;
constexpr int deepest_nesting = 32;
// Far beyond any clip (68 years), near enough that arithmetic on times stays exact to well below a frame.
constexpr double latest_second = 2147483647.0;
// Keys nearer than this are the same time written in two ways ("2s" and frame 50).
constexpr double same_time = 1e-9;

// The library's own line, without its tag, cut to what fits a terminal.
std::string syntax_message(const json::exception& failure)
{
    std::string message = failure.what();
    if (const auto tag_end = message.find("] "); tag_end != std::string::npos)
    {
        message.erase(0, tag_end + 2);
    }
    return "no valid JSON: " + one_line(message, 240);
}

// A later member silently wins over an earlier one in most readers of JSON; here it is refused.
json parse_strictly(std::string_view text)
{
    std::vector<std::set<std::string>> members; // of every object that is open
    const auto check = [&members](int depth, json::parse_event_t event, json& parsed)
    {
        switch (event)
        {
        case json::parse_event_t::object_start:
            members.emplace_back();
            [[fallthrough]];
        case json::parse_event_t::array_start:
            if (depth >= deepest_nesting)
            {
                throw error("nested more than " + std::to_string(deepest_nesting) + " deep: a preset needs 5");
            }
            break;
        case json::parse_event_t::object_end:
            members.pop_back();
            break;
        case json::parse_event_t::key:
            if (const auto& key = parsed.get_ref<const std::string&>(); !members.back().insert(key).second)
            {
                throw error(in_quotes(key) + " is there twice: keep one");
            }
            break;
        default:
            break;
        }
        return true;
    };
    try
    {
        return json::parse(text, check);
    }
    catch (const json::exception& failure)
    {
        throw error(syntax_message(failure));
    }
}

param_value read_value(const param_info& info, const json& given)
{
    if (given.is_string())
    {
        return parse_value(info, given.get_ref<const std::string&>());
    }
    if (given.is_boolean() && info.kind == param_kind::checkbox)
    {
        return value_of_number(info, given.get<bool>() ? 1.0 : 0.0, given.dump());
    }
    if (given.is_number())
    {
        return value_of_number(info, given.get<double>(), given.dump());
    }
    refuse_value(info, given.is_boolean() ? given.dump() : std::string("a JSON ") + given.type_name());
}

double read_seconds(const json& given, const composition& frames)
{
    std::optional<double> seconds;
    if (given.is_number())
    {
        seconds = given.get<double>() * frames.time_step / frames.time_scale;
    }
    else if (given.is_string())
    {
        const std::string_view text = trimmed(given.get_ref<const std::string&>());
        if (text.ends_with('s'))
        {
            seconds = parse_number(trimmed(text.substr(0, text.size() - 1)));
        }
    }
    if (!seconds)
    {
        const std::string shown = given.is_string() ? in_quotes(given.get_ref<const std::string&>())
                                                    : std::string("a JSON ") + given.type_name();
        throw error("a time is a frame number such as 50, or seconds such as \"2s\", not " + shown);
    }
    // Written so that not-a-number (a frame number times a time step that is none) is refused as well.
    if (!(std::fabs(*seconds) <= latest_second))
    {
        throw error("the time is more than " + number_text(latest_second) + " seconds from 0");
    }
    return *seconds;
}

keyframe read_key(const param_info& info, const json& given, const composition& frames)
{
    if (!given.is_array() || given.size() != 2)
    {
        throw error("a key is written [time, value]");
    }
    return {read_seconds(given[0], frames), read_value(info, given[1])};
}

interpolation read_interpolation(const json& given)
{
    const std::map<std::string, interpolation> known = {
        {"hold", interpolation::hold}, {"linear", interpolation::linear}, {"smooth", interpolation::smooth}};
    const auto found = given.is_string() ? known.find(given.get<std::string>()) : known.end();
    if (found == known.end())
    {
        const std::string shown = given.is_string() ? in_quotes(given.get_ref<const std::string&>())
                                                    : std::string("a JSON ") + given.type_name();
        throw error("\"interpolation\" is \"hold\", \"linear\" or \"smooth\", not " + shown);
    }
    return found->second;
}

std::vector<keyframe> read_keys(const param_info& info, const json& given, const composition& frames)
{
    if (!given.is_array() || given.empty())
    {
        throw error("\"keys\" is a list of at least one [time, value]");
    }
    std::vector<keyframe> keys;
    for (const json& entry : given)
    {
        try
        {
            const keyframe key = read_key(info, entry, frames);
            if (!keys.empty() && !(key.seconds > keys.back().seconds + same_time))
            {
                throw error("its time is not after the key before: keys stand in ascending time");
            }
            if (!keys.empty() && key.value.percent != keys.back().value.percent)
            {
                throw error("keys of one parameter are all in pixels or all in percent");
            }
            keys.push_back(key);
        }
        catch (const error& failure)
        {
            throw error("key " + std::to_string(keys.size() + 1) + ": " + failure.what());
        }
    }
    return keys;
}

track read_track(const param_info& info, const json& given, const composition& frames)
{
    track result;
    if (!given.is_object())
    {
        result.constant = read_value(info, given);
        return result;
    }
    try
    {
        if (!info.animatable)
        {
            throw error("it cannot be animated: give it one value in place of keys");
        }
        for (const auto& [member, value] : given.items())
        {
            if (member != "keys" && member != "interpolation")
            {
                throw error("unknown entry " + in_quotes(member) + ": there are \"keys\" and \"interpolation\"");
            }
        }
        result.keys = read_keys(info, given.contains("keys") ? given["keys"] : json(), frames);
        result.constant = result.keys.front().value;
        if (given.contains("interpolation"))
        {
            result.between = read_interpolation(given["interpolation"]);
        }
    }
    catch (const error& failure)
    {
        throw error(in_quotes(info.label) + ": " + failure.what());
    }
    return result;
}

void read_values(const json& given, bool bare, const std::vector<param_info>& params, const composition& frames,
                 param_tracks& values)
{
    std::map<int, std::string> seen; // index of a parameter, and the name it was given by
    for (const auto& [name, value] : given.items())
    {
        if (bare && name == "description")
        {
            continue;
        }
        const param_info& info = find_param(params, name);
        const auto [first, fresh] = seen.emplace(info.index, name);
        if (!fresh)
        {
            throw error(in_quotes(first->second) + " and " + in_quotes(name) +
                        " are the same parameter: keep one");
        }
        values.set(info.index, read_track(info, value, frames));
    }
}

std::string read_description(const json& root)
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
    auto text = found->get<std::string>();
    for (const char c : text)
    {
        if (static_cast<unsigned char>(c) < 0x20U)
        {
            throw error("\"description\" is one line of text without control characters");
        }
    }
    return text;
}

// The same without the file's name in the messages.
std::string read_unnamed(std::string_view text, const std::vector<param_info>& params, const composition& frames,
                         param_tracks& values)
{
    if (text.size() > largest_file)
    {
        throw error("larger than 1 MiB: this is no preset");
    }
    if (frames.time_scale == 0)
    {
        throw error("key times need a frame rate, and the time scale is 0");
    }
    const json root = parse_strictly(text);
    if (!root.is_object())
    {
        throw error("a preset is a JSON object such as {\"values\": {...}}, not a JSON " +
                    std::string(root.type_name()));
    }
    const bool bare = !root.contains("values");
    for (const auto& [member, unused] : root.items())
    {
        if (!bare && member != "values" && member != "description")
        {
            throw error("unknown entry " + in_quotes(member) + ": there are \"description\" and \"values\"");
        }
    }
    const json& given = bare ? root : root["values"];
    if (!given.is_object())
    {
        throw error("\"values\" is an object of parameters, not a JSON " + std::string(given.type_name()));
    }
    std::string description = read_description(root);
    param_tracks changed = values;
    read_values(given, bare, params, frames, changed);
    values = std::move(changed);
    return description;
}
} // namespace

preset read_preset(std::string_view json_text, const std::string& name_for_messages,
                   const std::vector<param_info>& params, const composition& frames, param_tracks& values)
{
    try
    {
        std::string description = read_unnamed(json_text, params, frames, values);
        return {std::filesystem::path(name_for_messages).stem().string(), std::move(description)};
    }
    catch (const error& failure)
    {
        throw error(name_for_messages + ": " + failure.what());
    }
}

preset load_preset(const std::filesystem::path& file, const std::vector<param_info>& params,
                   const composition& frames, param_tracks& values)
{
    std::error_code ignored;
    std::ifstream stream(file, std::ios::binary);
    if (!stream || std::filesystem::is_directory(file, ignored))
    {
        throw error(file.string() + ": cannot be read: give the path of a preset file");
    }
    // One byte more than is allowed is enough to see that a file is too large.
    std::string text(largest_file + 1, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (stream.bad())
    {
        throw error(file.string() + ": cannot be read to its end");
    }
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return read_preset(text, file.string(), params, frames, values);
}
} // namespace host
