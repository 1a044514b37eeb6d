#pragma once
// A host's property set. Hosts lack properties, or refuse to have them set: reading falls back, setting is
// skipped, and whoever cannot do without looks at the answer. One value at a time: not every host has more.

#include "adapters/openfx/suites.hpp"

#include <optional>
#include <string>

namespace openfx
{
class property_set
{
public:
    property_set() = default;
    explicit property_set(OfxPropertySetHandle handle) : handle_(handle) {}

    explicit operator bool() const { return handle_ != nullptr; }

    // True where the host took the value. Text must live as long as the library: hosts have been seen to keep the
    // pointer.
    bool set(const char* name, int value, int index = 0) const;
    bool set(const char* name, double value, int index = 0) const;
    bool set(const char* name, const char* value, int index = 0) const;

    int integer(const char* name, int fallback, int index = 0) const;
    double number(const char* name, double fallback, int index = 0) const;
    std::string text(const char* name, const char* fallback, int index = 0) const;
    void* pointer(const char* name) const; // null where there is none
    // x1, y1, x2, y2; nothing where one of them is missing.
    std::optional<OfxRectI> rectangle(const char* name) const;

private:
    OfxPropertySetHandle handle_ = nullptr;
};
} // namespace openfx
