#pragma once
// A PF effect loaded from its file. Loading runs the file's code: global set-up and parameter set-up are sent
// once, global set-down when the plug-in is let go. A loaded plug-in is immutable and may render on several
// threads.

#include "host/parameters.hpp"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace host
{
// What global set-up answered.
struct plugin_version
{
    std::uint32_t word = 0; // my_version as answered
    int major = 0, minor = 0, bugfix = 0, stage = 0, build = 0;
    std::int32_t out_flags = 0;
    std::int32_t out_flags2 = 0;
};

class plugin
{
public:
    // Called before each step that runs the file's code with the step in words, to end "it crashed": "while it was
    // loaded", "in its global set-up", "while it was asked about itself".
    using stage_watch = std::function<void(const char* stage)>;

    // Loads the file and sets the effect up. Throws host::error naming the file where it is missing, no shared
    // object, for another architecture, without the entry point, or refuses its set-up. A file that may crash or
    // hang is better met in a process of its own first: see probe.hpp.
    explicit plugin(const std::filesystem::path& file, stage_watch watch = {});
    // The same for an entry point that is linked in; `name` stands for the file in messages.
    plugin(PF_EntryPoint entry, std::string name);
    ~plugin();
    plugin(const plugin&) = delete;
    plugin& operator=(const plugin&) = delete;

    const std::string& name() const;
    const plugin_version& version() const;
    const std::vector<param_info>& params() const; // [0] is the input layer
    // The about text, asked anew. Bytes are as the effect gives them (carriage returns, 0xA9 for the circled C).
    std::string about() const;
    // The about text for a person: lines end in \n, the circled C is UTF-8.
    std::string about_utf8() const;
    PF_EntryPoint entry() const;

private:
    friend struct plugin_access; // renders carry the effect's own global data
    struct state;
    std::unique_ptr<state> state_;
};

// The file `Filigrane.so` (or the platform's name of it) beside the running binary.
std::filesystem::path plugin_beside_binary();
} // namespace host
