#include "adapters/openfx/param_table.hpp"

#include "adapters/common/param_hints.hpp"
#include "adapters/openfx/api/names.hpp"

#include "host/param_text.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace openfx
{
namespace
{
// The effect's angles and points are 16.16 numbers without a range of their own.
constexpr double most_degrees = 32767.0;
constexpr double most_fractions = 100.0;

void set_range(param_row& row, double minimum, double maximum, double display_min, double display_max)
{
    row.ranged = true;
    row.minimum = minimum;
    row.maximum = maximum;
    row.display_min = display_min;
    row.display_max = display_max;
}

void fill_kind(param_row& row)
{
    const host::param_info& info = *row.info;
    const auto& u = info.definition.u;
    switch (info.kind)
    {
    case host::param_kind::slider:
        row.type = kOfxParamTypeInteger;
        row.whole = true;
        set_range(row, info.minimum, info.maximum, u.sd.slider_min, u.sd.slider_max);
        break;
    case host::param_kind::fixed_slider:
        row.type = kOfxParamTypeDouble;
        set_range(row, info.minimum, info.maximum, u.fd.slider_min / 65536.0, u.fd.slider_max / 65536.0);
        row.increment = 0.01;
        row.digits = 3;
        break;
    case host::param_kind::float_slider:
        row.type = kOfxParamTypeDouble;
        set_range(row, info.minimum, info.maximum, static_cast<double>(u.fs_d.slider_min),
                  static_cast<double>(u.fs_d.slider_max));
        row.increment = 0.1;
        break;
    case host::param_kind::angle:
        row.type = kOfxParamTypeDouble;
        set_range(row, -most_degrees, most_degrees, -180.0, 180.0);
        break;
    case host::param_kind::point:
        row.type = kOfxParamTypeDouble2D;
        row.dimension = 2;
        set_range(row, -most_fractions, most_fractions, 0.0, 1.0);
        row.increment = 0.01;
        row.digits = 4;
        break;
    case host::param_kind::color:
        row.type = kOfxParamTypeRGBA;
        row.dimension = 4;
        set_range(row, 0.0, 1.0, 0.0, 1.0);
        break;
    case host::param_kind::checkbox:
        row.type = kOfxParamTypeBoolean;
        row.whole = true;
        break;
    default: // a popup: nothing else has a value
        row.type = kOfxParamTypeChoice;
        row.whole = true;
        break;
    }
}

std::uint8_t channel(double value)
{
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255.0));
}
} // namespace

std::string camel_name(const std::string& hyphened)
{
    std::string name;
    bool raise = false;
    for (const char c : hyphened)
    {
        if (c == '-')
            raise = true;
        else
        {
            name += raise ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
            raise = false;
        }
    }
    return name;
}

std::string plain_label(const std::string& label)
{
    std::string plain;
    for (const char c : label)
        if (std::isalnum(static_cast<unsigned char>(c)) || (c == ' ' && !plain.empty() && plain.back() != ' '))
            plain += c;
    return plain;
}

param_table::param_table(const std::vector<host::param_info>& params)
{
    for (const host::param_info& info : params)
    {
        if (info.kind == host::param_kind::group_start)
            groups.push_back({camel_name(host::kebab_name(info)) + "Group", plain_label(info.label)});
        if (!info.has_value())
            continue;
        param_row row;
        row.info = &info;
        row.name = camel_name(host::kebab_name(info));
        row.label = plain_label(info.label);
        row.hint = adapter::param_hint(info.label);
        row.parent = info.topic.empty() ? "" : groups.back().name;
        fill_kind(row);
        row.initial = host_value(row, host::default_value(info));
        rows.push_back(std::move(row));
    }
}

host::param_value effect_value(const param_row& row, const numbers& given)
{
    numbers value = given;
    for (std::size_t i = 0; i < static_cast<std::size_t>(row.dimension); ++i)
    {
        if (std::isnan(value[i]))
            value[i] = row.initial[i];
        if (row.ranged)
            value[i] = std::clamp(value[i], row.minimum, row.maximum);
    }
    host::param_value result;
    switch (row.info->kind)
    {
    case host::param_kind::angle:
        result.x = -value[0];
        break;
    case host::param_kind::point:
        result = {value[0] * 100.0, (1.0 - value[1]) * 100.0, true, {}};
        break;
    case host::param_kind::color:
        result.color = {channel(value[3]), channel(value[0]), channel(value[1]), channel(value[2])};
        break;
    case host::param_kind::checkbox:
        result.x = value[0] != 0.0 ? 1.0 : 0.0;
        break;
    case host::param_kind::popup:
        result.x = std::clamp(value[0] + 1.0, row.info->minimum, row.info->maximum);
        break;
    default:
        result.x = value[0];
        break;
    }
    return result;
}

numbers host_value(const param_row& row, const host::param_value& value)
{
    switch (row.info->kind)
    {
    case host::param_kind::angle:
        return {0.0 - value.x}; // not -0
    case host::param_kind::point:
        return {value.x / 100.0, 1.0 - value.y / 100.0};
    case host::param_kind::color:
        return {value.color.red / 255.0, value.color.green / 255.0, value.color.blue / 255.0,
                value.color.alpha / 255.0};
    case host::param_kind::popup:
        return {value.x - 1.0};
    default:
        return {value.x};
    }
}
} // namespace openfx
