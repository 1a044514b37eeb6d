#pragma once
// The across coordinates of a line at positions that only fall, as drawing asks for them: what sp_line::value
// finds by searching all points each time, found from where the last search ended.

#include "effect/layout/sp_line.hpp"

class falling_values
{
public:
    // For the line's points as they are now, meant to run downwards. `highest` is room for as many numbers, or
    // null: points that do not run downwards everywhere are then searched from the end.
    falling_values(const sp_line& line, double* highest) noexcept;

    // The same answer as line.value(points, num_points, t, out). `t` is never above the one before.
    bool value(float t, float* out) noexcept;

    // The second point of the segment that this value lies on; 0 where there is none.
    int segment(float t) noexcept;

    // Whether the points run downwards everywhere, so that `highest` has no use.
    static bool fall(const sp_line& line) noexcept;

private:
    const sp_line& line_;
    double* highest_; // [i]: the highest upper end of the segments from i on
    int count_;
    int cursor_ =
        0; // falling points: the first at or below the last position; others: no segment beyond reaches it
    bool falling_;
};
