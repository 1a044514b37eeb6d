#pragma once
// Samples of a line at a fixed step down its running axis: what a stroke is drawn from.

#include "effect/pf/types.hpp"
#include "effect/raster/stroke_point.hpp"

#include <cstdint>

class sp_line;
struct mem_pool;

// What the samples of one line share. Positions and widths in canvas pixels.
struct line_sampling
{
    float first; // the positions are first, first - step, ... above `last`
    double last;
    float step;
    double base_across; // where the line would lie without its ripple
    float max_deviation;
    float width;           // radius without stress
    float stressed_width;  // percent more at the greatest deviation
    bool one_color;        // samples then get no colour: all of it is zero
    PF_Pixel normal_color; // both with the line's alpha
    PF_Pixel stressed_color;
    std::int16_t normal_share; // percent
};

// Positions that there are; `limit` + 1 where they are more than `limit`, or endless because the step is lost in
// rounding. Both ends are finite.
std::uint64_t count_positions(float first, double last, float step, std::uint64_t limit) noexcept;

// The same, at once where all positions are exact.
std::uint64_t count_positions_fast(float first, double last, float step, std::uint64_t limit) noexcept;

// Writes a sample for each position at which the line has a value, whose points run downwards for the most part;
// how many. `out` has room for one at each position.
int sample_line(const sp_line& line, const line_sampling& s, StrokePoint* out) noexcept;

// The same, many samples at a time. Borrows a number for each point from the pool where the points do not run
// downwards everywhere, and does without where it has no room.
int sample_line_fast(const sp_line& line, const line_sampling& s, mem_pool* pool, StrokePoint* out) noexcept;
