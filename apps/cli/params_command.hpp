#pragma once
// What an effect registers, as a table or as JSON.

#include "host/plugin.hpp"

#include <iosfwd>

namespace cli
{
void print_params_table(const host::plugin& effect, std::ostream& out);
void print_params_json(const host::plugin& effect, std::ostream& out);
} // namespace cli
