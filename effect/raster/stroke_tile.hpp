#pragma once
// The unit in which the fast way looks at a stroke's pixels: eight neighbours along the main axis, one lane each.
// Internal to the file that includes it, as lanes are.

#include "effect/raster/lanes.hpp"
#include "effect/raster/swept_boxes.hpp"

// Sample indices that a pixel at one main position looks at, from `first` down to `last`.
struct index_window
{
    int first;
    int last;
};

namespace
{
struct lane_pixels
{
    int at;              // main position of lane 0
    bool all_inside;     // no candidate lies near the canvas's ends
    float_lanes centers; // main coordinate of the pixels' centres

    explicit lane_pixels(int first) noexcept
        : at(first), all_inside(false),
          centers(static_cast<float>(first) + __builtin_convertvector(kLaneNumbers, float_lanes) + 0.5f)
    {
    }
};

struct stroke_tile : lane_pixels
{
    int count; // lanes on the canvas
    int begin; // candidates in reach of any pixel of the tile
    int end;
    bool narrowed; // they are many: those of its corners, the first of the next tile too, tell which matter
    span reach;    // rows across in which a pixel can be in reach of any
    int hint;      // a candidate, better one near the last row that was looked at
    span single;   // rows from whose pixels the distances of its candidates fall once, then rise
    span looked;   // rows for which those that may be nearest are known,
    int lowest;    // from here
    int highest;   // to here, in such rows
    index_window windows[kLanes]; // where samples are looked at in place of candidates

    explicit stroke_tile(int first) noexcept : lane_pixels(first) {}
};
} // namespace
