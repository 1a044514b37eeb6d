#pragma once
// A plug-in file is code, and loading it runs that code. Here a file that nobody vouches for is met in a process
// of its own first: what crashes, hangs or ends the process there is an error of one line here.
//
// This is no sandbox. It keeps a defective file from taking this process with it; what a malicious one does, it
// does with the rights of whoever runs this. Not there on Windows, which has no fork.

#include "host/plugin.hpp"

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>

namespace host
{
// Ten seconds, or as many as FILIGRANE_PLUGIN_TIMEOUT says. Throws host::error where that is no number above 0.
std::chrono::milliseconds plugin_patience();

// Loads the file in a child process, asks `question` there about the effect that was set up, lets it go, and
// answers what `question` returned. Throws host::error naming the file, and the step where it went wrong: whatever
// plugin and `question` throw, a signal, an end of the process, and no answer within `patience`.
//
// What the effect prints is not shown. To be called before this process has several threads: the child would be
// without them, and perhaps with what they had locked.
std::string ask_in_child(const std::filesystem::path& file, std::chrono::milliseconds patience,
                         const std::function<std::string(const plugin& effect)>& question);

// Whether the effect can be loaded, set up and let go.
void probe_plugin(const std::filesystem::path& file, std::chrono::milliseconds patience);
} // namespace host
