#pragma once
// Signals during a render: a wish to stop as a flag that long work looks at, and an end that leaves no file
// behind.

#include <atomic>
#include <string>

namespace cli
{
// From here on the first Ctrl-C (or other wish to end) is noted instead of ending the program; the second ends it
// at once, as a crash does, but not before what is half-written is removed. Of a crash `crash_note` says what it
// means. A file that grows past a limit, and a reader of our messages that has gone, are write errors.
void watch_signals(const std::string& crash_note);
const std::atomic<bool>& stop_requested();
// The exit status of a program that was stopped by the noted signal.
int stop_status();
} // namespace cli
