// The parts of drawing a stroke, each alone.

#include "bench/suites.hpp"

#include "bench/effect_stage.hpp"
#include "bench/measure.hpp"
#include "bench/strokes/waves.hpp"

#include "effect/raster/swept_boxes.hpp"
#include "effect/raster/swept_region.hpp"

#include <cstddef>
#include <stdexcept>
#include <utility>
#include <vector>

namespace bench
{
namespace
{
constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr float kRadii[] = {1.0f, 5.0f, 20.0f, 50.0f, 100.0f, 200.0f};

// One horizontal line on a canvas.
struct drawn_line
{
    drawn_line(float radius, bool one_color, PF_Quality quality, simd_level level)
        : stage(kWidth, kHeight, quality), stroke(wave_strokes(kWidth, kHeight, 0, 1, radius).front())
    {
        stage.set_up(creator, one_color, level);
        std::vector<StrokePoint>& all = one_color ? stroke.one_color : stroke.per_sample;
        // Low quality has every other sample.
        for (std::size_t i = 0; i < all.size(); i += quality == PF_Quality_LO ? 2 : 1)
            samples.push_back(all[i]);
        creator.points = samples.data();
        creator.pointCount = static_cast<std::int32_t>(samples.size());
        creator.axis = 0;
        set_radii(creator, one_color ? radius : 0.8f * radius, one_color ? 0 : 50);
    }

    // Every fifth pixel of every third column that the radius reaches, about.
    std::vector<std::pair<int, int>> some_pixels() const
    {
        std::vector<std::pair<int, int>> pixels;
        for (std::size_t i = 0; i < samples.size(); i += 6)
            for (float off = -creator.outerRadius; off < creator.outerRadius; off += 5.0f)
            {
                const int x = static_cast<int>(samples[i].x);
                const int y = static_cast<int>(samples[i].y + off);
                if (x < kWidth && y >= 0 && y < kHeight)
                    pixels.emplace_back(x, y);
            }
        return pixels;
    }

    effect_stage stage;
    wave_stroke stroke;
    std::vector<StrokePoint> samples;
    LineCreatorClass creator;
};

void time_pixel_functions(run& r)
{
    table t("the plain pixel functions, nanoseconds a pixel",
            {"radius", "one colour", "low quality", "per sample", "low quality"});
    for (const float radius : kRadii)
    {
        std::vector<std::string> row = {figure(static_cast<double>(radius))};
        for (const bool one_color : {true, false})
            for (const PF_Quality quality : {PF_Quality_HI, PF_Quality_LO})
            {
                drawn_line line(radius, one_color, quality, simd_level::scalar);
                const auto pixels = line.some_pixels();
                series timed;
                timed.add("pixels",
                          [&]
                          {
                              for (const auto& [x, y] : pixels)
                                  (line.creator.*line.creator.pixelFunction)(x, y);
                          });
                timed.run(0.1 * r.effort);
                row.push_back(figure(1e9 * timed.median(0) / static_cast<double>(pixels.size())));
            }
        t.add(row);
    }
    r.show(t, "pixel_functions");
}

// Pixels of all boxes together, counted twice where two name them.
std::int64_t walked_pixels(const LineCreatorClass& creator)
{
    std::int64_t pixels = 0;
    const auto length = [](span s) { return std::int64_t{s.last} - s.first + 1; };
    walk_swept_boxes(
        creator, creator.outerRadius, [&](span columns, span rows) { pixels += length(columns) * length(rows); },
        [&](strip columns, span rows) { pixels += columns.count * length(rows); },
        [&](strip rows, span columns) { pixels += rows.count * length(columns); });
    return pixels;
}

void time_swept_boxes(run& r)
{
    table t("swept boxes of a line across 1920x1080: microseconds",
            {"radius", "walking", "as runs", "pixels walked", "pixels in runs"});
    for (const float radius : kRadii)
    {
        drawn_line line(radius, true, PF_Quality_HI, simd_level::scalar);
        std::vector<std::int32_t> first(kWidth);
        std::vector<std::int32_t> last(kWidth);
        swept_region region;
        region.first = first.data();
        region.last = last.data();
        std::byte notes[256];
        scratch_memory memory(notes, sizeof notes);
        swept_plane holes;
        holes.take(kWidth, memory);
        std::int64_t walked = 0;
        series timed;
        timed.add("walking", [&] { walked = walked_pixels(line.creator); });
        timed.add("runs", [&] { region.sweep(line.creator, line.creator.outerRadius, holes); });
        timed.run(0.1 * r.effort);
        std::int64_t swept = 0;
        for (int i = 0; i < kWidth; ++i)
            swept += std::max(0, last[static_cast<std::size_t>(i)] - first[static_cast<std::size_t>(i)] + 1);
        t.add({figure(static_cast<double>(radius)), figure(1e6 * timed.median(0)), figure(1e6 * timed.median(1)),
               std::to_string(walked), std::to_string(swept)});
    }
    r.show(t, "swept_boxes");
}

// The flush after each line: dirty tiles onto a destination that already has such a line, and clear again.
void time_flush(run& r)
{
    table t("flushing a line across 1920x1080 with the host's own transfer and fill: microseconds",
            {"radius", "flush", "drawing it", "tiles"});
    for (const float radius : kRadii)
    {
        drawn_line line(radius, true, PF_Quality_HI, chosen_simd_level());
        aeg& context = *line.stage.context;
        int tiles = 0;
        series flushed;
        flushed.add_timed("flush",
                          [&]
                          {
                              line.creator.Render();
                              tiles = 0;
                              for (const std::uint8_t dirty : context.tileDirty)
                                  tiles += dirty;
                              const double before = thread_seconds();
                              context.flush();
                              return thread_seconds() - before;
                          });
        flushed.run(0.15 * r.effort);
        series drawn;
        drawn.add("drawing", [&] { line.creator.Render(); });
        drawn.run(0.1 * r.effort);
        if (tiles == 0)
            throw std::runtime_error("a stroke marked no tile");
        t.add({figure(static_cast<double>(radius)), figure(1e6 * flushed.median(0)), figure(1e6 * drawn.median(0)),
               std::to_string(tiles)});
    }
    r.show(t, "flush");
}
} // namespace

void time_raster(run& r)
{
    time_swept_boxes(r);
    time_pixel_functions(r);
    time_flush(r);
}
} // namespace bench
