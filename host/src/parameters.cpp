#include "host/parameters.hpp"

#include "numbers.hpp"

#include <algorithm>

namespace host
{
namespace
{
std::uint8_t mixed_channel(std::uint8_t from, std::uint8_t to, double share)
{
    return static_cast<std::uint8_t>(std::clamp(nearest_int(from + (to - from) * share), 0, 255));
}

param_value mixed(const param_value& from, const param_value& to, double share)
{
    param_value value = from;
    value.x = from.x + (to.x - from.x) * share;
    value.y = from.y + (to.y - from.y) * share;
    value.color.alpha = mixed_channel(from.color.alpha, to.color.alpha, share);
    value.color.red = mixed_channel(from.color.red, to.color.red, share);
    value.color.green = mixed_channel(from.color.green, to.color.green, share);
    value.color.blue = mixed_channel(from.color.blue, to.color.blue, share);
    return value;
}
} // namespace

const char* kind_name(param_kind kind)
{
    switch (kind)
    {
    case param_kind::layer:
        return "layer";
    case param_kind::slider:
        return "integer slider";
    case param_kind::fixed_slider:
        return "fixed slider";
    case param_kind::angle:
        return "angle";
    case param_kind::checkbox:
        return "checkbox";
    case param_kind::color:
        return "colour";
    case param_kind::point:
        return "point";
    case param_kind::popup:
        return "popup";
    case param_kind::float_slider:
        return "float slider";
    case param_kind::group_start:
        return "group start";
    case param_kind::group_end:
        return "group end";
    case param_kind::unknown:
        break;
    }
    return "unknown";
}

bool param_info::has_value() const
{
    return kind != param_kind::layer && kind != param_kind::group_start && kind != param_kind::group_end &&
           kind != param_kind::unknown;
}

param_value default_value(const param_info& info)
{
    const auto& u = info.definition.u;
    param_value value;
    switch (info.kind)
    {
    case param_kind::slider:
        value.x = u.sd.dephault;
        break;
    case param_kind::fixed_slider:
        value.x = u.fd.dephault / 65536.0;
        break;
    case param_kind::angle:
        value.x = u.ad.dephault / 65536.0;
        break;
    case param_kind::checkbox:
        value.x = u.bd.dephault != 0;
        break;
    case param_kind::color:
        value.color = u.cd.dephault;
        break;
    case param_kind::point: // registered in percent of the layer
        value.x = u.td.x_dephault / 65536.0;
        value.y = u.td.y_dephault / 65536.0;
        value.percent = true;
        break;
    case param_kind::popup:
        value.x = u.pd.dephault;
        break;
    case param_kind::float_slider:
        value.x = static_cast<double>(u.fs_d.dephault);
        break;
    default:
        break;
    }
    return value;
}

param_value track::at(double seconds) const
{
    if (elsewhere)
        return elsewhere(seconds);
    if (keys.empty())
        return constant;
    const auto after = std::upper_bound(keys.begin(), keys.end(), seconds,
                                        [](double time, const keyframe& key) { return time < key.seconds; });
    if (after == keys.begin())
        return keys.front().value;
    const keyframe& from = *(after - 1);
    if (after == keys.end() || between == interpolation::hold)
        return from.value;
    double share = (seconds - from.seconds) / (after->seconds - from.seconds);
    if (between == interpolation::smooth)
        share = share * share * (3.0 - 2.0 * share);
    return mixed(from.value, after->value, share);
}

param_tracks::param_tracks(const std::vector<param_info>& params)
{
    tracks_.resize(params.size());
    for (std::size_t i = 0; i < params.size(); ++i)
        tracks_[i].constant = default_value(params[i]);
}

void param_tracks::set(int index, param_value value)
{
    tracks_.at(static_cast<std::size_t>(index)) = track{value, {}, interpolation::linear};
}

void param_tracks::set(int index, track keyed)
{
    tracks_.at(static_cast<std::size_t>(index)) = std::move(keyed);
}

const track& param_tracks::of(int index) const
{
    return tracks_.at(static_cast<std::size_t>(index));
}

int param_tracks::count() const
{
    return static_cast<int>(tracks_.size());
}
} // namespace host
