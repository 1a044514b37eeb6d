#include "render_command.hpp"

#include "arguments.hpp"
#include "render_loop.hpp"
#include "stop_signal.hpp"
#include "usage_error.hpp"

#include "media/error.hpp"

#include <cstdio>
#include <iostream>

namespace cli
{
namespace
{
void print_notes(const std::vector<std::string>& notes, bool quiet)
{
    for (const std::string& note : notes)
        if (!quiet)
            std::cerr << "filigrane: note: " << note << '\n';
}

std::string frames_text(std::int32_t count)
{
    return std::to_string(count) + (count == 1 ? " frame" : " frames");
}

void print_summary(const render_request& request, const render_plan& plan, const media::writer& output,
                   const frames_done& done, double seconds)
{
    char took[32];
    std::snprintf(took, sizeof took, "%.1f s", seconds);
    const std::string there = done.found > 0 ? " (" + std::to_string(done.found) + " were there)" : "";
    std::cerr << "filigrane: " << request.output << ": " << frames_text(done.all()) << there << ", "
              << output.width() << 'x' << output.height() << ", " << rate_text(plan.writing.rate) << " fps, in "
              << took << '\n';
}

void print_timing(const time_spent& spent, std::int32_t count)
{
    std::printf("ms per frame: effect %.2f, host %.2f, input %.2f, output %.2f (%s)\n", spent.effect / count,
                spent.host / count, spent.input / count, spent.output / count, frames_text(count).c_str());
}

int report_stop(const render_request& request, bool sequence, std::int32_t count)
{
    std::cerr << "filigrane: stopped; "
              << (sequence ? frames_text(count) + " written" : request.output + " was not written") << '\n';
    return stop_status();
}

std::string crash_note(const std::optional<std::string>& given_plugin)
{
    return (given_plugin ? *given_plugin + " crashed while it drew, or this program did; try it without --plugin"
                         : std::string("crashed while drawing; please report the command line")) +
           " (nothing half-written is left)";
}
} // namespace

int run_render(const render_request& request, const host::plugin& effect,
               const std::optional<std::string>& given_plugin)
{
    watch_signals(crash_note(given_plugin));
    render_plan plan = prepare_render(request, effect);
    media::writer output(request.output, plan.writing);
    print_notes(plan.notes, request.quiet);
    print_notes(output.notes(), request.quiet);

    std::optional<std::int32_t> total;
    if (plan.length_known)
        total = plan.range.last - plan.range.first + 1;
    progress shown(total, request.quiet);
    time_spent spent;
    const frames_done done = request.timing ? render_all_timed(plan, effect, output, shown, spent)
                                            : render_all(plan, effect, output, shown);
    shown.clear();
    // A stop that comes when every frame is there has nothing left to stop.
    if (stop_requested() && done.all() != total)
        return report_stop(
            request, media::format_of(request.output, plan.writing.codec).kind == media::output_kind::sequence,
            done.drawn);
    if (done.all() == 0)
        throw media::error(*request.input + ": ends before frame " + std::to_string(plan.range.first));
    output.finish();
    if (total && done.all() < *total)
        print_notes({*request.input + " ended after " + frames_text(done.all())}, request.quiet);
    if (!request.quiet)
        print_summary(request, plan, output, done, shown.seconds());
    if (request.timing && done.drawn > 0)
        print_timing(spent, done.drawn);
    return exit_done;
}
} // namespace cli
