#include "render_loop.hpp"

#include "stop_signal.hpp"

#include <map>
#include <mutex>

namespace cli
{
namespace
{
media::image_view as_media(host::image_view view)
{
    return {view.argb, view.width, view.height, view.rowbytes};
}

host::image_view as_host(media::image_view view)
{
    return {view.argb, view.width, view.height, view.rowbytes};
}

// The input's frames at the size that is drawn, into pictures that are transparent black before.
class frame_feed
{
public:
    explicit frame_feed(render_plan& plan) : plan_(plan)
    {
        if (plan.input && plan.comp.downsample > 1)
            full_ = media::picture(plan.comp.width, plan.comp.height);
    }

    bool fill(std::int32_t frame, host::image_view into)
    {
        if (!plan_.input)
            return true;
        const media::image_view drawn = as_media(into);
        if (plan_.comp.downsample == 1)
            return plan_.input->read(frame, drawn);
        if (!plan_.input->read(frame, full_.view()))
            return false;
        media::box_average(full_.view(), plan_.comp.downsample, drawn);
        return true;
    }

private:
    render_plan& plan_;
    media::picture full_;
};

// Finished frames over their background into the output.
class frame_drain
{
public:
    frame_drain(const render_plan& plan, media::writer& output, progress& shown)
        : plan_(plan), output_(output), shown_(shown)
    {
    }

    // What takes the time, for several frames at once. Lays the background under the frame where it stands.
    void prepare(std::int32_t number, host::image_view frame)
    {
        const media::image_view drawn = as_media(frame);
        media::lay_over(plan_.under, drawn);
        media::prepared_frame made = output_.prepare(number, drawn);
        const std::lock_guard hold(mutex_);
        prepared_.emplace(number, std::move(made));
    }

    // Prepared frames, one after the other.
    void take(std::int32_t number)
    {
        output_.write(prepared(number));
        shown_.frame_done();
    }

private:
    media::prepared_frame prepared(std::int32_t number)
    {
        const std::lock_guard hold(mutex_);
        media::prepared_frame frame(std::move(prepared_.extract(number).mapped()));
        return frame;
    }

    const render_plan& plan_;
    media::writer& output_;
    progress& shown_;
    std::mutex mutex_;
    std::map<std::int32_t, media::prepared_frame> prepared_; // of frames in flight
};

// Whether the frame's picture is there already; it is counted then.
bool found(std::int32_t frame, const media::writer& output, progress& shown, frames_done& done)
{
    if (!output.has(frame))
        return false;
    ++done.found;
    shown.frame_found();
    return true;
}

class stopwatch
{
public:
    // Milliseconds since the last call, or since it was made.
    double lap()
    {
        const auto now = std::chrono::steady_clock::now();
        const std::chrono::duration<double, std::milli> passed = now - last_;
        last_ = now;
        return passed.count();
    }

private:
    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};
} // namespace

frames_done render_all(render_plan& plan, const host::plugin& effect, media::writer& output, progress& shown)
{
    frame_feed feed(plan);
    frame_drain drain(plan, output, shown);
    std::function<bool(std::int32_t, host::image_view)> source;
    if (plan.input)
        source = [&](std::int32_t frame, host::image_view into) { return feed.fill(frame, into); };
    frames_done done;
    std::function<bool(std::int32_t)> wanted;
    if (plan.writing.resume)
        wanted = [&](std::int32_t frame) { return !found(frame, output, shown, done); };
    done.drawn = host::render_frames(
        effect, plan.comp, plan.values, plan.range, plan.jobs, source,
        [&](std::int32_t frame, host::const_image_view) { drain.take(frame); }, &stop_requested(), {},
        [&](std::int32_t frame, host::image_view drawn) { drain.prepare(frame, drawn); }, wanted);
    return done;
}

frames_done render_all_timed(render_plan& plan, const host::plugin& effect, media::writer& output, progress& shown,
                             time_spent& spent)
{
    frame_feed feed(plan);
    frame_drain drain(plan, output, shown);
    host::render_options options;
    options.timed = true;
    media::picture input(plan.comp.picture_width(), plan.comp.picture_height());
    media::picture drawn(plan.comp.picture_width(), plan.comp.picture_height());
    const host::image_view target = as_host(drawn.view());
    const host::image_view source = as_host(input.view());
    frames_done done;
    for (std::int32_t frame = plan.range.first; frame <= plan.range.last && !stop_requested(); ++frame)
    {
        if (found(frame, output, shown, done))
            continue;
        stopwatch watch;
        if (!feed.fill(frame, source))
            break;
        spent.input += watch.lap();
        const host::render_stats stats =
            host::render_frame(effect, plan.comp, plan.values, frame,
                               {source.argb, source.width, source.height, source.rowbytes}, target, options);
        spent.effect += 1000.0 * (stats.total_seconds - stats.host_seconds);
        spent.host += 1000.0 * stats.host_seconds;
        watch.lap();
        drain.prepare(frame, target);
        drain.take(frame);
        spent.output += watch.lap();
        ++done.drawn;
    }
    return done;
}
} // namespace cli
