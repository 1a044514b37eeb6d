#pragma once
// Ctrl-C (and a request to end) as a flag that long work looks at.

#include <atomic>

namespace cli
{
// From here on both are noted instead of ending the program, and a file that grows past a limit is a write error.
void watch_stop_signals();
const std::atomic<bool>& stop_requested();
} // namespace cli
