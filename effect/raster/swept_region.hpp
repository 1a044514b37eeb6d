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
        const auto enter = [&](float from, float d, const StrokePoint& p)
        {
            each(
                [&](sized_region s) {
                    s.region->add(uncovered(from, d, s.radius, size).pixels(size),
                                  box(cross_of(p), s.radius, across));
                });
        };
        const auto widen = [&](float from, float d, const StrokePoint& p)
        {
            each(
                [&](sized_region s) {
                    s.region->add(box(main_of(p), s.radius, size),
                                  uncovered(from, d, s.radius, across).pixels(across));
                });
        };
        const auto nothing = [](float, float, const StrokePoint&) {};
        if (along_y)
        {
            walk_moves(creator, nothing, enter);
            walk_moves(creator, widen, nothing);
        }
        else
        {
            walk_moves(creator, enter, nothing);
            walk_moves(creator, nothing, widen);
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
            const auto low = load_lanes<int_lanes>(first + i);
            const auto high = load_lanes<int_lanes>(last + i);
            const unsigned holes = lane_bits((high >= low) & ((added.first > high + 1) | (added.last < low - 1)));
            for (unsigned left = holes; left != 0; left &= left - 1)
                plane_->note_hole(i + std::countr_zero(left));
            store_lanes(first + i, lower_of(low, all_lanes(added.first)));
            store_lanes(last + i, higher_of(high, all_lanes(added.last)));
        }
    }

    swept_plane* plane_ = nullptr;
};
} // namespace
