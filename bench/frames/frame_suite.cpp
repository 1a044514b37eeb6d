#include "bench/suites.hpp"

#include "bench/frames/frame_scene.hpp"
#include "bench/measure.hpp"

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
    double least; // plain against fast
};

const comparison kComparisons[] = {
    {"defaults", 1920, 1080, 7.0},
    {"20 x 20", 1920, 1080, 12.0},
    {"NLW 60 blended", 1920, 1080, 30.0},
    {"NLW 60 one colour", 1920, 1080, 40.0},
    {"ends growth frame 100", 1920, 1080, 5.0},
    {"displacement", 1920, 1080, 5.0},
    {"angular Affect 2", 1920, 1080, 5.0},
    {"all randomness rotated", 1920, 1080, 5.0},
    {"defaults", 3840, 2160, 5.0},
};
} // namespace

void time_frames(run& r)
{
    table t("frames at high quality, milliseconds: the effect's own time, fast and plain",
            {"frame", "fast", "plain", "host", "ratio", "must", "met"});
    for (const comparison& c : kComparisons)
    {
        frame_case frame(frame_scene_named(c.scene), c.width, c.height);
        timings host;
        series timed;
        const std::size_t fast = timed.add_timed("fast",
                                                 [&]
                                                 {
                                                     const frame_times taken = frame.draw();
                                                     host.add(taken.host);
                                                     return taken.effect;
                                                 });
        const std::size_t plain = timed.add_timed("plain", [&] { return frame.draw(true).effect; });
        frame.draw();
        const std::vector<std::uint8_t> drawn = frame.picture();
        timed.run(0.5 * r.effort);
        frame.draw(true);
        const std::string name = std::string(c.scene) + ", " + std::to_string(c.height) + "p";
        if (frame.picture() != drawn)
        {
            std::printf("failed: plain and fast draw different pictures of %s\n", name.c_str());
            r.failed = true;
        }
        const double ratio = timed.median(plain) / timed.median(fast);
        const demand d = at_least(c.least);
        t.add({name, figure(1e3 * timed.median(fast)), figure(1e3 * timed.median(plain)),
               figure(1e3 * host.median()), figure(ratio), d.must(), d.met(ratio)});
    }
    r.show(t, "frames");
}
} // namespace bench
