#include "params_command.hpp"

#include "host/param_text.hpp"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <ostream>

namespace cli
{
namespace
{
using json = nlohmann::ordered_json;

bool has_range(host::param_kind kind)
{
    return kind == host::param_kind::slider || kind == host::param_kind::fixed_slider ||
           kind == host::param_kind::float_slider;
}

json as_json(const host::param_info& info)
{
    json entry;
    entry["index"] = info.index;
    entry["name"] = info.label;
    entry["kind"] = host::kind_name(info.kind);
    entry["topic"] = info.topic;
    entry["animatable"] = info.has_value() && info.animatable;
    entry["range"] = nullptr;
    entry["default"] = nullptr;
    if (!info.has_value())
        return entry;
    entry["key"] = host::kebab_name(info);
    if (has_range(info.kind))
    {
        entry["minimum"] = info.minimum;
        entry["maximum"] = info.maximum;
    }
    if (!info.choices.empty())
        entry["choices"] = info.choices;
    entry["range"] = host::range_text(info);
    entry["default"] = host::format_value(info, host::default_value(info));
    entry["percent"] = info.percent;
    return entry;
}

// Columns of a table, in the order in which they are shown.
constexpr std::size_t columns = 7;
using table_row = std::array<std::string, columns>;

table_row as_row(const host::param_info& info)
{
    table_row row{std::to_string(info.index), info.label, host::kind_name(info.kind), "", "", "", info.topic};
    if (info.has_value())
    {
        row[3] = host::range_text(info);
        row[4] = host::format_value(info, host::default_value(info));
        row[5] = info.animatable ? "yes" : "no";
    }
    return row;
}
} // namespace

void print_params_json(const host::plugin& effect, std::ostream& out)
{
    json all = json::array();
    for (const host::param_info& info : effect.params())
        all.push_back(as_json(info));
    // Labels may come in any character set: what is not UTF-8 is replaced, not refused.
    out << all.dump(2, ' ', false, json::error_handler_t::replace) << '\n';
}

void print_params_table(const host::plugin& effect, std::ostream& out)
{
    std::vector<table_row> rows = {{"#", "Name", "Kind", "Range", "Default", "Animatable", "Topic"}};
    for (const host::param_info& info : effect.params())
        rows.push_back(as_row(info));
    std::array<std::size_t, columns> widths{};
    for (const table_row& row : rows)
        for (std::size_t c = 0; c < columns; ++c)
            widths[c] = std::max(widths[c], row[c].size());
    for (const table_row& row : rows)
    {
        std::string line;
        for (std::size_t c = 0; c < columns; ++c)
            line += row[c] + std::string(widths[c] - row[c].size() + 2, ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        out << line << '\n';
    }
}
} // namespace cli
