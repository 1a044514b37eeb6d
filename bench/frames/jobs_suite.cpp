#include "bench/suites.hpp"

#include "bench/frames/frame_scene.hpp"
#include "bench/measure.hpp"

#include "host/frame_pool.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace bench
{
namespace
{
struct comparison
{
    const char* scene;
    int width;
    int height;
    std::int32_t frames;
    demand two; // jobs against one
};

const comparison kComparisons[] = {
    {"defaults", 1920, 1080, 48, at_least(1.85)},
    {"20 x 20", 1920, 1080, 24, {}},
    {"all randomness rotated", 1920, 1080, 24, {}},
    {"defaults", 3840, 2160, 12, {}},
};

// Frames in a row, nothing encoded: seconds by a wall clock, and a number that tells their pixels.
struct frames_drawn
{
    double seconds = 0.0;
    std::uint64_t picture = 0;
};

frames_drawn draw_frames(const host::plugin& effect, const comparison& c, int jobs)
{
    host::composition comp;
    comp.width = c.width;
    comp.height = c.height;
    comp.total_frames = 1000;
    const host::param_tracks values = scene_values(frame_scene_named(c.scene), effect, comp);
    frames_drawn drawn;
    const auto begin = std::chrono::steady_clock::now();
    host::render_frames(effect, comp, values, {0, c.frames - 1}, jobs, {},
                        [&](std::int32_t, host::const_image_view output)
                        {
                            // A row is enough to tell frames apart, and costs nothing beside them.
                            const std::uint8_t* const row =
                                output.argb + static_cast<std::ptrdiff_t>(output.height / 2) * output.rowbytes;
                            for (int i = 0; i < output.width * 4; ++i)
                                drawn.picture = drawn.picture * 31 + row[i];
                        });
    drawn.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    return drawn;
}
} // namespace

void time_jobs(run& r)
{
    const host::plugin effect(FILIGRANE_BUILT_PLUGIN);
    table t("frames in a row through the host, nothing encoded: milliseconds a frame by a wall clock",
            {"frame", "one job", "two jobs", "one / two", "must", "met"});
    for (const comparison& c : kComparisons)
    {
        const std::string name = std::string(c.scene) + ", " + std::to_string(c.height) + "p";
        if (draw_frames(effect, c, 1).picture != draw_frames(effect, c, 2).picture)
        {
            std::printf("failed: two jobs draw other pictures of %s than one\n", name.c_str());
            r.failed = true;
        }
        series timed;
        const std::size_t one = timed.add_timed("one", [&] { return draw_frames(effect, c, 1).seconds; });
        const std::size_t two = timed.add_timed("two", [&] { return draw_frames(effect, c, 2).seconds; });
        timed.run(4.0 * r.effort);
        const double ratio = timed.median(one) / timed.median(two);
        t.add({name, figure(1e3 * timed.median(one) / c.frames), figure(1e3 * timed.median(two) / c.frames),
               figure(ratio), c.two.must(), c.two.met(ratio)});
    }
    r.show(t, "jobs");
}
} // namespace bench
