#include "host/param_text.hpp"

#include "host/error.hpp"
#include "param_checks.hpp"
#include "value_text.hpp"

#include <algorithm>
#include <cmath>

namespace host
{
namespace
{
// What a 16.16 number holds.
constexpr double fixed_minimum = -32768.0;
constexpr double fixed_maximum = 32768.0 - 1.0 / 65536.0;

bool takes_a_number(param_kind kind)
{
    return kind == param_kind::slider || kind == param_kind::fixed_slider || kind == param_kind::float_slider;
}

// A limit of the range. Limits of float sliders are single precision, and read best with its digits.
std::string limit_text(const param_info& info, double limit)
{
    if (info.percent)
    {
        return hundredfold_text(limit) + "%";
    }
    const auto narrow = static_cast<float>(limit);
    if (static_cast<double>(narrow) != limit)
    {
        return number_text(limit);
    }
    // The shortest decimal that is still this float.
    for (int digits = 0; digits <= 9; ++digits)
    {
        const double scale = std::pow(10.0, digits);
        const double rounded = std::round(limit * scale) / scale;
        if (static_cast<float>(rounded) == narrow)
        {
            return number_text(rounded);
        }
    }
    return number_text(limit);
}

bool in_range(const param_info& info, double number)
{
    if (number >= info.minimum && number <= info.maximum)
    {
        return true;
    }
    // 0.1 is allowed where the limit is the float next to 0.1.
    const auto narrow = static_cast<float>(number);
    return info.kind == param_kind::float_slider &&
           (narrow == static_cast<float>(info.minimum) || narrow == static_cast<float>(info.maximum));
}

std::string what_it_takes(const param_info& info)
{
    switch (info.kind)
    {
    case param_kind::slider:
        return "a whole number, " + range_text(info);
    case param_kind::fixed_slider:
    case param_kind::float_slider:
        return (info.percent ? "a percentage or a number (0.5 is 50%), " : "a number, ") + range_text(info);
    case param_kind::popup:
        return range_text(info) + " (or its number, 1 to " + std::to_string(info.choices.size()) + ")";
    default:
        return range_text(info);
    }
}

param_value number_value(double x)
{
    param_value value;
    value.x = x;
    return value;
}

param_value parse_amount(const param_info& info, std::string_view text)
{
    const bool percent = info.percent && text.ends_with('%');
    const auto number = percent ? parse_hundredths(trimmed(text.substr(0, text.size() - 1))) : parse_number(text);
    if (!number)
    {
        const std::string_view bare = text.ends_with('%') ? trimmed(text.substr(0, text.size() - 1)) : "";
        refuse_value(info, in_quotes(text) + (parse_number(bare) && !percent
                                                  ? ": write " + std::string(bare) + " without the percent sign"
                                                  : ""));
    }
    return value_of_number(info, *number, in_quotes(text));
}

param_value parse_angle(const param_info& info, std::string_view text)
{
    std::string_view digits = text;
    const std::string lower = lower_case(text);
    for (const std::string_view unit : {"deg", "\u00B0"})
    {
        if (lower.ends_with(unit))
        {
            digits = trimmed(text.substr(0, text.size() - unit.size()));
        }
    }
    const auto number = parse_number(digits);
    if (!number)
    {
        refuse_value(info, in_quotes(text));
    }
    return value_of_number(info, *number, in_quotes(text));
}

param_value parse_point(const param_info& info, std::string_view text)
{
    const auto comma = text.find(',');
    if (comma == std::string_view::npos)
    {
        refuse_value(info, in_quotes(text));
    }
    std::string_view x_text = trimmed(text.substr(0, comma));
    std::string_view y_text = trimmed(text.substr(comma + 1));
    const bool percent = x_text.ends_with('%');
    if (percent != y_text.ends_with('%'))
    {
        refuse_value(info, in_quotes(text) + ": both in pixels or both in percent");
    }
    if (percent)
    {
        x_text = trimmed(x_text.substr(0, x_text.size() - 1));
        y_text = trimmed(y_text.substr(0, y_text.size() - 1));
    }
    const auto x = parse_number(x_text);
    const auto y = parse_number(y_text);
    if (!x || !y)
    {
        refuse_value(info, in_quotes(text));
    }
    if (std::min(*x, *y) < fixed_minimum || std::max(*x, *y) > fixed_maximum)
    {
        refuse_value(info, in_quotes(text) + ": each number is at least -32768 and below 32768");
    }
    param_value value;
    value.x = *x;
    value.y = *y;
    value.percent = percent;
    return value;
}

int hex_digit(char c)
{
    if (c >= '0' && c <= '9')
    {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f')
    {
        return c - 'a' + 10;
    }
    return -1;
}

param_value parse_color(const param_info& info, std::string_view text)
{
    std::string digits = lower_case(text);
    const auto is_hex = [](char c) { return hex_digit(c) >= 0; };
    if (!digits.starts_with('#') || !std::all_of(digits.begin() + 1, digits.end(), is_hex))
    {
        refuse_value(info, in_quotes(text));
    }
    digits.erase(0, 1);
    if (digits.size() == 3)
    {
        digits = {digits[0], digits[0], digits[1], digits[1], digits[2], digits[2]};
    }
    if (digits.size() == 6)
    {
        digits = "ff" + digits;
    }
    if (digits.size() != 8)
    {
        refuse_value(info, in_quotes(text));
    }
    const auto channel = [&digits](std::size_t i)
    { return static_cast<A_u_char>(hex_digit(digits[2 * i]) * 16 + hex_digit(digits[2 * i + 1])); };
    param_value value;
    value.color = {channel(0), channel(1), channel(2), channel(3)};
    return value;
}

param_value parse_checkbox(const param_info& info, std::string_view text)
{
    const std::string word = lower_case(text);
    const auto is_one_of = [&word](std::initializer_list<std::string_view> words)
    { return std::find(words.begin(), words.end(), word) != words.end(); };
    if (is_one_of({"on", "true", "yes", "1"}))
    {
        return number_value(1.0);
    }
    if (is_one_of({"off", "false", "no", "0"}))
    {
        return number_value(0.0);
    }
    refuse_value(info, in_quotes(text));
}

// The choice of that name, counted from 1; 0 where there is none.
std::size_t choice_number(const param_info& info, std::string_view text)
{
    const std::string name = lower_case(text);
    for (std::size_t i = 0; i < info.choices.size(); ++i)
    {
        if (!name.empty() && lower_case(trimmed(info.choices[i])) == name)
        {
            return i + 1;
        }
    }
    return 0;
}

param_value parse_popup(const param_info& info, std::string_view text)
{
    if (const auto choice = choice_number(info, text); choice > 0)
    {
        return number_value(static_cast<double>(choice));
    }
    const auto number = parse_number(text);
    if (!number)
    {
        refuse_value(info, in_quotes(text));
    }
    return value_of_number(info, *number, in_quotes(text));
}

std::string format_point(const param_value& value)
{
    const std::string unit = value.percent ? "%" : "";
    return number_text(value.x) + unit + "," + number_text(value.y) + unit;
}

std::string format_color(const PF_Pixel& color)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text = "#";
    for (const unsigned channel : {color.alpha, color.red, color.green, color.blue})
    {
        text += digits[channel / 16];
        text += digits[channel % 16];
    }
    return color.alpha == 255 ? "#" + text.substr(3) : text;
}

std::string format_choice(const param_info& info, double number)
{
    const auto choice = static_cast<std::size_t>(std::max(number, 0.0));
    const bool named = choice >= 1 && choice <= info.choices.size();
    const std::string name = named ? std::string(trimmed(info.choices[choice - 1])) : "";
    return choice_number(info, name) == choice && named ? name : number_text(number);
}
} // namespace

void refuse_value(const param_info& info, std::string_view given)
{
    if (!info.has_value())
    {
        throw error(in_quotes(info.label) + " is a " + kind_name(info.kind) + " and has no value to set");
    }
    throw error(in_quotes(info.label) + " takes " + what_it_takes(info) + ", not " + std::string(given));
}

param_value value_of_number(const param_info& info, double number, std::string_view given)
{
    const auto allowed = [&info, number]
    {
        const bool whole = std::trunc(number) == number;
        switch (info.kind)
        {
        case param_kind::slider:
            return whole && in_range(info, number);
        case param_kind::fixed_slider:
        case param_kind::float_slider:
            return in_range(info, number);
        case param_kind::angle:
            return number >= fixed_minimum && number <= fixed_maximum;
        case param_kind::checkbox:
            return number == 0.0 || number == 1.0;
        case param_kind::popup:
            return whole && number >= 1.0 && number <= static_cast<double>(info.choices.size());
        default:
            return false;
        }
    };
    if (!allowed())
    {
        refuse_value(info, given);
    }
    return number_value(number);
}

param_value parse_value(const param_info& info, std::string_view text)
{
    const std::string_view given = trimmed(text);
    switch (info.kind)
    {
    case param_kind::slider:
    case param_kind::fixed_slider:
    case param_kind::float_slider:
        return parse_amount(info, given);
    case param_kind::angle:
        return parse_angle(info, given);
    case param_kind::checkbox:
        return parse_checkbox(info, given);
    case param_kind::color:
        return parse_color(info, given);
    case param_kind::point:
        return parse_point(info, given);
    case param_kind::popup:
        return parse_popup(info, given);
    default:
        refuse_value(info, in_quotes(given));
    }
}

std::string format_value(const param_info& info, const param_value& value)
{
    if (takes_a_number(info.kind))
    {
        return info.percent ? hundredfold_text(value.x) + "%" : number_text(value.x);
    }
    switch (info.kind)
    {
    case param_kind::angle:
        return number_text(value.x) + "deg";
    case param_kind::checkbox:
        return value.x != 0.0 ? "on" : "off";
    case param_kind::color:
        return format_color(value.color);
    case param_kind::point:
        return format_point(value);
    case param_kind::popup:
        return format_choice(info, value.x);
    default:
        return {};
    }
}

std::string range_text(const param_info& info)
{
    if (takes_a_number(info.kind))
    {
        return limit_text(info, info.minimum) + " to " + limit_text(info, info.maximum);
    }
    switch (info.kind)
    {
    case param_kind::angle:
        return "degrees, such as 45 or -90deg";
    case param_kind::checkbox:
        return "on or off";
    case param_kind::color:
        return "#rgb, #rrggbb or #aarrggbb (alpha first)";
    case param_kind::point:
        return "x,y in pixels or percent of the layer, such as 960,540 or 50%,50%";
    case param_kind::popup:
        return one_of(info.choices);
    default:
        return {};
    }
}
} // namespace host
