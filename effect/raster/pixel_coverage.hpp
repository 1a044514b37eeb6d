#pragma once
// How much of a pixel an edge covers, by the numbers of the coverage table's row and column: what the table is
// filled with, and what fast ways compute in its place, since the table is larger than a processor's nearest
// memory. Internal to the file that includes it, as lanes are.

#include "effect/raster/lanes.hpp"

namespace
{
// Where pixels begin across an edge, less their centres, and how long they are across it, pixels. From an edge
// along an axis to a diagonal one that grows from 1 to sqrt(2); a triangle over the sine of the direction stands
// for it: 0 at both ends of the table's rows, 1 in their middle.
struct extent_across
{
    float_lanes begin;
    float_lanes length;
};

// For these columns, 0 to 255. `half_diagonal` is half of sqrt(2) - 1.
inline extent_across extent_at(float_lanes column, float half_diagonal) noexcept
{
    const float_lanes s = column / 255.0f * 2.0f;
    const float_lanes f = s <= 1.0f ? s : 2.0f - s;
    return {0.5f - half_diagonal * f, 2.0f * half_diagonal * f + 1.0f};
}

// The share that is covered of pixels with this extent by edges in these rows of the table.
inline float_lanes covered_share(float_lanes row, extent_across pixel) noexcept
{
    const float_lanes reached = row / 100.0f - pixel.begin;
    // Compilers make choices of other kinds lane by lane.
    return lower_of(higher_of(reached, all_lanes(0.0f)), pixel.length) / pixel.length;
}
} // namespace
