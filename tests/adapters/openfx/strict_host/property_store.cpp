#include "tests/adapters/openfx/strict_host/property_store.hpp"

#include "tests/adapters/openfx/strict_host/watch.hpp"

#include <algorithm>

using strict::call;
using strict::prop;
using strict::prop_value;

void OfxPropertySetStruct::define(const char* name, std::vector<prop_value> values, bool read_only)
{
    prop p;
    p.kind = values.at(0);
    p.values = values;
    p.initial = std::move(values);
    p.read_only = read_only;
    props[name] = std::move(p);
}

void OfxPropertySetStruct::define_any(const char* name, prop_value kind, std::vector<prop_value> values,
                                      bool read_only)
{
    prop p;
    p.kind = std::move(kind);
    p.values = values;
    p.initial = std::move(values);
    p.any_dimension = true;
    p.read_only = read_only;
    props[name] = std::move(p);
}

void OfxPropertySetStruct::put(const char* name, std::vector<prop_value> values)
{
    props.at(name).values = std::move(values);
}

int OfxPropertySetStruct::integer(const char* name, int index) const
{
    return std::get<int>(props.at(name).values.at(static_cast<std::size_t>(index)));
}

double OfxPropertySetStruct::number(const char* name, int index) const
{
    return std::get<double>(props.at(name).values.at(static_cast<std::size_t>(index)));
}

std::string OfxPropertySetStruct::text(const char* name, int index) const
{
    return std::get<std::string>(props.at(name).values.at(static_cast<std::size_t>(index)));
}

std::vector<std::string> OfxPropertySetStruct::texts(const char* name) const
{
    std::vector<std::string> all;
    for (const prop_value& value : props.at(name).values)
        all.push_back(std::get<std::string>(value));
    return all;
}

namespace strict
{
namespace
{
// The property meant, of the right type; null, and `status` says why, where there is none.
prop* meant(call& now, OfxPropertySetHandle set, const char* name, const prop_value* typed, bool to_set,
            OfxStatus& status)
{
    watch& host = the_watch();
    status = now.failed();
    if (status != kOfxStatOK)
        return nullptr;
    status = kOfxStatErrBadHandle;
    if (!now.alive(set, "the property set"))
        return nullptr;
    status = kOfxStatErrUnknown;
    if (!name)
    {
        host.complain("a property without a name, of " + set->what);
        return nullptr;
    }
    if (host.missing.contains(name))
        return nullptr;
    const auto found = set->props.find(name);
    // Which order the bytes of pixels have is asked of every host, and told by one family of them.
    if (found == set->props.end())
    {
        if (std::string(name) != "OfxImageEffectPropPixelOrder")
            host.complain(set->what + " has no property " + name);
        return nullptr;
    }
    if (typed && found->second.kind.index() != typed->index())
    {
        host.complain(std::string(name) + " of " + set->what + " has another type");
        return nullptr;
    }
    if (to_set && found->second.read_only)
    {
        host.complain(std::string(name) + " of " + set->what + " cannot be set");
        status = kOfxStatErrValue;
        return nullptr;
    }
    status = kOfxStatOK;
    return &found->second;
}

OfxStatus set_at(OfxPropertySetHandle set, const char* name, int index, prop_value value, const char* function)
{
    call now(function);
    OfxStatus status = kOfxStatOK;
    prop* p = meant(now, set, name, &value, true, status);
    if (!p)
        return status;
    const auto count = static_cast<int>(p->values.size());
    if (index < 0 || index > count || (index == count && !p->any_dimension))
    {
        the_watch().complain(std::string(name) + " of " + set->what + " has no index " + std::to_string(index));
        return kOfxStatErrBadIndex;
    }
    if (index == count)
        p->values.emplace_back();
    p->values[static_cast<std::size_t>(index)] = std::move(value);
    return kOfxStatOK;
}

template <class T>
OfxStatus get_at(OfxPropertySetHandle set, const char* name, int index, T* value, const char* function)
{
    call now(function);
    using stored = std::conditional_t<std::is_same_v<T, char*>, std::string, T>;
    const prop_value typed = stored{};
    OfxStatus status = kOfxStatOK;
    const prop* p = meant(now, set, name, &typed, false, status);
    if (!p)
        return status;
    if (index < 0 || static_cast<std::size_t>(index) >= p->values.size())
    {
        the_watch().complain(std::string(name) + " of " + set->what + " has no index " + std::to_string(index));
        return kOfxStatErrBadIndex;
    }
    const prop_value& from = p->values[static_cast<std::size_t>(index)];
    if constexpr (std::is_same_v<T, char*>)
        *value = lend(std::get<std::string>(from));
    else
        *value = std::get<T>(from);
    return kOfxStatOK;
}

OfxStatus set_pointer(OfxPropertySetHandle set, const char* name, int index, void* value)
{
    return set_at(set, name, index, value, "propSetPointer");
}
OfxStatus set_string(OfxPropertySetHandle set, const char* name, int index, const char* value)
{
    if (!value)
    {
        the_watch().complain(std::string(name) + " is set to no text");
        return kOfxStatErrValue;
    }
    {
        const std::lock_guard hold(the_watch().guard);
        the_watch().texts_given.emplace_back(value, value);
    }
    return set_at(set, name, index, std::string(value), "propSetString");
}
OfxStatus set_double(OfxPropertySetHandle set, const char* name, int index, double value)
{
    return set_at(set, name, index, value, "propSetDouble");
}
OfxStatus set_int(OfxPropertySetHandle set, const char* name, int index, int value)
{
    return set_at(set, name, index, value, "propSetInt");
}
OfxStatus get_pointer(OfxPropertySetHandle set, const char* name, int index, void** value)
{
    return get_at(set, name, index, value, "propGetPointer");
}
OfxStatus get_string(OfxPropertySetHandle set, const char* name, int index, char** value)
{
    return get_at(set, name, index, value, "propGetString");
}
OfxStatus get_double(OfxPropertySetHandle set, const char* name, int index, double* value)
{
    return get_at(set, name, index, value, "propGetDouble");
}
OfxStatus get_int(OfxPropertySetHandle set, const char* name, int index, int* value)
{
    return get_at(set, name, index, value, "propGetInt");
}

// Several values at once: one after the other, a property of any dimension made as long first.
template <class T, class Set>
OfxStatus set_n(OfxPropertySetHandle set, const char* name, int count, const T* value, Set set_one)
{
    OfxStatus status = kOfxStatOK;
    for (int i = 0; i < count && status == kOfxStatOK; ++i)
        status = set_one(set, name, i, value[i]);
    return status;
}
template <class T, class Get>
OfxStatus get_n(OfxPropertySetHandle set, const char* name, int count, T* value, Get get_one)
{
    OfxStatus status = kOfxStatOK;
    for (int i = 0; i < count && status == kOfxStatOK; ++i)
        status = get_one(set, name, i, value + i);
    return status;
}
OfxStatus set_pointer_n(OfxPropertySetHandle s, const char* n, int c, void* const* v)
{
    return set_n(s, n, c, v, set_pointer);
}
OfxStatus set_string_n(OfxPropertySetHandle s, const char* n, int c, const char* const* v)
{
    return set_n(s, n, c, v, set_string);
}
OfxStatus set_double_n(OfxPropertySetHandle s, const char* n, int c, const double* v)
{
    return set_n(s, n, c, v, set_double);
}
OfxStatus set_int_n(OfxPropertySetHandle s, const char* n, int c, const int* v)
{
    return set_n(s, n, c, v, set_int);
}
OfxStatus get_pointer_n(OfxPropertySetHandle s, const char* n, int c, void** v)
{
    return get_n(s, n, c, v, get_pointer);
}
OfxStatus get_string_n(OfxPropertySetHandle s, const char* n, int c, char** v)
{
    return get_n(s, n, c, v, get_string);
}
OfxStatus get_double_n(OfxPropertySetHandle s, const char* n, int c, double* v)
{
    return get_n(s, n, c, v, get_double);
}
OfxStatus get_int_n(OfxPropertySetHandle s, const char* n, int c, int* v)
{
    return get_n(s, n, c, v, get_int);
}

OfxStatus reset(OfxPropertySetHandle set, const char* name)
{
    call now("propReset");
    OfxStatus status = kOfxStatOK;
    prop* p = meant(now, set, name, nullptr, true, status);
    if (p)
        p->values = p->initial;
    return status;
}

OfxStatus dimension(OfxPropertySetHandle set, const char* name, int* count)
{
    call now("propGetDimension");
    OfxStatus status = kOfxStatOK;
    const prop* p = meant(now, set, name, nullptr, false, status);
    if (p)
        *count = static_cast<int>(p->values.size());
    return status;
}
} // namespace

const OfxPropertySuiteV1& property_suite()
{
    static const OfxPropertySuiteV1 suite = {
        set_pointer,   set_string,   set_double,   set_int,    set_pointer_n, set_string_n,
        set_double_n,  set_int_n,    get_pointer,  get_string, get_double,    get_int,
        get_pointer_n, get_string_n, get_double_n, get_int_n,  reset,         dimension};
    return suite;
}
} // namespace strict
