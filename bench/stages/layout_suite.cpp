// From the ripple to the samples: what happens to a line before it is a stroke.

#include "bench/suites.hpp"

#include "bench/measure.hpp"
#include "bench/stages/frame_bed.hpp"

#include "effect/layout/crossing.hpp"
#include "effect/layout/sp_line.hpp"
#include "effect/model/curve.hpp"
#include "effect/model/numeric.hpp"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <vector>

namespace bench
{
namespace
{
constexpr unsigned kSeed = 4711;

// A horizontal rippled line through the middle of the grid.
struct rippled
{
    explicit rippled(frame_data& frame)
        : ripple(pool_new<curve>(frame.pool, &frame, kSeed, 0, frame.frameNumber, frame.turbulence)),
          across(static_cast<double>(frame.squareSize) / 2.0),
          line(pool_new<sp_line>(frame.pool, &frame, static_cast<unsigned char>(0), fpoint_t{across, 0.0}, ripple,
                                 low_i16(frame.marginX), low_i16(frame.marginX + frame.width)))
    {
    }

    curve* ripple;
    double across;
    sp_line* line;
};

// A line's points, to begin with again: drawing turns them, crossings add to them, sorting moves them.
class kept_points
{
public:
    explicit kept_points(sp_line& line) : line_(line), points_(line.points, line.points + line.num_points) {}
    void restore()
    {
        std::copy(points_.begin(), points_.end(), line_.points);
        line_.num_points = static_cast<std::int32_t>(points_.size());
    }

private:
    sp_line& line_;
    std::vector<curve_pt_t> points_;
};

constexpr int kValues = 29 * curve::kBlock; // within 1920 pixels

float sum_one_by_one(const curve& ripple)
{
    float sum = 0.0f;
    float v = 0.0f;
    for (int t = 0; t < kValues; ++t)
        if (ripple.F(static_cast<float>(t), &v))
            sum += v;
    return sum;
}

float sum_in_blocks(const curve& ripple)
{
    float sum = 0.0f;
    float t[curve::kBlock];
    float v[curve::kBlock];
    std::int32_t there[curve::kBlock];
    for (int first = 0; first < kValues; first += curve::kBlock)
    {
        for (int i = 0; i < curve::kBlock; ++i)
            t[i] = static_cast<float>(first + i);
        ripple.sums(t, v, there);
        for (int i = 0; i < curve::kBlock; ++i)
            sum += there[i] != 0 ? v[i] : 0.0f;
    }
    return sum;
}

class layout_bench
{
public:
    explicit layout_bench(run& r)
        : run_(r), table_("stages before the raster, at 1920x1080: nanoseconds", {"stage", "fast", "plain", "a"})
    {
    }

    void time_sampling(const std::string& what, const frame_scene& scene, PF_Quality quality)
    {
        in_a_frame(scene, quality,
                   [&](frame_bed& bed)
                   {
                       rippled r(bed.frame);
                       kept_points points(*r.line);
                       Loom::RandomGenerator32 rng(1);
                       r.line->draw(rng, &bed.context, 1.0f);
                       const int samples = bed.frame.lineCreator.pointCount;
                       // A render that has swept too many pixels samples its lines and leaves the strokes out.
                       bed.frame.lineCreator.sweptPixels = std::numeric_limits<std::int64_t>::max();
                       time("sampling a line, " + what, bed.frame, samples, "sample",
                            [&]
                            {
                                points.restore();
                                r.line->draw(rng, &bed.context, 1.0f);
                            });
                   });
    }

    void time_curve(int turbulence)
    {
        const std::string text = std::to_string(turbulence);
        in_a_frame({"", {{"Turbulance", text}}}, PF_Quality_HI,
                   [&](frame_bed& bed)
                   {
                       const rippled r(bed.frame);
                       float sum = 0.0f;
                       time("evaluating a ripple, turbulence " + text, bed.frame, kValues, "value",
                            [&]
                            {
                                const bool plain = bed.frame.lineCreator.level == simd_level::scalar;
                                sum += plain ? sum_one_by_one(*r.ripple) : sum_in_blocks(*r.ripple);
                            });
                       if (!(sum > -1e9f))
                           throw std::runtime_error("a ripple has no values");
                   });
    }

    void time_making_ripples(std::int32_t at)
    {
        in_a_frame({"", {}, at}, PF_Quality_HI,
                   [&](frame_bed& bed)
                   {
                       frame_data& f = bed.frame;
                       time("making a ripple, frame " + std::to_string(at), f, 1, "ripple",
                            [&]
                            {
                                auto* const made =
                                    pool_new<curve>(f.pool, &f, kSeed, 0, f.frameNumber, f.turbulence);
                                pool_release(f.pool, made);
                            });
                       time("making a rippled line, frame " + std::to_string(at), f, f.width, "pixel",
                            [&]
                            {
                                const rippled made(f);
                                pool_release(f.pool, made.ripple);
                            });
                   });
    }

    void time_crossing(const std::string& what, const frame_scene& scene)
    {
        in_a_frame(scene, PF_Quality_HI,
                   [&](frame_bed& bed)
                   {
                       frame_data& f = bed.frame;
                       const rippled r(f);
                       const auto middle = static_cast<double>(f.squareSize) / 2.0;
                       auto* const straight =
                           pool_new<sp_line>(f.pool, &f, static_cast<unsigned char>(1),
                                             fpoint_t{middle, static_cast<double>(f.marginY)},
                                             fpoint_t{middle, static_cast<double>(f.marginY + f.height)});
                       kept_points points(*straight);
                       Loom::RandomGenerator32 rng(1);
                       const auto bend = [&]
                       {
                           points.restore();
                           distort_crossing(f, rng, *r.ripple, static_cast<float>(r.across), *straight);
                       };
                       time("bending a crossing, " + what, f, 1, "crossing", bend);
                       bend();
                       kept_points bent(*straight);
                       time("sorting and filtering, " + what, f, straight->num_points, "point",
                            [&]
                            {
                                bent.restore();
                                straight->filter();
                            });
                   });
    }

    void show() const { run_.show(table_, "layout"); }

private:
    template <class Body>
    void time(const std::string& name, frame_data& frame, int units, const char* unit, Body body)
    {
        simd_level& level = frame.lineCreator.level;
        const simd_level fast = level;
        series timed;
        timed.add("fast",
                  [&]
                  {
                      level = fast;
                      body();
                  });
        timed.add("plain",
                  [&]
                  {
                      level = simd_level::scalar;
                      body();
                  });
        timed.run(0.15 * run_.effort);
        level = fast;
        table_.add({name, figure(1e9 * timed.median(0) / units), figure(1e9 * timed.median(1) / units), unit});
    }

    run& run_;
    table table_;
};
} // namespace

void time_layout(run& r)
{
    layout_bench all(r);
    const frame_scene one_color = {"", {{"Blend Amount", "0%"}}};
    const frame_scene crossings = {"", {{"Affect", "Horz Lines"}, {"Distortion", "100"}}};
    const frame_scene angular = {
        "", {{"Affect", "Horz Lines"}, {"Distortion", "100"}, {"Angular Lines", "on"}, {"Tolerance", "20"}}};
    all.time_sampling("one colour", one_color, PF_Quality_HI);
    all.time_sampling("blended", {"", {}}, PF_Quality_HI);
    all.time_sampling("blended, low quality", {"", {}}, PF_Quality_LO);
    all.time_sampling("blended, angular", angular, PF_Quality_HI);
    for (const int turbulence : {1, 3, 7})
        all.time_curve(turbulence);
    for (const int frame : {0, 100, 1000})
        all.time_making_ripples(frame);
    all.time_crossing("smooth", crossings);
    all.time_crossing("angular", angular);
    all.show();
}
} // namespace bench
