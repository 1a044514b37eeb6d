#pragma once
// filigrane render

#include "command_line.hpp"

#include "host/plugin.hpp"

namespace cli
{
// Answers the exit status; throws usage_error, host::error or media::error. `given_plugin`: where the effect is
// not our own, its file.
int run_render(const render_request& request, const host::plugin& effect,
               const std::optional<std::string>& given_plugin);
} // namespace cli
