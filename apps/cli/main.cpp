// filigrane: the effect on the command line. Errors are one line on standard error; the exit status is 0 when all
// went well, 1 for an error, 2 for a command line that makes no sense, 130 when it was stopped.

#include "about_command.hpp"
#include "command_line.hpp"
#include "params_command.hpp"
#include "presets_command.hpp"
#include "render_command.hpp"
#include "usage_error.hpp"

#include <cstdio>
#include <iostream>
#include <new>

namespace
{
host::plugin load_effect(const cli::command_line& line)
{
    return host::plugin(line.plugin ? std::filesystem::path(*line.plugin) : host::plugin_beside_binary());
}

int run(const cli::command_line& line)
{
    switch (line.chosen)
    {
    case cli::command::none:
        return line.status;
    case cli::command::render:
        return cli::run_render(line.render, load_effect(line));
    case cli::command::params:
        if (line.json)
            cli::print_params_json(load_effect(line));
        else
            cli::print_params_table(load_effect(line));
        return cli::exit_done;
    case cli::command::list_presets:
        cli::list_presets();
        return cli::exit_done;
    case cli::command::show_preset:
        cli::show_preset(line.preset);
        return cli::exit_done;
    case cli::command::about:
        cli::print_about(load_effect(line));
        return cli::exit_done;
    case cli::command::inspect:
    {
        const host::plugin effect(std::filesystem::path(line.plugin.value()));
        cli::print_about(effect);
        std::cout << '\n';
        cli::print_params_table(effect);
        return cli::exit_done;
    }
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
