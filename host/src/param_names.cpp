// Finding a parameter by what a person calls it.
#include "host/error.hpp"
#include "host/near_names.hpp"
#include "host/param_text.hpp"
#include "value_text.hpp"

#include <algorithm>
#include <charconv>

namespace host
{
namespace
{
[[noreturn]] void refuse_unknown(const std::vector<param_info>& params, std::string_view name)
{
    std::vector<known_name> known;
    for (const param_info& info : params)
    {
        if (info.has_value() && !info.label.empty())
        {
            known.push_back({info.label, {info.label, kebab_name(info)}});
        }
    }
    throw error("unknown parameter " + in_quotes(name) + ": " + did_you_mean(name, known) +
                "'filigrane params' lists all");
}

[[noreturn]] void refuse_ambiguous(std::string_view name, const std::vector<const param_info*>& found)
{
    std::vector<std::string> indices;
    indices.reserve(found.size());
    for (const param_info* info : found)
    {
        indices.push_back(std::to_string(info->index));
    }
    throw error("more than one parameter is called " + in_quotes(name) + ": say " + one_of(indices));
}

// Where `name` is a whole number, the parameter with that index.
const param_info* by_index(const std::vector<param_info>& params, std::string_view name)
{
    int index = -1;
    const char* const end = name.data() + name.size();
    const auto [stop, failure] = std::from_chars(name.data(), end, index);
    if (failure != std::errc() || stop != end)
    {
        return nullptr;
    }
    const auto found = std::find_if(params.begin(), params.end(),
                                    [index](const param_info& info) { return info.index == index; });
    return found == params.end() ? nullptr : &*found;
}
} // namespace

std::string kebab_name(const param_info& info)
{
    std::string kebab;
    int open_brackets = 0;
    for (const char c : lower_case(info.label))
    {
        open_brackets += c == '(' ? 1 : 0;
        const bool kept = open_brackets == 0 && ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'));
        open_brackets -= c == ')' && open_brackets > 0 ? 1 : 0;
        if (kept)
        {
            kebab += c;
        }
        else if (!kebab.empty() && kebab.back() != '-')
        {
            kebab += '-';
        }
    }
    if (kebab.ends_with('-'))
    {
        kebab.pop_back();
    }
    return kebab;
}

const param_info& find_param(const std::vector<param_info>& params, std::string_view name)
{
    const std::string_view asked = trimmed(name);
    const std::string lower = lower_case(asked);
    const param_info* without_value = nullptr;
    using rule = bool (*)(const param_info&, std::string_view asked, std::string_view lower);
    constexpr rule rules[] = {
        [](const param_info& info, std::string_view as_asked, std::string_view) { return info.label == as_asked; },
        [](const param_info& info, std::string_view, std::string_view in_lower)
        { return lower_case(info.label) == in_lower; },
        [](const param_info& info, std::string_view, std::string_view in_lower)
        { return kebab_name(info) == in_lower; },
    };
    // The strictest rule that finds something decides.
    for (const rule matches : rules)
    {
        std::vector<const param_info*> found;
        for (const param_info& info : params)
        {
            if (lower.empty() || !matches(info, asked, lower))
            {
                continue;
            }
            if (info.has_value())
            {
                found.push_back(&info);
            }
            else
            {
                without_value = without_value ? without_value : &info;
            }
        }
        if (found.size() > 1)
        {
            refuse_ambiguous(asked, found);
        }
        if (!found.empty())
        {
            return *found.front();
        }
    }
    const param_info* info = without_value ? without_value : by_index(params, asked);
    if (!info)
    {
        refuse_unknown(params, asked);
    }
    if (!info->has_value())
    {
        throw error(in_quotes(asked) + " is a " + kind_name(info->kind) +
                    ", not a parameter with a value: 'filigrane params' lists all");
    }
    return *info;
}
} // namespace host
