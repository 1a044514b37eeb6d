#include "effect/raster/line_samples.hpp"

#include "effect/layout/sp_line.hpp"
#include "effect/model/numeric.hpp"
#include "effect/raster/blend.hpp"

#include <algorithm>
#include <cmath>

std::uint64_t count_positions(float first, double last, float step, std::uint64_t limit) noexcept
{
    std::uint64_t steps = 0;
    float c = first;
    while (static_cast<double>(c) > last && steps <= limit)
    {
        const float next = c - step;
        if (next == c)
            return limit + 1;
        c = next;
        ++steps;
    }
    return steps;
}

std::uint64_t count_positions_fast(float first, double last, float step, std::uint64_t limit) noexcept
{
    // Multiples of 1/1024 that lie below 16384 are floats, and so are all their differences there.
    constexpr float kGrains = 1024.0f;
    constexpr float kFarthest = 8192.0f;
    const auto on_grain = [](float v)
    { return static_cast<float>(trunc_i32(static_cast<double>(v * kGrains))) == v * kGrains; };
    const bool exact = std::fabs(first) <= kFarthest && std::fabs(last) <= static_cast<double>(kFarthest) &&
                       step >= 1.0f / kGrains && step <= 1.0f && on_grain(first) && on_grain(step);
    if (!exact)
        return count_positions(first, last, step, limit);
    const auto above = [=](std::int64_t i)
    { return static_cast<double>(first) - static_cast<double>(i) * static_cast<double>(step) > last; };
    // Rounding can only miss by one.
    std::int64_t steps =
        std::max(std::int64_t{0}, trunc_i64((static_cast<double>(first) - last) / static_cast<double>(step)));
    while (steps > 0 && !above(steps - 1))
        --steps;
    while (above(steps))
        ++steps;
    return std::min(static_cast<std::uint64_t>(steps), limit + 1);
}

int sample_line(const sp_line& line, const line_sampling& s, StrokePoint* out) noexcept
{
    PF_Pixel working = {s.normal_color.alpha, 0, 0, 0};
    int count = 0;
    for (float c = s.first; static_cast<double>(c) > s.last; c -= s.step)
    {
        float cross = 0.0f;
        if (!line.value(line.points, line.num_points, c, &cross))
            continue;
        StrokePoint& sample = out[count++];
        sample.x = line.vertical != 0 ? cross : c;
        sample.y = line.vertical != 0 ? c : cross;
        const auto deviation = static_cast<float>(static_cast<double>(cross) - s.base_across);
        const float stress = std::fabs(deviation * s.width / s.max_deviation) * s.stressed_width;
        sample.halfWidth = static_cast<float>(static_cast<double>(stress) / 100.0 + static_cast<double>(s.width));
        sample.color = {};
        if (s.one_color)
            continue;
        blend_color(s.normal_color, s.stressed_color, s.normal_share, std::fabs(deviation), s.max_deviation,
                    &working);
        sample.color = working;
    }
    return count;
}
