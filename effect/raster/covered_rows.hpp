#pragma once
// The inside of a stroke: pixels that need no search, because some place is so near that the nearest one covers
// them, whichever it is. Internal to the file that includes it, as lanes are.

#include "effect/raster/line_creator.hpp"
#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/stroke_tile.hpp"
#include "effect/raster/stroke_windows.hpp"
#include "effect/raster/swept_boxes.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
// Rows of each lane of a tile; none where last is below first.
struct row_lanes
{
    int_lanes first;
    int_lanes last;
};

class covered_rows
{
public:
    covered_rows(const LineCreatorClass& creator, const stroke_candidates& places, const stroke_windows& windows,
                 int across) noexcept
        : creator_(creator), places_(places), windows_(windows), across_(across)
    {
    }

    // Rows that are sure to be inside the stroke by a pixel or more at each lane; not all of them. A pixel is when
    // it is that far inside a disc around any of the tile's candidates with the thinnest radius among them: that
    // of the nearest one is no less. Discs around places at a few distances along the stroke reach nearly as far
    // as any.
    row_lanes of(const stroke_tile& t) const noexcept
    {
        const float radius = sure_radius(t.begin, t.end);
        if (!(radius > kWorthwhile))
            return none();
        const int middle = places_.from(t.begin, t.end, t.centers[0]);
        const float_lanes step_to_lane = __builtin_convertvector(kLaneNumbers, float_lanes) * places_.per_pixel;
        constexpr int kDiscs = 7; // to each side
        disc_rows found(radius);
        for (int disc = 0; disc <= 2 * kDiscs; ++disc)
        {
            // The first one lies beside the pixels themselves.
            const int side = disc % 2 == 0 ? disc / 2 : -(disc / 2 + 1);
            const float off_by = static_cast<float>(disc == 0 ? 0 : side) * (radius / (kDiscs + 1.0f));
            const int_lanes j = whole(step_to_lane + off_by * places_.per_pixel) + middle;
            const int_lanes held = higher_of(lower_of(j, all_lanes(t.end - 1)), all_lanes(t.begin));
            add(t, held, &found);
            if (disc == 0 && lane_bits(found.top < found.bottom) == 0)
                return none();
        }
        return rows(found);
    }

    // The same where the nearest place is one of those from `begin` up to but not `end`, all inside, and no
    // farther off than `farthest`; with discs around two of them for each lane.
    row_lanes beside(const lane_pixels& t, int begin, int end, float farthest, int_lanes one,
                     int_lanes other) const noexcept
    {
        const float radius = sure_radius(begin, end);
        if (!(radius > kWorthwhile))
            return none();
        if (farthest < radius)
            return {all_lanes(0), all_lanes(across_ - 1)};
        disc_rows found(radius);
        add(t, one, &found);
        add(t, other, &found);
        return rows(found);
    }

private:
    static constexpr float kWorthwhile = 3.0f;    // pixels: below, the search costs less than finding the rows
    static constexpr float kInsideWindows = 1.2f; // pixels: what is this much nearer than the outer radius counts
    static constexpr float kNothing = 1e9f;

    // Across, from .top to .bottom in each lane: what discs of one radius cover.
    struct disc_rows
    {
        float radius;
        float_lanes top = all_lanes(kNothing);
        float_lanes bottom = all_lanes(-kNothing);

        explicit disc_rows(float r) noexcept : radius(r) {}
    };

    row_lanes none() const noexcept { return {all_lanes(across_), all_lanes(-1)}; }

    // Adds the discs around these places, where they meet what was found so far.
    void add(const lane_pixels& t, int_lanes places, disc_rows* found) const noexcept
    {
        const float_lanes main = gather(places_.main, places);
        const float_lanes cross = gather(places_.cross, places);
        const float_lanes off = t.centers - main;
        const float_lanes left = found->radius * found->radius - off * off;
        const float_lanes half = root(higher_of(left, all_lanes(0.0f)));
        const int_lanes counts = (left > 0.0f) & windows_.inside(main) & (cross != stroke_candidates::kFarAway);
        const int_lanes meets = counts & ((found->top > found->bottom) |
                                          ((cross + half >= found->top) & (cross - half <= found->bottom)));
        found->top = meets ? lower_of(cross - half, found->top) : found->top;
        found->bottom = meets ? higher_of(cross + half, found->bottom) : found->bottom;
    }

    // Rows whose centres lie between top and bottom.
    row_lanes rows(const disc_rows& found) const noexcept
    {
        const float_lanes first = higher_of(found.top - 0.5f, all_lanes(-1.0f)) + 2.0f;
        const float_lanes last = lower_of(found.bottom + 0.5f, all_lanes(static_cast<float>(across_)));
        const int_lanes some = found.top < found.bottom;
        return {some ? whole(first) - 1 : none().first, some ? whole(last) - 1 : none().last};
    }

    float sure_radius(int begin, int end) const noexcept
    {
        const bool flat = creator_.samplesPerPixel <= 1; // no fall-off, no anti-aliasing
        if (!places_.all_numbers || !windows_.known() || (!flat && creator_.coreOpacity != 1.0f) || begin >= end)
            return 0.0f;
        const float safe = thinnest(begin, end) * 0.99999f - 0.001f;
        return std::min(flat ? safe + 1.0f : safe - 1.0f, creator_.outerRadius - kInsideWindows);
    }

    float thinnest(int begin, int end) const noexcept
    {
        if (places_.one_radius)
            return places_.radius[begin];
        constexpr float kNone = std::numeric_limits<float>::infinity();
        float_lanes thin = all_lanes(kNone);
        int j = begin;
        for (; j + kLanes <= end; j += kLanes)
            thin = lower_of(load_lanes<float_lanes>(places_.radius + j), thin);
        const auto rest = load_lanes<float_lanes>(places_.radius + j);
        return least(lower_of(kLaneNumbers < end - j ? rest : all_lanes(kNone), thin));
    }

    const LineCreatorClass& creator_;
    const stroke_candidates& places_;
    const stroke_windows& windows_;
    int across_;
};
} // namespace
