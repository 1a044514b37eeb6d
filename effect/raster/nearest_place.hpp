#pragma once
// Which of a stroke's places each pixel of a tile is nearest to, exactly as a search through all of them finds it:
// the smallest squared distance in single precision, the first of equals. Internal to the file that includes it,
// as lanes are.

#include "effect/raster/line_creator.hpp"
#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/stroke_tile.hpp"
#include "effect/raster/swept_boxes.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
// How far a pixel can be from what it takes its value from, with a margin for rounding: a nearest place farther
// off writes nothing, so that it need not be told from none.
struct stroke_reach
{
    float squared = 0.0f; // 0 where no radius reaches anything
    float distance = 0.0f;

    // Of a stroke whose largest radius (NaN aside) is `widest`.
    explicit stroke_reach(float widest) noexcept
    {
        constexpr double kMargin = 1.00001;
        const double radius = static_cast<double>(widest);
        const double reach = (radius > 0.0 ? radius * kMargin : radius / kMargin) + 1.01;
        if (!(reach > 0.0))
            return;
        const double most = reach * reach * kMargin;
        squared = most < static_cast<double>(nearest_sample::kNowhere) ? static_cast<float>(most)
                                                                       : nearest_sample::kNowhere;
        distance = std::sqrt(squared) * 1.0001f + 0.01f;
    }
};

// What the lanes of one row of a tile are nearest to.
struct nearest_lanes
{
    int_lanes place; // -1 where none is in reach
    float_lanes squared;
};

// Candidates with main coordinates between two that only rise.
struct places_between
{
    int begin = 0;
    int end = 0;

    void move(const stroke_candidates& places, float low, float high) noexcept
    {
        while (begin < places.count && places.main[begin] < low)
            ++begin;
        end = std::max(end, begin);
        while (end < places.count && places.main[end] <= high)
            ++end;
    }
};

class nearest_place
{
public:
    // `places` are ascending.
    nearest_place(const stroke_candidates& places, stroke_reach reach, int across) noexcept
        : places_(places), reach_(reach), corner_reach_(reach.distance + static_cast<float>(kLanes + 1)),
          across_(across)
    {
    }

    // Sets the candidates and the rows in reach of the tile, for searches. Tiles come in ascending order.
    void enter(stroke_tile& t) noexcept
    {
        find_candidates(t);
        t.reach = rows_in_reach(t);
        t.hint = -1;
        t.looked = {0, -1};
        t.single = t.narrowed ? rows_of_one_fall(t) : span{0, -1};
    }

    // The same for a search in one row, whatever is in reach there.
    void enter_row(stroke_tile& t) noexcept
    {
        const auto first = static_cast<float>(t.at);
        t.narrowed = true;
        t.begin = places_.from(0, places_.count, first - corner_reach_);
        t.end = places_.from(t.begin, places_.count, first + static_cast<float>(kLanes + 1) + corner_reach_);
        t.hint = corner_;
        t.single = {0, -1};
    }

    // For one row of the tile.
    nearest_lanes search(stroke_tile& t, int row) noexcept
    {
        const float center = static_cast<float>(row) + 0.5f;
        nearest_lanes near = {all_lanes(-1), all_lanes(reach_.squared)};
        if (!t.narrowed)
        {
            look_at(t, t.begin, t.end, center, &near);
            return near;
        }
        if (t.single.first <= row && row <= t.single.last)
            return search_single(t, row);
        int begin = 0;
        int end = 0;
        if (narrow(t, row, &begin, &end))
            for (; begin < end; begin += kBlock)
                look_at(t, begin, std::min(end, begin + kBlock), center, &near);
        return near;
    }

private:
    void find_candidates(stroke_tile& t) noexcept
    {
        const float first = static_cast<float>(t.at) + 0.5f;
        const float last = first + static_cast<float>(kLanes - 1);
        near_.move(places_, first - reach_.distance, last + reach_.distance);
        wide_.move(places_, first - corner_reach_, last + 1.0f + corner_reach_);
        const bool few = near_.end - near_.begin <= kWideWindow;
        t.narrowed = !few;
        t.begin = few ? near_.begin : wide_.begin;
        t.end = few ? near_.end : wide_.end;
    }

    // Widths of candidate windows from which on it pays to look for the nearest place at a tile's corners first.
    static constexpr int kWideWindow = 48;
    static constexpr int kBlock = 128; // candidates looked at in one go

    // Looks at candidates from `begin` up to but not `end`, at most kBlock of them. Four runs of them at a time,
    // each with a nearest one of its own, since the comparisons of one run wait for each other.
    void look_at(const stroke_tile& t, int begin, int end, float center, nearest_lanes* near) noexcept
    {
        constexpr int kRuns = 4;
        const int length = (end - begin + kRuns - 1) / kRuns;
        for (int j = 0; j < kRuns * length; j += kLanes)
        {
            const float_lanes dc = center - load_lanes<float_lanes>(places_.cross + begin + j);
            store_lanes(across_squared_ + j, dc * dc);
        }
        const float* const main_at = places_.main + begin;
        float_lanes best[kRuns];
        int_lanes number[kRuns]; // of the nearest one in its run, from 1 on
        for (int r = 0; r < kRuns; ++r)
        {
            best[r] = near->squared;
            number[r] = all_lanes(0);
        }
        int_lanes count = all_lanes(1);
        for (int i = 0; i < length; ++i, count += 1)
            for (int r = 0; r < kRuns; ++r)
            {
                const float_lanes dm = t.centers - main_at[r * length + i];
                const float_lanes q = dm * dm + across_squared_[r * length + i];
                number[r] = higher_of((q < best[r]) & count, number[r]);
                best[r] = lower_of(q, best[r]);
            }
        for (int r = 0; r < kRuns; ++r)
        {
            const int_lanes nearer = best[r] < near->squared;
            near->place = nearer ? number[r] + (begin + r * length - 1) : near->place;
            near->squared = lower_of(best[r], near->squared);
        }
    }

    // Rows in which the squared distances of neighbouring candidates from any pixel of the tile, or from its
    // corners, fall and then rise, each of their differences greater than the one before by more than rounding can
    // undo. Twice the square of the spacing is what they grow by on a straight line; a bend takes away twice its
    // second difference times the distance across, on its inner side.
    span rows_of_one_fall(const stroke_tile& t) const noexcept
    {
        constexpr span none = {0, -1};
        if (!places_.regular || t.end - t.begin < kLanes + 2 || t.reach.first > t.reach.last)
            return none;
        float_lanes low = all_lanes(places_.cross[t.begin]);
        float_lanes high = low;
        for_candidates(t,
                       [&](int j)
                       {
                           const auto cross = load_lanes<float_lanes>(places_.cross + j);
                           low = lower_of(cross, low);
                           high = higher_of(cross, high);
                       });
        const float lowest = std::min(least(low), places_.cross[t.end - 1]);
        const float highest = std::max(most(high), places_.cross[t.end - 1]);
        if (highest == stroke_candidates::kFarAway)
            return none;
        const float across =
            std::max(highest - static_cast<float>(t.reach.first), static_cast<float>(t.reach.last + 1) - lowest);
        const float along = corner_reach_ + static_cast<float>(kLanes);
        const float lost = 2e-6f * (across * across + along * along) + 1e-3f;
        const float spare = 1.0f / (places_.per_pixel * places_.per_pixel) - 0.5f * lost;
        if (!(spare > 0.0f))
            return none;
        float_lanes from = all_lanes(-1.0f);
        float_lanes to = all_lanes(static_cast<float>(across_) + 1.0f);
        for_candidates(t,
                       [&](int j)
                       {
                           const auto at = load_lanes<float_lanes>(places_.cross + j);
                           const float_lanes bend = (load_lanes<float_lanes>(places_.cross + j + 1) - at) -
                                                    (at - load_lanes<float_lanes>(places_.cross + j - 1));
                           const float_lanes limit = at + spare / bend;
                           to = lower_of(bend > 0.0f ? limit : to, to);
                           from = higher_of(bend < 0.0f ? limit : from, from);
                       });
        return {clamped(most(from) + 1.0f, across_), clamped(least(to), across_) - 1};
    }

    // Calls look(j) for eight candidates at a time, all but the first and the last, some of them twice.
    template <class Look>
    static void for_candidates(const stroke_tile& t, Look look) noexcept
    {
        for (int j = t.begin + 1; j < t.end - 1; j += kLanes)
            look(std::min(j, t.end - 1 - kLanes));
    }

    // The search where squared distances fall once and then rise: the nearest place follows the last one that is
    // nearer than the one before it.
    nearest_lanes search_single(stroke_tile& t, int row) noexcept
    {
        if (row < t.looked.first || row > t.looked.last)
            look_ahead(t, row);
        const float center = static_cast<float>(row) + 0.5f;
        const int count = t.highest - t.lowest + 1;
        nearest_lanes near = {all_lanes(-1), all_lanes(reach_.squared)};
        if (count > kBlock)
        {
            for (int begin = t.lowest; begin <= t.highest; begin += kBlock)
                look_at(t, begin, std::min(t.highest + 1, begin + kBlock), center, &near);
            return near;
        }
        for (int j = 0; j < count; j += kLanes)
        {
            const float_lanes dc = center - load_lanes<float_lanes>(places_.cross + t.lowest + j);
            store_lanes(across_squared_ + j, dc * dc);
        }
        const auto squared = [&](int j)
        {
            const float_lanes dm = t.centers - places_.main[t.lowest + j];
            return dm * dm + across_squared_[j];
        };
        int_lanes falls = all_lanes(0); // minus how often they did
        float_lanes before = squared(0);
        for (int j = 1; j < count; ++j)
        {
            const float_lanes q = squared(j);
            falls += q < before;
            before = q;
        }
        const int_lanes place = t.lowest - falls;
        const float_lanes dm = t.centers - gather(places_.main, place);
        const float_lanes dc = center - gather(places_.cross, place);
        const float_lanes q = dm * dm + dc * dc;
        return {q < reach_.squared ? place : all_lanes(-1), q};
    }

    // Between two rows the nearest place to a pixel of some column lies between its nearest places in those rows,
    // and along a row between those of its ends; but for rounding, which may make it the next one.
    void look_ahead(stroke_tile& t, int row) noexcept
    {
        constexpr int kRows = 7;
        t.looked = {row, std::max(row, std::min(row + kRows, std::min(t.reach.last, t.single.last)))};
        if (t.hint < t.begin || t.hint >= t.end)
            t.hint = places_.from(t.begin, t.end - 1, static_cast<float>(t.at));
        const int a = walk(t, t.at, t.looked.first, t.hint);
        const int b = walk(t, t.at, t.looked.last, a);
        const int c = walk(t, t.at + kLanes - 1, t.looked.last, b);
        const int d = walk(t, t.at + kLanes - 1, t.looked.first, c);
        t.hint = a;
        t.lowest = std::max(std::min(std::min(a, b), std::min(c, d)) - 1, t.begin);
        t.highest = std::min(std::max(std::max(a, b), std::max(c, d)) + 1, t.end - 1);
    }

    // The nearest place to a pixel, step by step from one of them.
    int walk(const stroke_tile& t, int at, int row, int from) const noexcept
    {
        const float center_main = static_cast<float>(at) + 0.5f;
        const float center_cross = static_cast<float>(row) + 0.5f;
        const auto squared = [&](int j)
        {
            const float dm = center_main - places_.main[j];
            const float dc = center_cross - places_.cross[j];
            return dm * dm + dc * dc;
        };
        int j = from;
        float q = squared(j);
        for (float next = 0.0f; j + 1 < t.end && (next = squared(j + 1)) < q; ++j)
            q = next;
        for (float next = 0.0f; j > t.begin && (next = squared(j - 1)) <= q; --j)
            q = next;
        return j;
    }

    span rows_in_reach(const stroke_tile& t) const noexcept
    {
        const float middle = static_cast<float>(t.at) + 0.5f * static_cast<float>(kLanes);
        const float half = 0.5f * static_cast<float>(kLanes - 1);
        float_lanes first = all_lanes(static_cast<float>(across_));
        float_lanes last = all_lanes(-1.0f);
        int_lanes number = kLaneNumbers + t.begin;
        for (int j = t.begin; j < t.end; j += kLanes, number += kLanes)
        {
            const auto cross = load_lanes<float_lanes>(places_.cross + j);
            const float_lanes off = higher_of(
                magnitude(load_lanes<float_lanes>(places_.main + j) - middle) - (half + 0.001f), all_lanes(0.0f));
            // Each candidate covers what its own radius reaches.
            const float_lanes reach = load_lanes<float_lanes>(places_.radius + j) * 1.0001f + 1.02f;
            const float_lanes left = reach * reach - off * off;
            const int_lanes near =
                (reach > 0.0f) & (left >= 0.0f) & (cross != stroke_candidates::kFarAway) & (number < t.end);
            const float_lanes rise = root(higher_of(left, all_lanes(0.0f)));
            first = near ? lower_of(first, cross - rise) : first;
            last = near ? higher_of(last, cross + rise) : last;
        }
        const float top = least(first);
        const float bottom = std::min(most(last), static_cast<float>(across_));
        if (bottom < top)
            return {across_, -1};
        return {clamped(top - 1.0f, across_), clamped(bottom + 1.0f, across_)};
    }

    // Two places closer to each other along the main axis than this may change their order in a row by rounding
    // alone, within a tile of the pixel whose nearest one is j: some sixteen ulps of the largest squared distance
    // there.
    float slack_at(int j, int at, int row) const noexcept
    {
        const float dm = static_cast<float>(at) + 0.5f - places_.main[j];
        const float dc = static_cast<float>(row) + 0.5f - places_.cross[j];
        const float farthest = std::sqrt(dm * dm + dc * dc) + 2.0f * static_cast<float>(kLanes);
        return farthest * farthest * 2e-6f;
    }

    // Along a row the nearest place's main coordinate never falls, but for rounding: whatever lies between the
    // nearest ones of the tile's first pixel and of the next tile's first is enough for the pixels between.
    // False where none of the row's pixels is in reach of anything.
    bool narrow(stroke_tile& t, int row, int* begin, int* end) noexcept
    {
        const int from =
            corner_at_ == t.at && corner_row_ == row ? corner_ : nearest_on(t, t.at, row, t.begin, t.hint);
        if (from < 0)
            return false;
        float slack = slack_at(from, t.at, row);
        int lowest = from;
        while (lowest > t.begin && places_.main[lowest - 1] >= places_.main[from] - slack)
            --lowest;
        const int to = nearest_on(t, t.at + kLanes, row, lowest, from);
        corner_ = to;
        corner_at_ = t.at + kLanes;
        corner_row_ = row;
        if (to < 0)
            return false;
        slack = slack_at(to, t.at + kLanes, row);
        int highest = to;
        while (highest + 1 < t.end && places_.main[highest + 1] <= places_.main[to] + slack)
            ++highest;
        t.hint = to;
        *begin = lowest;
        *end = highest + 1;
        return true;
    }

    // The nearest place to a corner pixel, from place `begin` on, the first of equals; -1 where all are so far off
    // that no pixel of the tile is in reach of any. `hint` is any place, better a near one.
    int nearest_on(const stroke_tile& t, int at, int row, int begin, int hint) const noexcept
    {
        const float center_main = static_cast<float>(at) + 0.5f;
        const float center_cross = static_cast<float>(row) + 0.5f;
        const float limit = corner_reach_ * corner_reach_;
        int end = t.end;
        if (hint >= t.begin && hint < t.end)
        {
            const float dm = center_main - places_.main[hint];
            const float dc = center_cross - places_.cross[hint];
            const float q = dm * dm + dc * dc;
            if (q < limit)
            {
                const float off = std::sqrt(q) * 1.0001f + 0.001f;
                begin = std::max(begin, places_.from(begin, t.end, center_main - off));
                end = places_.from(begin, t.end, center_main + off);
            }
        }
        float_lanes best = all_lanes(limit);
        int_lanes found = all_lanes(std::numeric_limits<std::int32_t>::max());
        int_lanes number = kLaneNumbers + begin;
        for (int j = begin; j < end; j += kLanes, number += kLanes)
        {
            const float_lanes dm = center_main - load_lanes<float_lanes>(places_.main + j);
            const float_lanes dc = center_cross - load_lanes<float_lanes>(places_.cross + j);
            const float_lanes q = dm * dm + dc * dc;
            const int_lanes nearer = q < best;
            best = lower_of(q, best);
            found = nearer ? number : found;
        }
        float nearest = limit;
        int place = std::numeric_limits<std::int32_t>::max();
        for (int i = 0; i < kLanes; ++i)
            if (best[i] < nearest || (best[i] == nearest && found[i] < place))
            {
                nearest = best[i];
                place = found[i];
            }
        return place < places_.count ? place : -1;
    }

    const stroke_candidates& places_;
    stroke_reach reach_;
    float corner_reach_; // of a tile's corners: whatever any of its pixels can be in reach of, and more
    int across_;
    alignas(32) float across_squared_[kBlock + kLanes]; // squared distances across of a row from its candidates
    int corner_ = -1;                                   // the place nearest to a pixel, and that pixel
    int corner_at_ = -1;
    int corner_row_ = -1;
    places_between near_; // of a tile's pixels
    places_between wide_; // and its corners
};
} // namespace
