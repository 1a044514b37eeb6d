// Finding a parameter by what a person calls it, and what to suggest when there is none of that name.
#include "host/error.hpp"
#include "host/param_text.hpp"
#include "value_text.hpp"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace host
{
namespace
{
constexpr std::size_t most_suggestions = 3;
// No label comes near this; a longer name is not worth comparing letter by letter.
constexpr std::size_t longest_name = 100;

// The fewest insertions, removals, replacements and swaps of neighbours that turn `a` into `b`.
std::size_t edit_distance(std::string_view a, std::string_view b)
{
    // Row i holds the distances from the first i letters of `a` to every beginning of `b`.
    std::vector<std::size_t> before_last(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
    {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i)
    {
        std::swap(before_last, last);
        std::swap(last, row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j)
        {
            const std::size_t replaced = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
            {
                row[j] = std::min(row[j], before_last[j - 2] + 1);
            }
        }
    }
    return row[b.size()];
}

// How far a name is from what was asked for, smaller is nearer; nothing when it is no help at all.
std::optional<std::size_t> remoteness(std::string_view asked, std::string_view name)
{
    const std::size_t distance = edit_distance(asked, name);
    if (distance <= std::max<std::size_t>(1, asked.size() / 3))
    {
        return distance;
    }
    // Parts of names come after slips of the pen: first beginnings, then the rest.
    constexpr std::size_t shortest_part = 3;
    const bool long_enough = asked.size() >= shortest_part && name.size() >= shortest_part;
    if (long_enough && (name.starts_with(asked) || asked.starts_with(name)))
    {
        return longest_name;
    }
    if (long_enough && (name.find(asked) != std::string_view::npos || asked.find(name) != std::string_view::npos))
    {
        return longest_name + 1;
    }
    return std::nullopt;
}

std::vector<std::string> nearest_labels(const std::vector<param_info>& params, const std::string& asked)
{
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const param_info& info : params)
    {
        if (!info.has_value() || info.label.empty() || asked.size() > longest_name)
        {
            continue;
        }
        const auto by_label = remoteness(asked, lower_case(info.label));
        const auto by_kebab = remoteness(asked, kebab_name(info));
        if (by_label || by_kebab)
        {
            near.emplace_back(std::min(by_label.value_or(SIZE_MAX), by_kebab.value_or(SIZE_MAX)),
                              in_quotes(info.label));
        }
    }
    std::stable_sort(near.begin(), near.end(), [](const auto& a, const auto& b) { return a.first < b.first; });

    std::vector<std::string> labels;
    for (std::size_t i = 0; i < std::min(near.size(), most_suggestions); ++i)
    {
        labels.push_back(near[i].second);
    }
    return labels;
}

[[noreturn]] void refuse_unknown(const std::vector<param_info>& params, std::string_view name)
{
    const std::vector<std::string> labels = nearest_labels(params, lower_case(name));
    const std::string hint = labels.empty() ? "" : "did you mean " + one_of(labels) + "? ";
    throw error("unknown parameter " + in_quotes(name) + ": " + hint + "'filigrane params' lists all");
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
