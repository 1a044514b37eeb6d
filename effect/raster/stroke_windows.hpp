#pragma once
// Which of a stroke's places a pixel looks at: those of the samples that lie, by their indices, within the outer
// radius of it along the main axis, and across it. Ordinary strokes have their samples where the indices say, so
// that whatever a pixel can be nearest to counts for it; the others are looked at one by one.

#include "effect/raster/line_creator.hpp"
#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/stroke_tile.hpp"

#include <algorithm>

namespace
{
class stroke_windows
{
public:
    explicit stroke_windows(const LineCreatorClass& creator) noexcept
        : creator_(creator), first_main_(creator.axis == 1 ? creator.points[0].y : creator.points[0].x),
          size_(static_cast<float>(creator.axis == 1 ? creator.height : creator.width)),
          across_(static_cast<float>(creator.axis == 1 ? creator.width : creator.height))
    {
    }

    // Of the pixels at one main position.
    index_window at(int main_at) const noexcept
    {
        const float from = std::max(0.0f, static_cast<float>(main_at + 1) - creator_.outerRadius);
        const float to = std::min(size_, static_cast<float>(main_at + 1) + creator_.outerRadius);
        return {sample_at(first_main_, from, creator_.samplesPerPixel, creator_.pointCount),
                sample_at(first_main_, to, creator_.samplesPerPixel, creator_.pointCount)};
    }

    // Learns how near a place is sure to count. A window reaches from the outer radius less half a pixel before a
    // pixel's centre to half a pixel more than it behind; a bridge belongs to the samples on both of its sides.
    void judge(const stroke_candidates& places) noexcept
    {
        margin_ = 0.1f + (places.bridged ? 0.55f : 0.0f);
        const float sure = creator_.outerRadius - 0.5f - margin_;
        sure_ = places.even ? sure : -1.0f;
        sure_squared_ = sure_ > 0.0f ? sure * sure * 0.9999f : -1.0f;
    }

    // Whether such distances are known at all: places lie where their indices say.
    bool known() const noexcept { return sure_squared_ >= 0.0f; }

    // A place no farther than this (squared distance) counts, if it is `inside`.
    float sure_squared() const noexcept { return sure_squared_; }

    // Whether places at these distances along and with these cross coordinates count for pixels in these rows, if
    // they are inside; as far as that can be told without asking for each pixel's window.
    int_lanes near_enough(float_lanes along, float_lanes cross, int_lanes rows) const noexcept
    {
        const float_lanes edge = __builtin_convertvector(rows, float_lanes) + 1.0f;
        const float_lanes from = higher_of(edge - creator_.outerRadius, all_lanes(0.0f));
        const float_lanes to = lower_of(edge + creator_.outerRadius, all_lanes(across_));
        return (magnitude(along) <= sure_) & (from <= cross) & (cross <= to);
    }

    // Whether main coordinates are so far from the canvas's ends, which cut windows off, that they do not matter.
    int_lanes inside(float_lanes main) const noexcept { return (main >= margin_) & (main <= size_ - margin_); }

    // Whether all places from `begin` up to but not `end` are inside.
    bool all_inside(const stroke_candidates& places, int begin, int end) const noexcept
    {
        return begin < end && places.main[begin] >= margin_ && places.main[end - 1] <= size_ - margin_;
    }

    // Whether place j lies in the window, as far as the main axis goes.
    bool holds(const stroke_candidates& places, index_window w, int j) const noexcept
    {
        const int index = places.sample[j];
        return index >= w.last && (places.place[j] != 0 ? index < w.first : index <= w.first);
    }

    // Whether a pixel in this row, with this window, looks at place j at all.
    bool counts(const stroke_candidates& places, index_window w, int row, int j) const noexcept
    {
        if (!holds(places, w, j))
            return false;
        if (places.place[j] != 0)
            return true;
        const float from = std::max(0.0f, static_cast<float>(row + 1) - creator_.outerRadius);
        const float to = std::min(across_, static_cast<float>(row + 1) + creator_.outerRadius);
        return from <= places.cross[j] && places.cross[j] <= to;
    }

    // The search with every condition, for the rare pixel whose nearest place does not count for it: the first of
    // the nearest ones that do and are nearer than `squared`; -1 where there are none.
    int search(const stroke_candidates& places, index_window w, float center_main, int row,
               float* squared) const noexcept
    {
        const float center_cross = static_cast<float>(row) + 0.5f;
        int found = -1;
        for (int j = places.first_of(w.first); j < places.count && places.sample[j] >= w.last; ++j)
        {
            const float dm = center_main - places.main[j];
            const float dc = center_cross - places.cross[j];
            const float q = dm * dm + dc * dc;
            if (q < *squared && counts(places, w, row, j))
            {
                *squared = q;
                found = j;
            }
        }
        return found;
    }

private:
    const LineCreatorClass& creator_;
    float first_main_;
    float size_;   // of the canvas along the main axis
    float across_; // and across it
    float margin_ = 0.0f;
    float sure_ = -1.0f;         // distance along
    float sure_squared_ = -1.0f; // negative where places have to be asked
};
} // namespace
