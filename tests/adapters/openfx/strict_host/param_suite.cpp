#include "tests/adapters/openfx/strict_host/objects.hpp"
#include "tests/adapters/openfx/strict_host/watch.hpp"

#include <cmath>
#include <cstdarg>

bool OfxParamStruct::whole() const
{
    return type == "OfxParamTypeInteger" || type == "OfxParamTypeBoolean" || type == "OfxParamTypeChoice";
}

int OfxParamStruct::dimension() const
{
    return type == "OfxParamTypeRGBA" ? 4 : type == "OfxParamTypeDouble2D" ? 2 : 1;
}

std::array<double, 4> OfxParamStruct::at(double time) const
{
    if (keys.empty())
        return value;
    const auto after = keys.upper_bound(time);
    if (after == keys.begin())
        return after->second;
    const auto before = std::prev(after);
    if (after == keys.end())
        return before->second;
    const double share = (time - before->first) / (after->first - before->first);
    std::array<double, 4> mixed{};
    for (std::size_t i = 0; i < 4; ++i)
        mixed[i] = before->second[i] + (after->second[i] - before->second[i]) * share;
    return mixed;
}

OfxParamStruct* OfxParamSetStruct::find(const std::string& name) const
{
    for (const auto& param : params)
        if (param->name == name)
            return param.get();
    return nullptr;
}

namespace strict
{
namespace
{
// Of the instance, alive and with a value; null, and `status` says why.
OfxParamStruct* meant(call& now, OfxParamHandle param, OfxStatus& status)
{
    status = now.failed();
    if (status != kOfxStatOK)
        return nullptr;
    status = kOfxStatErrBadHandle;
    if (!now.alive(param, "the parameter"))
        return nullptr;
    if (current_action().starts_with("OfxActionDescribe") ||
        current_action() == "OfxImageEffectActionDescribeInContext" || param->type == "OfxParamTypeGroup")
    {
        the_watch().complain("parameter " + param->name + " has no value");
        return nullptr;
    }
    status = kOfxStatOK;
    return param;
}

bool may_set(OfxStatus& status)
{
    if (current_action() == "OfxActionInstanceChanged" || current_action() == "OfxActionCreateInstance")
        return true;
    the_watch().complain("parameters are set in instance changed alone");
    status = kOfxStatFailed;
    return false;
}

void hand_out(const OfxParamStruct& param, const std::array<double, 4>& value, va_list arguments)
{
    for (int i = 0; i < param.dimension(); ++i)
        if (param.whole())
            *va_arg(arguments, int*) = static_cast<int>(std::lround(value[static_cast<std::size_t>(i)]));
        else
            *va_arg(arguments, double*) = value[static_cast<std::size_t>(i)];
}

std::array<double, 4> taken(const OfxParamStruct& param, va_list arguments)
{
    std::array<double, 4> value{};
    for (int i = 0; i < param.dimension(); ++i)
        value[static_cast<std::size_t>(i)] = param.whole() ? va_arg(arguments, int) : va_arg(arguments, double);
    return value;
}

OfxStatus define(OfxParamSetHandle set, const char* type, const char* name, OfxPropertySetHandle* properties)
{
    call now("paramDefine");
    if (now.failed() != kOfxStatOK)
        return now.failed();
    if (!now.alive(set, "the parameter set"))
        return kOfxStatErrBadHandle;
    if (current_action() != "OfxImageEffectActionDescribeInContext")
    {
        the_watch().complain("parameters are defined in describe in context alone");
        return kOfxStatFailed;
    }
    if (!known_param_type(type))
    {
        the_watch().complain(std::string("an unknown kind of parameter: ") + type);
        return kOfxStatErrUnknown;
    }
    if (set->find(name))
    {
        the_watch().complain(std::string("parameter ") + name + " is defined twice");
        return kOfxStatErrExists;
    }
    auto param = std::make_unique<OfxParamStruct>();
    param->name = name;
    param->type = type;
    make_param(param->props, type, name);
    the_watch().alive.insert(param.get());
    the_watch().alive.insert(&param->props);
    if (properties)
        *properties = the_watch().null_handles ? nullptr : &param->props;
    set->params.push_back(std::move(param));
    return kOfxStatOK;
}

OfxStatus get_handle(OfxParamSetHandle set, const char* name, OfxParamHandle* param,
                     OfxPropertySetHandle* properties)
{
    call now("paramGetHandle");
    if (now.failed() != kOfxStatOK)
        return now.failed();
    if (!now.alive(set, "the parameter set"))
        return kOfxStatErrBadHandle;
    OfxParamStruct* found = set->find(name);
    if (!found)
        return kOfxStatErrUnknown;
    *param = the_watch().null_handles ? nullptr : found;
    *properties = the_watch().null_handles ? nullptr : &found->props;
    return kOfxStatOK;
}

OfxStatus set_get_property_set(OfxParamSetHandle set, OfxPropertySetHandle* properties)
{
    call now("paramSetGetPropertySet");
    if (!now.alive(set, "the parameter set"))
        return kOfxStatErrBadHandle;
    *properties = set->props;
    return kOfxStatOK;
}

OfxStatus get_property_set(OfxParamHandle param, OfxPropertySetHandle* properties)
{
    call now("paramGetPropertySet");
    if (!now.alive(param, "the parameter"))
        return kOfxStatErrBadHandle;
    *properties = &param->props;
    return kOfxStatOK;
}

OfxStatus get_value(OfxParamHandle handle, ...)
{
    call now("paramGetValue");
    OfxStatus status = kOfxStatOK;
    const OfxParamStruct* param = meant(now, handle, status);
    if (!param)
        return status;
    va_list arguments;
    va_start(arguments, handle);
    hand_out(*param, param->at(0.0), arguments);
    va_end(arguments);
    return kOfxStatOK;
}

OfxStatus get_value_at(OfxParamHandle handle, OfxTime time, ...)
{
    call now("paramGetValueAtTime");
    OfxStatus status = kOfxStatOK;
    const OfxParamStruct* param = meant(now, handle, status);
    if (!param)
        return status;
    the_watch().times_asked.push_back(time);
    va_list arguments;
    va_start(arguments, time);
    hand_out(*param, param->at(the_watch().wants_time ? time : 0.0), arguments);
    va_end(arguments);
    return kOfxStatOK;
}

OfxStatus set_value(OfxParamHandle handle, ...)
{
    call now("paramSetValue");
    OfxStatus status = kOfxStatOK;
    OfxParamStruct* param = meant(now, handle, status);
    if (!param || !may_set(status))
        return status;
    va_list arguments;
    va_start(arguments, handle);
    param->value = taken(*param, arguments);
    va_end(arguments);
    return kOfxStatOK;
}

OfxStatus set_value_at(OfxParamHandle handle, OfxTime time, ...)
{
    call now("paramSetValueAtTime");
    OfxStatus status = kOfxStatOK;
    OfxParamStruct* param = meant(now, handle, status);
    if (!param || !may_set(status))
        return status;
    if (param->props.integer("OfxParamPropAnimates") == 0)
        the_watch().complain("parameter " + param->name + " does not animate");
    va_list arguments;
    va_start(arguments, time);
    param->keys[time] = taken(*param, arguments);
    va_end(arguments);
    return kOfxStatOK;
}

OfxStatus delete_all_keys(OfxParamHandle handle)
{
    call now("paramDeleteAllKeys");
    OfxStatus status = kOfxStatOK;
    OfxParamStruct* param = meant(now, handle, status);
    if (!param || !may_set(status))
        return status;
    param->keys.clear();
    return kOfxStatOK;
}

OfxStatus edit_begin(OfxParamSetHandle set, const char*)
{
    call now("paramEditBegin");
    if (!now.alive(set, "the parameter set"))
        return kOfxStatErrBadHandle;
    ++set->edits_open;
    ++set->edits;
    return kOfxStatOK;
}

OfxStatus edit_end(OfxParamSetHandle set)
{
    call now("paramEditEnd");
    if (!now.alive(set, "the parameter set"))
        return kOfxStatErrBadHandle;
    if (--set->edits_open < 0)
        the_watch().complain("an edit is ended that was not begun");
    return kOfxStatOK;
}
} // namespace

// Derivatives, integrals and single keys are nothing that this plug-in asks for.
const OfxParameterSuiteV1& param_suite()
{
    static const OfxParameterSuiteV1 suite = {
        define,          get_handle, set_get_property_set, get_property_set, get_value, get_value_at, nullptr,
        nullptr,         set_value,  set_value_at,         nullptr,          nullptr,   nullptr,      nullptr,
        delete_all_keys, nullptr,    edit_begin,           edit_end};
    return suite;
}
} // namespace strict
