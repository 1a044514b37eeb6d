#include "adapters/openfx/properties.hpp"

namespace openfx
{
bool property_set::set(const char* name, int value, int index) const
{
    return handle_ && suites().property->propSetInt(handle_, name, index, value) == kOfxStatOK;
}

bool property_set::set(const char* name, double value, int index) const
{
    return handle_ && suites().property->propSetDouble(handle_, name, index, value) == kOfxStatOK;
}

bool property_set::set(const char* name, const char* value, int index) const
{
    return handle_ && suites().property->propSetString(handle_, name, index, value) == kOfxStatOK;
}

int property_set::integer(const char* name, int fallback, int index) const
{
    int value = fallback;
    if (!handle_ || suites().property->propGetInt(handle_, name, index, &value) != kOfxStatOK)
        return fallback;
    return value;
}

double property_set::number(const char* name, double fallback, int index) const
{
    double value = fallback;
    if (!handle_ || suites().property->propGetDouble(handle_, name, index, &value) != kOfxStatOK)
        return fallback;
    return value;
}

std::string property_set::text(const char* name, const char* fallback, int index) const
{
    char* value = nullptr;
    if (!handle_ || suites().property->propGetString(handle_, name, index, &value) != kOfxStatOK || !value)
        return fallback;
    return value;
}

void* property_set::pointer(const char* name) const
{
    void* value = nullptr;
    if (!handle_ || suites().property->propGetPointer(handle_, name, 0, &value) != kOfxStatOK)
        return nullptr;
    return value;
}

std::optional<OfxRectI> property_set::rectangle(const char* name) const
{
    int side[4] = {};
    for (int i = 0; i < 4; ++i)
        if (!handle_ || suites().property->propGetInt(handle_, name, i, &side[i]) != kOfxStatOK)
            return std::nullopt;
    return OfxRectI{side[0], side[1], side[2], side[3]};
}
} // namespace openfx
