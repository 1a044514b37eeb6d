#include "effect/raster/swept_region.hpp"

#include <limits>

namespace
{
// An empty run meets any other: its ends are as far apart as can be, the wrong way round.
constexpr std::int32_t kFar = std::numeric_limits<std::int32_t>::max() / 2;

// Adds `added` to the runs at `places`. False where it leaves a hole in one of them.
bool add(swept_region& region, span places, span added) noexcept
{
    if (added.last < added.first)
        return true;
    std::int32_t holes = 0;
    for (int i = places.first; i <= places.last; ++i)
    {
        const std::int32_t first = region.first[i];
        const std::int32_t last = region.last[i];
        const bool empty = last < first;
        holes |= static_cast<std::int32_t>(!empty && (added.first > last + 1 || added.last < first - 1));
        region.first[i] = added.first < first ? added.first : first;
        region.last[i] = added.last > last ? added.last : last;
    }
    return holes == 0;
}
} // namespace

bool swept_region::sweep(const LineCreatorClass& creator, float radius) noexcept
{
    const bool along_y = creator.axis == 1;
    const int size = along_y ? creator.height : creator.width;
    for (int i = 0; i < size; ++i)
    {
        first[i] = kFar;
        last[i] = -kFar;
    }
    // The boxes that enter new places first, then the strips beside them: in the order of the walk a strip can
    // come before the box that it lies on.
    bool whole = true;
    const auto nothing = [](auto, auto) {};
    const auto enter_columns = [&](strip columns, span rows)
    { whole = add(*this, columns.pixels(size), rows) && whole; };
    const auto enter_rows = [&](strip rows, span columns)
    { whole = add(*this, rows.pixels(size), columns) && whole; };
    const auto widen_rows = [&](strip rows, span columns)
    { whole = add(*this, columns, rows.pixels(creator.height)) && whole; };
    const auto widen_columns = [&](strip columns, span rows)
    { whole = add(*this, rows, columns.pixels(creator.width)) && whole; };
    if (along_y)
    {
        walk_swept_boxes(
            creator, radius, [&](span columns, span rows) { add(*this, rows, columns); }, nothing, enter_rows);
        walk_swept_boxes(creator, radius, nothing, widen_columns, nothing);
    }
    else
    {
        walk_swept_boxes(
            creator, radius, [&](span columns, span rows) { add(*this, columns, rows); }, enter_columns, nothing);
        walk_swept_boxes(creator, radius, nothing, nothing, widen_rows);
    }
    return whole;
}

void sweep_plane(const LineCreatorClass& creator, float radius, std::uint8_t bit, std::uint8_t* plane) noexcept
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
