#pragma once
// A small parameter set built by hand: one of every kind, with names that are near each other.

#include "host/parameters.hpp"

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace param_samples
{
inline host::param_info make(host::param_kind kind, std::string label, bool animatable = true)
{
    host::param_info info;
    info.kind = kind;
    info.label = std::move(label);
    info.animatable = animatable;
    return info;
}

inline host::param_info ranged(host::param_kind kind, std::string label, double minimum, double maximum,
                               bool animatable = true)
{
    host::param_info info = make(kind, std::move(label), animatable);
    info.minimum = minimum;
    info.maximum = maximum;
    info.percent = kind == host::param_kind::fixed_slider;
    return info;
}

inline std::vector<host::param_info> all_kinds()
{
    using host::param_kind;
    std::vector<host::param_info> params = {
        make(param_kind::layer, "Input"),
        make(param_kind::group_start, "Lines"),
        ranged(param_kind::slider, "Rows", 0, 100, false),
        ranged(param_kind::slider, "Random Seed", 1, 2147483647),
        ranged(param_kind::slider, "Normal Line Width (NLW)", 1, 200),
        ranged(param_kind::slider, "NLW Randomness", 0, 2000),
        ranged(param_kind::fixed_slider, "Blend Amount", 0, 1),
        ranged(param_kind::float_slider, "Turbulance", 1, 7),
        make(param_kind::angle, "Rotation"),
        make(param_kind::point, "Position"),
        make(param_kind::color, "Normal Color"),
        make(param_kind::checkbox, "Line Wrapping", false),
        make(param_kind::popup, "Affect", false),
        make(param_kind::group_end, ""),
        ranged(param_kind::slider, "Vertical Offset", -4000, 4000),
        ranged(param_kind::slider, "Horizontal Offset", -4000, 4000),
        ranged(param_kind::slider, "Columns", 0, 100, false),
        ranged(param_kind::slider, "Line Compression", -100, 100),
        make(param_kind::point, "Compression Center"),
        make(param_kind::group_start, "Columns"),
    };
    for (std::size_t i = 0; i < params.size(); ++i)
    {
        params[i].index = static_cast<int>(i);
        if (params[i].kind == param_kind::popup)
        {
            params[i].choices = {"Vert Lines", "Horz Lines", "Both"};
        }
    }
    return params;
}

inline const host::param_info& labelled(const std::vector<host::param_info>& params, const std::string& label)
{
    for (const host::param_info& info : params)
    {
        if (info.label == label)
        {
            return info;
        }
    }
    throw std::logic_error("no sample parameter " + label);
}
} // namespace param_samples
