#pragma once
// The pixels under a stroke's swept boxes: as one run across for each position along the stroke's main axis, or,
// where steep strokes leave holes in those, one by one.

#include "effect/raster/swept_boxes.hpp"

#include <cstdint>

// Runs of pixels across, one for each position along the main axis; empty where last is below first. The arrays
// are the caller's, as long as the canvas is along the main axis.
struct swept_region
{
    std::int32_t* first;
    std::int32_t* last;

    // Fills the runs with the pixels that boxes of half side `radius` sweep: the same set that visiting them strip
    // by strip gives. False where some run has, or seems to have, a hole: it then reaches from end to end.
    bool sweep(const LineCreatorClass& creator, float radius) noexcept;
};

// Sets `bit` for every pixel that boxes of half side `radius` sweep. The plane has a byte for each pixel of the
// canvas: rows across the main axis, one after the other along it.
void sweep_plane(const LineCreatorClass& creator, float radius, std::uint8_t bit, std::uint8_t* plane) noexcept;
