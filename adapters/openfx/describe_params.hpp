#pragma once
// The parameters as they are defined in a context.

#include "adapters/openfx/suites.hpp"

namespace openfx
{
struct library;

// Defines the choice of looks, the groups, and every parameter in its group. A parameter that the host does not
// take is left out, and drawn with its default.
void define_params(const library& lib, OfxParamSetHandle params);
} // namespace openfx
