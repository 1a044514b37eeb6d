#pragma once
// The sample nearest to each pixel of a stroke, row by row of whole panels. Internal to the file that includes it,
// as lanes are.
//
// Along a row of pixels the samples' cells (where each is nearest) follow each other in their order. The boundary
// of two neighbouring cells is the bisector of their samples, a straight line: it moves by the same amount from
// row to row. So a row is found by adding that to every boundary and laying the samples' numbers down from
// boundary to boundary. Away from the stroke on the inner side of a bend, cells narrow until they are gone: at
// some row near the stroke every sample has a cell, and a cell that has gone on the way outwards from there is
// gone for good, since cells are convex.
//
//        row y + 1     | a  |b| c |    d    |          b's cell narrows,
//        row y + 2     |  a  | c |    d     |          and is gone
//
// Distances as the rasteriser computes them lose something to rounding, and so do boundaries here. A pixel whose
// centre is so near to a boundary that this could matter is decided by the rasteriser's own arithmetic.

#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/stroke_canvas.hpp"
#include "effect/raster/stroke_tile.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>

namespace
{
class cell_rows
{
public:
    static constexpr int kMostColumns = 256;

    // What is to be drawn of a panel: for each of `count` main positions from `at` on, rows from needed_first to
    // needed_last, and among them those from sure_first to sure_last, which need no look at how far the sample is.
    struct panel
    {
        int at;
        int count;
        int needed_first[kMostColumns];
        int needed_last[kMostColumns];
        int sure_first[kMostColumns];
        int sure_last[kMostColumns];
        // For each eight of them: rows in which some are needed, and in which all are, and sure.
        int any_first[kMostColumns / kLanes];
        int any_last[kMostColumns / kLanes];
        int all_first[kMostColumns / kLanes];
        int all_last[kMostColumns / kLanes];

        void set(int column, span needed, span sure) noexcept
        {
            needed_first[column] = needed.first;
            needed_last[column] = needed.last;
            sure_first[column] = std::max(sure.first, needed.first);
            sure_last[column] = std::min(sure.last, needed.last);
            const int group = column / kLanes;
            if (column % kLanes == 0)
            {
                any_first[group] = std::numeric_limits<int>::max();
                any_last[group] = -1;
                all_first[group] = 0;
                all_last[group] = std::numeric_limits<int>::max();
            }
            if (needed.first <= needed.last)
            {
                any_first[group] = std::min(any_first[group], needed.first);
                any_last[group] = std::max(any_last[group], needed.last);
            }
            all_first[group] = std::max(all_first[group], sure_first[column]);
            all_last[group] = std::min(all_last[group], sure_last[column]);
        }
    };

    // `reach`: how far from its nearest sample a pixel can be, in pixels.
    cell_rows(const stroke_candidates& places, const stroke_canvas& canvas, float reach) noexcept
        : places_(places), canvas_(canvas), reach_(reach)
    {
        // Wide strokes have many samples beside a panel, thin ones many empty pixels within.
        columns_ = std::clamp(trunc_i32(static_cast<double>(reach * 2.0f)) / 64 * 64, 64, kMostColumns);
    }

    // Main positions of a panel.
    int columns() const noexcept { return columns_; }

    // Cuts its arrays from `memory`. False where they do not fit, or the stroke is none for it.
    bool make_room(scratch_memory& memory) noexcept
    {
        if (places_.bridged || !places_.even || !places_.ascending || doubt_at(reach_) > kMostDoubt)
            return false;
        const float most = (static_cast<float>(columns_) + 2.0f * reach_ + 2.0f) * places_.per_pixel * 1.1f;
        const std::int64_t room = std::min(places_.count, trunc_i32(static_cast<double>(most))) + 4 * kLanes;
        room_ = static_cast<int>(room);
        for (cells* list : {&all_, &live_})
        {
            list->left = memory.take<float>(room);
            list->move = memory.take<float>(room);
            list->place = memory.take<std::int32_t>(room);
            if (list->place == nullptr)
                return false;
        }
        start_ = memory.take<std::int32_t>(room);
        doubts_ = memory.take<std::int32_t>(room);
        found_ = memory.take<std::int32_t>(kStride);
        rows_ = memory.take<std::int32_t>(kLanes * kStride);
        return start_ != nullptr && doubts_ != nullptr && found_ != nullptr && rows_ != nullptr;
    }

    // Draws a panel: calls paint(at, row, needed, sure, places, &colors) for eight pixels from main position `at`
    // on, which answers which of the needed ones to write. False, with nothing drawn, where some sample's cell
    // cannot be followed.
    template <class Paint>
    bool draw(const panel& p, Paint paint) noexcept
    {
        panel_ = &p;
        at_ = p.at;
        count_ = p.count;
        span rows = {canvas_.across, -1};
        for (int i = 0; i < p.count; ++i)
            if (p.needed_first[i] <= p.needed_last[i])
                rows = {std::min(rows.first, p.needed_first[i]), std::max(rows.last, p.needed_last[i])};
        if (rows.first > rows.last)
            return true;
        float from = 0.0f;
        float to = 0.0f;
        if (!list_all(&from, &to))
            return false;
        // The first row beyond the middle of those in which all samples have cells, and the one before it.
        const float middle = 0.5f * (from + to) + origin_ + 0.5f;
        const int start = std::clamp(trunc_i32(std::floor(static_cast<double>(middle))), rows.first, rows.last);
        draw_outwards(start, rows.last, 1, from, to, paint);
        draw_outwards(start - 1, rows.first, -1, from, to, paint);
        return true;
    }

private:
    static constexpr float kRounding = 2.8e-7f;
    static constexpr float kOwnRounding = 3e-4f;
    static constexpr float kHalfUlp = 6e-8f;   // of 1
    static constexpr float kMostDoubt = 0.05f; // pixels: beyond, too many would be decided one by one
    static constexpr float kFar = 1e6f;
    static constexpr int kStride = kMostColumns + 2 * kLanes;

    // Cells in their order, each with its boundary to the one before: in row `origin_` + y its pixels begin with
    // number left + move * y, rounded down, counted from the panel's first.
    struct cells
    {
        float* left;
        float* move;
        std::int32_t* place;
        int count;
    };

    // Of a boundary, in pixels: two distances that are no greater than this, each of a relative error of four
    // halves of an ulp, of samples 1 / per_pixel apart; and of its own place, see list_all.
    float doubt_at(float distance) const noexcept
    {
        return kRounding * distance * distance * places_.per_pixel + own_rounding_;
    }

    static float y_of(int row, float origin) noexcept { return static_cast<float>(row) + 0.5f - origin; }

    // The boundary of two samples' cells.
    void set_boundary(cells& list, int i, int before, int after) const noexcept
    {
        const auto at = static_cast<float>(at_);
        const float main = 0.5f * ((places_.main[before] - at) + (places_.main[after] - at));
        const float cross = 0.5f * ((places_.cross[before] - origin_) + (places_.cross[after] - origin_));
        const float slope =
            (places_.cross[after] - places_.cross[before]) / (places_.main[after] - places_.main[before]);
        list.left[i] = main + slope * cross + 0.5f;
        list.move[i] = -slope;
    }

    // Lists every sample in reach. Between rows origin_ + from and origin_ + to all of them have cells; false
    // where there is no such row.
    bool list_all(float* from, float* to) noexcept
    {
        const float low = static_cast<float>(at_) + 0.5f - reach_;
        const float high = static_cast<float>(at_ + count_) - 0.5f + reach_;
        const int begin = places_.from(0, places_.count, low);
        const int end = places_.from(begin, places_.count, high);
        if (end - begin < 2 || end - begin + 2 * kLanes > room_)
            return false;
        float lowest = places_.cross[begin];
        float highest = lowest;
        for (int j = begin; j < end; ++j)
        {
            lowest = std::min(lowest, places_.cross[j]);
            highest = std::max(highest, places_.cross[j]);
        }
        if (highest == stroke_candidates::kFarAway)
            return false;
        origin_ = std::floor(0.5f * (lowest + highest));
        half_height_ = highest - origin_ + 2.0f;
        all_.count = end - begin;
        for (int j = begin; j < end; ++j)
        {
            const int i = j - begin;
            all_.place[i] = j;
            if (i > 0)
                set_boundary(all_, i, j - 1, j);
        }
        all_.left[0] = -kFar;
        all_.move[0] = 0.0f;
        end_list(all_);
        // left + move * y: half an ulp of some numbers within several hundred pixels, five times of what a slope
        // makes of half the height, once of what it makes of the row.
        own_rounding_ = kOwnRounding + kHalfUlp * steepest() * (6.0f * half_height_ + reach_);
        const float doubt = doubt_at(reach_);
        gone_ = 4.0f * doubt;
        // Beyond the stroke's ends the nearest sample lies to the side.
        if (places_.main[begin] > static_cast<float>(at_) + 0.5f ||
            places_.main[end - 1] < static_cast<float>(at_ + count_) - 0.5f)
            half_height_ = reach_;
        return doubt <= kMostDoubt && rows_of_all(from, to);
    }

    float steepest() const noexcept
    {
        float_lanes most = all_lanes(0.0f);
        for (int i = 0; i < all_.count; i += kLanes)
            most = higher_of(magnitude(load_lanes<float_lanes>(all_.move + i)), most);
        float steep = 0.0f;
        for (int i = 0; i < kLanes; ++i)
            steep = std::max(steep, most[i]);
        return steep;
    }

    void end_list(cells& list) const noexcept
    {
        for (int i = 0; i < 2 * kLanes; ++i)
        {
            list.left[list.count + i] = kFar * static_cast<float>(i + 1);
            list.move[list.count + i] = 0.0f;
        }
    }

    bool rows_of_all(float* from, float* to) const noexcept
    {
        float_lanes low = all_lanes(-kFar);
        float_lanes high = all_lanes(kFar);
        int_lanes never = all_lanes(0);
        for (int i = 0; i < all_.count; i += kLanes)
        {
            const float_lanes width =
                load_lanes<float_lanes>(all_.left + i + 1) - load_lanes<float_lanes>(all_.left + i);
            const float_lanes growth =
                load_lanes<float_lanes>(all_.move + i + 1) - load_lanes<float_lanes>(all_.move + i);
            const float_lanes limit = (gone_ - width) / growth;
            low = higher_of(growth > 0.0f ? limit : low, low);
            high = lower_of(growth < 0.0f ? limit : high, high);
            never |= (growth == 0.0f) & (width < gone_);
        }
        *from = low[0];
        *to = high[0];
        for (int i = 1; i < kLanes; ++i)
        {
            *from = std::max(*from, low[i]);
            *to = std::min(*to, high[i]);
        }
        return *from < *to && lane_bits(never) == 0;
    }

    template <class Paint>
    void draw_outwards(int row, int last, int step, float from, float to, Paint paint) noexcept
    {
        if ((last - row) * step < 0)
            return;
        copy_all();
        cursor_ = 0;
        end_ = live_.count;
        int begun = row;                               // of the rows that wait to be written together
        std::uint64_t written[kMostColumns / 64] = {}; // in the tiles of the row before
        for (;; row += step)
        {
            const float y = y_of(row, origin_);
            const bool all = from <= y && y <= to;
            fall_ = all ? 0.0f : drop_gone(y);
            const span columns = columns_of(row);
            if (columns.first <= columns.last)
            {
                lay_row(row, y, all, columns);
                paint_row(row, columns, paint, written);
            }
            else
            {
                std::fill_n(row_bits_[row % kLanes], kMostColumns / kLanes, std::uint8_t{0});
            }
            const bool together = canvas_.fills_across();
            if (together && (row == last || (step > 0 ? row % kLanes == kLanes - 1 : row % kLanes == 0)))
            {
                write_rows(std::min(begun, row), std::max(begun, row));
                begun = row + step;
            }
            if (row == last || canvas_.tile_across(row) != canvas_.tile_across(row + step))
                for (std::size_t word = 0; word < std::size(written); ++word)
                {
                    canvas_.mark(at_ + static_cast<int>(word) * 64, canvas_.tile_across(row), written[word]);
                    written[word] = 0;
                }
            if (row == last)
                return;
        }
    }

    void copy_all() noexcept
    {
        live_.count = all_.count;
        std::copy_n(all_.left, all_.count, live_.left);
        std::copy_n(all_.move, all_.count, live_.move);
        std::copy_n(all_.place, all_.count, live_.place);
        end_list(live_);
    }

    // Takes cells from the list that are gone in row y, and closes up. Answers how far a boundary lies before an
    // earlier one at most: those of neighbours cross by no more than gone_, but many may in turn.
    float drop_gone(float y) noexcept
    {
        int kept = 0;
        int_lanes crossed = all_lanes(0);
        bool changed = false; // the boundary of the last one kept is a new one
        for (int i = 0; i < live_.count; i += kLanes)
        {
            const float_lanes left =
                load_lanes<float_lanes>(live_.left + i) + load_lanes<float_lanes>(live_.move + i) * y;
            const float_lanes right =
                load_lanes<float_lanes>(live_.left + i + 1) + load_lanes<float_lanes>(live_.move + i + 1) * y;
            const int count = std::min(kLanes, live_.count - i);
            const unsigned gone = lane_bits(right - left < -gone_);
            crossed |= right < left;
            if (!changed && gone == 0)
            {
                if (kept != i)
                    for (int k = i; k < i + count; ++k, ++kept)
                        keep(kept, k);
                else
                    kept += count;
                continue;
            }
            for (int k = i; k < i + count; ++k)
                changed = push(k, kept, y);
            changed = changed || (gone >> (kLanes - 1)) != 0; // the next one makes an end of the last
        }
        if (kept != live_.count)
        {
            live_.count = kept;
            end_list(live_);
        }
        return lane_bits(crossed) != 0 ? fall_of_boundaries(y) : 0.0f;
    }

    float fall_of_boundaries(float y) const noexcept
    {
        float highest = -kFar;
        float fall = 0.0f;
        for (int i = 0; i < live_.count; i += kLanes)
        {
            const float_lanes left =
                load_lanes<float_lanes>(live_.left + i) + load_lanes<float_lanes>(live_.move + i) * y;
            const float_lanes right =
                load_lanes<float_lanes>(live_.left + i + 1) + load_lanes<float_lanes>(live_.move + i + 1) * y;
            const bool rises = left[0] >= highest && lane_bits(right < left) == 0;
            for (int k = rises ? kLanes - 1 : 0; k < kLanes; ++k)
            {
                fall = std::max(fall, highest - left[k]);
                highest = std::max(highest, left[k]);
            }
        }
        return fall;
    }

    void keep(int to, int from) noexcept
    {
        live_.left[to] = live_.left[from];
        live_.move[to] = live_.move[from];
        live_.place[to] = live_.place[from];
    }

    // Keeps cell k after the `kept` ones, less those that it makes an end of. Whether there were any.
    bool push(int k, int& kept, float y) noexcept
    {
        keep(kept, k);
        bool dropped = false;
        while (kept >= 2 &&
               live_.left[kept] + live_.move[kept] * y < live_.left[kept - 1] + live_.move[kept - 1] * y - gone_)
        {
            live_.place[kept - 1] = live_.place[kept];
            --kept;
            set_boundary(live_, kept, live_.place[kept - 1], live_.place[kept]);
            dropped = true;
        }
        ++kept;
        return dropped;
    }

    float left_of(int i, float y) const noexcept { return live_.left[i] + live_.move[i] * y; }

    // Columns of the panel from the first to the last group with pixels in a row.
    span columns_of(int row) const noexcept
    {
        const panel& p = *panel_;
        const int groups = (count_ + kLanes - 1) / kLanes;
        int first = 0;
        int last = groups - 1;
        while (first <= last && (row < p.any_first[first] || row > p.any_last[first]))
            ++first;
        while (first <= last && (row < p.any_first[last] || row > p.any_last[last]))
            --last;
        return {first * kLanes, last * kLanes + kLanes - 1};
    }

    // What a row's pixels are nearest to, in these columns.
    void lay_row(int row, float y, bool in_order, span columns) noexcept
    {
        find_window(y, columns);
        const float near = doubt_in_row(y);
        const int doubts = in_order ? find_starts<true>(y, columns, near) : find_starts<false>(y, columns, near);
        lay_places(fall_ == 0.0f);
        for (int d = 0; d < doubts; ++d)
            settle(doubts_[d], row, y, in_order);
    }

    // From a cell that begins before the columns up to one that begins behind them.
    void find_window(float y, span columns) noexcept
    {
        const float before = static_cast<float>(columns.first - 1) - fall_;
        const float behind = static_cast<float>(columns.last + 2) + fall_;
        cursor_ = std::min(cursor_, live_.count - 1);
        while (cursor_ > 0 && left_of(cursor_, y) > before)
            --cursor_;
        while (cursor_ + 1 < live_.count && left_of(cursor_ + 1, y) < before)
            ++cursor_;
        end_ = std::clamp(end_, cursor_ + 1, live_.count);
        while (end_ < live_.count && left_of(end_, y) < behind)
            ++end_;
        while (end_ > cursor_ + 1 && left_of(end_ - 1, y) > behind)
            --end_;
    }

    // How near to a boundary a pixel's centre is in doubt, with what is farthest off in this row.
    float doubt_in_row(float y) const noexcept
    {
        const float far = std::min(reach_, std::fabs(y) + half_height_);
        return doubt_at(far);
    }

    // The first pixel of each cell, and cells whose boundary lies in doubt of a pixel's centre; how many those
    // are.
    template <bool InOrder>
    int find_starts(float y, span columns, float near) noexcept
    {
        const float* const lefts = live_.left;
        const float* const moves = live_.move;
        std::int32_t* const starts = start_;
        // Held half-way between pixels, where nothing is in doubt.
        const float_lanes first = all_lanes(static_cast<float>(columns.first) + 0.5f);
        const float_lanes last = all_lanes(static_cast<float>(columns.last) + 1.5f);
        const float sure = 0.5f - near;
        int doubts = 0;
        for (int i = cursor_; i < end_; i += kLanes)
        {
            const float_lanes left = load_lanes<float_lanes>(lefts + i) + load_lanes<float_lanes>(moves + i) * y;
            const float_lanes held = lower_of(higher_of(left, first), last);
            const int_lanes start = whole(held);
            store_lanes(starts + i, start);
            const float_lanes past = held - __builtin_convertvector(start, float_lanes);
            int_lanes doubtful = magnitude(past - 0.5f) > sure;
            if constexpr (!InOrder)
            {
                const float_lanes right =
                    load_lanes<float_lanes>(lefts + i + 1) + load_lanes<float_lanes>(moves + i + 1) * y;
                doubtful |= (right < left) & (left > first - 1.0f) & (left < last + 1.0f);
            }
            for (unsigned bits = lane_bits(doubtful); bits != 0; bits &= bits - 1)
                doubts_[doubts++] = i + std::countr_zero(bits);
        }
        starts[end_] = columns.last + 2;
        return doubts;
    }

    // Each cell's number from its first pixel on, for more pixels than it has: the next one's lie over it.
    void lay_places(bool in_order) noexcept
    {
        const std::int32_t* const starts = start_;
        const std::int32_t* const places = live_.place;
        std::int32_t* const found = found_;
        const auto lay = [&](int i) { store_lanes(found + starts[i], all_lanes(places[i])); };
        constexpr int kTogether = 4;
        int i = cursor_;
        for (; in_order && i + kTogether <= end_; i += kTogether)
        {
            if (starts[i + kTogether] - starts[i] > kLanes)
            {
                lay_widely(i, i + kTogether);
                continue;
            }
            lay(i);
            lay(i + 1);
            lay(i + 2);
            lay(i + 3);
        }
        lay_widely(i, end_);
    }

    void lay_widely(int begin, int end) noexcept
    {
        for (int i = begin; i < end; ++i)
        {
            int pixel = start_[i];
            do
            {
                store_lanes(found_ + pixel, all_lanes(live_.place[i]));
                pixel += kLanes;
            } while (pixel < start_[i + 1]);
        }
    }

    // Decides the pixels whose centres lie next to the boundary of cell i by distances as the rasteriser has them:
    // the one that it is nearest to, or where boundaries have crossed, both.
    void settle(int i, int row, float y, bool in_order) const noexcept
    {
        const float near = 2.0f * gone_ + fall_;
        const auto left = static_cast<double>(left_of(i, y));
        const int first = trunc_i32(in_order ? left + 0.5 : left) - 1;
        for (int p = std::max(first, 0); p <= (in_order ? first : first + 1); ++p)
        {
            if (p >= count_)
                return;
            const auto behind = static_cast<float>(p + 1); // boundaries below lie before the pixel's centre
            int begin = i;
            while (begin > 0 && left_of(begin, y) >= behind - near)
                --begin;
            int end = i + 1;
            while (end < live_.count && left_of(end, y) <= behind + near)
                ++end;
            const float center_main = static_cast<float>(at_ + p) + 0.5f;
            const float center_cross = static_cast<float>(row) + 0.5f;
            float best = std::numeric_limits<float>::infinity();
            for (int k = begin; k < end; ++k)
            {
                const int j = live_.place[k];
                const float dm = center_main - places_.main[j];
                const float dc = center_cross - places_.cross[j];
                const float q = dm * dm + dc * dc;
                if (q < best)
                {
                    best = q;
                    found_[p] = j;
                }
            }
        }
    }

    // Lanes, from column i of the panel on, with `row` between `first` and `last`.
    static unsigned between(const int* first, const int* last, int i, int row) noexcept
    {
        return lane_bits((load_lanes<int_lanes>(first + i) <= row) & (load_lanes<int_lanes>(last + i) >= row));
    }

    template <class Paint>
    void paint_row(int row, span columns, Paint paint, std::uint64_t* written) noexcept
    {
        const bool together = canvas_.fills_across();
        const int slot = row % kLanes;
        const panel& p = *panel_;
        std::fill_n(row_bits_[slot], kMostColumns / kLanes, std::uint8_t{0});
        for (int i = columns.first; i <= columns.last; i += kLanes)
        {
            const int group = i / kLanes;
            if (row < p.any_first[group] || row > p.any_last[group])
                continue;
            unsigned sure = 0xff;
            unsigned bits = 0xff;
            if (row < p.all_first[group] || row > p.all_last[group])
            {
                bits = between(p.needed_first, p.needed_last, i, row);
                sure = between(p.sure_first, p.sure_last, i, row);
            }
            int_lanes color;
            bits = paint(at_ + i, row, bits, sure, load_lanes<int_lanes>(found_ + i), &color);
            if (together)
                store_lanes(rows_ + slot * kStride + i, color);
            else
                canvas_.store(at_ + i, row, bits, color);
            written[i / 64] |= std::uint64_t{bits} << static_cast<unsigned>(i % 64);
            row_bits_[slot][group] = static_cast<std::uint8_t>(bits);
        }
    }

    // Puts up to eight neighbouring rows of colours, which lie apart in memory: eight main positions at a time,
    // turned over.
    void write_rows(int first, int last) const noexcept
    {
        const int from = first % kLanes;
        const int to = last % kLanes;
        for (int i = 0; i < count_; i += kLanes)
        {
            unsigned all = 0xff;
            unsigned some = 0;
            for (int slot = from; slot <= to; ++slot)
            {
                all &= row_bits_[slot][i / kLanes];
                some |= row_bits_[slot][i / kLanes];
            }
            if (some == 0)
                continue;
            if (all != 0xff || to - from != kLanes - 1)
            {
                for (int slot = from; slot <= to; ++slot)
                    canvas_.store(at_ + i, first + slot - from, row_bits_[slot][i / kLanes],
                                  load_lanes<int_lanes>(rows_ + slot * kStride + i));
                continue;
            }
            int_lanes columns[kLanes];
            turn(i, columns);
            for (int k = 0; k < kLanes; ++k)
                store_lanes(canvas_.pixel(at_ + i + k, first), columns[k]);
        }
    }

    // Eight columns of the waiting rows, from number i on.
    void turn(int i, int_lanes* columns) const noexcept
    {
        int_lanes a[kLanes];
        int_lanes b[kLanes];
        for (int k = 0; k < kLanes; ++k)
            a[k] = load_lanes<int_lanes>(rows_ + k * kStride + i);
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
            columns[k] = __builtin_shufflevector(a[k], a[k + 4], 0, 1, 2, 3, 8, 9, 10, 11);
            columns[k + 4] = __builtin_shufflevector(a[k], a[k + 4], 4, 5, 6, 7, 12, 13, 14, 15);
        }
    }

    const stroke_candidates& places_;
    const stroke_canvas& canvas_;
    float reach_;
    float own_rounding_ = kOwnRounding; // of a boundary's place in this panel
    float gone_ = 0.0f;                 // a cell whose boundaries have crossed by this much is gone
    float fall_ = 0.0f;                 // of the row: how far a boundary lies before an earlier one at most
    int room_ = 0;
    cells all_{};
    cells live_{};
    std::int32_t* start_ = nullptr;                        // first pixel of each cell
    std::int32_t* doubts_ = nullptr;                       // cells with a pixel's centre next to their boundary
    std::int32_t* found_ = nullptr;                        // of a row: what each pixel is nearest to
    std::int32_t* rows_ = nullptr;                         // colours of eight rows that wait
    std::uint8_t row_bits_[kLanes][kMostColumns / kLanes]; // and which of them are to be written
    int columns_ = 0;
    int cursor_ = 0; // the cells that begin before the panel and behind it
    int end_ = 0;
    int at_ = 0;
    int count_ = 0;
    const panel* panel_ = nullptr;
    float origin_ = 0.0f;      // across: what rows are counted from
    float half_height_ = 0.0f; // of the samples in reach, and more
};
} // namespace
