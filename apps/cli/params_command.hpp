#pragma once
// What an effect registers, as a table or as JSON.

#include "host/plugin.hpp"

namespace cli
{
void print_params_table(const host::plugin& effect);
void print_params_json(const host::plugin& effect);
} // namespace cli
