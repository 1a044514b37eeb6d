#pragma once
// What an effect says of itself.

#include "host/plugin.hpp"

namespace cli
{
void print_about(const host::plugin& effect);
} // namespace cli
