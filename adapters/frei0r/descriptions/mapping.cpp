#include "adapters/frei0r/descriptions/descriptions.hpp"
#include "adapters/frei0r/descriptions/shown_param.hpp"

namespace frei0r
{
namespace
{
constexpr const char* head = R"(<!-- Written by ./dev docs. -->

# Parameters in frei0r hosts

Every number is a share of 1, since hosts cut it to 0..1: `value = low + x * (high - low)`, where the table says what 0
and 1 stand for. A value beyond the parameter's own range becomes its nearest end. The steps that people type are short
decimals: 12 rows are 0.12, 30 degrees 0.515, 10 % of the layer 0.42. They come out exactly: values are rounded to the
billionth, those marked *decimal* to a ten-thousandth.

- A switch (*on or off*) is on from 0.5.
- A choice is one of equal steps of 0..1; the table has the share to write.
- A colour is three shares of 255.
- A point is two numbers, X and Y, in percent of the layer. Where one of them is set, both count.
- A text is taken as it stands.
- A value that is never set, or within a millionth of its default, is the default; where a look is named, it is the
  look's. To set the default's value over a look, write one beside it that means the same: 0.041 for 4 rows.

What each one does is told in [parameters](parameters.md). The number is the place in FFmpeg's list, and a name in MLT.

| # | name | 0 stands for | 1 stands for | range | default | as a share |
|---|---|---|---|---|---|---|
)";

std::string cells(const param_row& row, const std::string& low, const std::string& high, const std::string& range,
                  const std::string& standard, const std::string& share)
{
    return row.name + " | " + low + " | " + high + " | " + range + " | " + standard + " | " + share + " |\n";
}

std::string number_cells(const param_row& row)
{
    const shown_param shown = as_shown(row);
    const auto with_unit = [&](double value) { return decimal(value) + shown.suffix; };
    return cells(row, with_unit(shown.low), with_unit(shown.high),
                 with_unit(shown.minimum) + " to " + with_unit(shown.maximum) +
                     (row.step > 1e-9 ? ", decimal" : ""),
                 with_unit(shown.standard), decimal(row.normal));
}

std::string choice_cells(const param_row& row)
{
    std::string all;
    for (std::size_t k = 0; k < row.choices.size(); ++k)
        all += (k > 0 ? ", " : "") + row.choices[k] + " " + choice_share(k, row.choices.size());
    const auto standard = static_cast<std::size_t>(natural_value(row, row.normal)) - 1;
    return cells(row, "", "", all, row.choices[standard], decimal(row.normal));
}

std::string row_cells(const param_row& row)
{
    switch (row.kind)
    {
    case row_kind::look:
        return cells(row, "", "", "text: a look's name, a preset's file, or `none`", "", "");
    case row_kind::rate:
        return cells(row, "", "", "text: 0.001 to 1000 frames a second, such as 29.97 or 30000/1001", row.text,
                     "");
    case row_kind::time_unit:
        return cells(row, "", "", "text: `auto`, `seconds` or `milliseconds`", row.text, "");
    case row_kind::toggle:
        return cells(row, "off", "on", "on or off", row.normal > 0.0 ? "on" : "off", decimal(row.normal));
    case row_kind::choice:
        return choice_cells(row);
    case row_kind::color:
        return cells(row, "", "", "colour", color_text(row), "");
    default:
        return number_cells(row);
    }
}
} // namespace

std::string mapping_text(const description_input& from)
{
    std::string text = head;
    for (std::size_t i = 0; i < from.rows.size(); ++i)
        text += "| " + std::to_string(i) + " | " + row_cells(from.rows[i]);
    return text;
}
} // namespace frei0r
