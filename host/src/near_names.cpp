#include "host/near_names.hpp"

#include "value_text.hpp"

#include <algorithm>
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
} // namespace

std::string did_you_mean(std::string_view asked, const std::vector<known_name>& known)
{
    const std::string lower = lower_case(asked.substr(0, longest_name + 1));
    std::vector<std::pair<std::size_t, std::string>> near;
    for (const known_name& name : known)
    {
        std::size_t nearest = SIZE_MAX;
        for (const std::string& spelling : name.spellings)
        {
            nearest = std::min(nearest, remoteness(lower, lower_case(spelling)).value_or(SIZE_MAX));
        }
        if (nearest < SIZE_MAX && lower.size() <= longest_name)
        {
            near.emplace_back(nearest, in_quotes(name.shown));
        }
    }
    std::stable_sort(near.begin(), near.end(), [](const auto& a, const auto& b) { return a.first < b.first; });

    std::vector<std::string> labels;
    for (std::size_t i = 0; i < std::min(near.size(), most_suggestions); ++i)
    {
        labels.push_back(near[i].second);
    }
    return labels.empty() ? "" : "did you mean " + one_of(labels) + "? ";
}
} // namespace host
