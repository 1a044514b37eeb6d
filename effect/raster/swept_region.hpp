#pragma once
// The pixels under a stroke's swept boxes: as one run across for each position along the stroke's main axis, or,
// where steep strokes leave holes in those, one by one. Internal to the file that includes it, as lanes are.

#include "effect/raster/lanes.hpp"
#include "effect/raster/swept_boxes.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace
{
// Runs of pixels across, one for each position along the main axis; empty where last is below first. The arrays
// are the caller's, as long as the canvas is along the main axis.
struct swept_region
{
    std::int32_t* first;
    std::int32_t* last;

    // Fills the runs with the pixels that boxes of half side `radius` sweep: the same set that visiting them strip
    // by strip gives. False where some run has, or seems to have, a hole: it then reaches from end to end.
    bool sweep(const LineCreatorClass& creator, float radius) noexcept
    {
        const bool along_y = creator.axis == 1;
        const int size = along_y ? creator.height : creator.width;
        std::fill_n(first, size, kFar);
        std::fill_n(last, size, -kFar);
        // The boxes that enter new places first, then the strips beside them: in the order of the walk a strip can
        // come before the box that it lies on.
        bool whole = true;
        const auto nothing = [](auto, auto) {};
        const auto enter_columns = [&](strip columns, span rows)
        { whole = add(columns.pixels(size), rows) && whole; };
        const auto enter_rows = [&](strip rows, span columns)
        { whole = add(rows.pixels(size), columns) && whole; };
        const auto widen_rows = [&](strip rows, span columns)
        { whole = add(columns, rows.pixels(creator.height)) && whole; };
        const auto widen_columns = [&](strip columns, span rows)
        { whole = add(rows, columns.pixels(creator.width)) && whole; };
        if (along_y)
        {
            walk_swept_boxes(
                creator, radius, [&](span columns, span rows) { add(rows, columns); }, nothing, enter_rows);
            walk_swept_boxes(creator, radius, nothing, widen_columns, nothing);
        }
        else
        {
            walk_swept_boxes(
                creator, radius, [&](span columns, span rows) { add(columns, rows); }, enter_columns, nothing);
            walk_swept_boxes(creator, radius, nothing, nothing, widen_rows);
        }
        return whole;
    }

private:
    // An empty run meets any other: its ends are as far apart as can be, the wrong way round.
    static constexpr std::int32_t kFar = std::numeric_limits<std::int32_t>::max() / 2;

    // Adds `added` to the runs at `places`. False where it leaves a hole in one of them.
    bool add(span places, span added) noexcept
    {
        if (added.last < added.first)
            return true;
        const int count = places.last - places.first + 1;
        if (count < kLanes)
        {
            bool whole = true;
            for (int i = places.first; i <= places.last; ++i)
            {
                whole =
                    whole && (last[i] < first[i] || (added.first <= last[i] + 1 && added.last >= first[i] - 1));
                first[i] = std::min(added.first, first[i]);
                last[i] = std::max(added.last, last[i]);
            }
            return whole;
        }
        // The last lanes may be some that were added to before, which changes nothing.
        int_lanes holes = all_lanes(0);
        for (int done = 0; done < count; done += kLanes)
        {
            const int i = places.first + std::min(done, count - kLanes);
            const auto low = load_lanes<int_lanes>(first + i);
            const auto high = load_lanes<int_lanes>(last + i);
            holes |= (high >= low) & ((added.first > high + 1) | (added.last < low - 1));
            store_lanes(first + i, lower_of(low, all_lanes(added.first)));
            store_lanes(last + i, higher_of(high, all_lanes(added.last)));
        }
        return lane_bits(holes) == 0;
    }
};

// Sets `bit` for every pixel that boxes of half side `radius` sweep. The plane has a byte for each pixel of the
// canvas: rows across the main axis, one after the other along it.
inline void sweep_plane(const LineCreatorClass& creator, float radius, std::uint8_t bit,
                        std::uint8_t* plane) noexcept
{
    const bool along_y = creator.axis == 1;
    const std::ptrdiff_t size = along_y ? creator.height : creator.width;
    const auto set = [&](span columns, span rows)
    {
        const span places = along_y ? rows : columns;
        const span across = along_y ? columns : rows;
        for (std::ptrdiff_t c = across.first; c <= across.last; ++c)
            for (int i = places.first; i <= places.last; ++i)
                plane[c * size + i] = static_cast<std::uint8_t>(plane[c * size + i] | bit);
    };
    walk_swept_boxes(
        creator, radius, set, [&](strip columns, span rows) { set(columns.pixels(creator.width), rows); },
        [&](strip rows, span columns) { set(columns, rows.pixels(creator.height)); });
}
} // namespace
