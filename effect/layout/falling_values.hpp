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
    int segment(float t) noexcept
    {
        const auto at = static_cast<double>(t);
        if (!falling_)
            return search(at);
        int i = cursor_;
        while (i < count_ && points_[i].*run_ > at)
            ++i;
        cursor_ = i;
        return i >= 1 && i < count_ && on_segment(i, at) ? i : 0;
    }

    bool falling() const noexcept { return falling_; }

    // Whether the points run downwards everywhere, so that `highest` has no use.
    static bool fall(const sp_line& line) noexcept;

private:
    bool on_segment(int i, double at) const noexcept
    {
        return points_[i].*run_ <= at && at < points_[i - 1].*run_;
    }

    int search(double at) noexcept;

    const sp_line& line_;
    const curve_pt_t* points_;
    double curve_pt_t::*run_; // along the line
    double* highest_;         // [i]: the highest upper end of the segments from i on
    int count_;
    // Falling points: the first at or below the last position. Others: no segment beyond reaches it.
    int cursor_ = 0;
    bool falling_;
};
