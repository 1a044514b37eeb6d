#pragma once
// Parameters by name and values as a person writes them. Every failure is a host::error of one line that names the
// parameter and says what would do (nearest names, range, examples).

#include "host/parameters.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace host
{
// "Normal Line Width (NLW)" -> "normal-line-width", "Make Size Match Layer Size" -> "make-size-match-layer-size":
// lower case, what stands in brackets dropped, every run of other characters one hyphen.
std::string kebab_name(const param_info& info);

// Finds a parameter that has a value by its label (any case), its kebab form or its index. Throws host::error
// naming the nearest labels for an unknown name, and saying so for a group or layer.
const param_info& find_param(const std::vector<param_info>& params, std::string_view name);

// Reads "12", "0.75", "50%", "45deg", "#ff8800", "#80ff8800" (alpha first), "960,540", "50%,50%", "on", "off",
// "true", "no", "Horz Lines", "2" as the parameter's kind asks. Throws host::error for anything else (trailing
// text and not-a-number included) and for a value outside the registered range.
param_value parse_value(const param_info& info, std::string_view text);

// The value as text that parse_value reads back to the same value.
std::string format_value(const param_info& info, const param_value& value);

// The range or the choices, for people: "2 to 2000", "0% to 100%", "on or off", "Vert Lines, Horz Lines or Both".
std::string range_text(const param_info& info);
} // namespace host
