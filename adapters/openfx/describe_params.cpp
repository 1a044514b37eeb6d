#include "adapters/openfx/describe_params.hpp"

#include "adapters/openfx/api/names.hpp"
#include "adapters/openfx/describe.hpp"
#include "adapters/openfx/library.hpp"
#include "adapters/openfx/properties.hpp"

#include <vector>

namespace openfx
{
namespace
{
property_set define(OfxParamSetHandle params, const char* type, const char* name)
{
    OfxPropertySetHandle handle = nullptr;
    if (suites().param->paramDefine(params, type, name, &handle) != kOfxStatOK)
        return {};
    return property_set(handle);
}

// The label first: setting it resets the other two.
void set_texts(const property_set& param, const char* name, const char* label, const char* hint)
{
    param.set(kOfxPropLabel, label);
    param.set(kOfxPropShortLabel, label);
    param.set(kOfxPropLongLabel, label);
    param.set(kOfxParamPropScriptName, name);
    param.set(kOfxParamPropHint, hint);
}

void set_number(const property_set& param, const param_row& row, const char* property, double value, int index)
{
    if (row.whole)
        param.set(property, static_cast<int>(value), index);
    else
        param.set(property, value, index);
}

// Limits before the slider's ends: setting the first resets the others. Hosts without one of the four have been
// seen to hold every value at 0 or between -1 and 1.
void set_limits(const property_set& param, const param_row& row)
{
    const struct
    {
        const char* property;
        double value;
    } limits[] = {{kOfxParamPropMin, row.minimum},
                  {kOfxParamPropMax, row.maximum},
                  {kOfxParamPropDisplayMin, row.display_min},
                  {kOfxParamPropDisplayMax, row.display_max}};
    for (const auto& limit : limits)
        for (int i = 0; i < row.dimension; ++i)
            set_number(param, row, limit.property, limit.value, i);
}

// Entries are added at the end: none can follow one that the host did not take.
void set_choices(const property_set& param, const std::vector<const char*>& choices)
{
    int index = 0;
    for (const char* choice : choices)
        if (!param.set(kOfxParamPropChoiceOption, choice, index++))
            return;
}

std::vector<const char*> texts_of(const std::vector<std::string>& choices)
{
    std::vector<const char*> texts;
    texts.reserve(choices.size());
    for (const std::string& choice : choices)
        texts.push_back(choice.c_str());
    return texts;
}

void set_double_manner(const property_set& param, const param_row& row)
{
    const bool angle = row.info->kind == host::param_kind::angle;
    param.set(kOfxParamPropDoubleType, angle ? kOfxParamDoubleTypeAngle : kOfxParamDoubleTypePlain);
    param.set(kOfxParamPropIncrement, row.increment);
    param.set(kOfxParamPropDigits, row.digits);
}

void define_row(OfxParamSetHandle params, const param_row& row)
{
    const property_set param = define(params, row.type, row.name.c_str());
    if (!param)
        return;
    set_texts(param, row.name.c_str(), row.label.c_str(), row.hint);
    if (!row.parent.empty())
        param.set(kOfxParamPropParent, row.parent.c_str());
    if (row.info->kind == host::param_kind::popup)
        set_choices(param, texts_of(row.info->choices));
    if (row.ranged)
        set_limits(param, row);
    if (row.info->kind != host::param_kind::color && !row.whole)
        set_double_manner(param, row);
    for (int i = 0; i < row.dimension; ++i)
        set_number(param, row, kOfxParamPropDefault, row.initial[static_cast<std::size_t>(i)], i);
    param.set(kOfxParamPropAnimates, row.info->animatable ? 1 : 0);
    // Growth sums a parameter over all frames before, so a key changes what comes after it.
    if (row.info->animatable)
        param.set(kOfxParamPropCacheInvalidation, kOfxParamInvalidateValueChangeToEnd);
}

void define_members(const param_table& table, OfxParamSetHandle params, const std::string& group)
{
    for (const param_row& row : table.rows)
        if (row.parent == group)
            define_row(params, row);
}

// Shows no state of its own: choosing a look sets the other parameters and goes back to the first entry.
void define_looks(const library& lib, OfxParamSetHandle params)
{
    const property_set param = define(params, kOfxParamTypeChoice, look_param);
    if (!param)
        return;
    set_texts(param, look_param, "Look",
              "Sets all parameters to those of a look, to begin with. It is back at its first entry at once.");
    std::vector<const char*> choices = {"Choose a look"};
    for (const look& each : lib.looks)
        choices.push_back(each.label.c_str());
    set_choices(param, choices);
    param.set(kOfxParamPropDefault, 0);
    param.set(kOfxParamPropAnimates, 0);
    param.set(kOfxParamPropPersistant, 0);
    param.set(kOfxParamPropEvaluateOnChange, 0);
}
} // namespace

void define_params(const library& lib, OfxParamSetHandle params)
{
    define_looks(lib, params);
    define_members(lib.params, params, "");
    bool first = true;
    for (const group_row& group : lib.params.groups)
    {
        const property_set properties = define(params, kOfxParamTypeGroup, group.name.c_str());
        set_texts(properties, group.name.c_str(), group.label.c_str(), "");
        properties.set(kOfxParamPropGroupOpen, first ? 1 : 0);
        first = false;
        define_members(lib.params, params, group.name);
    }
}
} // namespace openfx
