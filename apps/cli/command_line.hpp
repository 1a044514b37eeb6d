#pragma once
// The commands and options as typed. Everything stays text here; what it means is for the commands to say.

#include <optional>
#include <string>
#include <vector>

namespace cli
{
struct render_request
{
    std::optional<std::string> input;
    std::string output;
    std::optional<std::string> size;
    std::optional<std::string> rate;
    std::optional<std::string> frames;
    std::vector<std::string> sets; // "NAME=VALUE", in order
    std::optional<std::string> preset;
    std::string quality = "high";
    int downsample = 1;
    int jobs = 0; // 0: one for each hardware thread
    std::optional<std::string> background;
    std::optional<std::string> codec;
    bool force = false;
    bool resume = false;
    bool quiet = false;
    bool timing = false;
};

enum class command
{
    none, // help or the version was printed, or the line made no sense: `status` says which
    render,
    params,
    list_presets,
    show_preset,
    about,
    inspect,
};

struct command_line
{
    command chosen = command::none;
    int status = 0;
    render_request render;
    std::optional<std::string> plugin; // the one beside the binary when not given
    std::string preset;                // to be shown
    bool json = false;
};

// Prints help, the version and complaints itself.
command_line read_command_line(int argc, char** argv);
} // namespace cli
