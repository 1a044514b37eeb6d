#pragma once
// Draws a wide stroke of many colours in blocks of eight main positions by some dozens of rows, boundary by
// boundary. Internal to the file that includes it, as lanes are.

#include "effect/raster/column_steps.hpp"
#include "effect/raster/covered_rows.hpp"
#include "effect/raster/nearest_place.hpp"
#include "effect/raster/place_crowd.hpp"
#include "effect/raster/reach_rows.hpp"
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
          steps_(places), crowd_(places)
    {
    }

    // Makes ready to draw. `swept_first`, `swept_last`: for each main position the rows to draw, of which those
    // that nothing reaches are taken away. False, with nothing changed, where the stroke is none for blocks or
    // `memory` is short.
    bool make_room(std::int32_t* swept_first, std::int32_t* swept_last, scratch_memory& memory) noexcept
    {
        if (places_.bridged || !places_.even)
            return false;
        first_ = swept_first;
        last_ = swept_last;
        tiles_ = (canvas_.size + kLanes - 1) / kLanes;
        scratch_memory left = memory;
        rows_ = left.take<span>(tiles_);
        if (rows_ == nullptr || !steps_.take(left))
            return false;
        for (row_cells* cells : {&edges_[0], &edges_[1], &halves_[0], &halves_[1]})
            if (!cells->take(places_, canvas_.size, left))
                return false;
        const scratch_memory rest = left;
        reach_rows reached; // no longer than here
        if (!reached.take(places_, reach_.distance, canvas_.across, left))
            return false;
        memory = rest;
        for (int tile = 0; tile < tiles_; ++tile)
            rows_[tile] = rows_of(tile, reached.of(tile * kLanes));
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
        for (int top = 0; top < canvas_.across; top += kHeight)
        {
            const span all = {top, top + kHeight - 1};
            if (!any_in(all))
                continue;
            if (found != top)
                edge(top).find(places_, steps_.slopes(), top);
            found = top + kHeight;
            edge(found).find(places_, steps_.slopes(), found);
            nearest_place nearest(places_, reach_, canvas_.across);
            for (int tile = 0; tile < tiles_; ++tile)
            {
                const span rows = {std::max(rows_[tile].first, all.first), std::min(rows_[tile].last, all.last)};
                if (rows.first > rows.last)
                    continue;
                written_ = 0;
                written_at_ = tile * kLanes;
                written_tile_ = canvas_.tile_across(rows.first);
                waiting_ = 0;
                wait({tile, top, kHeight, 0, &edge(top), &edge(found), 0, places_.count - 1});
                while (waiting_ > 0)
                    draw_block(waiting_blocks_[--waiting_], rows, nearest, paint, search);
                canvas_.mark(written_at_, written_tile_, written_);
            }
        }
    }

private:
    static constexpr int kMostSpread = 512; // places looked through for one that has cells
    static constexpr int kMostHalvings = 2;
    static constexpr int kHeight = column_steps::kMostRows; // of a block, before it is halved

    int lanes_of(int tile) const noexcept { return std::min(kLanes, canvas_.size - tile * kLanes); }

    // The cells of a row between blocks.
    row_cells& edge(int row) noexcept { return edges_[row / kHeight % 2]; }

    bool any_in(span all) const noexcept
    {
        for (int tile = 0; tile < tiles_; ++tile)
            if (std::max(rows_[tile].first, all.first) <= std::min(rows_[tile].last, all.last))
                return true;
        return false;
    }

    // The rows of a tile in which there is anything to draw, of those that are reached.
    span rows_of(int tile, span reached) noexcept
    {
        const int at = tile * kLanes;
        span rows = {canvas_.across, -1};
        for (int i = at; i < at + lanes_of(tile); ++i)
        {
            first_[i] = std::max(first_[i], reached.first);
            last_[i] = std::min(last_[i], reached.last);
            if (first_[i] <= last_[i])
                rows = {std::min(rows.first, first_[i]), std::max(rows.last, last_[i])};
        }
        return rows;
    }

    // Some rows of a tile, between two whose cells are known.
    struct block
    {
        int tile;
        int top;
        int height;
        int halvings;           // that it comes from
        const row_cells* above; // of row `top`
        const row_cells* below; // of row `top` + `height`
        int lowest;             // places that those nearest to its pixels lie between
        int highest;
    };

    void wait(const block& b) noexcept { waiting_blocks_[waiting_++] = b; }

    // Draws what there is of `all` rows in a block, or has its halves wait (where it waited itself: hence a copy).
    template <class Paint, class Search>
    void draw_block(block b, span all, nearest_place& nearest, Paint paint, Search search) noexcept
    {
        const span rows = {std::max(all.first, b.top), std::min(all.last, b.top + b.height - 1)};
        if (rows.first > rows.last)
            return;
        lane_pixels t(b.tile * kLanes);
        const bool known = find_ends(b);
        if (known && enter(b, rows, &t))
            draw_columns(t, b.top, rows, paint);
        else if (known && b.halvings < kMostHalvings)
            halve(b);
        else if (known && enter_crowd(b, &t))
            draw_crowd(t, rows, paint);
        else
            draw_rows(b.tile, rows, nearest, search);
    }

    // In half of a block, more places may have cells all through, and fewer have any. Only those that were found
    // for the whole are looked at.
    void halve(const block& b) noexcept
    {
        const int half = b.height / 2;
        const int middle = b.top + half;
        row_cells& between = halves_[b.halvings];
        between.find(places_, steps_.slopes(), middle, row_cells::kSurelyWide, {low_, high_},
                     {b.tile, b.tile + 1});
        wait({b.tile, middle, b.height - half, b.halvings + 1, &between, b.below, low_, high_});
        wait({b.tile, b.top, half, b.halvings + 1, b.above, &between, low_, high_});
    }

    // Finds the places that those nearest to the pixels of a block lie between. False where they lie too far
    // apart.
    //
    // Where the tile starts, take the lower one of the nearest places in the block's first row and in the row
    // behind its last. If it has a cell in both rows, that is at the tile's start in one and no farther along in
    // the other. A cell is convex, so it has one in every row between, before the tile's pixels; and along a row
    // places follow each other.
    bool find_ends(const block& b) noexcept
    {
        low_ = std::min(b.above->at_start(b.tile), b.below->at_start(b.tile));
        high_ = std::max(b.above->at_start(b.tile + 1), b.below->at_start(b.tile + 1));
        const int lowest = std::max(low_ - kMostSpread, b.lowest);
        const int highest = std::min(high_ + kMostSpread, b.highest);
        in_order_ = true;
        for (; low_ > lowest && !(b.above->has(low_) && b.below->has(low_)); --low_)
            in_order_ = false;
        for (; high_ < highest && !(b.above->has(high_) && b.below->has(high_)); ++high_)
            in_order_ = false;
        return (low_ == b.lowest || low_ > lowest) && (high_ == b.highest || high_ < highest);
    }

    // For each pixel of a row with these cells some place that is about the nearest.
    static int_lanes places_along(const row_cells& cells, int tile) noexcept
    {
        const int first = cells.at_start(tile);
        const int last = cells.at_start(tile + 1);
        return first + (((last - first) * (2 * kLaneNumbers + 1)) >> static_cast<std::int32_t>(kLaneBits + 1));
    }

    // Whether each of those places has a cell all through the block.
    bool enter(const block& b, span rows, lane_pixels* t) noexcept
    {
        const int_lanes above = places_along(*b.above, b.tile);
        const int_lanes below = places_along(*b.below, b.tile);
        if (!in_order_ || !steps_.enter(t->at, b.top, b.height, low_, high_, above, below))
            return false;
        if (rows.last - rows.first + 1 < b.height)
        {
            steps_.narrow({rows.first - b.top, rows.last - b.top});
            low_ = steps_.places().first;
            high_ = steps_.places().last;
        }
        t->all_inside = windows_.all_inside(places_, low_, high_ + 1);
        set_lanes(*t, b.tile, above, below);
        return true;
    }

    // Collects those of the places that may have a cell anywhere in the block: one that has none in either of the
    // two rows and lies between them itself, or that has one. Of a place that lies beyond one of the rows, what is
    // nearest to it is cut by that row first. False where they are too many.
    bool enter_crowd(const block& b, lane_pixels* t) noexcept
    {
        const int_lanes above = places_along(*b.above, b.tile);
        const int_lanes below = places_along(*b.below, b.tile);
        if (!steps_.near_enough(t->at, b.top, b.height, above, below))
            return false;
        const auto first = static_cast<float>(b.top);
        const auto last = static_cast<float>(b.top + b.height + 1);
        crowd_.clear();
        for (int j = low_; j <= high_; ++j)
        {
            const float cross = places_.cross[j];
            if ((!b.above->lacks(j) || !b.below->lacks(j) || (first <= cross && cross <= last)) && !crowd_.add(j))
                return false;
        }
        t->all_inside = windows_.all_inside(places_, low_, high_ + 1);
        set_lanes(*t, b.tile, above, below);
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
            sure_ = covered_.beside(t, low_, high_ + 1, steps_.farthest(), above, below);
        sure_ = {higher_of(sure_.first, needed_.first), lower_of(sure_.last, needed_.last)};
        all_sure_ = {most(sure_.first), least(sure_.last)};
    }

    template <class Paint>
    void draw_columns(const lane_pixels& t, int top, span rows, Paint paint) noexcept
    {
        span covered = {std::max(rows.first, all_sure_.first), std::min(rows.last, all_sure_.last)};
        if (covered.first > covered.last)
            covered = {rows.last + 1, rows.last};
        if (covered.first == rows.first && covered.last == rows.last)
        {
            auto now = steps_.note<std::uint32_t>({rows.first - top, rows.last - top});
            draw_inside(t, covered, now);
            finish(now);
            return;
        }
        auto now = steps_.note<std::uint64_t>({rows.first - top, rows.last - top});
        draw_rims(t, {rows.first, covered.first - 1}, now, paint);
        draw_inside(t, covered, now);
        draw_rims(t, {covered.last + 1, rows.last}, now, paint);
        finish(now);
    }

    template <class Sums>
    static void finish(Sums& now) noexcept
    {
        for (int row = 0; row < column_steps::kRowsBehind; ++row)
            now.advance();
    }

    // Rows of eight pixels, all of them covered.
    template <class Sums>
    void draw_inside(const lane_pixels& t, span rows, Sums& now) noexcept
    {
        if (rows.first > rows.last)
            return;
        Sums here = now; // in registers
        const auto next = [&here]
        {
            here.advance();
            return here.colors();
        };
        int row = rows.first;
        if (canvas_.fills_across())
            for (; row + kLanes <= rows.last + 1; row += kLanes)
            {
                int_lanes square[kLanes];
                unrolled<kLanes>([&](int i) { square[i] = next(); });
                turn(square);
                canvas_.store_square(t.at, row, square);
            }
        canvas_.store_rows(t.at, {row, rows.last}, next);
        now = here;
        while (rows.first <= rows.last)
        {
            note(rows.first, 0xff);
            rows.first = canvas_.tile_rows(written_tile_).last + 1;
        }
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
    void draw_rims(const lane_pixels& t, span rows, step_sums<std::uint64_t>& now, Paint paint) noexcept
    {
        for (int row = rows.first; row <= rows.last; ++row)
        {
            now.advance();
            draw_row(
                t, row, [&] { return now.places(); }, [&](int_lanes) { return now.colors(); }, paint);
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
        unrolled<4>(
            [&](int n)
            {
                const int k = 2 * n;
                b[k] = __builtin_shufflevector(a[k], a[k + 1], 0, 8, 1, 9, 4, 12, 5, 13);
                b[k + 1] = __builtin_shufflevector(a[k], a[k + 1], 2, 10, 3, 11, 6, 14, 7, 15);
            });
        unrolled<4>(
            [&](int n)
            {
                const int k = n / 2 * 4;
                const int m = n % 2;
                a[k + 2 * m] = __builtin_shufflevector(b[k + m], b[k + m + 2], 0, 1, 8, 9, 4, 5, 12, 13);
                a[k + 2 * m + 1] = __builtin_shufflevector(b[k + m], b[k + m + 2], 2, 3, 10, 11, 6, 7, 14, 15);
            });
        unrolled<4>(
            [&](int k)
            {
                b[k] = __builtin_shufflevector(a[k], a[k + 4], 0, 1, 2, 3, 8, 9, 10, 11);
                b[k + 4] = __builtin_shufflevector(a[k], a[k + 4], 4, 5, 6, 7, 12, 13, 14, 15);
            });
        unrolled<kLanes>([&](int k) { a[k] = b[k]; });
    }

    const stroke_candidates& places_;
    const stroke_canvas& canvas_;
    const stroke_windows& windows_;
    const covered_rows& covered_;
    const swept_plane& plane_;
    stroke_reach reach_;
    column_steps steps_;
    row_cells edges_[2]; // of the block at work, those that begin in even rows of blocks and the others
    row_cells halves_[kMostHalvings];         // rows in the middle of blocks that are halved
    block waiting_blocks_[kMostHalvings + 1]; // of the tile at work, the last one first
    int waiting_ = 0;
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
