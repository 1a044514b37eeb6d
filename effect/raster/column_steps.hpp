#pragma once
// The places nearest to a block of pixels, eight columns wide, between two rows of which each pixel's is known.
// Internal to the file that includes it, as lanes are.
//
// Along a row of pixels the places' cells (where each is nearest) follow each other in the places' order, and the
// boundary of two neighbouring cells is the bisector of their places: a straight line. So where all the bisectors
// of neighbouring places lie in order in the block's first row and behind its last, they do so between, and every
// place has a cell. Down a column of pixels cells then follow each other in their order as well, one way or the
// other, from the one known above to the one known below; a step to the next one is made in the row in which the
// column crosses their boundary.
//
//        known above:   a a b b c c d d
//                       a a b c c d d d
//                       a b b c c d d e       each column is a few steps
//                       a b b c d d d e
//        known below:   a b c c d d e e
//
// What each step adds to a place's number, and to its colour's bytes as one number, is noted in the row where it
// is made. The sum of all rows so far, eight columns at once, is then the place, and the colour.
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

namespace
{
class column_steps
{
public:
    static constexpr int kMostRows = 32;

    explicit column_steps(const stroke_candidates& places) noexcept : places_(places) {}

    // What the boundaries of neighbouring places have for the whole of the stroke. False where `memory` is short.
    bool take(scratch_memory& memory) noexcept
    {
        const int room = places_.count + stroke_candidates::kPadding;
        slope_ = slopes_of(places_, memory);
        inverse_ = memory.take<float>(room);
        change_ = memory.take<std::uint32_t>(room);
        if (slope_ == nullptr || inverse_ == nullptr || change_ == nullptr)
            return false;
        for (int j = 1; j < places_.count; j += kLanes)
        {
            const auto slope = load_lanes<float_lanes>(slope_ + j);
            const float_lanes inverse = 1.0f / slope;
            store_lanes(inverse_ + j, magnitude(slope) > kSteady ? -inverse : all_lanes(1.0f / kSteady));
        }
        for (int j = 1; j < places_.count; ++j)
            change_[j] =
                static_cast<std::uint32_t>(places_.color[j]) - static_cast<std::uint32_t>(places_.color[j - 1]);
        return true;
    }

    const float* slopes() const noexcept { return slope_; }

    // Whether the block of main positions `at` to `at` + 7 and `height` rows from `row` on can be told: `above`
    // are the places nearest to row `row`, `below` those nearest to row `row` + `height`, and no pixel between is
    // nearest to any but places `low` to `high`.
    bool enter(int at, int row, int height, int low, int high, int_lanes above, int_lanes below) noexcept
    {
        if (high - low > kMostCells ||
            lane_bits((above < low) | (below < low) | (above > high) | (below > high)) != 0)
            return false;
        low_ = low;
        high_ = high;
        store_lanes(above_, above);
        store_lanes(below_, below);
        return near_enough(at, row, height, above, below) && set_boundaries() && in_order();
    }

    // Whether such a block's pixels are so near to their places that rounding can be told from distance.
    bool near_enough(int at, int row, int height, int_lanes above, int_lanes below) noexcept
    {
        at_ = at;
        row_ = row;
        height_ = height;
        const float farthest = farthest_squared(above, below);
        near_ = doubt_within(farthest, places_.per_pixel);
        return farthest < kFarthest * kFarthest && near_ < kMostDoubt;
    }

    // Notes the steps down column `lane` of these rows, counted from the block's first; and the places' numbers,
    // where they are wanted.
    void note(int lane, span rows, bool places_too) noexcept
    {
        const int a = above_[lane];
        const int b = below_[lane];
        const int low = std::min(a, b);
        const int high = std::max(a, b);
        // The boundaries that are crossed, and those before and behind, which may be near.
        const int begin = std::max(low, low_ + 1);
        const int doubts = find_rows(lane, rows, begin, std::min(high + 1, high_));
        const std::int32_t* const first = starts_ + (low + 1 - begin);
        const int count = high - low;
        const std::uint32_t* const change = change_ + low + 1;
        std::uint32_t* const colors = colors_ + lane;
        std::int32_t* const places = numbers_ + lane;
        if (a <= b)
            for (int n = 0; n < count; ++n)
                colors[first[n] * kLanes] += change[n];
        else
            for (int n = 0; n < count; ++n)
                colors[first[n] * kLanes] -= change[n];
        if (places_too)
        {
            const int step = a <= b ? 1 : -1;
            for (int n = 0; n < count; ++n)
                places[first[n] * kLanes] += step;
        }
        for (int d = 0; d < doubts; ++d)
            settle(lane, rows, doubts_[d], begin, places_too);
    }

    // The places and colours of a row. begin() has what comes before the first one; each advance() goes on by one;
    // finish() has to follow the last.
    struct sums
    {
        int_lanes place;
        int_lanes color;
    };
    sums begin(bool places_too) noexcept
    {
        const auto above = load_lanes<int_lanes>(above_);
        sums s = {above, gather(places_.color, above)};
        next_ = 0;
        advance(s, places_too); // what is before the first row
        return s;
    }
    void advance(sums& s, bool places_too) noexcept
    {
        // As unsigned numbers, which wrap around.
        s.color = wrapping_sum(s.color, load_lanes<word_lanes>(colors_ + next_));
        store_lanes(colors_ + next_, word_lanes{});
        if (places_too)
        {
            s.place += load_lanes<int_lanes>(numbers_ + next_);
            store_lanes(numbers_ + next_, int_lanes{});
        }
        next_ += kLanes;
    }
    // Forgets what is behind the last row.
    void finish(bool places_too) noexcept
    {
        for (int i = 0; i < 2; ++i)
        {
            store_lanes(colors_ + next_, word_lanes{});
            if (places_too)
                store_lanes(numbers_ + next_, int_lanes{});
            next_ += kLanes;
        }
    }

private:
    using word_lanes = std::uint32_t __attribute__((vector_size(32)));
    static int_lanes wrapping_sum(int_lanes a, word_lanes b) noexcept
    {
        return reinterpret_cast<int_lanes>(reinterpret_cast<word_lanes>(a) + b);
    }

    static constexpr int kMostCells = 184;
    static constexpr float kFarthest = 300.0f; // pixels, of a pixel from its place
    static constexpr float kSteepest = 2.5f;   // of a stroke, across by along
    static constexpr float kSteady = 1e-7f;    // a boundary that moves no more from row to row is crossed nowhere

    float centre_of(int row) const noexcept { return static_cast<float>(row) + 0.5f; }

    // The largest squared distance of the block's pixels from their places, or more. That from one place is
    // largest at one of the column's ends.
    float farthest_squared(int_lanes above, int_lanes below) const noexcept
    {
        const lane_pixels t(at_);
        const auto at_most = [&](int_lanes place)
        {
            const float_lanes dm = t.centers - gather(places_.main, place);
            const float_lanes cross = gather(places_.cross, place);
            const float_lanes up = centre_of(row_) - cross;
            const float_lanes down = centre_of(row_ + height_) - cross;
            return dm * dm + higher_of(up * up, down * down);
        };
        const float_lanes squared = lower_of(at_most(above), at_most(below));
        float most = squared[0];
        for (int i = 1; i < kLanes; ++i)
            most = std::max(most, squared[i]);
        return most;
    }

    // Boundary j, between cells j - 1 and j: in the block's row y it lies left + move * y pixels behind a pixel
    // that is one before the block's first. False where they lean too much.
    bool set_boundaries() noexcept
    {
        const auto origin = static_cast<float>(at_);
        const float top = centre_of(row_);
        int_lanes steep = all_lanes(0);
        for (int j = low_ + 1; j <= high_; j += kLanes)
        {
            const auto main = load_lanes<float_lanes>(places_.main + j);
            const auto before = load_lanes<float_lanes>(places_.main + j - 1);
            const auto cross = load_lanes<float_lanes>(places_.cross + j);
            const auto cross_before = load_lanes<float_lanes>(places_.cross + j - 1);
            const auto slope = load_lanes<float_lanes>(slope_ + j);
            const float_lanes leaning = slope * (0.5f * ((cross - top) + (cross_before - top)));
            const int i = j - low_;
            store_lanes(left_ + i, 0.5f * ((main - origin) + (before - origin)) + leaning + 0.5f);
            // Of what is behind the last one nothing is in doubt.
            const float_lanes doubt = near_ * magnitude(load_lanes<float_lanes>(inverse_ + j));
            store_lanes(doubt_ + i, kLaneNumbers <= high_ - j ? doubt : all_lanes(-1.0f));
            const int_lanes flat =
                (magnitude(slope) <= kSteepest) & (magnitude(leaning) <= row_cells::kMostLeaning);
            steep |= (flat == 0) & (kLaneNumbers <= high_ - j);
        }
        return lane_bits(steep) == 0;
    }

    // Whether all cells but the outer two are wide enough to tell in the block's first row and behind its last.
    bool in_order() const noexcept
    {
        const float wide = 4.0f * near_;
        const auto height = static_cast<float>(height_);
        int_lanes narrow = all_lanes(0);
        for (int j = low_ + 1; j < high_; j += kLanes)
        {
            const int i = j - low_;
            const float_lanes width = load_lanes<float_lanes>(left_ + i + 1) - load_lanes<float_lanes>(left_ + i);
            const float_lanes growth =
                load_lanes<float_lanes>(slope_ + j) - load_lanes<float_lanes>(slope_ + j + 1);
            const int_lanes enough = (width >= wide) & (width + growth * height >= wide);
            narrow |= (enough == 0) & (kLaneNumbers < high_ - j);
        }
        return lane_bits(narrow) == 0;
    }

    // In which of the rows column `lane` is first behind boundaries `begin` to `last`, counted from the row before
    // the one before the first, and held to the rows from there to the second behind the last; and which of them
    // may lie on a pixel's centre: how many those are.
    int find_rows(int lane, span rows, int begin, int last) noexcept
    {
        const auto column = static_cast<float>(lane + 1);
        const float shift = 2.0f - static_cast<float>(rows.first);
        // What lies farther off is held half-way between rows, where nothing is in doubt.
        const auto most = static_cast<float>(rows.last - rows.first) + 3.5f;
        int doubts = 0;
        for (int j = begin; j <= last; j += kLanes)
        {
            const int i = j - low_;
            const float_lanes y =
                (column - load_lanes<float_lanes>(left_ + i)) * load_lanes<float_lanes>(inverse_ + j);
            const float_lanes held = lower_of(higher_of(y + shift, all_lanes(0.5f)), all_lanes(most));
            const int_lanes row = whole(held);
            store_lanes(starts_ + (j - begin), row);
            const float_lanes past = held - __builtin_convertvector(row, float_lanes);
            unsigned doubtful = lane_bits(magnitude(past - 0.5f) > 0.5f - load_lanes<float_lanes>(doubt_ + i));
            for (; doubtful != 0; doubtful &= doubtful - 1)
                doubts_[doubts++] = j + std::countr_zero(doubtful);
        }
        return doubts;
    }

    // Decides the pixels of a column whose centres lie next to boundary j by distances as the rasteriser has them,
    // where that is not what its steps say.
    void settle(int lane, span rows, int j, int begin, bool places_too) noexcept
    {
        const float crossed =
            (static_cast<float>(lane + 1) - left_[j - low_]) * inverse_[j] - static_cast<float>(rows.first);
        const float doubt = doubt_[j - low_];
        const auto last = static_cast<float>(rows.last - rows.first);
        const auto from = static_cast<int>(std::ceil(std::clamp(crossed - doubt, 0.0f, last + 1.0f)));
        const auto to = static_cast<int>(std::floor(std::clamp(crossed + doubt, -1.0f, last)));
        const bool rises = above_[lane] <= below_[lane];
        const int lowest = std::min(above_[lane], below_[lane]);
        const int highest = std::max(above_[lane], below_[lane]);
        const float center_main = static_cast<float>(at_ + lane) + 0.5f;
        for (int row = from; row <= to; ++row)
        {
            const float center_cross = centre_of(row_ + rows.first + row);
            const auto squared = [&](int place)
            {
                const float dm = center_main - places_.main[place];
                const float dc = center_cross - places_.cross[place];
                return dm * dm + dc * dc;
            };
            const int found = squared(j) < squared(j - 1) ? j : j - 1;
            // Boundaries that the column does not cross have all of its pixels on one side.
            int said = j <= lowest ? j : j - 1;
            if (lowest < j && j <= highest)
                said = (starts_[j - begin] <= row + 1) == rises ? j : j - 1;
            if (found != said)
                correct(lane, row, said, found, places_too);
        }
    }

    void correct(int lane, int row, int said, int found, bool places_too) noexcept
    {
        const int at = (row + 1) * kLanes + lane;
        const std::uint32_t change = found > said ? change_[found] : 0U - change_[said];
        colors_[at] += change;
        colors_[at + kLanes] -= change;
        if (places_too)
        {
            numbers_[at] += found - said;
            numbers_[at + kLanes] -= found - said;
        }
    }

    static constexpr int kRoom = kMostCells + 2 * kLanes;
    static constexpr int kNotes = (kMostRows + 4) * kLanes;

    const stroke_candidates& places_;
    float* slope_ = nullptr;
    float* inverse_ = nullptr;        // rows that a boundary takes to move a pixel
    std::uint32_t* change_ = nullptr; // of the colour's bytes from the place before
    int at_ = 0;
    int row_ = 0;
    int height_ = 0;
    int low_ = 0;
    int high_ = 0;
    std::int32_t above_[kLanes] = {};
    std::int32_t below_[kLanes] = {};
    float near_ = 0.0f; // a pixel's centre this near to a boundary may lie on either side of it
    // Of boundary low_ + number:
    float left_[kRoom] = {};
    float doubt_[kRoom] = {}; // rows around the crossing
    std::int32_t starts_[kRoom] = {};
    std::int32_t doubts_[kRoom] = {};
    // Row by row, eight columns each, from the row before the first on: what is added there.
    std::uint32_t colors_[kNotes] = {};
    std::int32_t numbers_[kNotes] = {};
    int next_ = 0; // of them to be read
};
} // namespace
