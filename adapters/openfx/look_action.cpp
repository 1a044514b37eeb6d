#include "adapters/openfx/actions.hpp"

#include "adapters/common/frame_rate.hpp"
#include "adapters/openfx/api/names.hpp"
#include "adapters/openfx/describe.hpp"
#include "adapters/openfx/library.hpp"
#include "adapters/openfx/properties.hpp"
#include "adapters/openfx/values.hpp"

#include "host/error.hpp"
#include "host/preset.hpp"

namespace openfx
{
namespace
{
constexpr OfxPointD usual_size{1920.0, 1080.0};

// What a look's key times and pixels are counted in.
host::composition composition_of(OfxImageEffectHandle effect)
{
    OfxPropertySetHandle handle = nullptr;
    suites().effect->getPropertySet(effect, &handle);
    const property_set instance(handle);
    const double rate = instance.number(kOfxImageEffectPropFrameRate, 25.0);
    const auto side = [&instance](int index, double usual)
    {
        const double told = instance.number(kOfxImageEffectPropProjectSize, usual, index);
        return static_cast<int>(told >= 1.0 && told <= 30000.0 ? told : usual);
    };
    return adapter::composition_at(side(0, usual_size.x), side(1, usual_size.y),
                                   adapter::rate_of_number(rate).value_or(adapter::frame_rate{}));
}

// A point in pixels as one in percent.
host::param_value in_percent(host::param_value value, const host::param_info& info, const host::composition& comp)
{
    if (info.kind == host::param_kind::point && !value.percent)
    {
        value.x = value.x * 100.0 / comp.width;
        value.y = value.y * 100.0 / comp.height;
        value.percent = true;
    }
    return value;
}

void set_value(const param_row& row, OfxParamHandle param, const numbers& v)
{
    const OfxParameterSuiteV1& suite = *suites().param;
    if (row.whole)
        suite.paramSetValue(param, static_cast<int>(v[0]));
    else if (row.dimension == 1)
        suite.paramSetValue(param, v[0]);
    else if (row.dimension == 2)
        suite.paramSetValue(param, v[0], v[1]);
    else
        suite.paramSetValue(param, v[0], v[1], v[2], v[3]);
}

void set_key(const param_row& row, OfxParamHandle param, OfxTime time, const numbers& v)
{
    const OfxParameterSuiteV1& suite = *suites().param;
    if (row.whole)
        suite.paramSetValueAtTime(param, time, static_cast<int>(v[0]));
    else if (row.dimension == 1)
        suite.paramSetValueAtTime(param, time, v[0]);
    else if (row.dimension == 2)
        suite.paramSetValueAtTime(param, time, v[0], v[1]);
    else
        suite.paramSetValueAtTime(param, time, v[0], v[1], v[2], v[3]);
}

// Keys of the host's own kind stand for the look's; a host without keys has the first value.
void set_track(const param_row& row, OfxParamHandle param, const host::track& track, const host::composition& comp)
{
    const OfxParameterSuiteV1& suite = *suites().param;
    const auto shown = [&](const host::param_value& value)
    { return host_value(row, in_percent(value, *row.info, comp)); };
    if (row.info->animatable && suite.paramDeleteAllKeys)
        suite.paramDeleteAllKeys(param);
    set_value(row, param, shown(track.at(0.0)));
    if (!suite.paramSetValueAtTime)
        return;
    for (const host::keyframe& key : track.keys)
        set_key(row, param, key.seconds * comp.time_scale / comp.time_step, shown(key.value));
}

// The values of a look, and defaults where it says nothing.
void apply(const library& lib, OfxImageEffectHandle effect, OfxParamSetHandle params, const look& chosen)
{
    const auto& registered = lib.effect->plugin.params();
    const host::composition comp = composition_of(effect);
    host::param_tracks values(registered);
    host::load_preset(chosen.file, registered, comp, values);
    const OfxParameterSuiteV1& suite = *suites().param;
    if (suite.paramEditBegin)
        suite.paramEditBegin(params, chosen.label.c_str()); // one step for undo
    for (const param_row& row : lib.params.rows)
        if (const OfxParamHandle param = param_handle(params, row.name.c_str()))
            set_track(row, param, values.of(row.info->index), comp);
    if (suite.paramEditEnd)
        suite.paramEditEnd(params);
}
} // namespace

OfxStatus instance_changed(const library& lib, OfxImageEffectHandle effect, OfxPropertySetHandle in_args)
{
    const property_set arguments(in_args);
    if (arguments.text(kOfxPropName, "") != look_param ||
        arguments.text(kOfxPropChangeReason, "") != kOfxChangeUserEdited)
        return kOfxStatReplyDefault;
    OfxParamSetHandle params = nullptr;
    if (suites().effect->getParamSet(effect, &params) != kOfxStatOK)
        return kOfxStatFailed;
    const OfxParamHandle param = param_handle(params, look_param);
    int chosen = 0;
    if (!param || suites().param->paramGetValue(param, &chosen) != kOfxStatOK || chosen < 1 ||
        static_cast<std::size_t>(chosen) > lib.looks.size())
        return kOfxStatReplyDefault;
    // Back at once: some hosts name every parameter as edited when a project is opened, and what was changed since
    // must not be lost then.
    suites().param->paramSetValue(param, 0);
    try
    {
        apply(lib, effect, params, lib.looks[static_cast<std::size_t>(chosen) - 1]);
    }
    catch (const host::error& failure)
    {
        tell(effect, kOfxMessageError, failure.what());
        return kOfxStatFailed;
    }
    return kOfxStatOK;
}
} // namespace openfx
