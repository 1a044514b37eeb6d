#include "adapters/frei0r/param_table.hpp"

#include "adapters/common/param_hints.hpp"
#include "adapters/frei0r/frei0r_header.hpp"

#include "host/param_text.hpp"

#include <algorithm>
#include <cmath>

namespace frei0r
{
namespace
{
constexpr double highest_number = 1000000.0;
constexpr double farthest_angle = 1000.0;
constexpr double point_low = -200.0;
constexpr double point_high = 300.0;
constexpr double decimal_step = 1e-4;

param_row text_row(row_kind kind, const char* name, const char* explanation, const char* text)
{
    param_row row;
    row.kind = kind;
    row.name = name;
    row.explanation = explanation;
    row.text = text;
    return row;
}

param_row effect_row(row_kind kind, const host::param_info& info)
{
    param_row row;
    row.kind = kind;
    row.name = info.label;
    row.explanation = adapter::param_hint(info.label);
    row.index = info.index;
    row.topic = info.topic;
    row.animatable = info.animatable;
    row.percent = info.percent;
    row.choices = info.choices;
    return row;
}

param_row with_range(param_row row, double low, double high, double natural_default)
{
    row.low = row.minimum = low;
    row.high = row.maximum = high;
    row.normal = normal_value(row, natural_default);
    return row;
}

param_row number_row(const host::param_info& info)
{
    const double standard = host::default_value(info).x;
    param_row row = effect_row(row_kind::number, info);
    if (info.kind == host::param_kind::angle)
        return with_range(row, -farthest_angle, farthest_angle, standard);
    if (info.kind == host::param_kind::float_slider)
        row.step = decimal_step;
    row = with_range(row, std::min(info.minimum, 0.0), std::min(info.maximum, highest_number), standard);
    row.minimum = info.minimum;
    return row;
}

param_row point_row(row_kind kind, const host::param_info& info)
{
    const host::param_value standard = host::default_value(info);
    const bool is_x = kind == row_kind::point_x;
    param_row row = effect_row(kind, info);
    row.name += is_x ? " X" : " Y";
    return with_range(row, point_low, point_high, is_x ? standard.x : standard.y);
}

param_row choice_row(const host::param_info& info)
{
    return with_range(effect_row(row_kind::choice, info), 1.0, static_cast<double>(info.choices.size()),
                      host::default_value(info).x);
}

void add_rows(const host::param_info& info, std::vector<param_row>& rows)
{
    switch (info.kind)
    {
    case host::param_kind::slider:
    case host::param_kind::fixed_slider:
    case host::param_kind::float_slider:
    case host::param_kind::angle:
        rows.push_back(number_row(info));
        return;
    case host::param_kind::point:
        rows.push_back(point_row(row_kind::point_x, info));
        rows.push_back(point_row(row_kind::point_y, info));
        return;
    case host::param_kind::checkbox:
        rows.push_back(effect_row(row_kind::toggle, info));
        rows.back().normal = host::default_value(info).x;
        return;
    case host::param_kind::popup:
        rows.push_back(choice_row(info));
        return;
    case host::param_kind::color:
        rows.push_back(effect_row(row_kind::color, info));
        rows.back().color = host::default_value(info).color;
        return;
    default: // groups and layers have no value
        return;
    }
}
} // namespace

bool param_row::is_text() const
{
    return kind == row_kind::look || kind == row_kind::rate || kind == row_kind::time_unit;
}

int param_row::type() const
{
    if (is_text())
        return F0R_PARAM_STRING;
    if (kind == row_kind::color)
        return F0R_PARAM_COLOR;
    return kind == row_kind::toggle ? F0R_PARAM_BOOL : F0R_PARAM_DOUBLE;
}

std::vector<param_row> adapter_rows()
{
    return {
        text_row(
            row_kind::look, "Look",
            "A look to begin with: the name of one that ships with Filigrane, or a preset's file. A parameter "
            "that is at its default takes the look's value.",
            ""),
        text_row(
            row_kind::rate, "Frame Rate",
            "How many pictures a second the animation has: 25, 29.97, 30000/1001. Set it to the project's rate "
            "for a new picture in every frame.",
            "25"),
        text_row(
            row_kind::time_unit, "Time Unit",
            "What the host's time counts: seconds, milliseconds, or auto for what the host at hand is known to "
            "count.",
            "auto"),
    };
}

std::vector<param_row> make_table(const std::vector<host::param_info>& params)
{
    std::vector<param_row> rows = adapter_rows();
    for (const host::param_info& info : params)
        add_rows(info, rows);
    return rows;
}

double natural_value(const param_row& row, double x)
{
    if (row.kind == row_kind::toggle)
        return x >= 0.5 ? 1.0 : 0.0;
    if (row.kind == row_kind::choice)
        return std::min(std::floor(x * row.high) + 1.0, row.high);
    // Steps are powers of ten below 1: their reciprocals are whole, and dividing by one rounds once.
    const double steps = std::round(1.0 / row.step);
    const double value = std::round((row.low + x * (row.high - row.low)) * steps) / steps;
    return std::clamp(value, row.minimum, row.maximum);
}

double normal_value(const param_row& row, double natural)
{
    if (row.kind == row_kind::toggle)
        return natural;
    return row.high > row.low ? std::clamp((natural - row.low) / (row.high - row.low), 0.0, 1.0) : 0.0;
}
} // namespace frei0r
