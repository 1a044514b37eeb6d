#pragma once
// Which rows across a wide stroke's places reach, tile by tile, from bounds of eight neighbouring places each:
// some rows more than looking at every place would find. Internal to the file that includes it, as lanes are.

#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/stroke_tile.hpp"
#include "effect/raster/swept_boxes.hpp"

#include <algorithm>
#include <limits>

namespace
{
class reach_rows
{
public:
    // Of places that ascend. `farthest`: no place reaches farther, pixels. False where `memory` is short.
    bool take(const stroke_candidates& places, float farthest, int across, scratch_memory& memory) noexcept
    {
        farthest_ = farthest;
        across_ = across;
        groups_ = (places.count + kLanes - 1) / kLanes;
        for (float** array : {&from_, &to_, &lowest_, &highest_, &reach_})
            if ((*array = memory.take<float>(groups_ + kLanes)) == nullptr)
                return false;
        constexpr float kNone = std::numeric_limits<float>::infinity();
        for (int group = 0; group < groups_; ++group)
        {
            const int j = group * kLanes;
            const auto cross = load_lanes<float_lanes>(places.cross + j);
            const float_lanes reach = load_lanes<float_lanes>(places.radius + j) * 1.0001f + 1.02f;
            const int_lanes counts =
                (reach > 0.0f) & (cross != stroke_candidates::kFarAway) & (kLaneNumbers < places.count - j);
            from_[group] = places.main[j];
            to_[group] = places.main[std::min(j + kLanes, places.count) - 1];
            lowest_[group] = least(counts ? cross : all_lanes(kNone));
            highest_[group] = most(counts ? cross : all_lanes(-kNone));
            reach_[group] = most(counts ? reach : all_lanes(-1.0f));
        }
        std::fill_n(reach_ + groups_, kLanes, -1.0f);
        return true;
    }

    // Those that some pixel of the tile that begins at `at` is in reach of anything in. Tiles come in ascending
    // order.
    span of(int at) noexcept
    {
        const float first = static_cast<float>(at) + 0.5f;
        const float last = first + static_cast<float>(kLanes - 1);
        while (begin_ < groups_ && to_[begin_] < first - farthest_)
            ++begin_;
        end_ = std::max(end_, begin_);
        while (end_ < groups_ && from_[end_] <= last + farthest_)
            ++end_;
        float_lanes top = all_lanes(static_cast<float>(across_));
        float_lanes bottom = all_lanes(-1.0f);
        for (int group = begin_; group < end_; group += kLanes)
        {
            const float_lanes before = (first - 0.001f) - load_lanes<float_lanes>(to_ + group);
            const float_lanes behind = load_lanes<float_lanes>(from_ + group) - (last + 0.001f);
            const float_lanes off = higher_of(higher_of(before, behind), all_lanes(0.0f));
            const auto reach = load_lanes<float_lanes>(reach_ + group);
            const float_lanes left = reach * reach - off * off;
            const int_lanes near = (reach > 0.0f) & (left >= 0.0f) & (kLaneNumbers < end_ - group);
            const float_lanes rise = root(higher_of(left, all_lanes(0.0f)));
            top = near ? lower_of(load_lanes<float_lanes>(lowest_ + group) - rise, top) : top;
            bottom = near ? higher_of(load_lanes<float_lanes>(highest_ + group) + rise, bottom) : bottom;
        }
        const float first_row = least(top);
        const float last_row = std::min(most(bottom), static_cast<float>(across_));
        if (last_row < first_row)
            return {across_, -1};
        return {clamped(first_row - 1.0f, across_), clamped(last_row + 1.0f, across_)};
    }

private:
    float farthest_ = 0.0f;
    int across_ = 0;
    int groups_ = 0;
    // Of each group: where it lies along, and, of the places in it that count, across; and how far they reach.
    float* from_ = nullptr;
    float* to_ = nullptr;
    float* lowest_ = nullptr;
    float* highest_ = nullptr;
    float* reach_ = nullptr;
    int begin_ = 0; // groups that the tile at work may be in reach of
    int end_ = 0;
};
} // namespace
