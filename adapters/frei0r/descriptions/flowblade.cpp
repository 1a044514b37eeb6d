#include "adapters/frei0r/descriptions/descriptions.hpp"
#include "adapters/frei0r/descriptions/shown_param.hpp"

#include <algorithm>

namespace frei0r
{
namespace
{
// Arguments stand apart by blanks, so those of names are written as exclamation marks.
std::string label(const std::string& name)
{
    std::string without_blanks = name;
    std::replace(without_blanks.begin(), without_blanks.end(), ' ', '!');
    return xml_text(without_blanks);
}

std::string property(const param_row& row, const std::string& args, const std::string& value)
{
    return "        <property name=\"" + xml_text(row.name) + "\" args=\"" + args +
           " displayname=" + label(row.name) + "\">" + value + "</property>\n";
}

std::string options(const std::vector<std::string>& names, const std::vector<std::string>& values)
{
    std::string text;
    for (std::size_t k = 0; k < names.size(); ++k)
        text += (k > 0 ? "," : "") + label(names[k]) + ":" + values[k];
    return "editor=combobox exptype=default cbopts=" + text;
}

std::string choice(const param_row& row)
{
    std::vector<std::string> values;
    for (std::size_t k = 0; k < row.choices.size(); ++k)
        values.push_back(choice_share(k, row.choices.size()));
    return property(row, options(row.choices, values), decimal(row.normal));
}

std::string look(const param_row& row, const std::vector<std::string>& looks)
{
    std::vector<std::string> names = {"none"};
    names.insert(names.end(), looks.begin(), looks.end());
    return property(row, options(names, names), "none");
}

// What begins as a whole number stays one in Flowblade: rates are fractions.
std::string rate(const param_row& row)
{
    std::vector<std::string> fractions = common_rates();
    for (std::string& fraction : fractions)
        fraction += fraction.find('/') == std::string::npos ? "/1" : "";
    return property(row, options(common_rates(), fractions), row.text + "/1");
}

std::string number(const param_row& row)
{
    const shown_param shown = as_shown(row);
    const double span = shown.high - shown.low;
    const std::string range = "range_in=" + decimal(shown.minimum) + "," + decimal(shown.maximum) +
                              " range_out=" + decimal((shown.minimum - shown.low) / span, 9) + "," +
                              decimal((shown.maximum - shown.low) / span, 9);
    const std::string start = decimal(row.normal, 9);
    if (row.animatable)
        return property(row, range + " editor=keyframe_editor exptype=keyframe_hcs", "0=" + start);
    return property(row, range + " editor=slider step=1", start);
}

std::string text_of(const param_row& row, const description_input& from)
{
    switch (row.kind)
    {
    case row_kind::look:
        return look(row, from.looks);
    case row_kind::rate:
        return rate(row);
    case row_kind::time_unit:
        return "";
    case row_kind::toggle:
        return property(row, "editor=booleancheckbox", decimal(row.normal));
    case row_kind::choice:
        return choice(row);
    case row_kind::color:
        return property(row, "editor=color_select exptype=color", color_text(row));
    default:
        return number(row);
    }
}
} // namespace

std::string flowblade_xml(const description_input& from)
{
    std::string text = "    <!-- Made by ./dev docs. -->\n    <filter id=\"frei0r.filigrane\">\n        "
                       "<name>Filigrane</name>\n        <group>Artistic</group>\n";
    for (const param_row& row : from.rows)
        text += text_of(row, from);
    return text + "    </filter>\n";
}
} // namespace frei0r
