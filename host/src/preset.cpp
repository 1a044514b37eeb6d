#include "host/preset.hpp"

#include "host/error.hpp"
#include "host/param_text.hpp"
#include "param_checks.hpp"
#include "preset_json.hpp"
#include "value_text.hpp"

#include <cmath>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace host
{
namespace
{
using nlohmann::json;

// Far beyond any clip (68 years), near enough that arithmetic on times stays exact to well below a frame.
constexpr double latest_second = 2147483647.0;
// Keys nearer than this are the same time written in two ways ("2s" and frame 50).
constexpr double same_time = 1e-9;
constexpr std::size_t longest_shown = 1000;

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

void read_values(const json& given, const std::vector<param_info>& params, const composition& frames,
                 param_tracks& values)
{
    std::map<int, std::string> seen; // index of a parameter, and the name it was given by
    for (const auto& [name, value] : given.items())
    {
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

// The same without the file's name in the messages.
std::string read_unnamed(std::string_view text, const std::vector<param_info>& params, const composition& frames,
                         param_tracks& values)
{
    if (frames.time_scale == 0)
    {
        throw error("key times need a frame rate, and the time scale is 0");
    }
    const preset_parts<json> parts = preset_parts_of<json>(text);
    param_tracks changed = values;
    read_values(parts.values, params, frames, changed);
    values = std::move(changed);
    return parts.description;
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
    return read_preset(preset_text_of(file), file.string(), params, frames, values);
}

preset_outline outline_preset(const std::filesystem::path& file)
{
    const std::string text = preset_text_of(file);
    try
    {
        // In the order of the file.
        const auto parts = preset_parts_of<nlohmann::ordered_json>(text);
        preset_outline outline{parts.description, {}};
        for (const auto& [name, value] : parts.values.items())
        {
            const std::string shown = value.is_string() ? value.template get<std::string>() : value.dump();
            outline.values.push_back({one_line(name, longest_shown), one_line(shown, longest_shown)});
        }
        return outline;
    }
    catch (const error& failure)
    {
        throw error(file.string() + ": " + failure.what());
    }
}
} // namespace host
