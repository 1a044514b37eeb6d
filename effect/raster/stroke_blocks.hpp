#pragma once
// Draws a wide stroke of many colours in blocks of eight main positions by some dozens of rows, column by column.
// Internal to the file that includes it, as lanes are.

#include "effect/raster/block_edges.hpp"
#include "effect/raster/column_runs.hpp"
#include "effect/raster/covered_rows.hpp"
#include "effect/raster/nearest_place.hpp"
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
          lean_(lean_of(places, height_of(reach_))),
          edges_(places, stroke_reach(widest + static_cast<float>(height_of(reach_) + lean_ + 2 * kLanes)),
                 height_of(reach_), lean_),
          runs_(places)
    {
    }

    // Finds what lies between the blocks. `swept_first`, `swept_last`: for each main position the rows to draw, of
    // which those that nothing reaches are taken away. False, with nothing changed, where the stroke is none for
    // blocks; false where `memory` is short.
    bool make_room(std::int32_t* swept_first, std::int32_t* swept_last, scratch_memory& memory) noexcept
    {
        if (places_.bridged || !places_.even)
            return false;
        first_ = swept_first;
        last_ = swept_last;
        tiles_ = (canvas_.size + kLanes - 1) / kLanes;
        rows_ = memory.take<span>(tiles_);
        if (rows_ == nullptr)
            return false;
        nearest_place ahead(places_, reach_, canvas_.across);
        for (int tile = 0; tile < tiles_; ++tile)
            rows_[tile] = rows_of(tile, ahead);
        return edges_.find(rows_, tiles_, canvas_.across, memory);
    }

    // paint(tile, row, needed, sure, places, &color) answers which of the needed pixels of eight, with known
    // nearest places and their colours, are to be written, and changes colours; those that are sure are known to
    // be covered. search(nearest, tile, row, needed) draws pixels whose nearest places are not known, and answers
    // which it wrote.
    template <class Paint, class Search>
    void draw(Paint paint, Search search) noexcept
    {
        const int height = edges_.height();
        for (int block = 0; block * height < canvas_.across; ++block)
        {
            const span all = {block * height, block * height + height - 1};
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
                if (enter(block, tile, &t))
                    draw_columns(t, block * height, rows, paint);
                else
                    draw_rows(tile, rows, nearest, search);
                canvas_.mark(t.at, written_tile_, written_);
            }
        }
    }

private:
    static int height_of(const stroke_reach& reach) noexcept
    {
        return reach.distance < 24.0f ? 32 : column_runs::kMostRows;
    }

    // How far a place's pixels move along in `height` rows, where the stroke is not too steep for blocks.
    static int lean_of(const stroke_candidates& places, int height) noexcept
    {
        constexpr float kMost = 2.5f;
        float steepest = 0.0f;
        for (int j = 1; j < places.count; ++j)
        {
            const float slope = std::fabs(places.cross[j] - places.cross[j - 1]) * places.per_pixel;
            steepest = slope > steepest && slope < kMost ? slope : steepest;
        }
        return static_cast<int>(steepest * static_cast<float>(height)) + 1;
    }

    int lanes_of(int tile) const noexcept { return std::min(kLanes, canvas_.size - tile * kLanes); }

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

    // Whether a block's nearest places can be told from its edges.
    bool enter(int block, int tile, lane_pixels* t) noexcept
    {
        int low = 0;
        int high = 0;
        if (!edges_.between(block, t->at, t->at + kLanes - 1, &low, &high))
            return false;
        const int_lanes above = edges_.at(block, tile);
        const int_lanes below = edges_.at(block + 1, tile);
        if (!runs_.enter(t->at, block * edges_.height(), edges_.height(), low, high, above, below))
            return false;
        t->all_inside = windows_.all_inside(places_, low, high + 1);
        set_lanes(*t, tile, low, high, above, below);
        return true;
    }

    void set_lanes(const lane_pixels& t, int tile, int low, int high, int_lanes above, int_lanes below) noexcept
    {
        needed_ = {all_lanes(canvas_.across), all_lanes(-1)};
        for (int i = 0; i < lanes_of(tile); ++i)
        {
            needed_.first[i] = first_[t.at + i];
            needed_.last[i] = last_[t.at + i];
        }
        sure_ = {all_lanes(canvas_.across), all_lanes(-1)};
        if (t.all_inside && !plane_.holed(t.at))
            sure_ = covered_.beside(t, low, high + 1, above, below);
        sure_ = {higher_of(sure_.first, needed_.first), lower_of(sure_.last, needed_.last)};
        all_sure_ = {sure_.first[0], sure_.last[0]};
        for (int i = 1; i < kLanes; ++i)
            all_sure_ = {std::max(all_sure_.first, static_cast<int>(sure_.first[i])),
                         std::min(all_sure_.last, static_cast<int>(sure_.last[i]))};
    }

    template <class Paint>
    void draw_columns(const lane_pixels& t, int top, span rows, Paint paint) noexcept
    {
        const span within = {rows.first - top, rows.last - top};
        for (int lane = 0; lane < kLanes; ++lane)
            runs_.lay(lane, within, columns_ + lane * column_runs::kStride);
        for (int row = rows.first; row <= rows.last; row += kLanes)
        {
            const int last = std::min(row + kLanes - 1, rows.last);
            int_lanes lanes[kLanes];
            for (int lane = 0; lane < kLanes; ++lane)
                lanes[lane] = load_lanes<int_lanes>(columns_ + lane * column_runs::kStride + (row - rows.first));
            if (last == row + kLanes - 1 && row >= all_sure_.first && last <= all_sure_.last)
                write_square(t, row, lanes);
            else
                write_rows(t, {row, last}, lanes, paint);
        }
    }

    // Eight rows of eight pixels, all of them covered. The places come column by column.
    void write_square(const lane_pixels& t, int row, int_lanes* lanes) noexcept
    {
        for (int lane = 0; lane < kLanes; ++lane)
            lanes[lane] = gather(places_.color, lanes[lane]);
        if (!canvas_.fills_across())
            turn(lanes);
        canvas_.store_square(t.at, row, lanes);
        if (canvas_.tile_across(row + kLanes - 1) == written_tile_)
        {
            written_ = 0xff;
            return;
        }
        for (int i = 0; i < kLanes; ++i)
            note(row + i, 0xff);
    }

    template <class Paint>
    void write_rows(const lane_pixels& t, span rows, int_lanes* lanes, Paint paint) noexcept
    {
        turn(lanes);
        for (int row = rows.first; row <= rows.last; ++row)
        {
            unsigned needed = between(needed_, row);
            if (plane_.holed(t.at))
                needed &= swept_in_plane(t.at, row);
            if (needed == 0)
                continue;
            int_lanes color = gather(places_.color, lanes[row - rows.first]);
            const unsigned sure = between(sure_, row);
            unsigned bits = needed;
            if ((needed & ~sure) != 0)
                bits = paint(t, row, needed, sure, lanes[row - rows.first], &color);
            canvas_.store(t.at, row, bits, color);
            note(row, bits);
        }
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
    int lean_;
    block_edges edges_;
    column_runs runs_;
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
    std::int32_t columns_[kLanes * column_runs::kStride] = {};
};
} // namespace
