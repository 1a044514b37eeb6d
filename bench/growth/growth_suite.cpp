// What a frame costs as one thing about it grows.

#include "bench/suites.hpp"

#include "bench/frames/frame_scene.hpp"
#include "bench/measure.hpp"

#include <string>
#include <vector>

namespace bench
{
namespace
{
// One way to draw the frame; where it would take too long it has no figure.
struct way
{
    frame_scene scene;
    bool plain = false;
    bool timed = true;
};

class growth_table
{
public:
    // A column for each way, and the host's part of the first.
    growth_table(run& r, std::string name, const std::string& title, const std::string& what,
                 const std::vector<std::string>& ways)
        : run_(r), name_(std::move(name)), table_(title + ": milliseconds", columns(what, ways))
    {
    }
    ~growth_table() { run_.show(table_, name_); }
    growth_table(const growth_table&) = delete;
    growth_table& operator=(const growth_table&) = delete;

    void add(const std::string& x, const std::vector<way>& ways, int width = 1920, int height = 1080)
    {
        std::vector<frame_case> frames;
        for (const way& w : ways)
            frames.emplace_back(w.scene, width, height);
        timings host;
        series timed;
        std::vector<std::size_t> places(ways.size());
        for (std::size_t i = 0; i < ways.size(); ++i)
        {
            if (!ways[i].timed)
                continue;
            places[i] = timed.add_timed("way " + std::to_string(i),
                                        [&, i]
                                        {
                                            const frame_times taken = frames[i].draw(ways[i].plain);
                                            if (i == 0)
                                                host.add(taken.host);
                                            return taken.effect;
                                        });
        }
        timed.run(0.25 * run_.effort);
        std::vector<std::string> row = {x};
        for (std::size_t i = 0; i < ways.size(); ++i)
            row.push_back(ways[i].timed ? figure(1e3 * timed.median(places[i])) : "");
        row.push_back(figure(1e3 * host.median()));
        table_.add(row);
    }

private:
    static std::vector<std::string> columns(const std::string& what, const std::vector<std::string>& ways)
    {
        std::vector<std::string> all = {what};
        all.insert(all.end(), ways.begin(), ways.end());
        all.push_back("host");
        return all;
    }

    run& run_;
    std::string name_;
    table table_;
};

void grow_lines(run& r)
{
    growth_table t(r, "growth_lines", "lines of each direction, 1920x1080", "lines", {"fast", "plain"});
    for (const int lines : {1, 2, 5, 10, 20, 40, 70, 100})
    {
        const std::string n = std::to_string(lines);
        const frame_scene scene = {"", {{"Rows", n}, {"Columns", n}}};
        t.add(n, {{scene}, {scene, true}});
    }
}

void grow_width(run& r)
{
    growth_table t(r, "growth_width", "line width, 4 + 4 lines, 1920x1080", "NLW",
                   {"blended", "one colour", "plain, blended", "plain, one colour"});
    for (const int width : {1, 2, 5, 10, 20, 40, 70, 100, 150, 200})
    {
        const std::string nlw = std::to_string(width);
        const frame_scene blended = {"", {{"Normal Line Width (NLW)", nlw}}};
        const frame_scene one_color = {"", {{"Normal Line Width (NLW)", nlw}, {"Blend Amount", "0%"}}};
        const bool in_time = width <= 70;
        t.add(nlw, {{blended}, {one_color}, {blended, true, in_time}, {one_color, true, in_time}});
    }
}

void grow_frame_size(run& r)
{
    growth_table t(r, "growth_size", "frame size, defaults and 20 + 20 lines", "megapixels",
                   {"defaults", "20 + 20", "plain, defaults", "plain, 20 + 20"});
    const frame_scene defaults = {"", {}};
    const frame_scene many = {"", {{"Rows", "20"}, {"Columns", "20"}}};
    for (const int height : {180, 360, 720, 1080, 1440, 2160})
    {
        const int width = height * 16 / 9;
        t.add(figure(1e-6 * width * height), {{defaults}, {many}, {defaults, true}, {many, true}}, width, height);
    }
}

void grow_frame_number(run& r)
{
    growth_table t(r, "growth_frame", "frame number, 4 + 4 lines, 1920x1080", "frame",
                   {"with ends and growth", "endless", "plain, with ends and growth", "plain, endless"});
    for (const std::int32_t frame : {0, 10, 30, 100, 300, 1000, 3000, 10000})
    {
        const frame_scene ends = {"",
                                  {{"Lines Have Ends", "on"},
                                   {"Vertical Length", "1000"},
                                   {"Horizontal Length", "1800"},
                                   {"Growth Randomness", "50"}},
                                  frame};
        const frame_scene endless = {"", {}, frame};
        t.add(std::to_string(frame), {{ends}, {endless}, {ends, true}, {endless, true}});
    }
}

void grow_turbulence(run& r)
{
    growth_table t(r, "growth_turbulence", "turbulence, 20 + 20 lines, 1920x1080", "turbulence",
                   {"fast", "plain"});
    for (const int turbulence : {1, 2, 3, 4, 5, 6, 7})
    {
        const frame_scene scene = {
            "", {{"Turbulance", std::to_string(turbulence)}, {"Rows", "20"}, {"Columns", "20"}}};
        t.add(std::to_string(turbulence), {{scene}, {scene, true}});
    }
}
} // namespace

void time_growth(run& r)
{
    grow_lines(r);
    grow_width(r);
    grow_frame_size(r);
    grow_frame_number(r);
    grow_turbulence(r);
}
} // namespace bench
