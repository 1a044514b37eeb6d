#pragma once
// The places nearest to a block of pixels, eight columns wide, between two rows whose cells are known.
// Internal to the file that includes it, as lanes are.
//
// Along a row of pixels the places' cells (where each is nearest) follow each other in the places' order, and the
// boundary of two neighbouring cells is the bisector of their places: a straight line. So where all the bisectors
// of neighbouring places lie in order in the block's first row and behind its last, they do so between, and every
// place has a cell. Down a column of pixels cells then follow each other in their order as well, one way or the
// other, from those above to those below; a step to the next one is made in the row in which the column crosses
// their boundary.
//
//              above:   a a b b c c d d
//                       a a b c c d d d
//                       a b b c c d d e       each column is a few steps
//                       a b b c d d d e
//              below:   a b c c d d e e
//
// All columns are looked at beside each boundary at once. What a step adds to a place's number, and to its
// colour's bytes as one number, is noted in the row where it is made; those made above the first row, or below the
// last, in the rows beyond. The sum of all rows so far, eight columns at once, is then the place, and the colour.
//
// Distances as the rasteriser computes them lose something to rounding, and so do boundaries here. A pixel whose
// centre is so near to a boundary that this could matter is decided by the rasteriser's own arithmetic; cells are
// so wide that it can only lie beside one.

#include "effect/raster/row_cells.hpp"
#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/stroke_tile.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace
{
// What is added up from row to row, eight columns at once: colours where numbers have 32 bits, colours and places
// where they have 64. Each number that is added is forgotten.
template <class Number>
class step_sums;

template <>
class step_sums<std::uint32_t>
{
public:
    static constexpr int_lanes kOrder = kLaneNumbers; // where a row's columns have their numbers

    step_sums(std::uint32_t all, std::uint32_t* noted) noexcept : noted_(noted) { sum_ += all; }

    void advance() noexcept
    {
        sum_ += load_lanes<lanes>(noted_);
        store_lanes(noted_, lanes{});
        noted_ += kLanes;
    }

    int_lanes colors() const noexcept { return reinterpret_cast<int_lanes>(sum_); }

private:
    using lanes = std::uint32_t __attribute__((vector_size(32)));

    std::uint32_t* noted_;
    lanes sum_{};
};

template <>
class step_sums<std::uint64_t>
{
public:
    // Such that halves are put together without crossing a vector's middle.
    static constexpr int_lanes kOrder = {0, 1, 4, 5, 2, 3, 6, 7};

    step_sums(std::uint64_t all, std::uint64_t* noted) noexcept : noted_(noted)
    {
        first_ += all;
        second_ += all;
    }

    void advance() noexcept
    {
        take(&first_);
        take(&second_);
    }

    int_lanes colors() const noexcept { return halves<kHigh>(); }
    int_lanes places() const noexcept { return halves<1 - kHigh>(); }

private:
    using lanes = std::uint64_t __attribute__((vector_size(32)));

    void take(lanes* sum) noexcept
    {
        lanes noted;
        std::memcpy(&noted, noted_, sizeof noted);
        *sum += noted;
        std::memset(noted_, 0, sizeof noted);
        noted_ += kLanes / 2;
    }

    // The first or second half of each number, as they lie in memory.
    static constexpr int kHigh = std::endian::native == std::endian::little ? 1 : 0;
    template <int N>
    int_lanes halves() const noexcept
    {
        return __builtin_shufflevector(reinterpret_cast<int_lanes>(first_), reinterpret_cast<int_lanes>(second_),
                                       N, N + 2, N + 8, N + 10, N + 4, N + 6, N + 12, N + 14);
    }

    std::uint64_t* noted_;
    lanes first_{};
    lanes second_{};
};

class column_steps
{
public:
    static constexpr int kMostRows = 64;

    explicit column_steps(const stroke_candidates& places) noexcept : places_(places) {}

    // What the boundaries of neighbouring places have for the whole of the stroke. False where `memory` is short.
    bool take(scratch_memory& memory) noexcept
    {
        const int room = places_.count + stroke_candidates::kPadding;
        slope_ = slopes_of(places_, memory);
        inverse_ = memory.take<float>(room);
        color_step_ = memory.take<std::uint32_t>(room);
        behind_ = memory.take<std::uint64_t>(room);
        changing_ = memory.take<std::int32_t>(room);
        changes_ = memory.take<std::int32_t>(room);
        if (slope_ == nullptr || inverse_ == nullptr || color_step_ == nullptr || behind_ == nullptr ||
            changing_ == nullptr || changes_ == nullptr)
            return false;
        for (int j = 1; j < places_.count; j += kLanes)
        {
            const auto slope = load_lanes<float_lanes>(slope_ + j);
            const float_lanes inverse = 1.0f / slope;
            store_lanes(inverse_ + j, magnitude(slope) > kSteady ? -inverse : all_lanes(1.0f / kSteady));
        }
        behind_[0] = 0;
        changes_[0] = 0;
        for (int j = 1; j < places_.count; ++j)
        {
            const std::uint64_t change = both(places_.color[j], j) - both(places_.color[j - 1], j - 1);
            const bool forward = goes_forward(j);
            const std::uint32_t color =
                static_cast<std::uint32_t>(places_.color[j]) - static_cast<std::uint32_t>(places_.color[j - 1]);
            color_step_[j] = forward ? color : 0U - color;
            behind_[j] = behind_[j - 1] + (forward ? 0U : change);
            changing_[changes_[j - 1]] = j;
            changes_[j] = changes_[j - 1] + (color != 0 ? 1 : 0);
        }
        return true;
    }

    const float* slopes() const noexcept { return slope_; }

    // Whether the block of main positions `at` to `at` + 7 and `height` rows from `row` on can be told: `above`
    // are places near row `row`, `below` such near row `row` + `height`, and no pixel between is nearest to any
    // but places `low` to `high`.
    bool enter(int at, int row, int height, int low, int high, int_lanes above, int_lanes below) noexcept
    {
        if (high - low > kMostCells)
            return false;
        base_ = low;
        low_ = low;
        high_ = high;
        return near_enough(at, row, height, above, below) && set_boundaries();
    }

    // Leaves out, of a block that was entered, the places before and behind those that pixels of these rows,
    // counted from the block's first, are nearest to. The boundaries of the others pass by them on one side, and
    // since they are in order, all up to some and all from some on.
    void narrow(span rows) noexcept
    {
        const auto first = static_cast<float>(rows.first);
        const auto last = static_cast<float>(rows.last);
        const int count = high_ - base_;
        // The first boundary, counted from base_ on, that some column is not behind all the way,
        int begin = 1;
        for (unsigned bits = 0; begin <= count && bits == 0;)
        {
            const auto left = load_lanes<float_lanes>(left_ + begin);
            const auto slope = load_lanes<float_lanes>(slope_ + base_ + begin);
            bits = lane_bits(higher_of(left - slope * first, left - slope * last) > 1.0f - kBeside);
            begin += bits != 0 ? std::countr_zero(bits) : kLanes;
        }
        begin = std::min(begin, count + 1);
        // and the last one that some column gets behind.
        int end = count;
        for (unsigned bits = 0; end >= begin && bits == 0;)
        {
            const int from = std::max(end - kLanes + 1, 1);
            const auto left = load_lanes<float_lanes>(left_ + from);
            const auto slope = load_lanes<float_lanes>(slope_ + base_ + from);
            bits = lane_bits(lower_of(left - slope * first, left - slope * last) <
                             static_cast<float>(kLanes) + kBeside) &
                   ((2U << static_cast<unsigned>(end - from)) - 1);
            end = from + 31 - std::countl_zero(bits);
        }
        low_ = base_ + begin - 1;
        high_ = base_ + std::max(end, begin - 1);
    }
    // The places that are left.
    span places() const noexcept { return {low_, high_}; }

    // Whether such a block's pixels are so near to their places that rounding can be told from distance.
    bool near_enough(int at, int row, int height, int_lanes above, int_lanes below) noexcept
    {
        at_ = at;
        row_ = row;
        height_ = height;
        const float farthest = farthest_of(above[kMiddle], below[kMiddle]);
        farthest_ = farthest;
        near_ = doubt_within(farthest * farthest, places_.per_pixel);
        return farthest < kFarthest && near_ < kMostDoubt;
    }

    // How far the block's pixels are from their places, or more.
    float farthest() const noexcept { return farthest_; }

    // Notes the steps down the columns in these rows, counted from the block's first, and answers what is before
    // them. That has to be advanced once for each row, which makes it the row's, and kRowsBehind times more.
    template <class Number>
    step_sums<Number> note(span rows) noexcept
    {
        const auto last = static_cast<float>(rows.last - rows.first);
        rows_ = rows;
        shift_ = kRowsBefore - static_cast<float>(rows.first);
        // What lies farther off is held half-way between rows.
        most_ = last + kRowsBefore + 1.5f;
        Number* const noted = numbers_of(Number{});
        waiting_ = 0;
        const span looked = boundaries(Number{});
        for (int first = looked.first; first <= looked.last; first += kLanes)
        {
            std::uint64_t doubtful = 0; // a byte for each of eight boundaries
            const int last_one = std::min(first + kLanes - 1, looked.last);
            for (int n = first; n <= last_one; ++n)
                doubtful |= std::uint64_t{note_boundary(boundary(n, Number{}), noted)}
                            << static_cast<unsigned>((n - first) * kLanes);
            for (; doubtful != 0; doubtful &= doubtful - 1)
            {
                const int bit = std::countr_zero(doubtful);
                settle_later(boundary(first + bit / kLanes, Number{}) * kLanes + bit % kLanes, noted);
            }
        }
        settle_waiting(noted);
        step_sums<Number> sums(start(Number{}), noted);
        sums.advance(); // what is before the first row
        return sums;
    }

    static constexpr int kRowsBehind = 2;

private:
    // A colour's bytes and a place's number as one number. What is true of sums and differences of each is so of
    // those of both, since colours wrap around, and no place is below 0.
    static std::uint64_t both(std::int32_t color, int place) noexcept
    {
        return (std::uint64_t{static_cast<std::uint32_t>(color)} << 32U) + static_cast<std::uint64_t>(place);
    }
    // Whether columns that cross boundary j go on to the place behind it.
    bool goes_forward(int j) const noexcept { return inverse_[j] < 0.0f; }

    // What it adds to a column that crosses it.
    std::uint32_t step(int j, std::uint32_t) const noexcept { return color_step_[j]; }
    std::uint64_t step(int j, std::uint64_t) const noexcept
    {
        return (std::uint64_t{color_step_[j]} << 32U) + (goes_forward(j) ? 1U : ~std::uint64_t{0});
    }

    // What all columns lie behind before their first row.
    std::uint64_t start(std::uint64_t) const noexcept
    {
        return both(places_.color[low_], low_) + (behind_[high_] - behind_[low_]);
    }
    std::uint32_t start(std::uint32_t) const noexcept
    {
        return static_cast<std::uint32_t>(start(std::uint64_t{}) >> 32U);
    }

    // The boundaries to be noted, as numbers from .first to .last: for places all of them, for colours alone those
    // between different ones.
    span boundaries(std::uint64_t) const noexcept { return {low_ + 1 - base_, high_ - base_}; }
    span boundaries(std::uint32_t) const noexcept { return {changes_[low_], changes_[high_] - 1}; }
    // Which one, counted from base_ on, a number means.
    static int boundary(int number, std::uint64_t) noexcept { return number; }
    int boundary(int number, std::uint32_t) const noexcept { return changing_[number] - base_; }

    static constexpr int kMostCells = 184;
    static constexpr float kFarthest = 300.0f; // pixels, of a pixel from its place
    static constexpr float kSteepest = 2.5f;   // of a stroke, across by along
    static constexpr float kSteady = 1e-7f;    // a boundary that moves no more from row to row is crossed nowhere

    float centre_of(int row) const noexcept { return static_cast<float>(row) + 0.5f; }

    // From a pixel to the next, distance from what is nearest changes by no more than they are apart; that from
    // one place is largest at one of a column's ends.
    float farthest_of(int above, int below) const noexcept
    {
        const float center = static_cast<float>(at_ + kMiddle) + 0.5f;
        const auto at_most = [&](int place)
        {
            const float dm = center - places_.main[place];
            const float up = centre_of(row_) - places_.cross[place];
            const float down = centre_of(row_ + height_) - places_.cross[place];
            return dm * dm + std::max(up * up, down * down);
        };
        return std::sqrt(std::min(at_most(above), at_most(below))) * 1.00001f +
               static_cast<float>(kLanes - kMiddle);
    }

    // Boundary j, between cells j - 1 and j: in the block's row y it lies left - slope * y pixels behind a pixel
    // that is one before the block's first. False where one leans too much, or where not all cells but the outer
    // two are wide enough to tell in the block's first row and behind its last.
    bool set_boundaries() noexcept
    {
        const auto origin = static_cast<float>(at_);
        const float top = centre_of(row_);
        const float wide = 4.0f * near_;
        const auto height = static_cast<float>(height_);
        int_lanes bad = all_lanes(0);
        for (int j = low_ + 1; j <= high_; j += kLanes)
        {
            const auto main = load_lanes<float_lanes>(places_.main + j) - origin;
            const auto main_before = load_lanes<float_lanes>(places_.main + j - 1) - origin;
            const auto main_behind = load_lanes<float_lanes>(places_.main + j + 1) - origin;
            const auto cross = load_lanes<float_lanes>(places_.cross + j) - top;
            const auto cross_before = load_lanes<float_lanes>(places_.cross + j - 1) - top;
            const auto cross_behind = load_lanes<float_lanes>(places_.cross + j + 1) - top;
            const auto slope = load_lanes<float_lanes>(slope_ + j);
            const auto slope_behind = load_lanes<float_lanes>(slope_ + j + 1);
            const float_lanes leaning = slope * (0.5f * (cross + cross_before));
            const float_lanes left = 0.5f * (main + main_before) + leaning + 0.5f;
            const float_lanes left_behind =
                0.5f * (main_behind + main) + slope_behind * (0.5f * (cross_behind + cross)) + 0.5f;
            const int i = j - base_;
            store_lanes(left_ + i, left);
            store_lanes(doubt_ + i, near_ * magnitude(load_lanes<float_lanes>(inverse_ + j)));
            const int_lanes flat =
                (magnitude(slope) <= kSteepest) & (magnitude(leaning) <= row_cells::kMostLeaning);
            const float_lanes width = left_behind - left;
            const int_lanes enough = (width >= wide) & (width + (slope - slope_behind) * height >= wide);
            bad |= ((flat == 0) & (kLaneNumbers <= high_ - j)) | ((enough == 0) & (kLaneNumbers < high_ - j));
        }
        return lane_bits(bad) == 0;
    }

    // The row in which columns cross a boundary, counted from kRowsBefore before the first of those that are
    // noted.
    float_lanes crossing(float_lanes column, float_lanes left, float_lanes inverse) const noexcept
    {
        return (column - left) * inverse + shift_;
    }

    template <class Number>
    static void add_each(Number* noted, int_lanes at, Number step) noexcept
    {
        // Which of a pair comes first does not matter.
        std::uint64_t pairs[kLanes / 2];
        std::memcpy(pairs, &at, sizeof pairs);
        unrolled<kLanes / 2>(
            [&](int i)
            {
                noted[static_cast<std::uint32_t>(pairs[i])] += step;
                noted[pairs[i] >> 32U] += step;
            });
    }

    // Notes the steps over boundary base_ + i. Answers in which columns there may be a pixel's centre on it.
    template <class Number>
    unsigned note_boundary(int i, Number* noted) noexcept
    {
        const int j = base_ + i;
        const float_lanes crossed = crossing(kColumns, all_lanes(left_[i]), all_lanes(inverse_[j]));
        const float_lanes held = lower_of(higher_of(crossed, all_lanes(kNever)), all_lanes(most_));
        const int_lanes row = whole(held);
        add_each(noted, row * kLanes + step_sums<Number>::kOrder, step(j, Number{}));
        const float doubt = doubt_[i];
        if (doubt < kLong)
        {
            const float_lanes past = held - __builtin_convertvector(row, float_lanes);
            return lane_bits(magnitude(past - 0.5f) > 0.5f - doubt);
        }
        settle_long(i, lane_bits((crossed + doubt >= kRowsBefore) & (crossed - doubt <= most_ - 1.5f)), noted);
        return 0;
    }

    // Pixels whose centres lie next to a boundary are decided by distances as the rasteriser has them, and
    // corrected where their steps say something else: eight at once, each a number of a boundary, from base_ on,
    // by kLanes, and a column.
    template <class Number>
    void settle_later(int pixel, Number* noted) noexcept
    {
        waiting_pixels_[waiting_++] = pixel;
        if (waiting_ == kLanes)
            settle_waiting(noted);
    }

    template <class Number>
    void settle_waiting(Number* noted) noexcept
    {
        if (waiting_ == 0)
            return;
        std::fill(waiting_pixels_ + waiting_, waiting_pixels_ + kLanes, kLanes);
        settle(load_lanes<int_lanes>(waiting_pixels_), waiting_, noted);
        waiting_ = 0;
    }

    // Of such pixels, the first `count`.
    template <class Number>
    void settle(int_lanes pixels, int count, Number* noted) noexcept
    {
        const int_lanes i = pixels >> static_cast<std::int32_t>(kLaneBits);
        const int_lanes lane = pixels & (kLanes - 1);
        const int_lanes j = i + base_;
        const float_lanes column = __builtin_convertvector(lane, float_lanes);
        const float_lanes inverse = gather(inverse_, j);
        const float_lanes held = lower_of(
            higher_of(crossing(column + 1.0f, gather(left_, i), inverse), all_lanes(kNever)), all_lanes(most_));
        const int_lanes first = whole(held);
        const int_lanes row = whole(held + 0.5f) - static_cast<std::int32_t>(kRowsBefore);
        const float_lanes center_main = (static_cast<float>(at_) + 0.5f) + column;
        const float_lanes center_cross = centre_of(row_ + rows_.first) + __builtin_convertvector(row, float_lanes);
        const auto squared = [&](int_lanes place)
        {
            const float_lanes dm = center_main - gather(places_.main, place);
            const float_lanes dc = center_cross - gather(places_.cross, place);
            return dm * dm + dc * dc;
        };
        const int_lanes nearer = squared(j) < squared(j - 1);
        // Steps are made behind where a column crosses, to a place before or behind.
        const int_lanes said = (first <= row + 1) == (inverse < 0.0f);
        const int_lanes wrong =
            (nearer != said) & (row >= 0) & (row <= rows_.last - rows_.first) & (kLaneNumbers < count);
        for (unsigned left = lane_bits(wrong); left != 0; left &= left - 1)
        {
            const int n = std::countr_zero(left);
            correct(j[n], lane[n], row[n], nearer[n] != 0, noted);
        }
    }

    // The same of the columns of `lanes` for boundary i, in all rows where it may be in doubt.
    template <class Number>
    void settle_long(int i, unsigned lanes, Number* noted) noexcept
    {
        const int j = base_ + i;
        const auto last = static_cast<float>(rows_.last - rows_.first);
        for (; lanes != 0; lanes &= lanes - 1)
        {
            const int lane = std::countr_zero(lanes);
            const float crossed = (static_cast<float>(lane + 1) - left_[i]) * inverse_[j] + shift_;
            const auto first = trunc_i32_fitting(std::clamp(crossed, kNever, most_));
            const float above = crossed - kRowsBefore;
            const auto from = trunc_i32_fitting(std::ceil(std::clamp(above - doubt_[i], 0.0f, last + 1.0f)));
            const auto to = trunc_i32_fitting(std::floor(std::clamp(above + doubt_[i], -1.0f, last)));
            const float center_main = static_cast<float>(at_ + lane) + 0.5f;
            for (int row = from; row <= to; ++row)
            {
                const float center_cross = centre_of(row_ + rows_.first + row);
                const auto squared = [&](int place)
                {
                    const float dm = center_main - places_.main[place];
                    const float dc = center_cross - places_.cross[place];
                    return dm * dm + dc * dc;
                };
                const bool nearer = squared(j) < squared(j - 1);
                if (nearer != ((first <= row + 1) == goes_forward(j)))
                    correct(j, lane, row, nearer, noted);
            }
        }
    }

    // Has a pixel behind boundary j, or before it, in this one row.
    template <class Number>
    void correct(int j, int lane, int row, bool behind, Number* noted) const noexcept
    {
        Number* const at = noted + (row + 1) * kLanes + step_sums<Number>::kOrder[lane];
        const Number crossed = step(j, Number{});
        const Number change = behind == goes_forward(j) ? crossed : 0 - crossed;
        at[0] += change;
        at[kLanes] -= change;
    }

    std::uint32_t* numbers_of(std::uint32_t) noexcept { return colors_; }
    std::uint64_t* numbers_of(std::uint64_t) noexcept { return colors_and_places_; }

    static constexpr float_lanes kColumns = {1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f, 7.0f, 8.0f};
    static constexpr float kRowsBefore = 2.0f;
    static constexpr float kNever = 0.5f;    // before all rows
    static constexpr float kLong = 0.5f;     // rows
    static constexpr int kMiddle = 3;        // of eight columns
    static constexpr float kBeside = 0.125f; // pixels: boundaries this far from all columns are not crossed there
    static constexpr int kRoom = kMostCells + 2 * kLanes;
    static constexpr int kNotes = (kMostRows + 4) * kLanes;

    const stroke_candidates& places_;
    float* slope_ = nullptr;
    float* inverse_ = nullptr;            // rows that a boundary takes to move a pixel
    std::uint32_t* color_step_ = nullptr; // what a column's colour changes by where it crosses a boundary downward
    std::uint64_t* behind_ = nullptr;  // what the boundaries up to each add where columns lie behind them at first
    std::int32_t* changing_ = nullptr; // boundaries between different colours
    std::int32_t* changes_ = nullptr;  // and how many of them there are up to each
    int at_ = 0;
    int row_ = 0;
    int height_ = 0;
    int base_ = 0; // the place from which boundaries are counted
    int low_ = 0;  // places that pixels may be nearest to
    int high_ = 0;
    float farthest_ = 0.0f;
    float near_ = 0.0f; // a pixel's centre this near to a boundary may lie on either side of it
    // Of boundary base_ + number:
    float left_[kRoom] = {};
    float doubt_[kRoom] = {}; // rows around the crossing
    // Of the rows that are noted:
    span rows_ = {0, -1};
    float shift_ = 0.0f;
    float most_ = 0.0f;
    std::int32_t waiting_pixels_[kLanes] = {};
    int waiting_ = 0;
    // Row by row, eight columns each, from the row before the first on: what is added there.
    alignas(32) std::uint32_t colors_[kNotes] = {};
    alignas(32) std::uint64_t colors_and_places_[kNotes] = {};
};
} // namespace
