// filigrane: the effect on the command line. Errors are one line on standard error; the exit status is 0 when all
// went well, 1 for an error, 2 for a command line that makes no sense, 128 + the signal when it was stopped.

#include "about_command.hpp"
#include "command_line.hpp"
#include "effect_file.hpp"
#include "params_command.hpp"
#include "presets_command.hpp"
#include "render_command.hpp"
#include "usage_error.hpp"

#include "host/probe.hpp"

#include <cstdio>
#include <iostream>
#include <new>
#include <sstream>

namespace
{
// The effect that belongs to this program is our own; any other is tried in a process of its own before it runs in
// this one.
host::plugin load_effect(const cli::command_line& line)
{
    if (!line.plugin)
        return host::plugin(cli::effect_file());
    host::probe_plugin(*line.plugin, host::plugin_patience());
    return host::plugin(std::filesystem::path(*line.plugin));
}

// Looked at in another process alone: no code of the file runs in this one.
std::string inspection(const std::string& file)
{
    return host::ask_in_child(file, host::plugin_patience(),
                              [](const host::plugin& effect)
                              {
                                  std::ostringstream text;
                                  cli::print_about(effect, text);
                                  text << '\n';
                                  cli::print_params_table(effect, text);
                                  return text.str();
                              });
}

int run(const cli::command_line& line)
{
    switch (line.chosen)
    {
    case cli::command::none:
        return line.status;
    case cli::command::render:
        return cli::run_render(line.render, load_effect(line), line.plugin);
    case cli::command::params:
        if (line.json)
            cli::print_params_json(load_effect(line), std::cout);
        else
            cli::print_params_table(load_effect(line), std::cout);
        return cli::exit_done;
    case cli::command::list_presets:
        cli::list_presets();
        return cli::exit_done;
    case cli::command::show_preset:
        cli::show_preset(line.preset);
        return cli::exit_done;
    case cli::command::about:
        cli::print_about(load_effect(line), std::cout);
        return cli::exit_done;
    case cli::command::inspect:
        std::cout << inspection(line.plugin.value());
        return cli::exit_done;
    }
    return cli::exit_failed;
}

int fail(const char* what, int status)
{
    std::cerr << "filigrane: " << what << '\n';
    return status;
}
} // namespace

int main(int argc, char** argv)
{
    try
    {
        const int status = run(cli::read_command_line(argc, argv));
        if (!std::cout.flush() || std::fflush(stdout) != 0)
            return fail("standard output cannot be written to", cli::exit_failed);
        return status;
    }
    catch (const cli::usage_error& wrong)
    {
        return fail(wrong.what(), cli::exit_usage);
    }
    catch (const std::bad_alloc&)
    {
        return fail("out of memory; try --jobs 1 or a smaller size", cli::exit_failed);
    }
    catch (const std::exception& failure)
    {
        return fail(failure.what(), cli::exit_failed);
    }
}
