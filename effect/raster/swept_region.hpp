#pragma once
// The pixels under a stroke's swept boxes, as one run across for each position along the stroke's main axis.
// Internal to the file that includes it, as lanes are.

#include "effect/raster/lanes.hpp"
#include "effect/raster/swept_boxes.hpp"
#include "effect/raster/swept_plane.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace
{
// Runs of pixels across, one for each position along the main axis; empty where last is below first. The arrays
// are the caller's, as long as the canvas is along the main axis.
struct swept_region
{
    std::int32_t* first = nullptr;
    std::int32_t* last = nullptr;

    // Fills the runs with the pixels that boxes of half side `radius` sweep: the same set that visiting them strip
    // by strip gives. A run that has, or seems to have, a hole reaches from end to end, and `plane` is told of it.
    void sweep(const LineCreatorClass& creator, float radius, swept_plane& plane) noexcept
    {
        sweep_all(creator, plane, sized_region{this, radius});
    }

    // The same of two regions at once.
    static void sweep_both(const LineCreatorClass& creator, swept_region& outer, swept_region& core,
                           swept_plane& plane) noexcept
    {
        sweep_all(creator, plane, sized_region{&outer, creator.outerRadius},
                  sized_region{&core, creator.innerRadius});
    }

private:
    struct sized_region
    {
        swept_region* region;
        float radius;
    };

    // An empty run meets any other: its ends are as far apart as can be, the wrong way round.
    static constexpr std::int32_t kFar = std::numeric_limits<std::int32_t>::max() / 2;

    template <class... More>
    static void sweep_all(const LineCreatorClass& creator, swept_plane& plane, sized_region first,
                          More... more) noexcept
    {
        const bool along_y = creator.axis == 1;
        const int size = along_y ? creator.height : creator.width;
        const int across = along_y ? creator.width : creator.height;
        const auto main_of = [along_y](const StrokePoint& p) { return along_y ? p.y : p.x; };
        const auto cross_of = [along_y](const StrokePoint& p) { return along_y ? p.x : p.y; };
        const auto each = [&](auto visit)
        {
            visit(first);
            (visit(more), ...);
        };
        each(
            [&](sized_region s)
            {
                s.region->plane_ = &plane;
                std::fill_n(s.region->first, size, kFar);
                std::fill_n(s.region->last, size, -kFar);
                const StrokePoint& p = creator.points[0];
                s.region->add(box(main_of(p), s.radius, size), box(cross_of(p), s.radius, across));
            });
        // The boxes that enter new places first, then the strips beside them: in the order of the walk a strip can
        // come before the box that it lies on.
        move_batch entered;
        move_batch widened;
        const auto enter_all = [&]
        { each([&](sized_region s) { s.region->enter(entered, s.radius, size, across); }); };
        const auto widen_all = [&]
        { each([&](sized_region s) { s.region->widen(widened, s.radius, size, across); }); };
        each_move(creator, !along_y,
                  [&](float from, float d, const StrokePoint& p)
                  {
                      if (entered.add(from, d, cross_of(p)))
                          enter_all();
                  });
        enter_all();
        each_move(creator, along_y,
                  [&](float from, float d, const StrokePoint& p)
                  {
                      if (widened.add(from, d, main_of(p)))
                          widen_all();
                  });
        widen_all();
    }

    // walk_moves() along one axis alone, eight samples at a time.
    template <class Visit>
    static void each_move(const LineCreatorClass& creator, bool of_x, Visit visit) noexcept
    {
        const StrokePoint* const points = creator.points;
        const auto position = [of_x, points](int i) { return of_x ? points[i].x : points[i].y; };
        float from = position(0);
        int_lanes before = pixels_of(all_lanes(from));
        for (int i = 0; i < creator.pointCount; i += kLanes)
        {
            const auto eight = [&](auto at)
            { return float_lanes{at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7)}; };
            const int last = creator.pointCount - 1;
            const float_lanes here = i + kLanes <= creator.pointCount
                                         ? eight([&](int n) { return position(i + n); })
                                         : eight([&](int n) { return position(std::min(i + n, last)); });
            const int_lanes pixels = pixels_of(here);
            const int_lanes one_before = __builtin_shufflevector(before, pixels, 7, 8, 9, 10, 11, 12, 13, 14);
            for (unsigned moves = lane_bits(pixels != one_before); moves != 0; moves &= moves - 1)
            {
                const StrokePoint& p = points[i + std::countr_zero(moves)];
                const float to = of_x ? p.x : p.y;
                visit(from, to - from, p);
                from = to;
            }
            before = pixels;
        }
    }

    // trunc_i32_select of eight.
    static int_lanes pixels_of(float_lanes v) noexcept
    {
        constexpr float kEnd = 2147483648.0f;
        const float_lanes below = v < kEnd ? v : all_lanes(-kEnd);
        return whole(below >= -kEnd ? below : all_lanes(-kEnd));
    }

    // Moves along one axis to samples that lie at `to` on the other one.
    struct move_batch
    {
        int count = 0;
        float from[kLanes] = {};
        float d[kLanes] = {};
        float to[kLanes] = {};

        // Whether it is full now; the next one added is the first of a new batch.
        bool add(float from_at, float by, float to_at) noexcept
        {
            count %= kLanes;
            from[count] = from_at;
            d[count] = by;
            to[count] = to_at;
            return ++count == kLanes;
        }
    };

    struct span_lanes
    {
        int_lanes first;
        int_lanes last;
        span operator[](int i) const noexcept { return {first[i], last[i]}; }
    };

    // clamped(), box() and uncovered().pixels() of eight.
    static int_lanes clamped_lanes(float_lanes position, int size) noexcept
    {
        const int_lanes fits = (position > 0.0f) & (position < 2147483648.0f);
        const float_lanes inside = fits ? position : all_lanes(0.0f);
        return whole(lower_of(inside, all_lanes(static_cast<float>(size - 1))));
    }
    static span_lanes boxes(const move_batch& moves, float radius, int size) noexcept
    {
        const auto center = load_lanes<float_lanes>(moves.to);
        return {clamped_lanes(center - radius, size), clamped_lanes(center + radius, size)};
    }
    static span_lanes strips(const move_batch& moves, float radius, int size) noexcept
    {
        const auto from = load_lanes<float_lanes>(moves.from);
        const auto d = load_lanes<float_lanes>(moves.d);
        const int_lanes up = d > 0.0f;
        const float_lanes first = up ? from + radius : from - radius;
        const float_lanes last = up ? first + d - 1.0f : first + d + 1.0f;
        const int_lanes first_pixel = clamped_lanes(first, size);
        const int_lanes off = clamped_lanes(last, size) - first_pixel;
        const int_lanes length = off < 0 ? -off : off;
        const int_lanes end = lower_of(higher_of(up ? first_pixel + length : first_pixel - length, all_lanes(0)),
                                       all_lanes(size - 1));
        return {lower_of(first_pixel, end), higher_of(first_pixel, end)};
    }

    void enter(const move_batch& moves, float radius, int size, int across) noexcept
    {
        const span_lanes places = strips(moves, radius, size);
        const span_lanes added = boxes(moves, radius, across);
        // Along a line of close samples, each enters the place after the last one's: most run downwards.
        const int_lanes downwards = all_lanes(places.first[0]) - kLaneNumbers;
        if (moves.count == kLanes &&
            lane_bits((places.first != downwards) | (places.last != downwards) | (added.last < added.first)) == 0)
            return add_downwards(places.first[kLanes - 1], added);
        for (int i = 0; i < moves.count; ++i)
            add(places[i], added[i]);
    }

    // Adds to the eight runs from `lowest` on, the last one first.
    void add_downwards(int lowest, const span_lanes& added) noexcept
    {
        const auto turned = [](int_lanes v) { return __builtin_shufflevector(v, v, 7, 6, 5, 4, 3, 2, 1, 0); };
        add_eight(lowest, turned(added.first), turned(added.last));
    }

    void add_eight(int i, int_lanes added_first, int_lanes added_last) noexcept
    {
        const auto low = load_lanes<int_lanes>(first + i);
        const auto high = load_lanes<int_lanes>(last + i);
        const unsigned holes = lane_bits((high >= low) & ((added_first > high + 1) | (added_last < low - 1)));
        for (unsigned left = holes; left != 0; left &= left - 1)
            plane_->note_hole(i + std::countr_zero(left));
        store_lanes(first + i, lower_of(low, added_first));
        store_lanes(last + i, higher_of(high, added_last));
    }
    void widen(const move_batch& moves, float radius, int size, int across) noexcept
    {
        const span_lanes places = boxes(moves, radius, size);
        const span_lanes added = strips(moves, radius, across);
        for (int i = 0; i < moves.count; ++i)
        {
            const span along = places[i];
            if (along.last - along.first + 1 < kLanes)
                add(along, added[i]);
            else if (moves.d[i] > 0.0f)
                extend<true>(along, added[i]);
            else
                extend<false>(along, added[i]);
        }
    }

    // add() for eight places and more, where most runs only move one end: upward in number or downward.
    template <bool Up>
    void extend(span places, span added) noexcept
    {
        std::int32_t* const moved = Up ? last : first;
        const int count = places.last - places.first + 1;
        for (int done = 0; done < count; done += kLanes)
        {
            const int i = places.first + std::min(done, count - kLanes);
            const auto low = load_lanes<int_lanes>(first + i);
            const auto high = load_lanes<int_lanes>(last + i);
            // Runs that it does not meet from this side.
            const int_lanes others =
                Up ? (low > added.first) | (high < added.first - 1) : (high < added.last) | (low > added.last + 1);
            if (lane_bits(others) != 0)
                add({i, i + kLanes - 1}, added);
            else
                store_lanes(moved + i,
                            Up ? higher_of(high, all_lanes(added.last)) : lower_of(low, all_lanes(added.first)));
        }
    }

    // Adds `added` to the runs at `places`.
    void add(span places, span added) noexcept
    {
        if (added.last < added.first)
            return;
        const int count = places.last - places.first + 1;
        if (count < kLanes)
        {
            for (int i = places.first; i <= places.last; ++i)
            {
                if (first[i] <= last[i] && (added.first > last[i] + 1 || added.last < first[i] - 1))
                    plane_->note_hole(i);
                first[i] = std::min(added.first, first[i]);
                last[i] = std::max(added.last, last[i]);
            }
            return;
        }
        // The last lanes may be some that were added to before, which changes nothing.
        for (int done = 0; done < count; done += kLanes)
        {
            const int i = places.first + std::min(done, count - kLanes);
            add_eight(i, all_lanes(added.first), all_lanes(added.last));
        }
    }

    swept_plane* plane_ = nullptr;
};
} // namespace
