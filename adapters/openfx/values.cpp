#include "adapters/openfx/values.hpp"

#include "adapters/openfx/library.hpp"

namespace openfx
{
namespace
{
// The variadic getters take one pointer for each dimension; what they do not write stays the default.
OfxStatus read_wholes(OfxParamHandle param, OfxTime time, int& value)
{
    const OfxParameterSuiteV1& suite = *suites().param;
    const int fallback = value;
    if (suite.paramGetValueAtTime && suite.paramGetValueAtTime(param, time, &value) == kOfxStatOK)
        return kOfxStatOK;
    value = fallback;
    return suite.paramGetValue ? suite.paramGetValue(param, &value) : kOfxStatErrUnsupported;
}

OfxStatus get_doubles(OfxParamHandle param, const OfxTime* time, int dimension, double* v)
{
    const OfxParameterSuiteV1& suite = *suites().param;
    if (time ? !suite.paramGetValueAtTime : !suite.paramGetValue)
        return kOfxStatErrUnsupported;
    switch (dimension)
    {
    case 1:
        return time ? suite.paramGetValueAtTime(param, *time, v) : suite.paramGetValue(param, v);
    case 2:
        return time ? suite.paramGetValueAtTime(param, *time, v, v + 1) : suite.paramGetValue(param, v, v + 1);
    default:
        return time ? suite.paramGetValueAtTime(param, *time, v, v + 1, v + 2, v + 3)
                    : suite.paramGetValue(param, v, v + 1, v + 2, v + 3);
    }
}
} // namespace

numbers read_value(const param_row& row, OfxParamHandle param, OfxTime time)
{
    if (!param)
        return row.initial;
    if (row.whole)
    {
        int value = static_cast<int>(row.initial[0]);
        return read_wholes(param, time, value) == kOfxStatOK ? numbers{static_cast<double>(value)} : row.initial;
    }
    for (const OfxTime* when : {static_cast<const OfxTime*>(&time), static_cast<const OfxTime*>(nullptr)})
    {
        numbers value = row.initial;
        if (get_doubles(param, when, row.dimension, value.data()) == kOfxStatOK)
            return value;
    }
    return row.initial;
}

OfxParamHandle param_handle(OfxParamSetHandle set, const char* name)
{
    OfxParamHandle param = nullptr;
    OfxPropertySetHandle properties = nullptr; // not every host bears a null here
    if (!set || suites().param->paramGetHandle(set, name, &param, &properties) != kOfxStatOK)
        return nullptr;
    return param;
}

OfxParamSetHandle params_of(OfxImageEffectHandle effect)
{
    OfxParamSetHandle params = nullptr;
    return suites().effect->getParamSet(effect, &params) == kOfxStatOK ? params : nullptr;
}

frame_values::frame_values(const library& lib, OfxParamSetHandle params, OfxTime time, std::int32_t frame)
    : lib_(lib), time_(time), frame_(frame), known_(lib.params.rows.size())
{
    for (const param_row& row : lib.params.rows)
        handles_.push_back(param_handle(params, row.name.c_str()));
}

const host::param_value& frame_values::at(std::size_t row, double frame)
{
    const auto known = known_[row].find(frame);
    if (known != known_[row].end())
        return known->second;
    const param_row& meant = lib_.params.rows[row];
    const OfxTime time = frame == frame_ ? time_ : frame;
    return known_[row][frame] = effect_value(meant, read_value(meant, handles_[row], time));
}

host::param_tracks frame_values::tracks()
{
    host::param_tracks tracks(lib_.effect->plugin.params());
    for (std::size_t row = 0; row < handles_.size(); ++row)
    {
        host::track asked;
        asked.elsewhere = [this, row](double frame) { return at(row, frame); };
        tracks.set(lib_.params.rows[row].info->index, std::move(asked));
    }
    return tracks;
}

double frame_values::number(const char* label)
{
    for (std::size_t row = 0; row < handles_.size(); ++row)
        if (lib_.params.rows[row].info->label == label)
            return at(row, frame_).x;
    return 0.0;
}
} // namespace openfx
