#include "effect/raster/stroke_candidates.hpp"

#include "effect/model/work_limits.hpp"
#include "effect/raster/line_creator.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

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

// Samples without bridges between them, four at a time: what fill() does for each of them, and notes of it.
class sample_fours
{
public:
    sample_fours(const LineCreatorClass& creator, bool along_y, float across, float spacing) noexcept
        : points_(creator.points), along_y_(along_y), across_(across), spacing_(spacing),
          first_main_(along_y ? points_[0].y : points_[0].x)
    {
    }

    // Adds the samples before sample `i` as places `n` on, down to `last` at most, until a step is steep.
    // `thickness` is the radius that all may share. Answers how many.
    int add(int i, int last, float thickness, stroke_candidates& places, std::int64_t n) noexcept
    {
        four_floats main_before = all(main_of(points_[i]));
        four_floats across_before = all(across_of(points_[i]));
        int done = 0;
        for (; i - done - kFour >= last; done += kFour)
        {
            const StrokePoint* const lowest = points_ + (i - done - kFour);
            const four_samples s = turned(lowest);
            const four_floats main = along_y_ ? s.y : s.x;
            const four_floats across = along_y_ ? s.x : s.y;
            const four_floats before = __builtin_shufflevector(main_before, main, 3, 4, 5, 6);
            const four_floats step = across - __builtin_shufflevector(across_before, across, 3, 4, 5, 6);
            if (any(~(magnitude(step) <= kGentle)))
                break;
            const four_ints number = (i - done) - four_ints{1, 2, 3, 4};
            const four_floats expected = first_main_ - __builtin_convertvector(number, four_floats) * spacing_;
            const four_ints counts = (0.0f <= across) & (across <= across_);
            const std::int64_t at = n + done;
            store(places.main + at, main);
            store(places.cross + at, counts ? across : all(stroke_candidates::kFarAway));
            store(places.radius + at, s.radius);
            store(places.sample + at, number);
            store(places.place + at, four_ints{});
            if (places.color != nullptr)
                store(places.color + at, s.color);
            falls_ |= ~(before <= main);
            uneven_ |= main - before != spacing_;
            no_numbers_ |= s.radius != s.radius;
            others_ |= s.radius != thickness;
            misplaced_ |= ~(magnitude(expected - main) <= kEvenWithin);
            main_before = main;
            across_before = across;
        }
        return done;
    }

    // Of all that were added, whether some are so.
    bool falls() const noexcept { return any(falls_); }
    bool uneven() const noexcept { return any(uneven_); }
    bool no_numbers() const noexcept { return any(no_numbers_); }
    bool other_radius() const noexcept { return any(others_); }
    bool misplaced() const noexcept { return any(misplaced_); }

private:
    static constexpr int kFour = 4;
    using four_floats = float __attribute__((vector_size(16)));
    using four_ints = std::int32_t __attribute__((vector_size(16)));

    struct four_samples
    {
        four_floats x;
        four_floats y;
        four_floats radius;
        four_ints color;
    };

    // The four samples from `lowest` on, the highest first.
    static four_samples turned(const StrokePoint* lowest) noexcept
    {
        four_floats p[kFour];
        std::memcpy(p, lowest, sizeof p);
        const four_floats xy_first = __builtin_shufflevector(p[3], p[2], 0, 4, 1, 5);
        const four_floats xy_last = __builtin_shufflevector(p[1], p[0], 0, 4, 1, 5);
        const four_floats rc_first = __builtin_shufflevector(p[3], p[2], 2, 6, 3, 7);
        const four_floats rc_last = __builtin_shufflevector(p[1], p[0], 2, 6, 3, 7);
        return {__builtin_shufflevector(xy_first, xy_last, 0, 1, 4, 5),
                __builtin_shufflevector(xy_first, xy_last, 2, 3, 6, 7),
                __builtin_shufflevector(rc_first, rc_last, 0, 1, 4, 5),
                reinterpret_cast<four_ints>(__builtin_shufflevector(rc_first, rc_last, 2, 3, 6, 7))};
    }

    static four_floats all(float v) noexcept { return four_floats{v, v, v, v}; }
    static four_floats magnitude(four_floats v) noexcept
    {
        return reinterpret_cast<four_floats>(reinterpret_cast<four_ints>(v) & 0x7fffffff);
    }
    static bool any(four_ints mask) noexcept
    {
        std::int64_t halves[2];
        std::memcpy(halves, &mask, sizeof halves);
        return (halves[0] | halves[1]) != 0;
    }
    template <class T, class Four>
    static void store(T* to, Four values) noexcept
    {
        std::memcpy(to, &values, sizeof values);
    }

    float main_of(const StrokePoint& p) const noexcept { return along_y_ ? p.y : p.x; }
    float across_of(const StrokePoint& p) const noexcept { return along_y_ ? p.x : p.y; }

    const StrokePoint* points_;
    bool along_y_;
    float across_; // of the canvas
    float spacing_;
    float first_main_;
    four_ints falls_ = {};
    four_ints uneven_ = {};
    four_ints no_numbers_ = {};
    four_ints others_ = {};
    four_ints misplaced_ = {};
};
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
    sample_fours fours(creator, along_y, across, spacing);
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
        const auto room_ends = static_cast<int>(std::max<std::int64_t>(last, i - (room - n)));
        const int more = fours.add(i, room_ends, thickness, *this, n);
        i -= more;
        n += more;
        before = along_y ? creator.points[i].y : creator.points[i].x;
        before_across = along_y ? creator.points[i].x : creator.points[i].y;
    }
    count = static_cast<int>(n);
    ascending = !falls && !fours.falls();
    all_numbers = numbers_only && !fours.no_numbers();
    one_radius = same && !fours.other_radius();
    even = in_place && !fours.misplaced();
    regular = exact && !fours.uneven() && !bridged;
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
