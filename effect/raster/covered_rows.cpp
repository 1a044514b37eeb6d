#include "effect/raster/covered_rows.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

void covered_rows::enter(const stroke_tile& t) noexcept
{
    radius_ = 0.0f;
    const bool flat = creator_.samplesPerPixel <= 1; // no fall-off, no anti-aliasing
    if (!places_.all_numbers || (!flat && creator_.coreOpacity != 1.0f) || t.begin >= t.end)
        return;
    float thinnest = std::numeric_limits<float>::infinity();
    for (int j = t.begin; j < t.end; ++j)
        thinnest = std::min(thinnest, places_.radius[j]);
    const float safe = thinnest * 0.99999f - 0.001f;
    radius_ = std::min(flat ? safe + 1.0f : safe - 1.0f, creator_.outerRadius - 1.0f);
}

span covered_rows::of(const stroke_tile& t, int i) noexcept
{
    constexpr span none = {0, -1};
    if (!(radius_ > 0.75f))
        return none;
    const float squared = radius_ * radius_;
    const float center = t.centers[i];
    const index_window w = t.windows[i];
    const auto half_chord = [&](int j, float* half)
    {
        if (j < t.begin || j >= t.end || places_.cross[j] == stroke_candidates::kFarAway)
            return false;
        const int index = places_.sample[j];
        if (index < w.last || index > w.first || (places_.place[j] != 0 && index >= w.first))
            return false;
        const float off = center - places_.main[j];
        const float left = squared - off * off;
        if (!(left > 0.0f))
            return false;
        *half = std::sqrt(left);
        return true;
    };
    // A walk along the stroke to the candidate whose disc reaches farthest up, or down.
    const auto farthest = [&](int start, float direction, span* rows)
    {
        float half = 0.0f;
        int j = start;
        if (!half_chord(j, &half))
            return -1;
        float best = direction * places_.cross[j] + half;
        for (const int step : {1, -1})
        {
            float h = 0.0f;
            while (half_chord(j + step, &h) && direction * places_.cross[j + step] + h > best)
            {
                j += step;
                half = h;
                best = direction * places_.cross[j] + h;
            }
        }
        const float top = std::max(places_.cross[j] - half - 0.5f, -1.0f);
        const float bottom = std::min(places_.cross[j] + half - 0.5f, static_cast<float>(across_));
        rows->first = trunc_i32(std::ceil(static_cast<double>(top)));
        rows->last = trunc_i32(std::floor(static_cast<double>(bottom)));
        return j;
    };
    while (middle_ < places_.count - 1 && places_.main[middle_] < center)
        ++middle_;
    float unused = 0.0f;
    span up = none;
    span down = none;
    up_ = farthest(half_chord(up_, &unused) ? up_ : middle_, -1.0f, &up);
    down_ = farthest(half_chord(down_, &unused) ? down_ : middle_, 1.0f, &down);
    const span swept = {t.swept_first[i], t.swept_last[i]};
    span rows = joined(up, down);
    rows = {std::max(rows.first, swept.first), std::min(rows.last, swept.last)};
    return rows.first <= rows.last ? rows : none;
}
