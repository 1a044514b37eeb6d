#include "effect/raster/stroke_candidates.hpp"

#include "effect/model/work_limits.hpp"
#include "effect/raster/line_creator.hpp"

#include <algorithm>
#include <bit>
#include <cmath>

namespace
{
constexpr float kGentle = 1.19f;       // a step across that is no steeper has no bridge
constexpr float kEvenWithin = 0.01f;   // pixels
constexpr float kEvenBelow = 65536.0f; // where single precision tells hundredths of a pixel apart

// Numbers of the bridge's positions whose cross coordinate lies in [low, high]: from .first up to but not .second.
// Positions run evenly from one sample to the other, so that the numbers are found by halving.
struct numbers
{
    std::int64_t begin;
    std::int64_t end;
};

numbers within(const gap_bridge& bridge, bool along_y, float low, float high) noexcept
{
    const auto cross = [&](std::int64_t m)
    { return along_y ? bridge.x(static_cast<int>(m)) : bridge.y(static_cast<int>(m)); };
    const bool rises = (along_y ? bridge.step_x : bridge.step_y) > 0.0f;
    const auto first_with = [&](auto holds)
    {
        std::int64_t lo = 1;
        std::int64_t hi = std::int64_t{bridge.count} + 1;
        while (lo < hi)
        {
            const std::int64_t mid = lo + (hi - lo) / 2;
            if (holds(cross(mid)))
                hi = mid;
            else
                lo = mid + 1;
        }
        return lo;
    };
    if (rises)
        return {first_with([&](float c) { return c >= low; }), first_with([&](float c) { return c > high; })};
    return {first_with([&](float c) { return c <= high; }), first_with([&](float c) { return c < low; })};
}
} // namespace

bool stroke_candidates::collect(const LineCreatorClass& creator, int first, int last, float reach, bool colors,
                                scratch_memory& memory) noexcept
{
    // Most strokes have samples alone.
    const std::int64_t samples = std::int64_t{first} - last + 1;
    scratch_memory left = memory;
    if (!cut(samples, colors, left))
        return false;
    const outcome came = fill(creator, first, last, reach, samples, false);
    if (came == outcome::done)
    {
        memory = left;
        return true;
    }
    const std::uint64_t bytes_each = (colors ? 6 : 5) * sizeof(float);
    const std::uint64_t slack = 6 * 32 + kPadding * bytes_each; // there is more than that: samples fitted
    const auto room =
        static_cast<std::int64_t>(std::min<std::uint64_t>((memory.left() - slack) / bytes_each, 1U << 30U));
    return cut(room, colors, memory) && fill(creator, first, last, reach, room, true) == outcome::done;
}

bool stroke_candidates::cut(std::int64_t room, bool colors, scratch_memory& memory) noexcept
{
    main = memory.take<float>(room + kPadding);
    cross = memory.take<float>(room + kPadding);
    radius = memory.take<float>(room + kPadding);
    sample = memory.take<std::int32_t>(room + kPadding);
    place = memory.take<std::int32_t>(room + kPadding);
    color = colors ? memory.take<std::int32_t>(room + kPadding) : nullptr;
    return main != nullptr && cross != nullptr && radius != nullptr && sample != nullptr && place != nullptr &&
           (color != nullptr || !colors);
}

stroke_candidates::outcome stroke_candidates::fill(const LineCreatorClass& creator, int first, int last,
                                                   float reach, std::int64_t room, bool bridges) noexcept
{
    const bool along_y = creator.axis == 1;
    const int k = creator.samplesPerPixel;
    const auto across = static_cast<float>(along_y ? creator.width : creator.height);
    const bool colors = color != nullptr;
    per_pixel = static_cast<float>(k);
    const float first_main = along_y ? creator.points[0].y : creator.points[0].x;
    const float spacing = 1.0f / per_pixel;
    const float thickness = creator.points[first].halfWidth;
    float before = along_y ? creator.points[first].y : creator.points[first].x;
    float before_across = along_y ? creator.points[first].x : creator.points[first].y;
    bool falls = false;
    bool exact = true;
    bool numbers_only = true;
    bool same = true;
    bool in_place = std::fabs(first_main) < kEvenBelow && 1 <= k && k <= kMostQuality + 1;
    bridged = false;
    std::int64_t n = 0;
    for (int i = first; i >= last; --i)
    {
        const StrokePoint& cur = creator.points[i];
        const float main_at = along_y ? cur.y : cur.x;
        const float at = along_y ? cur.x : cur.y;
        if (!(std::fabs(at - before_across) <= kGentle) &&
            i < first) // the first has none before it to bridge from
        {
            const gap_bridge bridge(creator.points[i + 1], cur, along_y, k);
            if (bridge.count > 0)
            {
                if (!bridges)
                    return outcome::bridge;
                const numbers near = within(bridge, along_y, -reach, across + reach);
                if (near.end - near.begin > room - n)
                    return outcome::no_room;
                bridged = bridged || near.begin < near.end;
                for (std::int64_t number = near.begin; number < near.end; ++number, ++n)
                {
                    const auto m = static_cast<int>(number);
                    main[n] = along_y ? bridge.y(m) : bridge.x(m);
                    cross[n] = along_y ? bridge.x(m) : bridge.y(m);
                    radius[n] = bridge.radius(m);
                    sample[n] = i;
                    place[n] = m;
                    if (colors)
                        color[n] = std::bit_cast<std::int32_t>(bridge.color(m));
                    falls = falls || !(before <= main[n]);
                    before = main[n];
                    numbers_only = numbers_only && radius[n] == radius[n];
                    same = same && radius[n] == thickness;
                }
            }
        }
        if (n >= room)
            return outcome::no_room;
        main[n] = main_at;
        cross[n] = 0.0f <= at && at <= across ? at : kFarAway;
        radius[n] = cur.halfWidth;
        sample[n] = i;
        place[n] = 0;
        if (colors)
            color[n] = std::bit_cast<std::int32_t>(cur.color);
        ++n;
        falls |= !(before <= main_at);
        exact &= i == first || main_at - before == spacing;
        numbers_only &= cur.halfWidth == cur.halfWidth;
        same &= cur.halfWidth == thickness;
        in_place &= std::fabs(first_main - static_cast<float>(i) * spacing - main_at) <= kEvenWithin;
        before = main_at;
        before_across = at;
    }
    count = static_cast<int>(n);
    ascending = !falls;
    all_numbers = numbers_only;
    one_radius = same;
    even = in_place;
    regular = exact && !bridged;
    for (int i = 0; i < kPadding; ++i)
    {
        main[count + i] = kFarAway;
        cross[count + i] = kFarAway;
        radius[count + i] = 0.0f;
    }
    return outcome::done;
}

int stroke_candidates::first_of(int index) const noexcept
{
    return static_cast<int>(
        std::partition_point(sample, sample + count, [index](std::int32_t s) { return s > index; }) - sample);
}
