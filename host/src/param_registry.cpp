#include "param_registry.hpp"

#include "text.hpp"

#include <algorithm>
#include <sstream>

namespace host
{
namespace
{
constexpr std::size_t most_params = 10000;

param_kind kind_of(PF_ParamType type)
{
    switch (type)
    {
    case PF_Param_LAYER:
        return param_kind::layer;
    case PF_Param_SLIDER:
        return param_kind::slider;
    case PF_Param_FIX_SLIDER:
        return param_kind::fixed_slider;
    case PF_Param_ANGLE:
        return param_kind::angle;
    case PF_Param_CHECKBOX:
        return param_kind::checkbox;
    case PF_Param_COLOR:
        return param_kind::color;
    case PF_Param_POINT:
        return param_kind::point;
    case PF_Param_POPUP:
        return param_kind::popup;
    case PF_Param_FLOAT_SLIDER:
        return param_kind::float_slider;
    case PF_Param_GROUP_START:
        return param_kind::group_start;
    case PF_Param_GROUP_END:
        return param_kind::group_end;
    default:
        return param_kind::unknown;
    }
}

// "a|b|c" as the registered count of names; a name that is missing is empty.
std::vector<std::string> split_choices(const std::string& names, int count)
{
    std::vector<std::string> choices(static_cast<std::size_t>(std::max(count, 0)));
    std::istringstream text(names);
    for (auto& choice : choices)
        std::getline(text, choice, '|');
    return choices;
}

void read_range(param_info& info)
{
    const auto& u = info.definition.u;
    switch (info.kind)
    {
    case param_kind::slider:
        info.minimum = u.sd.valid_min;
        info.maximum = u.sd.valid_max;
        break;
    case param_kind::fixed_slider:
        info.minimum = u.fd.valid_min / 65536.0;
        info.maximum = u.fd.valid_max / 65536.0;
        info.percent = (u.fd.display_flags & PF_ValueDisplayFlag_PERCENT) != 0;
        break;
    case param_kind::float_slider:
        info.minimum = static_cast<double>(u.fs_d.valid_min);
        info.maximum = static_cast<double>(u.fs_d.valid_max);
        info.percent = (u.fs_d.display_flags & PF_ValueDisplayFlag_PERCENT) != 0;
        break;
    case param_kind::popup:
        info.minimum = 1.0;
        info.maximum = u.pd.num_choices;
        break;
    default:
        break;
    }
}
} // namespace

param_registry::param_registry()
{
    param_info input;
    input.kind = param_kind::layer;
    input.name = input.label = "Input";
    input.definition.param_type = PF_Param_LAYER;
    input.name.copy(input.definition.name, sizeof input.definition.name - 1);
    params_.push_back(std::move(input));
}

const char* param_registry::keep(const char* text)
{
    texts_.emplace_front(text ? text : "");
    return texts_.front().c_str();
}

PF_Err param_registry::add(PF_ParamIndex index, const PF_ParamDef* record)
{
    if (!record)
        return PF_Err_BAD_CALLBACK_PARAM;
    // An effect that adds without end would otherwise take all memory.
    if (params_.size() >= most_params)
        return PF_Err_OUT_OF_MEMORY;
    const auto next = static_cast<PF_ParamIndex>(params_.size());
    if (index != -1 && index != next)
        return PF_Err_INVALID_INDEX;

    param_info info;
    info.index = next;
    info.kind = kind_of(record->param_type);
    info.definition = *record;
    info.name = info.label = field_text(record->name);
    auto& u = info.definition.u;
    if (info.kind == param_kind::checkbox)
    {
        u.bd.u.nameptr = keep(u.bd.u.nameptr);
        if (*u.bd.u.nameptr != '\0')
            info.label = u.bd.u.nameptr;
    }
    if (info.kind == param_kind::popup)
    {
        u.pd.u.namesptr = keep(u.pd.u.namesptr);
        info.choices = split_choices(u.pd.u.namesptr, u.pd.num_choices);
    }
    info.animatable = info.has_value() && (record->flags & PF_ParamFlag_CANNOT_TIME_VARY) == 0;
    read_range(info);

    // A topic's end still stands in it; the topic itself stands in the one around it.
    if (!open_topics_.empty())
        info.topic = open_topics_.back();
    if (info.kind == param_kind::group_start)
        open_topics_.push_back(info.label);
    if (info.kind == param_kind::group_end && !open_topics_.empty())
        open_topics_.pop_back();
    params_.push_back(std::move(info));
    return PF_Err_NONE;
}
} // namespace host
