#include "adapters/frei0r/descriptions/descriptions.hpp"
#include "adapters/frei0r/descriptions/shown_param.hpp"

namespace frei0r
{
namespace
{
std::string parameter(const param_row& row, const std::string& attributes, const std::string& inside = "",
                      const std::string& remark = "")
{
    return "    <parameter " + attributes + " name=\"" + xml_text(row.name) + "\">\n" + inside + "        <name>" +
           xml_text(row.name + remark) + "</name>\n        <comment>" + xml_text(row.explanation) +
           "</comment>\n    </parameter>\n";
}

std::string list(const std::string& standard, const std::string& values, const std::string& shown,
                 const param_row& row)
{
    return parameter(row, "type=\"list\" default=\"" + standard + "\" paramlist=\"" + values + "\"",
                     "        <paramlistdisplay>" + shown + "</paramlistdisplay>\n");
}

std::string joined(const std::vector<std::string>& words, char between)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : std::string(1, between)) + word;
    return text;
}

// Texts that stand for themselves.
std::string text_list(const param_row& row, const std::string& standard, const std::vector<std::string>& texts)
{
    return list(standard, joined(texts, ';'), joined(texts, ','), row);
}

std::string look_list(const param_row& row, const std::vector<std::string>& looks)
{
    std::vector<std::string> names = {"none"};
    names.insert(names.end(), looks.begin(), looks.end());
    return text_list(row, "none", names);
}

std::string choice_list(const param_row& row)
{
    std::vector<std::string> shares;
    for (std::size_t k = 0; k < row.choices.size(); ++k)
        shares.push_back(choice_share(k, row.choices.size()));
    return list(decimal(row.normal), joined(shares, ';'), xml_text(joined(row.choices, ',')), row);
}

// Kdenlive shows x * factor and knows no offset: a range with numbers below 0 is shown from 0 on, with a word on
// where its own 0 is.
std::string number(const param_row& row)
{
    const shown_param shown = as_shown(row);
    const std::string type = row.animatable ? "animated" : "constant";
    return parameter(row,
                     "type=\"" + type + "\" default=\"" + decimal(row.normal, 9) + "\" min=\"" +
                         decimal(shown.minimum - shown.low) + "\" max=\"" + decimal(shown.maximum - shown.low) +
                         "\" factor=\"" + decimal(shown.high - shown.low) + "\" decimals=\"" +
                         std::to_string(shown.decimals) + "\"" +
                         (shown.suffix.empty() ? "" : " suffix=\"" + shown.suffix + "\""),
                     "", shown.low < 0.0 ? " (" + decimal(-shown.low) + " is 0)" : "");
}

std::string text_of(const param_row& row, const description_input& from)
{
    switch (row.kind)
    {
    case row_kind::look:
        return look_list(row, from.looks);
    case row_kind::rate:
        return text_list(row, row.text, common_rates());
    case row_kind::time_unit:
        return ""; // Kdenlive counts seconds
    case row_kind::toggle:
        return parameter(row, "type=\"bool\" default=\"" + decimal(row.normal) + "\"");
    case row_kind::choice:
        return choice_list(row);
    case row_kind::color:
        return parameter(row, "type=\"color\" default=\"0x" + color_text(row).substr(1) + "ff\"");
    default:
        return number(row);
    }
}
} // namespace

std::string kdenlive_xml(const description_input& from, bool is_generator)
{
    const std::string tag = is_generator ? "frei0r.filigrane_generator" : "frei0r.filigrane";
    const std::string root = is_generator ? "generator" : "effect";
    std::string text = "<?xml version=\"1.0\"?>\n<!DOCTYPE kpartgui>\n<!-- Made by ./dev docs. -->\n<" + root +
                       " LC_NUMERIC=\"C\" tag=\"" + tag + "\" id=\"" + tag +
                       "\">\n    <name>Filigrane</name>\n    <description>Draws a field of hand-drawn lines"
                       "</description>\n    <author>the Filigrane authors</author>\n";
    for (const param_row& row : from.rows)
        text += text_of(row, from);
    return text + "</" + root + ">\n";
}
} // namespace frei0r
