#include "adapters/frei0r/descriptions/shown_param.hpp"

#include <algorithm>
#include <charconv>

namespace frei0r
{
shown_param as_shown(const param_row& row)
{
    const double scale = row.percent ? 100.0 : 1.0;
    shown_param shown;
    shown.low = row.low * scale;
    shown.high = row.high * scale;
    shown.minimum = row.minimum * scale;
    shown.maximum = std::min(row.maximum, row.high) * scale;
    shown.standard = natural_value(row, row.normal) * scale;
    const bool is_angle =
        row.kind == row_kind::number && !row.percent && row.low == -row.high && row.high == 1000.0;
    const bool is_point = row.kind == row_kind::point_x || row.kind == row_kind::point_y;
    shown.decimals = row.percent || is_angle || is_point || row.step > 1e-9 ? 1 : 0;
    if (row.percent || is_point)
        shown.suffix = "%";
    else if (is_angle)
        shown.suffix = "°";
    return shown;
}

bool is_number(const param_row& row)
{
    return row.kind == row_kind::number || row.kind == row_kind::point_x || row.kind == row_kind::point_y;
}

std::string decimal(double value, int digits)
{
    char text[64];
    std::string shortest(text,
                         std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, digits).ptr);
    if (shortest.find('.') != std::string::npos)
    {
        shortest.erase(shortest.find_last_not_of('0') + 1);
        if (shortest.back() == '.')
            shortest.pop_back();
    }
    return shortest == "-0" ? "0" : shortest;
}

std::string choice_share(std::size_t k, std::size_t count)
{
    return decimal(count < 2 ? 0.0 : static_cast<double>(k) / static_cast<double>(count - 1));
}

std::string color_text(const param_row& row)
{
    constexpr const char* digits = "0123456789abcdef";
    std::string text = "#";
    for (const unsigned channel : {0u + row.color.red, 0u + row.color.green, 0u + row.color.blue})
    {
        text += digits[channel / 16];
        text += digits[channel % 16];
    }
    return text;
}

std::string xml_text(const std::string& text)
{
    std::string safe;
    for (const char c : text)
        switch (c)
        {
        case '&':
            safe += "&amp;";
            break;
        case '<':
            safe += "&lt;";
            break;
        case '"':
            safe += "&quot;";
            break;
        default:
            safe += c;
        }
    return safe;
}
} // namespace frei0r
