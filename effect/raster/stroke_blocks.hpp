#pragma once
// Draws a wide stroke of many colours in blocks of eight main positions by some dozens of rows, column by column.
// Internal to the file that includes it, as lanes are.

#include "effect/raster/column_steps.hpp"
#include "effect/raster/covered_rows.hpp"
#include "effect/raster/nearest_place.hpp"
#include "effect/raster/place_crowd.hpp"
#include "effect/raster/row_cells.hpp"
#include "effect/raster/stroke_canvas.hpp"
#include "effect/raster/swept_plane.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace
{
class stroke_blocks
{
public:
    // `places` are ascending.
    stroke_blocks(const stroke_candidates& places, const stroke_canvas& canvas, const stroke_windows& windows,
                  const covered_rows& covered, const swept_plane& plane, float widest) noexcept
        : places_(places), canvas_(canvas), windows_(windows), covered_(covered), plane_(plane), reach_(widest),
          height_(reach_.distance < 24.0f ? 24 : column_steps::kMostRows), steps_(places), crowd_(places)
    {
    }

    // Makes ready to draw. `swept_first`, `swept_last`: for each main position the rows to draw, of which those
    // that nothing reaches are taken away. False, with nothing changed, where the stroke is none for blocks; false
    // where `memory` is short.
    bool make_room(std::int32_t* swept_first, std::int32_t* swept_last, scratch_memory& memory) noexcept
    {
        if (places_.bridged || !places_.even)
            return false;
        first_ = swept_first;
        last_ = swept_last;
        tiles_ = (canvas_.size + kLanes - 1) / kLanes;
        rows_ = memory.take<span>(tiles_);
        if (rows_ == nullptr || !steps_.take(memory) ||
            !edges_[0].take(places_, canvas_.size, row_cells::detail::pixels, memory) ||
            !edges_[1].take(places_, canvas_.size, row_cells::detail::pixels, memory))
            return false;
        nearest_place ahead(places_, reach_, canvas_.across);
        for (int tile = 0; tile < tiles_; ++tile)
            rows_[tile] = rows_of(tile, ahead);
        return true;
    }

    // paint(tile, row, needed, sure, places, &color) answers which of the needed pixels of eight, with known
    // nearest places and their colours, are to be written, and changes colours; those that are sure are known to
    // be covered. search(nearest, tile, row, needed) draws pixels whose nearest places are not known, and answers
    // which it wrote.
    template <class Paint, class Search>
    void draw(Paint paint, Search search) noexcept
    {
        int found = -1; // the last row whose cells are known
        for (int top = 0; top < canvas_.across; top += height_)
        {
            const span all = {top, top + height_ - 1};
            if (!any_in(all))
                continue;
            if (found != top)
                edge(top).find(places_, steps_.slopes(), top);
            found = top + height_;
            edge(found).find(places_, steps_.slopes(), found);
            nearest_place nearest(places_, reach_, canvas_.across);
            for (int tile = 0; tile < tiles_; ++tile)
            {
                const span rows = {std::max(rows_[tile].first, all.first), std::min(rows_[tile].last, all.last)};
                if (rows.first > rows.last)
                    continue;
                lane_pixels t(tile * kLanes);
                written_ = 0;
                written_at_ = t.at;
                written_tile_ = canvas_.tile_across(rows.first);
                const bool known = find_ends(top, t.at);
                if (known && enter(top, tile, &t))
                    draw_columns(t, top, rows, paint);
                else if (known && enter_crowd(top, tile, &t))
                    draw_crowd(t, rows, paint);
                else
                    draw_rows(tile, rows, nearest, search);
                canvas_.mark(t.at, written_tile_, written_);
            }
        }
    }

private:
    static constexpr int kMostSpread = 512; // places looked through for one that has cells

    int lanes_of(int tile) const noexcept { return std::min(kLanes, canvas_.size - tile * kLanes); }

    // The cells of a row between blocks.
    row_cells& edge(int row) noexcept { return edges_[row / height_ % 2]; }

    bool any_in(span all) const noexcept
    {
        for (int tile = 0; tile < tiles_; ++tile)
            if (std::max(rows_[tile].first, all.first) <= std::min(rows_[tile].last, all.last))
                return true;
        return false;
    }

    // The rows of a tile in which there is anything to draw.
    span rows_of(int tile, nearest_place& ahead) noexcept
    {
        stroke_tile t(tile * kLanes);
        t.reach = {0, canvas_.across - 1};
        ahead.enter_pixels(t);
        span rows = {canvas_.across, -1};
        for (int i = t.at; i < t.at + lanes_of(tile); ++i)
        {
            first_[i] = std::max(first_[i], t.reach.first);
            last_[i] = std::min(last_[i], t.reach.last);
            if (first_[i] <= last_[i])
                rows = {std::min(rows.first, first_[i]), std::max(rows.last, last_[i])};
        }
        return rows;
    }

    // Finds the places that those nearest to the pixels of a tile's block lie between. False where they lie too
    // far apart.
    //
    // Of the pixels before the tile, take the lower one of the nearest places in the block's first row and in the
    // row behind its last. If it has a cell in both rows, that is at the pixel in one and no farther along in the
    // other. A cell is convex, so it has one in every row between, before the tile; and along a row places follow
    // each other.
    bool find_ends(int top, int at) noexcept
    {
        const row_cells& above = edge(top);
        const row_cells& below = edge(top + height_);
        low_ = std::min(above.at(at - 1), below.at(at - 1));
        high_ = std::max(above.at(at + kLanes), below.at(at + kLanes));
        const int lowest = std::max(low_ - kMostSpread, 0);
        const int highest = std::min(high_ + kMostSpread, places_.count - 1);
        in_order_ = true;
        for (; low_ >= lowest && !(above.has(low_) && below.has(low_)); --low_)
            in_order_ = false;
        for (; high_ <= highest && !(above.has(high_) && below.has(high_)); ++high_)
            in_order_ = false;
        return low_ >= lowest && high_ <= highest;
    }

    // Whether each of those places has a cell all through the block.
    bool enter(int top, int tile, lane_pixels* t) noexcept
    {
        const int_lanes above = edge(top).lanes_at(t->at);
        const int_lanes below = edge(top + height_).lanes_at(t->at);
        if (!in_order_ || !steps_.enter(t->at, top, height_, low_, high_, above, below))
            return false;
        t->all_inside = windows_.all_inside(places_, low_, high_ + 1);
        set_lanes(*t, tile, above, below);
        return true;
    }

    // Collects those of the places that may have a cell anywhere in the block: one that has none in either of the
    // two rows and lies between them itself, or that has one. Of a place that lies beyond one of the rows, what is
    // nearest to it is cut by that row first. False where they are too many.
    bool enter_crowd(int top, int tile, lane_pixels* t) noexcept
    {
        const row_cells& above = edge(top);
        const row_cells& below = edge(top + height_);
        if (!steps_.near_enough(t->at, top, height_, above.lanes_at(t->at), below.lanes_at(t->at)))
            return false;
        const auto first = static_cast<float>(top);
        const auto last = static_cast<float>(top + height_ + 1);
        crowd_.clear();
        for (int j = low_; j <= high_; ++j)
        {
            const float cross = places_.cross[j];
            if ((!above.lacks(j) || !below.lacks(j) || (first <= cross && cross <= last)) && !crowd_.add(j))
                return false;
        }
        t->all_inside = windows_.all_inside(places_, low_, high_ + 1);
        set_lanes(*t, tile, above.lanes_at(t->at), below.lanes_at(t->at));
        return true;
    }

    void set_lanes(const lane_pixels& t, int tile, int_lanes above, int_lanes below) noexcept
    {
        if (lanes_of(tile) == kLanes)
        {
            needed_ = {load_lanes<int_lanes>(first_ + t.at), load_lanes<int_lanes>(last_ + t.at)};
        }
        else
        {
            needed_ = {all_lanes(canvas_.across), all_lanes(-1)};
            for (int i = 0; i < lanes_of(tile); ++i)
            {
                needed_.first[i] = first_[t.at + i];
                needed_.last[i] = last_[t.at + i];
            }
        }
        sure_ = {all_lanes(canvas_.across), all_lanes(-1)};
        if (t.all_inside && !plane_.holed(t.at))
            sure_ = covered_.beside(t, low_, high_ + 1, above, below);
        sure_ = {higher_of(sure_.first, needed_.first), lower_of(sure_.last, needed_.last)};
        all_sure_ = {sure_.first[0], sure_.last[0]};
        for (int i = 1; i < kLanes; ++i)
            all_sure_ = {std::max(all_sure_.first, static_cast<int>(sure_.first[i])),
                         std::min(all_sure_.last, static_cast<int>(sure_.last[i]))};
    }

    template <class Paint>
    void draw_columns(const lane_pixels& t, int top, span rows, Paint paint) noexcept
    {
        span covered = {std::max(rows.first, all_sure_.first), std::min(rows.last, all_sure_.last)};
        if (covered.first > covered.last)
            covered = {rows.last + 1, rows.last};
        const bool rims = covered.first > rows.first || covered.last < rows.last;
        for (int lane = 0; lane < lanes_of(t.at / kLanes); ++lane)
            steps_.note(lane, {rows.first - top, rows.last - top}, rims);
        column_steps::sums now = steps_.begin(rims);
        draw_rims(t, {rows.first, covered.first - 1}, now, paint);
        draw_inside(t, covered, now, rims);
        draw_rims(t, {covered.last + 1, rows.last}, now, paint);
        steps_.finish(rims);
    }

    // Rows of eight pixels, all of them covered.
    void draw_inside(const lane_pixels& t, span rows, column_steps::sums& now, bool rims) noexcept
    {
        int row = rows.first;
        if (canvas_.fills_across())
            for (; row + kLanes <= rows.last + 1; row += kLanes)
            {
                int_lanes square[kLanes];
                for (int_lanes& colors : square)
                {
                    steps_.advance(now, rims);
                    colors = now.color;
                }
                turn(square);
                canvas_.store_square(t.at, row, square);
            }
        for (; row <= rows.last; ++row)
        {
            steps_.advance(now, rims);
            canvas_.store(t.at, row, 0xff, now.color);
        }
        // Most lie in one tile of the canvas.
        if (rows.first <= rows.last && canvas_.tile_across(rows.first) == canvas_.tile_across(rows.last))
            note(rows.first, 0xff);
        else
            for (row = rows.first; row <= rows.last; ++row)
                note(row, 0xff);
    }

    template <class Paint>
    void draw_crowd(const lane_pixels& t, span rows, Paint paint) noexcept
    {
        for (int row = rows.first; row <= rows.last; ++row)
            draw_row(
                t, row, [&] { return crowd_.nearest(t, row); },
                [&](int_lanes place) { return gather(places_.color, place); }, paint);
    }

    template <class Paint>
    void draw_rims(const lane_pixels& t, span rows, column_steps::sums& now, Paint paint) noexcept
    {
        for (int row = rows.first; row <= rows.last; ++row)
        {
            steps_.advance(now, true);
            draw_row(
                t, row, [&] { return now.place; }, [&](int_lanes) { return now.color; }, paint);
        }
    }

    // Draws what is needed of a row, whose places and their colours are asked for where anything is.
    template <class Places, class Colors, class Paint>
    void draw_row(const lane_pixels& t, int row, Places places, Colors colors, Paint paint) noexcept
    {
        unsigned needed = between(needed_, row);
        if (plane_.holed(t.at))
            needed &= swept_in_plane(t.at, row);
        if (needed == 0)
            return;
        const int_lanes place = places();
        int_lanes color = colors(place);
        const unsigned sure = between(sure_, row);
        unsigned bits = needed;
        if ((needed & ~sure) != 0)
            bits = paint(t, row, needed, sure, place, &color);
        canvas_.store(t.at, row, bits, color);
        note(row, bits);
    }

    template <class Search>
    void draw_rows(int tile, span rows, nearest_place& nearest, Search search) noexcept
    {
        stroke_tile t(tile * kLanes);
        t.count = lanes_of(tile);
        t.reach = {0, canvas_.across - 1};
        nearest.enter(t);
        t.all_inside = windows_.all_inside(places_, t.begin, t.end);
        for (int row = rows.first; row <= rows.last; ++row)
        {
            unsigned needed = 0;
            for (int i = 0; i < t.count; ++i)
                needed |= first_[t.at + i] <= row && row <= last_[t.at + i] ? 1U << static_cast<unsigned>(i) : 0U;
            if (plane_.holed(t.at))
                needed &= swept_in_plane(t.at, row);
            if (needed != 0)
                note(row, search(nearest, t, row, needed));
        }
    }

    unsigned swept_in_plane(int at, int row) const noexcept
    {
        return static_cast<unsigned>(
            plane_.bits(at, std::min(kLanes, canvas_.size - at), row, swept_plane::kSwept));
    }

    static unsigned between(const row_lanes& rows, int row) noexcept
    {
        return lane_bits((rows.first <= row) & (rows.last >= row));
    }

    // Notes pixels written, to mark the canvas's tile once for all its rows.
    void note(int row, unsigned bits) noexcept
    {
        const int tile = canvas_.tile_across(row);
        if (tile != written_tile_)
        {
            canvas_.mark(written_at_, written_tile_, written_);
            written_ = 0;
            written_tile_ = tile;
        }
        written_ |= bits;
    }

    // Lane k of vector m becomes lane m of vector k.
    static void turn(int_lanes* a) noexcept
    {
        int_lanes b[kLanes];
        for (int k = 0; k < kLanes; k += 2)
        {
            b[k] = __builtin_shufflevector(a[k], a[k + 1], 0, 8, 1, 9, 4, 12, 5, 13);
            b[k + 1] = __builtin_shufflevector(a[k], a[k + 1], 2, 10, 3, 11, 6, 14, 7, 15);
        }
        for (int k = 0; k < kLanes; k += 4)
            for (int m = 0; m < 2; ++m)
            {
                a[k + 2 * m] = __builtin_shufflevector(b[k + m], b[k + m + 2], 0, 1, 8, 9, 4, 5, 12, 13);
                a[k + 2 * m + 1] = __builtin_shufflevector(b[k + m], b[k + m + 2], 2, 3, 10, 11, 6, 7, 14, 15);
            }
        for (int k = 0; k < 4; ++k)
        {
            b[k] = __builtin_shufflevector(a[k], a[k + 4], 0, 1, 2, 3, 8, 9, 10, 11);
            b[k + 4] = __builtin_shufflevector(a[k], a[k + 4], 4, 5, 6, 7, 12, 13, 14, 15);
        }
        std::copy_n(b, kLanes, a);
    }

    const stroke_candidates& places_;
    const stroke_canvas& canvas_;
    const stroke_windows& windows_;
    const covered_rows& covered_;
    const swept_plane& plane_;
    stroke_reach reach_;
    int height_; // of a block
    column_steps steps_;
    row_cells edges_[2]; // of the block at work, those that begin in even rows of blocks and the others
    place_crowd crowd_;
    int low_ = 0; // of the tile's block at work: the places that its pixels' nearest ones lie between,
    int high_ = 0;
    bool in_order_ = false; // and whether these are the nearest ones beside the tile
    int tiles_ = 0;
    std::int32_t* first_ = nullptr; // rows to draw at each main position
    std::int32_t* last_ = nullptr;
    span* rows_ = nullptr; // and in each tile
    row_lanes needed_{};   // of the tile at work: rows to draw,
    row_lanes sure_{};     // those that are covered for sure,
    span all_sure_{};      // and those of all lanes
    int written_at_ = 0;
    int written_tile_ = 0;
    std::uint64_t written_ = 0;
};
} // namespace
