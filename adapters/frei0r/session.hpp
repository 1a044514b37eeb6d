#pragma once
// What a process has of the adapter: the effect while a host uses it, and the table of parameters.

#include "adapters/common/effect_loan.hpp"
#include "adapters/frei0r/param_table.hpp"

#include <memory>
#include <string_view>
#include <vector>

namespace frei0r
{
// f0r_init and f0r_deinit, counted: some hosts call them for every filter, and deinit before the last instance is
// gone. The effect is loaded with the first and let go with the last, once no instance has it any more.
void begin_use();
void end_use() noexcept;

// The effect; null where it cannot be loaded, which was said on standard error.
std::shared_ptr<const adapter::loaded_effect> effect_in_use();

// The parameters, the same as long as this library is loaded: hosts keep pointers to the names. Without an effect
// the adapter's own.
const std::vector<param_row>& table();

// One line on standard error. Hosts have no other ear.
void complain(std::string_view what) noexcept;
} // namespace frei0r
