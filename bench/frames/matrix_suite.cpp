#include "bench/suites.hpp"

#include "bench/frames/frame_scene.hpp"
#include "bench/measure.hpp"

namespace bench
{
namespace
{
struct size
{
    int width;
    int height;
};
const size kSizes[] = {{1280, 720}, {1920, 1080}, {3840, 2160}};

// The columns "effect" and "host" of one size, for every scene.
void time_size(const run& r, const std::vector<frame_scene>& scenes, size s, PF_Quality quality,
               std::vector<std::vector<std::string>>& rows)
{
    for (std::size_t i = 0; i < scenes.size(); ++i)
    {
        frame_case frame(scenes[i], s.width, s.height, quality);
        timings host;
        series timed;
        timed.add_timed("effect",
                        [&]
                        {
                            const frame_times taken = frame.draw();
                            host.add(taken.host);
                            return taken.effect;
                        });
        timed.run(0.4 * r.effort);
        rows[i].push_back(figure(1e3 * timed.median(0)));
        rows[i].push_back(figure(1e3 * host.median()));
    }
}
} // namespace

void time_frame_matrix(run& r)
{
    for (const bool high : {true, false})
    {
        std::vector<std::string> columns = {"scene"};
        std::vector<std::vector<std::string>> rows;
        for (const frame_scene& scene : frame_scenes())
            rows.push_back({scene.name});
        for (const size s : kSizes)
        {
            columns.push_back(std::to_string(s.height) + "p effect");
            columns.push_back("host");
            time_size(r, frame_scenes(), s, high ? PF_Quality_HI : PF_Quality_LO, rows);
        }
        table t(std::string("frames at ") + (high ? "high" : "low") + " quality, milliseconds", columns);
        for (const auto& row : rows)
            t.add(row);
        r.show(t, high ? "frames_high" : "frames_low");
    }
}

void time_looks(run& r)
{
    const std::vector<frame_scene> scenes = look_scenes();
    std::vector<std::vector<std::string>> rows;
    for (const frame_scene& scene : scenes)
        rows.push_back({scene.name});
    time_size(r, scenes, {1920, 1080}, PF_Quality_HI, rows);
    table t("the looks, 1920x1080, milliseconds", {"look", "effect", "host"});
    for (const auto& row : rows)
        t.add(row);
    r.show(t, "looks");
}
} // namespace bench
