#pragma once
// Names of parameters where a host wants identifiers. What a person sees is the label.

#include "host/parameters.hpp"

#include <string>

namespace adapter
{
// "Normal Line Width (NLW)" -> "normal_line_width": lower-case letters, digits and underscores, another for every
// parameter of the effect. Projects are saved with it: it never changes while the label does not.
std::string script_name(const host::param_info& info);
} // namespace adapter
