#pragma once
// What a host is told about the effect, in the two describing actions.

#include "adapters/openfx/suites.hpp"

#include <string>

namespace openfx
{
struct library;

inline constexpr char look_param[] = "look";

OfxStatus describe(const library& lib, OfxImageEffectHandle effect);
OfxStatus describe_in_context(const library& lib, OfxImageEffectHandle effect, const std::string& context);
} // namespace openfx
