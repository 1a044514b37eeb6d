#include "adapters/frei0r/descriptions/descriptions.hpp"
#include "adapters/frei0r/descriptions/shotcut_ui.hpp"
#include "adapters/frei0r/descriptions/shown_param.hpp"

#include <algorithm>

namespace frei0r
{
namespace
{
std::string quoted(const std::string& text)
{
    std::string safe = "'";
    for (const char c : text)
        safe += c == '\'' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    return safe + "'";
}

std::string quoted_list(const std::vector<std::string>& texts)
{
    std::string list;
    for (const std::string& text : texts)
        list += (list.empty() ? "" : ", ") + quoted(text);
    return "[" + list + "]";
}

std::string fields(const param_row& row, const std::string& kind, const std::string& standard,
                   const std::string& rest)
{
    return "        {name: " + quoted(row.name) + ", property: " + quoted(row.name) + ", kind: '" + kind +
           "', standard: " + standard + ", animated: " + (is_number(row) && row.animatable ? "true" : "false") +
           rest + ",\n            hint: " + quoted(row.explanation) + "},\n";
}

std::string number_fields(const param_row& row)
{
    const shown_param shown = as_shown(row);
    return fields(row, "slider", decimal(row.normal, 9),
                  ", low: " + decimal(shown.low) + ", high: " + decimal(shown.high) +
                      ", minimum: " + decimal(shown.minimum) + ", maximum: " + decimal(shown.maximum) +
                      ", decimals: " + std::to_string(shown.decimals) +
                      ", suffix: " + quoted(shown.suffix.empty() ? "" : " " + shown.suffix));
}

std::string choice_fields(const param_row& row)
{
    std::vector<std::string> values;
    for (std::size_t k = 0; k < row.choices.size(); ++k)
        values.push_back(choice_share(k, row.choices.size()));
    return fields(row, "choice", decimal(row.normal),
                  ", choices: " + quoted_list(row.choices) + ", values: " + quoted_list(values));
}

std::string look_fields(const param_row& row, const std::vector<std::string>& looks)
{
    std::vector<std::string> names = {"none"};
    names.insert(names.end(), looks.begin(), looks.end());
    return fields(row, "choice", "'none'", ", choices: " + quoted_list(names) + ", values: " + quoted_list(names));
}

std::string row_fields(const param_row& row, const description_input& from)
{
    switch (row.kind)
    {
    case row_kind::look:
        return look_fields(row, from.looks);
    case row_kind::rate:
        return fields(row, "text", quoted(row.text), "");
    case row_kind::time_unit:
        return "";
    case row_kind::toggle:
        return fields(row, "toggle", decimal(row.normal), "");
    case row_kind::choice:
        return choice_fields(row);
    case row_kind::color:
        return fields(row, "color", quoted(color_text(row)), "");
    default:
        return number_fields(row);
    }
}

constexpr const char* meta_head = R"(// Made by ./dev docs.
import QtQuick 2.0
import org.shotcut.qml 1.0

Metadata {
    type: Metadata.Filter
    name: 'Filigrane'
    keywords: 'lines grid ripple hand-drawn filigrane'
    mlt_service: 'frei0r.filigrane'
    objectName: 'filigrane'
    qml: 'ui.qml'

    keyframes {
        allowAnimateIn: false
        allowAnimateOut: false
        simpleProperties: []
        parameters: [
)";
} // namespace

std::string shotcut_meta(const description_input& from)
{
    std::string list;
    for (const param_row& row : from.rows)
        if (is_number(row) && row.animatable)
            list += (list.empty() ? "" : ",\n") + std::string("            Parameter {\n                name: ") +
                    quoted(row.name) + "\n                property: " + quoted(row.name) +
                    "\n                isCurve: true\n                minimum: 0\n                maximum: 1\n" +
                    "            }";
    return meta_head + list + "\n        ]\n    }\n\n}\n";
}

std::string shotcut_ui(const description_input& from)
{
    std::string rows;
    for (const param_row& row : from.rows)
        rows += row_fields(row, from);
    std::string text = shotcut_ui_frame;
    const std::string place = "@rows@";
    return text.replace(text.find(place), place.size(), rows);
}
} // namespace frei0r
