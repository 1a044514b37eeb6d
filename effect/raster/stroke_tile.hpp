#pragma once
// The unit in which the fast way looks at a stroke's pixels: eight neighbours along the main axis, one lane each.

#include "effect/raster/lanes.hpp"

// Sample indices that a pixel at one main position looks at, from `first` down to `last`.
struct index_window
{
    int first;
    int last;
};

// Rows are positions across the stroke. A run is empty where its last row is below its first.
struct stroke_tile
{
    int at;    // main position of lane 0
    int count; // lanes on the canvas
    int begin; // candidates in reach of any pixel of the tile, or of the first of the next one
    int end;
    float_lanes centers; // main coordinate of the pixels' centres
    index_window windows[kLanes];
    alignas(32) std::int32_t swept_first[kLanes]; // rows to be drawn
    alignas(32) std::int32_t swept_last[kLanes];
    alignas(32) std::int32_t solid_first[kLanes]; // rows known to have the stroke's one colour
    alignas(32) std::int32_t solid_last[kLanes];
};
