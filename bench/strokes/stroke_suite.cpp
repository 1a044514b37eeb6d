#include "bench/suites.hpp"

#include "bench/measure.hpp"
#include "bench/strokes/painter.hpp"

#include <algorithm>
#include <cstdio>

namespace bench
{
namespace
{
constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

struct scene
{
    const char* name;
    int lines; // of each direction
    float radius;
    demand plain; // plain against fast
};

const scene kScenes[] = {
    {"S1", 4, 2.0f, {}},
    {"S2", 20, 2.0f, {}},
    {"S3", 40, 10.0f, at_least(10.0)},
    {"S4", 10, 40.0f, at_least(30.0)},
    {"S5", 4, 100.0f, at_least(60.0)},
};

struct contender
{
    const char* name;
    std::unique_ptr<painter> by;
    bool checked; // draws what one colour draws
};

enum place : std::size_t
{
    one_color,
    per_sample,
    cairo_stroke,
    cairo_fill,
    agg_fill,
    agg_outline,
    agg_stroke,
    plain_one_color,
    plain_per_sample,
};

std::vector<contender> contenders()
{
    const simd_level fast = chosen_simd_level();
    std::vector<contender> all;
    all.push_back({"one colour", effect_painter(kWidth, kHeight, true, fast), true});
    all.push_back({"per sample", effect_painter(kWidth, kHeight, false, fast), false});
    all.push_back({"Cairo stroke", cairo_stroke_painter(kWidth, kHeight), true});
    all.push_back({"Cairo fill", cairo_fill_painter(kWidth, kHeight), true});
    all.push_back({"AGG fill", agg_fill_painter(kWidth, kHeight), true});
    all.push_back({"AGG outline", agg_outline_painter(kWidth, kHeight), true});
    all.push_back({"AGG stroke", agg_stroke_painter(kWidth, kHeight), true});
    all.push_back({"plain one", effect_painter(kWidth, kHeight, true, simd_level::scalar), false});
    all.push_back({"plain per s.", effect_painter(kWidth, kHeight, false, simd_level::scalar), false});
    return all;
}

std::string scene_text(const scene& s)
{
    const std::string lines = std::to_string(s.lines);
    return std::string(s.name) + ": " + lines + "+" + lines + " of radius " +
           std::to_string(static_cast<int>(s.radius));
}

// What a few strokes cover, each alone on the canvas: where strokes cross, ours overwrite and others blend.
double covered_pixels(painter& by, const std::vector<wave_stroke>& strokes)
{
    double sum = 0.0;
    const std::size_t step = std::max<std::size_t>(1, strokes.size() / 8);
    for (std::size_t i = 0; i < strokes.size(); i += step)
    {
        by.clear();
        by.draw(strokes[i]);
        sum += static_cast<double>(by.alpha_sum()) / 255.0;
    }
    by.clear();
    return sum;
}

// A comparison is none where somebody draws less.
void check_coverage(run& r, const scene& s, const std::vector<contender>& all,
                    const std::vector<wave_stroke>& strokes, table& t)
{
    std::vector<double> covered;
    for (const contender& c : all)
        covered.push_back(c.checked ? covered_pixels(*c.by, strokes) : 0.0);
    const double most = *std::max_element(covered.begin(), covered.end());
    std::vector<std::string> row = {scene_text(s)};
    for (std::size_t i = 0; i < all.size(); ++i)
    {
        if (!all[i].checked)
            continue;
        row.push_back(figure(covered[i] / covered[one_color]));
        if (covered[i] < 0.95 * most)
        {
            std::printf("failed: %s draws less than 95 %% of what others draw of %s\n", all[i].name, s.name);
            r.failed = true;
        }
    }
    t.add(row);
}

std::vector<std::string> titles(const std::vector<contender>& all, bool checked_alone)
{
    std::vector<std::string> columns = {"scene"};
    for (const contender& c : all)
        if (c.checked || !checked_alone)
            columns.push_back(c.name);
    return columns;
}
} // namespace

void time_strokes(run& r)
{
    const std::vector<contender> all = contenders();
    table times("strokes across 1920x1080, one thread: milliseconds a scene", titles(all, false));
    table ratios("of those, ratios of medians", {"comparison", "ratio", "must", "met"});
    table drawn("what they cover, against ours of one colour", titles(all, true));
    for (const scene& s : kScenes)
    {
        const std::vector<wave_stroke> strokes = wave_strokes(kWidth, kHeight, s.lines, s.lines, s.radius);
        check_coverage(r, s, all, strokes, drawn);

        series timed;
        for (const contender& c : all)
            timed.add(c.name,
                      [&]
                      {
                          for (const wave_stroke& stroke : strokes)
                              c.by->draw(stroke);
                      });
        timed.run(0.4 * r.effort);

        std::vector<std::string> row = {scene_text(s)};
        for (std::size_t i = 0; i < all.size(); ++i)
            row.push_back(figure(1e3 * timed.median(i)));
        times.add(row);
        const auto compare = [&](const char* what, place a, place b, demand d)
        {
            const double ratio = timed.median(a) / timed.median(b);
            ratios.add({std::string(s.name) + ", " + what, figure(ratio), d.must(), d.met(ratio)});
        };
        compare("one colour / AGG fill", one_color, agg_fill, at_most(1.0));
        compare("per sample / AGG fill", per_sample, agg_fill, at_most(1.5));
        compare("one colour / AGG outline", one_color, agg_outline, {});
        compare("one colour / Cairo fill", one_color, cairo_fill, {});
        compare("one colour / Cairo stroke", one_color, cairo_stroke, {});
        compare("one colour / AGG stroke", one_color, agg_stroke, {});
        compare("plain / fast, one colour", plain_one_color, one_color, s.plain);
        compare("plain / fast, per sample", plain_per_sample, per_sample, s.plain);
    }
    r.show(drawn, "stroke_coverage");
    r.show(times, "strokes");
    std::printf("AGG fill and Cairo fill are handed the outline ready made; AGG outline makes it, too.\n");
    r.show(ratios, "stroke_ratios");
}

void time_wide_strokes(run& r)
{
    table t("a line of radius 200 against one of radius 20",
            {"line", "r 20, ms", "r 200, ms", "ratio", "must", "met"});
    const simd_level fast = chosen_simd_level();
    for (const bool one : {true, false})
        for (const bool vertical : {false, true})
        {
            const std::unique_ptr<painter> by = effect_painter(kWidth, kHeight, one, fast);
            series timed;
            const auto narrow = wave_strokes(kWidth, kHeight, vertical, !vertical, 20.0f);
            const auto wide = wave_strokes(kWidth, kHeight, vertical, !vertical, 200.0f);
            timed.add("20", [&] { by->draw(narrow[0]); });
            timed.add("200", [&] { by->draw(wide[0]); });
            timed.run(0.3 * r.effort);
            const double ratio = timed.median(1) / timed.median(0);
            t.add({std::string(vertical ? "vertical, " : "horizontal, ") + (one ? "one colour" : "per sample"),
                   figure(1e3 * timed.median(0)), figure(1e3 * timed.median(1)), figure(ratio),
                   at_most(12.0).must(), at_most(12.0).met(ratio)});
        }
    r.show(t, "wide_strokes");
}
} // namespace bench
