#pragma once
// The inside of a stroke of one colour: pixels that need no search, because some place is so near that the nearest
// one covers them, whichever it is. Internal to the file that includes it, as lanes are.

#include "effect/raster/line_creator.hpp"
#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/stroke_tile.hpp"
#include "effect/raster/swept_boxes.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
class covered_rows
{
public:
    covered_rows(const LineCreatorClass& creator, const stroke_candidates& places, int across) noexcept
        : creator_(creator), places_(places), across_(across)
    {
    }

    // Takes the thinnest radius among the tile's candidates: that of the nearest one is no less. Tiles come in
    // ascending order.
    void enter(const stroke_tile& t) noexcept
    {
        radius_ = 0.0f;
        const bool flat = creator_.samplesPerPixel <= 1; // no fall-off, no anti-aliasing
        if (!places_.all_numbers || (!flat && creator_.coreOpacity != 1.0f) || t.begin >= t.end)
            return;
        const float safe = thinnest(t.begin, t.end) * 0.99999f - 0.001f;
        radius_ = std::min(flat ? safe + 1.0f : safe - 1.0f, creator_.outerRadius - kInsideWindows);
    }

    // Rows of lane i, of those swept, that are sure to have the stroke's one colour in full. Not all of them.
    // `counts(j)`: whether the lane's pixels look at place j at all, as far as the main axis goes.
    template <class Counts>
    span of(const stroke_tile& t, int i, span swept, Counts counts) noexcept
    {
        constexpr span none = {0, -1};
        if (!(radius_ > kWorthwhile))
            return none;
        const float squared = radius_ * radius_;
        const float center = t.centers[i];
        const auto half_chord = [&](int j, float* half)
        {
            if (j < t.begin || j >= t.end || places_.cross[j] == stroke_candidates::kFarAway)
                return false;
            const float off = center - places_.main[j];
            const float left = squared - off * off;
            if (!(left > 0.0f) || !counts(j))
                return false;
            *half = std::sqrt(left);
            return true;
        };
        // A walk along the stroke to the candidate whose disc reaches farthest up, or down.
        const auto farthest = [&](int start, float direction, span* rows)
        {
            float half = 0.0f;
            int j = start;
            if (!half_chord(j, &half))
                return -1;
            float best = direction * places_.cross[j] + half;
            for (const int step : {1, -1})
            {
                float h = 0.0f;
                while (half_chord(j + step, &h) && direction * places_.cross[j + step] + h > best)
                {
                    j += step;
                    half = h;
                    best = direction * places_.cross[j] + h;
                }
            }
            const float top = std::max(places_.cross[j] - half - 0.5f, -1.0f);
            const float bottom = std::min(places_.cross[j] + half - 0.5f, static_cast<float>(across_));
            rows->first = trunc_i32(std::ceil(static_cast<double>(top)));
            rows->last = trunc_i32(std::floor(static_cast<double>(bottom)));
            return j;
        };
        while (middle_ < places_.count - 1 && places_.main[middle_] < center)
            ++middle_;
        float unused = 0.0f;
        span up = none;
        span down = none;
        up_ = farthest(half_chord(up_, &unused) ? up_ : middle_, -1.0f, &up);
        down_ = farthest(half_chord(down_, &unused) ? down_ : middle_, 1.0f, &down);
        span rows = joined(up, down);
        rows = {std::max(rows.first, swept.first), std::min(rows.last, swept.last)};
        return rows.first <= rows.last ? rows : none;
    }

private:
    static constexpr float kWorthwhile = 3.0f;    // pixels: below, the search costs less than finding the rows
    static constexpr float kInsideWindows = 1.2f; // pixels: what is this much nearer than the outer radius counts

    float thinnest(int begin, int end) const noexcept
    {
        if (places_.one_radius)
            return places_.radius[begin];
        float_lanes least = all_lanes(std::numeric_limits<float>::infinity());
        int j = begin;
        for (; j + kLanes <= end; j += kLanes)
            least = lower_of(load_lanes<float_lanes>(places_.radius + j), least);
        float thin = std::numeric_limits<float>::infinity();
        for (int i = 0; i < kLanes; ++i)
            thin = std::min(thin, least[i]);
        for (; j < end; ++j)
            thin = std::min(thin, places_.radius[j]);
        return thin;
    }

    const LineCreatorClass& creator_;
    const stroke_candidates& places_;
    int across_;
    float radius_ = 0.0f; // a pixel this near to any of the tile's candidates is covered
    int middle_ = 0;      // where walks along the stroke start
    int up_ = -1;         // and where they ended for the position before
    int down_ = -1;
};
} // namespace
