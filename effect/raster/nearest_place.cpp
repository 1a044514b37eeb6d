#include "effect/raster/nearest_place.hpp"

#include "effect/raster/nearest_sample.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
// Widths of candidate windows from which on it pays to look for the nearest place at a tile's corners first.
constexpr int kWideWindow = 48;
} // namespace

stroke_reach::stroke_reach(float widest) noexcept
{
    constexpr double kMargin = 1.00001;
    const double radius = static_cast<double>(widest);
    const double reach = (radius > 0.0 ? radius * kMargin : radius / kMargin) + 1.01;
    if (!(reach > 0.0))
        return;
    const double most = reach * reach * kMargin;
    squared =
        most < static_cast<double>(nearest_sample::kNowhere) ? static_cast<float>(most) : nearest_sample::kNowhere;
    distance = std::sqrt(squared) * 1.0001f + 0.01f;
}

void nearest_place::enter(stroke_tile& t) noexcept
{
    const float low = static_cast<float>(t.at) + 0.5f - reach_.distance;
    const float high = static_cast<float>(t.at + kLanes) + 0.5f + reach_.distance;
    while (window_begin_ < places_.count && places_.main[window_begin_] < low)
        ++window_begin_;
    window_end_ = std::max(window_end_, window_begin_);
    while (window_end_ < places_.count && places_.main[window_end_] <= high)
        ++window_end_;
    t.begin = window_begin_;
    t.end = window_end_;
}

span nearest_place::rows_in_reach(const stroke_tile& t) const noexcept
{
    const float middle = static_cast<float>(t.at) + 0.5f * static_cast<float>(kLanes);
    const float half = 0.5f * static_cast<float>(kLanes - 1);
    float first = static_cast<float>(across_);
    float last = -1.0f;
    const float squared = reach_.squared * 1.0001f + 0.01f;
    for (int j = t.begin; j < t.end; ++j)
    {
        const float off = std::max(0.0f, std::fabs(places_.main[j] - middle) - half - 0.001f);
        const float left = squared - off * off;
        if (left < 0.0f || places_.cross[j] == stroke_candidates::kFarAway)
            continue;
        const float rise = std::sqrt(left);
        first = std::min(first, places_.cross[j] - rise);
        last = std::max(last, places_.cross[j] + rise);
    }
    if (last < first)
        return {across_, -1};
    return {clamped(first - 1.0f, across_), clamped(last + 1.0f, across_)};
}

void nearest_place::search(const stroke_tile& t, int row, int_lanes* found, float_lanes* squared) noexcept
{
    int begin = t.begin;
    int end = t.end;
    if (end - begin > kWideWindow)
        narrow(t, row, &begin, &end);
    const float center = static_cast<float>(row) + 0.5f;
    float_lanes best = all_lanes(reach_.squared);
    int_lanes place = all_lanes(-1);
    for (int j = begin; j < end; ++j)
    {
        const float dc = center - places_.cross[j];
        const float_lanes dm = t.centers - places_.main[j];
        const float_lanes q = dm * dm + dc * dc;
        const int_lanes nearer = q < best;
        best = nearer ? q : best;
        place = nearer ? all_lanes(j) : place;
    }
    *found = place;
    *squared = best;
}

// Two places closer to each other along the main axis than this may change their order in a row by rounding alone,
// within a tile of the pixel whose nearest one is j: some sixteen ulps of the largest squared distance there.
float nearest_place::slack_at(int j, int at, int row) const noexcept
{
    const float dm = static_cast<float>(at) + 0.5f - places_.main[j];
    const float dc = static_cast<float>(row) + 0.5f - places_.cross[j];
    const float farthest = std::sqrt(dm * dm + dc * dc) + 2.0f * static_cast<float>(kLanes);
    return farthest * farthest * 2e-6f;
}

// Along a row the nearest place's main coordinate never falls, but for rounding: whatever lies between the nearest
// ones of the tile's first pixel and of the next tile's first is enough for the pixels between.
void nearest_place::narrow(const stroke_tile& t, int row, int* begin, int* end) noexcept
{
    const int from = corner_at_[row] == t.at ? corner_[row] : nearest_on(t, t.at, row, t.begin, hint_);
    int lowest = t.begin;
    if (from >= 0)
    {
        const float slack = slack_at(from, t.at, row);
        lowest = from;
        while (lowest > t.begin && places_.main[lowest - 1] >= places_.main[from] - slack)
            --lowest;
    }
    const int to = nearest_on(t, t.at + kLanes, row, lowest, from >= 0 ? from : hint_);
    corner_[row] = to;
    corner_at_[row] = t.at + kLanes;
    int highest = t.end - 1;
    if (to >= 0)
    {
        const float slack = slack_at(to, t.at + kLanes, row);
        highest = to;
        while (highest + 1 < t.end && places_.main[highest + 1] <= places_.main[to] + slack)
            ++highest;
        hint_ = to;
    }
    *begin = lowest;
    *end = highest + 1;
}

// The nearest place to one pixel, from place `begin` on, -1 where none is in reach; the first of
// equals. `hint` is any place, better a near one.
int nearest_place::nearest_on(const stroke_tile& t, int at, int row, int begin, int hint) const noexcept
{
    const float center_main = static_cast<float>(at) + 0.5f;
    const float center_cross = static_cast<float>(row) + 0.5f;
    int end = t.end;
    if (hint >= t.begin && hint < t.end)
    {
        const float dm = center_main - places_.main[hint];
        const float dc = center_cross - places_.cross[hint];
        const float q = dm * dm + dc * dc;
        if (q < reach_.squared)
        {
            const float off = std::sqrt(q) * 1.0001f + 0.001f;
            begin = std::max(begin, place_from(begin, t.end, center_main - off));
            end = place_from(begin, t.end, center_main + off);
        }
    }
    float_lanes best = all_lanes(reach_.squared);
    int_lanes found = all_lanes(std::numeric_limits<std::int32_t>::max());
    int_lanes number = {0, 1, 2, 3, 4, 5, 6, 7};
    number += begin;
    for (int j = begin; j < end; j += kLanes, number += kLanes)
    {
        const float_lanes dm = center_main - load_lanes<float_lanes>(places_.main + j);
        const float_lanes dc = center_cross - load_lanes<float_lanes>(places_.cross + j);
        const float_lanes q = dm * dm + dc * dc;
        const int_lanes nearer = q < best;
        best = nearer ? q : best;
        found = nearer ? number : found;
    }
    float nearest = reach_.squared;
    int place = std::numeric_limits<std::int32_t>::max();
    for (int i = 0; i < kLanes; ++i)
        if (best[i] < nearest || (best[i] == nearest && found[i] < place))
        {
            nearest = best[i];
            place = found[i];
        }
    return place < places_.count ? place : -1;
}

// The first place from `begin` on whose main coordinate is not below `main_at`.
int nearest_place::place_from(int begin, int end, float main_at) const noexcept
{
    while (begin < end)
    {
        const int mid = begin + (end - begin) / 2;
        if (places_.main[mid] < main_at)
            begin = mid + 1;
        else
            end = mid;
    }
    return begin;
}

bool nearest_place::counts(index_window w, int row, int j) const noexcept
{
    const int index = places_.sample[j];
    if (places_.place[j] != 0)
        return index >= w.last && index < w.first;
    const float from = std::max(0.0f, static_cast<float>(row + 1) - creator_.outerRadius);
    const float to = std::min(static_cast<float>(across_), static_cast<float>(row + 1) + creator_.outerRadius);
    return index >= w.last && index <= w.first && from <= places_.cross[j] && places_.cross[j] <= to;
}

int nearest_place::search_counting(index_window w, int at, int row, float* squared) const noexcept
{
    const float center_main = static_cast<float>(at) + 0.5f;
    const float center_cross = static_cast<float>(row) + 0.5f;
    float best = reach_.squared;
    int found = -1;
    for (int j = places_.first_of(w.first); j < places_.count && places_.sample[j] >= w.last; ++j)
    {
        const float dm = center_main - places_.main[j];
        const float dc = center_cross - places_.cross[j];
        const float q = dm * dm + dc * dc;
        if (q < best && counts(w, row, j))
        {
            best = q;
            found = j;
        }
    }
    *squared = best;
    return found;
}
