#include "param_record.hpp"

#include "numbers.hpp"

#include <cstring>

namespace host
{
namespace
{
// A point in pixels of the downsampled picture; percentages are of the full-resolution layer.
param_value picture_point(param_value point, const composition& comp)
{
    if (point.percent)
    {
        point.x = point.x * comp.width / 100.0;
        point.y = point.y * comp.height / 100.0;
    }
    const PF_RationalScale across = comp.scale_x();
    const PF_RationalScale down = comp.scale_y();
    point.x = point.x * across.num / across.den;
    point.y = point.y * down.num / down.den;
    point.percent = false;
    return point;
}

// Keys may stand in different units, so they are brought to pixels before they are interpolated.
param_value picture_point_at(track values, const composition& comp, double seconds)
{
    if (values.elsewhere)
        return picture_point(values.at(seconds), comp);
    values.constant = picture_point(values.constant, comp);
    for (auto& key : values.keys)
        key.value = picture_point(key.value, comp);
    return values.at(seconds);
}

void set_number(PF_ParamDef& record, param_kind kind, double x)
{
    auto& u = record.u;
    switch (kind)
    {
    case param_kind::slider:
        u.sd.value = nearest_int(x);
        std::memset(u.sd.value_str, 0, sizeof u.sd.value_str);
        std::memset(u.sd.value_desc, 0, sizeof u.sd.value_desc);
        break;
    case param_kind::fixed_slider:
        u.fd.value = nearest_fixed(x);
        std::memset(u.fd.value_str, 0, sizeof u.fd.value_str);
        std::memset(u.fd.value_desc, 0, sizeof u.fd.value_desc);
        break;
    case param_kind::float_slider:
        u.fs_d.value = x;
        std::memset(u.fs_d.value_desc, 0, sizeof u.fs_d.value_desc);
        break;
    case param_kind::angle:
        u.ad.value = nearest_fixed(x);
        break;
    case param_kind::checkbox:
        u.bd.value = nearest_int(x) != 0;
        break;
    case param_kind::popup:
        u.pd.value = nearest_int(x);
        break;
    default:
        break;
    }
}
} // namespace

PF_ParamDef param_record_at(const param_info& info, const track& values, const composition& comp,
                            const PF_LayerDef& input, double seconds)
{
    PF_ParamDef record = info.definition;
    if (info.index == 0)
    {
        record.u.ld = input;
    }
    else if (info.kind == param_kind::layer)
    {
        // No layer is chosen for a layer parameter of the effect's own: a world without pixels.
        record.u.ld = PF_LayerDef{};
    }
    else if (info.kind == param_kind::point)
    {
        const param_value point = picture_point_at(values, comp, seconds);
        record.u.td.x_value = nearest_fixed(point.x);
        record.u.td.y_value = nearest_fixed(point.y);
    }
    else if (info.kind == param_kind::color)
    {
        record.u.cd.value = values.at(seconds).color;
    }
    else
    {
        set_number(record, info.kind, values.at(seconds).x);
    }
    return record;
}
} // namespace host
