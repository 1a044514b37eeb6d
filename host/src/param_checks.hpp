#pragma once
// What the readers of parameter values share: the one place that says what a parameter takes.

#include "host/parameters.hpp"

#include <string>
#include <string_view>

namespace host
{
// Throws host::error: "Rows" takes a whole number, 0 to 100, not <what was given>.
[[noreturn]] void refuse_value(const param_info& info, std::string_view given);

// A number as the value of a slider of any kind, an angle, a popup or a checkbox (0 or 1). Throws host::error
// where the number is out of range, has a fraction that the kind does not take, or the kind takes no single
// number.
param_value value_of_number(const param_info& info, double number, std::string_view given);
} // namespace host
