#include "render_setup.hpp"

#include "arguments.hpp"
#include "looks.hpp"
#include "usage_error.hpp"

#include "host/error.hpp"
#include "host/param_text.hpp"
#include "host/preset.hpp"
#include "media/error.hpp"

#include <algorithm>
#include <thread>

namespace cli
{
namespace
{
constexpr host::frame_range default_clip_range{0, 99};
constexpr std::int32_t open_end = INT32_MAX - 1;

void open_input(const render_request& request, render_plan& plan)
{
    std::optional<media::rational> rate;
    if (request.rate)
        rate = parse_rate(*request.rate);
    if (request.input && request.size)
        throw usage_error(
            "--size is for renders without an INPUT; a picture or clip brings its own (see --downsample)");
    picture_size size;
    if (request.size)
        size = parse_size(*request.size);
    media::rational shown_rate = rate.value_or(media::rational{25, 1});
    if (request.input)
    {
        plan.input.emplace(*request.input, rate);
        const media::source_info& info = plan.input->info();
        size = {info.width, info.height};
        shown_rate = info.rate;
        plan.writing.pixel_aspect = info.pixel_aspect;
    }
    plan.comp.width = size.width;
    plan.comp.height = size.height;
    plan.comp.time_step = shown_rate.den;
    plan.comp.time_scale = static_cast<std::uint32_t>(shown_rate.num);
    plan.writing.rate = shown_rate;
}

// All frames of a moving input. An end that only reading tells is left open.
host::frame_range whole_input(const media::source_info& info, bool& length_known)
{
    length_known = info.frames.has_value();
    return {info.first, length_known ? info.first + *info.frames - 1 : open_end};
}

void choose_frames(const render_request& request, const media::output_format& format, render_plan& plan)
{
    const bool moving = plan.input && plan.input->info().kind != media::source_kind::still;
    host::frame_range available{0, open_end};
    if (moving)
        available = whole_input(plan.input->info(), plan.length_known);
    if (!request.frames)
    {
        const host::frame_range single{0, 0};
        const host::frame_range free = format.kind == media::output_kind::still ? single : default_clip_range;
        plan.range = moving ? available : free;
        return;
    }
    const frame_span asked = parse_frames(*request.frames);
    plan.range = {asked.first, asked.last};
    plan.length_known = true;
    const std::string extent =
        "has frames " + std::to_string(available.first) + " to " + std::to_string(available.last);
    if (asked.first < available.first || asked.first > available.last)
        throw media::error(*request.input + ": " + extent + "; --frames " + *request.frames +
                           " begins outside them");
    if (asked.last > available.last)
    {
        plan.notes.push_back(*request.input + " " + extent + ": the range ends there");
        plan.range.last = available.last;
    }
}

// Seen first: where NAME and VALUE stand apart, the value is taken for an INPUT.
void check_settings(const render_request& request)
{
    for (const std::string& setting : request.sets)
        if (setting.find('=') == std::string::npos)
            throw usage_error("--set \"" + setting + "\": give NAME=VALUE, as in --set \"Rows=12\"");
}

void set_values(const render_request& request, const host::plugin& effect, render_plan& plan)
{
    if (request.preset)
        host::load_preset(find_look(*request.preset), effect.params(), plan.comp, plan.values);
    for (const std::string& setting : request.sets)
    {
        const std::size_t equals = setting.find('=');
        try
        {
            const host::param_info& info = host::find_param(effect.params(), setting.substr(0, equals));
            plan.values.set(info.index, host::parse_value(info, setting.substr(equals + 1)));
        }
        catch (const host::error& wrong)
        {
            throw usage_error(wrong.what());
        }
    }
}

// Whether the checkbox of that label is there and off.
bool is_off(const host::plugin& effect, const render_plan& plan, const char* label)
{
    const auto& params = effect.params();
    const auto found = std::find_if(params.begin(), params.end(),
                                    [label](const host::param_info& info) { return info.label == label; });
    return found != params.end() && plan.values.of(found->index).constant.x == 0.0;
}

// Nobody gives a picture in order not to see it, yet both ways to see it are off by default.
void warn_of_hidden_input(const host::plugin& effect, render_plan& plan)
{
    if (plan.input && is_off(effect, plan, "Composite On Original") && is_off(effect, plan, "Use Displacement"))
        plan.notes.push_back("the input will not show: --set \"Composite On Original=on\" draws over it, "
                             "--set \"Use Displacement=on\" shifts it");
}

void choose_output(const render_request& request, const media::output_format& format, render_plan& plan)
{
    media::write_options& writing = plan.writing;
    writing.width = plan.comp.picture_width();
    writing.height = plan.comp.picture_height();
    writing.first = plan.range.first;
    // An open end means several, however many.
    writing.count = plan.length_known ? plan.range.last - plan.range.first + 1 : 2;
    writing.overwrite = request.force;
    writing.resume = request.resume;
    if (request.resume && format.kind != media::output_kind::sequence)
        throw usage_error("--resume is for numbered pictures: name the output as in out_%04d.png");
    if (request.resume && request.force)
        throw usage_error("--resume keeps what is there and --force replaces it: give one of them");
    if (plan.input && plan.input->info().audio)
    {
        if (format.kind == media::output_kind::clip)
            writing.audio_from = *request.input;
        else
            plan.notes.push_back("the audio stays behind: pictures hold none");
    }
    if (request.background)
        plan.under = parse_background(*request.background);
    if (request.background == "transparent" && !format.alpha)
        throw usage_error(request.output + ": holds no transparency; name a .png or .mov, or give a --background "
                                           "colour");
    // Without transparency to keep, what shines through is black.
    if (!format.alpha && plan.under.fill == media::background::pattern::transparent)
        plan.under = {media::background::pattern::color, 0, 0, 0};
}

// A codec or an output's name that says nothing to us is the command line's fault.
media::output_format asked_format(const render_request& request, media::write_options& writing)
{
    try
    {
        if (request.codec)
            writing.codec = media::codec_from_name(*request.codec);
        return media::format_of(request.output, writing.codec);
    }
    catch (const media::error& wrong)
    {
        throw usage_error(wrong.what());
    }
}
} // namespace

render_plan prepare_render(const render_request& request, const host::plugin& effect)
{
    check_settings(request);
    render_plan plan(effect);
    const media::output_format format = asked_format(request, plan.writing);
    plan.comp.quality = request.quality == "low" ? PF_Quality_LO : PF_Quality_HI;
    plan.comp.downsample = request.downsample;
    plan.jobs =
        request.jobs > 0 ? request.jobs : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
    open_input(request, plan);
    choose_frames(request, format, plan);
    plan.comp.total_frames = plan.length_known ? plan.range.last + 1 : 1;
    set_values(request, effect, plan);
    warn_of_hidden_input(effect, plan);
    choose_output(request, format, plan);
    return plan;
}
} // namespace cli
