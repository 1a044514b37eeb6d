#include "effect/raster/stroke_candidates.hpp"

#include "effect/raster/line_creator.hpp"

#include <algorithm>

namespace
{
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

bool stroke_candidates::collect(const LineCreatorClass& creator, int first, int last, float reach,
                                scratch_memory& memory) noexcept
{
    const bool along_y = creator.axis == 1;
    const int k = creator.samplesPerPixel;
    const auto across = static_cast<float>(along_y ? creator.width : creator.height);
    constexpr std::uint64_t kBytesEach = 5 * sizeof(float);
    constexpr std::uint64_t kSlack = 5 * 32 + kPadding * kBytesEach;
    if (memory.left() < kSlack)
        return false;
    const std::uint64_t fits = std::min<std::uint64_t>((memory.left() - kSlack) / kBytesEach, 1U << 30U);
    const auto room = static_cast<std::int64_t>(fits);
    if (room < std::int64_t{first} - last + 1)
        return false;
    main = memory.take<float>(room + kPadding);
    cross = memory.take<float>(room + kPadding);
    radius = memory.take<float>(room + kPadding);
    sample = memory.take<std::int32_t>(room + kPadding);
    place = memory.take<std::int32_t>(room + kPadding);

    count = 0;
    ascending = true;
    all_numbers = true;
    const auto put = [&](float main_at, float cross_at, float r, int i, int m)
    {
        ascending = ascending && (count == 0 || main[count - 1] <= main_at);
        all_numbers = all_numbers && r == r;
        main[count] = main_at;
        cross[count] = cross_at;
        radius[count] = r;
        sample[count] = i;
        place[count] = m;
        ++count;
    };
    for (int i = first; i >= last; --i)
    {
        const StrokePoint& cur = creator.points[i];
        if (i < first)
        {
            const gap_bridge bridge(creator.points[i + 1], cur, along_y, k);
            if (bridge.count > 0)
            {
                const numbers near = within(bridge, along_y, -reach, across + reach);
                if (near.end - near.begin > room - count)
                    return false;
                for (std::int64_t n = near.begin; n < near.end; ++n)
                {
                    const auto m = static_cast<int>(n);
                    put(along_y ? bridge.y(m) : bridge.x(m), along_y ? bridge.x(m) : bridge.y(m), bridge.radius(m),
                        i, m);
                }
            }
        }
        if (count >= room)
            return false;
        const float at = along_y ? cur.x : cur.y;
        put(along_y ? cur.y : cur.x, 0.0f <= at && at <= across ? at : kFarAway, cur.halfWidth, i, 0);
    }
    for (int i = 0; i < kPadding; ++i)
    {
        main[count + i] = kFarAway;
        cross[count + i] = kFarAway;
    }
    return true;
}

int stroke_candidates::first_of(int index) const noexcept
{
    return static_cast<int>(
        std::partition_point(sample, sample + count, [index](std::int32_t s) { return s > index; }) - sample);
}
