#pragma once
// A few of a stroke's places, and which of them pixels are nearest to: for blocks where places lose their cells,
// as they do along the middle of what a bend encloses. Internal to the file that includes it, as lanes are.

#include "effect/raster/nearest_place.hpp"
#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/stroke_tile.hpp"

#include <cstdint>

namespace
{
class place_crowd
{
public:
    explicit place_crowd(const stroke_candidates& places) noexcept : places_(places) {}

    void clear() noexcept { count_ = 0; }

    // Places come in their order. False where there are too many.
    bool add(int place) noexcept
    {
        if (count_ == kMost)
            return false;
        main_[count_] = places_.main[place];
        cross_[count_] = places_.cross[place];
        number_[count_] = place;
        ++count_;
        return true;
    }

    // The places nearest to a row's pixels, the first of equals; there is one.
    int_lanes nearest(const lane_pixels& t, int row) noexcept
    {
        const float center = static_cast<float>(row) + 0.5f;
        for (int i = 0; i < count_; i += kLanes)
        {
            const float_lanes dc = center - load_lanes<float_lanes>(cross_ + i);
            store_lanes(across_squared_ + i, dc * dc);
        }
        return number_of(nearest(
                             [&](int i)
                             {
                                 const float_lanes dm = t.centers - main_[i];
                                 return dm * dm + across_squared_[i];
                             })
                             .place);
    }

    // The same of pixels that are each in their own row, with their squared distances.
    nearest_lanes nearest(const lane_pixels& t, int_lanes rows) const noexcept
    {
        const float_lanes center = __builtin_convertvector(rows, float_lanes) + 0.5f;
        nearest_lanes near = nearest(
            [&](int i)
            {
                const float_lanes dm = t.centers - main_[i];
                const float_lanes dc = center - cross_[i];
                return dm * dm + dc * dc;
            });
        near.place = number_of(near.place);
        return near;
    }

private:
    int_lanes number_of(int_lanes of_these) const noexcept { return gather(number_, of_these); }

    // Which of these is nearest, by what squared(number) answers.
    template <class Squared>
    nearest_lanes nearest(Squared squared) const noexcept
    {
        // Two runs of them at a time, since the comparisons of one wait for each other.
        const int half = count_ / 2;
        float_lanes best = squared(0);
        float_lanes best_behind = squared(half);
        int_lanes found = all_lanes(0);
        int_lanes found_behind = all_lanes(0);
        int_lanes number = all_lanes(1);
        for (int i = 1; i < count_ - half; ++i, number += 1)
        {
            // The first half may be one shorter: then its last is the second half's first, which is no nearer.
            const float_lanes q = squared(i);
            const float_lanes q_behind = squared(half + i);
            found = q < best ? number : found;
            found_behind = q_behind < best_behind ? number : found_behind;
            best = lower_of(q, best);
            best_behind = lower_of(q_behind, best_behind);
        }
        const int_lanes behind = best_behind < best;
        return {behind ? found_behind + half : found, lower_of(best_behind, best)};
    }

    static constexpr int kMost = 256;

    const stroke_candidates& places_;
    int count_ = 0;
    float main_[kMost + kLanes] = {};
    float cross_[kMost + kLanes] = {};
    std::int32_t number_[kMost + kLanes] = {};
    float across_squared_[kMost + kLanes] = {};
};
} // namespace
