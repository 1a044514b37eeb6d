#pragma once
// filigrane render

#include "command_line.hpp"

#include "host/plugin.hpp"

namespace cli
{
// Answers the exit status; throws usage_error, host::error or media::error.
int run_render(const render_request& request, const host::plugin& effect);
} // namespace cli
