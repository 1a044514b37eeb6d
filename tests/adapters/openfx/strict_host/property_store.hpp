#pragma once
// Property sets of the strict host: each knows exactly the properties of its kind of object, their types and
// dimensions, and which of them a plug-in may set.

#include "adapters/openfx/api/suites.hpp"

#include <map>
#include <string>
#include <variant>
#include <vector>

namespace strict
{
using prop_value = std::variant<int, double, std::string, void*>;

struct prop
{
    std::vector<prop_value> values;
    std::vector<prop_value> initial;
    bool any_dimension = false;
    bool read_only = false;
    prop_value kind; // a value of the property's type
};
} // namespace strict

// What a property set's handle points to.
struct OfxPropertySetStruct
{
    std::string what; // "the descriptor of clip Source", for complaints
    std::map<std::string, strict::prop> props;

    // The host's own access: no complaint, no limit.
    void define(const char* name, std::vector<strict::prop_value> values, bool read_only = false);
    void define_any(const char* name, strict::prop_value kind, std::vector<strict::prop_value> values = {},
                    bool read_only = false);
    void put(const char* name, std::vector<strict::prop_value> values); // of a property that is there
    bool has(const char* name) const { return props.contains(name); }
    int integer(const char* name, int index = 0) const;
    double number(const char* name, int index = 0) const;
    std::string text(const char* name, int index = 0) const;
    std::vector<std::string> texts(const char* name) const;
};

namespace strict
{
const OfxPropertySuiteV1& property_suite();
} // namespace strict
