#pragma once
// The places nearest to the pixels of a few rows of a stroke: those between which its blocks lie. Internal to the
// file that includes it, as lanes are.

#include "effect/raster/nearest_place.hpp"
#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/stroke_tile.hpp"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace
{
// Rows 0, height, 2 * height and so on are edges; block e lies between edges e and e + 1.
class block_edges
{
public:
    struct tile_edges
    {
        int first; // edges that are known, both included
        int last;
        std::int32_t* row; // their places: eight for each edge; -1 for none in reach
    };

    // `height`: of a block, pixels. `lean`: how far, in pixels along, a place's pixels may be from each other in
    // neighbouring edges.
    block_edges(const stroke_candidates& places, stroke_reach reach, int height, int lean) noexcept
        : places_(places), reach_(reach), height_(height), tiles_beside_(lean / kLanes + 2)
    {
    }

    int height() const noexcept { return height_; }

    // Finds the places. rows[t] are those of tile t that anything is drawn in. False where `memory` is short.
    bool find(const span* rows, int tiles, int across, scratch_memory& memory) noexcept
    {
        tiles_ = tiles;
        const int all = tiles + 2 * tiles_beside_;
        tile_ = memory.take<tile_edges>(all);
        if (tile_ == nullptr)
            return false;
        std::int64_t edges = 0;
        span any = {std::numeric_limits<int>::max(), -1};
        for (int t = 0; t < all; ++t)
        {
            tile_[t] = edges_of(rows, t - tiles_beside_);
            edges += tile_[t].last - tile_[t].first + 1;
            if (tile_[t].first <= tile_[t].last)
                any = {std::min(any.first, tile_[t].first), std::max(any.last, tile_[t].last)};
        }
        auto* next = memory.take<std::int32_t>(edges * kLanes);
        if (next == nullptr)
            return false;
        for (int t = 0; t < all; ++t)
        {
            tile_[t].row = next;
            next += static_cast<std::ptrdiff_t>(tile_[t].last - tile_[t].first + 1) * kLanes;
        }
        for (int e = any.first; e <= any.last; ++e)
            find_edge(e, across);
        return true;
    }

    bool knows(int edge, int tile) const noexcept
    {
        const int t = tile + tiles_beside_;
        return 0 <= t && t < tiles_ + 2 * tiles_beside_ && tile_[t].first <= edge && edge <= tile_[t].last;
    }

    int_lanes at(int edge, int tile) const noexcept
    {
        const tile_edges& known = tile_[tile + tiles_beside_];
        return load_lanes<int_lanes>(known.row + static_cast<std::ptrdiff_t>(edge - known.first) * kLanes);
    }

    // The places that pixels between this edge and the next one can be nearest to, from main position `first` to
    // `last`: none below *low, none above *high, if all places between these two have cells in both edges. False
    // where they are not known.
    //
    // Of the pixels before `first`, take the one of the two edges whose place is the lower one, and in the other
    // edge a pixel whose place is no higher. Then the lower one has a cell in both edges; a cell is convex, so it
    // has one in every row between, before `first`; and along a row places follow each other.
    bool between(int edge, int first, int last, int* low, int* high) const noexcept
    {
        return passed(edge, first - 1, -1, low) && passed(edge, last + 1, 1, high);
    }

private:
    void find_edge(int edge, int across) noexcept
    {
        nearest_place nearest(places_, reach_, across);
        for (int t = -tiles_beside_; t < tiles_ + tiles_beside_; ++t)
        {
            if (!knows(edge, t))
                continue;
            stroke_tile tile(t * kLanes);
            nearest.enter_row(tile);
            const tile_edges& known = tile_[t + tiles_beside_];
            store_lanes(known.row + static_cast<std::ptrdiff_t>(edge - known.first) * kLanes,
                        nearest.search(tile, edge * height_).place);
        }
    }

    // The edges around a tile's own rows and those of the tiles beside it. Tiles off the canvas have edges too, so
    // that those at its ends have some beside them.
    tile_edges edges_of(const span* rows, int tile) const noexcept
    {
        span all = {std::numeric_limits<int>::max(), -1};
        for (int t = std::max(tile - tiles_beside_, 0); t <= std::min(tile + tiles_beside_, tiles_ - 1); ++t)
            if (rows[t].first <= rows[t].last)
                all = {std::min(all.first, rows[t].first), std::max(all.last, rows[t].last)};
        if (all.first > all.last)
            return {0, -1, nullptr};
        return {all.first / height_, all.last / height_ + 1, nullptr};
    }

    bool passed(int edge, int from, int step, int* place) const noexcept
    {
        int a = at_pixel(edge, from);
        int b = at_pixel(edge + 1, from);
        if (a < 0 || b < 0)
            return false;
        const int goes_on = (a - b) * step < 0 ? edge : edge + 1;
        const int target = goes_on == edge ? b : a;
        int found = goes_on == edge ? a : b;
        int at = from;
        while ((found - target) * step < 0)
        {
            at += step * std::max(std::abs(found - target) / static_cast<int>(places_.per_pixel), 1);
            found = at_pixel(goes_on, at);
            if (found < 0)
                return false;
        }
        *place = found;
        return true;
    }

    int at_pixel(int edge, int main_at) const noexcept
    {
        const int tile = main_at >> kLaneBits;
        if (!knows(edge, tile))
            return -1;
        const tile_edges& known = tile_[tile + tiles_beside_];
        return known
            .row[(static_cast<std::ptrdiff_t>(edge - known.first) << kLaneBits) + (main_at & (kLanes - 1))];
    }

    static constexpr int kLaneBits = std::countr_zero(static_cast<unsigned>(kLanes));

    const stroke_candidates& places_;
    stroke_reach reach_;
    int height_;
    int tiles_beside_;
    int tiles_ = 0;
    tile_edges* tile_ = nullptr;
};
} // namespace
