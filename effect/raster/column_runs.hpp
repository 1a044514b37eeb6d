#pragma once
// The places nearest to a block of pixels, eight columns wide, between two rows of which each pixel's is known.
// Internal to the file that includes it, as lanes are.
//
// Along a row of pixels the places' cells (where each is nearest) follow each other in the places' order, and the
// boundary of two neighbouring cells is the bisector of their places: a straight line. So where all the bisectors
// of neighbouring places lie in order in the block's first row and behind its last, they do so between, and every
// place has a cell. Down a column of pixels cells then follow each other in their order as well, one way or the
// other, from the one known above to the one known below; each begins in the row in which the column crosses its
// boundary. On a gentle stroke those are few.
//
//        known above:   a a b b c c d d
//                       a a b c c d d d
//                       a b b c c d d e       each column is a few runs
//                       a b b c d d d e
//        known below:   a b c c d d e e
//
// Distances as the rasteriser computes them lose something to rounding, and so do boundaries here. A pixel whose
// centre is so near to a boundary that this could matter is decided by the rasteriser's own arithmetic; cells are
// so wide that it can only lie beside one.

#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/stroke_tile.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace
{
class column_runs
{
public:
    static constexpr int kMostRows = 64;
    static constexpr int kStride = kMostRows + 2 * kLanes; // from one column's numbers to the next one's

    explicit column_runs(const stroke_candidates& places) noexcept : places_(places) {}

    // Whether the block of main positions `at` to `at` + 7 and `height` rows from `row` on can be told: `above`
    // are the places nearest to row `row`, `below` those nearest to row `row` + `height`, and no pixel between is
    // nearest to any but places `low` to `high`.
    bool enter(int at, int row, int height, int low, int high, int_lanes above, int_lanes below) noexcept
    {
        if (high - low > kMostCells ||
            lane_bits((above < low) | (below < low) | (above > high) | (below > high)) != 0)
            return false;
        at_ = at;
        row_ = row;
        height_ = height;
        low_ = low;
        high_ = high;
        above_ = above;
        below_ = below;
        const float farthest = farthest_squared();
        // Two distances, each off by four halves of an ulp or so, of places 1 / per_pixel apart.
        near_ = kRounding * farthest * places_.per_pixel + kOwnRounding;
        return farthest < kFarthest * kFarthest && near_ < kMostDoubt && set_boundaries() && in_order();
    }

    // The numbers of the places nearest to `rows` (counted from the block's first) of column `lane`: number n for
    // row rows.first + n. Writes up to seven more.
    void lay(int lane, span rows, std::int32_t* to) noexcept
    {
        const int a = above_[lane];
        const int b = below_[lane];
        const int first = std::min(a, b);
        const int last = std::max(a, b);
        const int count = rows.last - rows.first + 1;
        // The boundaries that are crossed, and those before and behind, which may be near.
        const int begin = std::max(first, low_ + 1);
        const int doubts = find_rows(lane, rows, begin, std::min(last + 1, high_));
        // Boundary j has its start at number 1 + j - begin; the first run takes the place of the one before.
        std::int32_t* const lowest = starts_ + 1 + (first - begin);
        std::int32_t* const highest = starts_ + 1 + (last + 1 - begin);
        if (a <= b)
        {
            *lowest = 0;
            *highest = count;
            lay_runs(first, last - first + 1, 1, lowest, to);
        }
        else
        {
            *highest = 0;
            *lowest = count;
            lay_runs(last, last - first + 1, -1, highest, to);
        }
        for (int d = 0; d < doubts; ++d)
            settle(lane, rows, doubts_[d], to);
    }

private:
    static constexpr int kMostCells = 184;
    static constexpr float kRounding = 3e-7f;
    static constexpr float kOwnRounding = 5e-4f;  // pixels: of a boundary's place, with the limits below
    static constexpr float kFarthest = 300.0f;    // pixels, of a pixel from its place
    static constexpr float kSteepest = 2.5f;      // of a stroke, across by along
    static constexpr float kMostLeaning = 700.0f; // pixels
    static constexpr float kMostDoubt = 0.05f;    // pixels
    static constexpr float kSteady = 1e-7f; // a boundary that moves no more from row to row is crossed nowhere

    float centre_of(int row) const noexcept { return static_cast<float>(row) + 0.5f; }

    // The largest squared distance of the block's pixels from their places, or more. That from one place is
    // largest at one of the column's ends.
    float farthest_squared() const noexcept
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
        const float_lanes squared = lower_of(at_most(above_), at_most(below_));
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
            const float_lanes slope = (cross - cross_before) / (main - before);
            const float_lanes leaning = slope * (0.5f * ((cross - top) + (cross_before - top)));
            const float_lanes inverse = 1.0f / slope;
            const int_lanes moves = magnitude(slope) > kSteady;
            const float_lanes held = moves ? -inverse : all_lanes(1.0f / kSteady);
            const int i = j - low_;
            store_lanes(left_ + i, 0.5f * ((main - origin) + (before - origin)) + leaning + 0.5f);
            store_lanes(move_ + i, -slope);
            store_lanes(inverse_ + i, held);
            store_lanes(doubt_ + i, near_ * magnitude(held));
            const int_lanes flat = (magnitude(slope) <= kSteepest) & (magnitude(leaning) <= kMostLeaning);
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
            const float_lanes growth = load_lanes<float_lanes>(move_ + i + 1) - load_lanes<float_lanes>(move_ + i);
            const int_lanes enough = (width >= wide) & (width + growth * height >= wide);
            narrow |= (enough == 0) & (kLaneNumbers < high_ - j);
        }
        return lane_bits(narrow) == 0;
    }

    // Lays `count` places down, one after the other by `step`, each from its start to the next one's; starts go by
    // the same step. A run reaches into the next ones, which lie over it.
    static void lay_runs(int place, int count, int step, const std::int32_t* starts, std::int32_t* to) noexcept
    {
        int_lanes places = all_lanes(place);
        const int_lanes on = all_lanes(step);
        int row = *starts;
        for (int n = 0; n < count; ++n)
        {
            starts += step;
            const int end = *starts;
            for (; row + kLanes < end; row += kLanes)
                store_lanes(to + row, places);
            store_lanes(to + row, places);
            row = end;
            places += on;
        }
    }

    // In which of the rows column `lane` is first behind boundaries `begin` to `last`, and which of them may lie
    // on a pixel's centre; how many those are.
    int find_rows(int lane, span rows, int begin, int last) noexcept
    {
        const auto column = static_cast<float>(lane + 1);
        const float shift = 2.0f - static_cast<float>(rows.first);
        const int count = rows.last - rows.first + 1;
        int doubts = 0;
        for (int j = begin; j <= last; j += kLanes)
        {
            const int i = j - low_;
            const float_lanes y =
                (column - load_lanes<float_lanes>(left_ + i)) * load_lanes<float_lanes>(inverse_ + i);
            // From the row before the first to the one behind the last; all that lies farther off, half-way
            // between rows, where nothing is in doubt.
            const float_lanes held =
                lower_of(higher_of(y + shift, all_lanes(0.5f)), all_lanes(static_cast<float>(count) + 2.5f));
            const int_lanes row = whole(held);
            store_lanes(starts_ + 1 + (j - begin), lower_of(higher_of(row - 1, all_lanes(0)), all_lanes(count)));
            const float_lanes past = held - __builtin_convertvector(row, float_lanes);
            unsigned doubtful = lane_bits((magnitude(past - 0.5f) > 0.5f - load_lanes<float_lanes>(doubt_ + i)) &
                                          (kLaneNumbers <= last - j));
            for (; doubtful != 0; doubtful &= doubtful - 1)
                doubts_[doubts++] = j + std::countr_zero(doubtful);
        }
        return doubts;
    }

    // Decides the pixels of a column whose centres lie next to boundary j by distances as the rasteriser has them.
    void settle(int lane, span rows, int j, std::int32_t* to) const noexcept
    {
        const int i = j - low_;
        const float crossed =
            (static_cast<float>(lane + 1) - left_[i]) * inverse_[i] - static_cast<float>(rows.first);
        const auto last = static_cast<float>(rows.last - rows.first);
        const auto begin = static_cast<int>(std::ceil(std::clamp(crossed - doubt_[i], 0.0f, last + 1.0f)));
        const auto end = static_cast<int>(std::floor(std::clamp(crossed + doubt_[i], -1.0f, last)));
        const float center_main = static_cast<float>(at_ + lane) + 0.5f;
        for (int row = begin; row <= end; ++row)
        {
            const float center_cross = centre_of(row_ + rows.first + row);
            const auto squared = [&](int place)
            {
                const float dm = center_main - places_.main[place];
                const float dc = center_cross - places_.cross[place];
                return dm * dm + dc * dc;
            };
            to[row] = squared(j) < squared(j - 1) ? j : j - 1;
        }
    }

    static constexpr int kRoom = kMostCells + 2 * kLanes;

    const stroke_candidates& places_;
    int at_ = 0;
    int row_ = 0;
    int height_ = 0;
    int low_ = 0;
    int high_ = 0;
    int_lanes above_{};
    int_lanes below_{};
    float near_ = 0.0f; // a pixel's centre this near to a boundary may lie on either side of it
    // Of boundary low_ + number:
    float left_[kRoom] = {};
    float move_[kRoom] = {};
    float inverse_[kRoom] = {};
    float doubt_[kRoom] = {}; // rows around the crossing
    std::int32_t starts_[kRoom];
    std::int32_t doubts_[kRoom];
};
} // namespace
