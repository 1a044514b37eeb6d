#pragma once
// What an effect says of itself.

#include "host/plugin.hpp"

#include <iosfwd>

namespace cli
{
void print_about(const host::plugin& effect, std::ostream& out);
} // namespace cli
