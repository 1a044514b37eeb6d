#pragma once
// What a pixel is nearest to, and what follows from it: the arithmetic that the plain rasteriser and the fast one
// share, so that both round alike. Small functions are inlined for certain, as in swept_boxes.hpp.

#include "effect/model/numeric.hpp"
#include "effect/raster/stroke_point.hpp"

#include <algorithm>
#include <cmath>

// The nearest sample so far, seen from one pixel's centre.
struct nearest_sample
{
    static constexpr float kNowhere = 16777215.0f; // no sample is this far

    float best = kNowhere; // squared distance
    float radius = 0.0f;
    float row_offset = 0.0f; // pixel centre minus candidate, in y, whatever the main axis
    PF_Pixel color = {255, 0, 0, 0};
};

[[gnu::always_inline]] inline float squared_distance(float center_x, float center_y, float x, float y) noexcept
{
    const float dx = center_x - x;
    const float dy = center_y - y;
    return dx * dx + dy * dy;
}

[[gnu::always_inline]] inline A_u_char mix_channel(A_u_char prev, A_u_char cur, float t) noexcept
{
    return trunc_u8(static_cast<double>(static_cast<float>(prev) * t + static_cast<float>(cur) * (1.0f - t)));
}

// Index of the sample at main coordinate `limit`, held to the stroke. Samples are 1/k apart, so it is arithmetic.
[[gnu::always_inline]] inline int sample_at(float first_main, float limit, int k, int count) noexcept
{
    const int index = trunc_i32(static_cast<double>((first_main - limit) * static_cast<float>(k)));
    return index < 0 ? 0 : std::min(index, count - 1);
}

// The positions that bridge a steep step between two neighbouring samples at high quality, m = 1 to `count` from
// `prev` on. No positions where the step is not steep.
struct gap_bridge
{
    const StrokePoint& prev;
    const StrokePoint& cur;
    int count = 0;
    float step_x = 0.0f;
    float step_y = 0.0f;

    gap_bridge(const StrokePoint& from, const StrokePoint& to, bool along_y, int k) noexcept : prev(from), cur(to)
    {
        const float step = along_y ? to.x - from.x : to.y - from.y;
        const bool steep =
            (step > 0.0f && static_cast<double>(step) > 1.2) || (step <= 0.0f && static_cast<double>(step) < -1.2);
        if (!steep || k <= 1)
            return;
        count = trunc_i32(static_cast<double>(std::fabs(step) * static_cast<float>(k)));
        const auto parts = static_cast<float>(wrap_add(count, 1));
        step_x = (to.x - from.x) / parts;
        step_y = (to.y - from.y) / parts;
    }

    float x(int m) const noexcept { return prev.x + step_x * static_cast<float>(m); }
    float y(int m) const noexcept { return prev.y + step_y * static_cast<float>(m); }
    // The share of `prev` in position m.
    float share(int m) const noexcept { return static_cast<float>(count - (m - 1)) / static_cast<float>(count); }
    float radius(int m) const noexcept
    {
        const float t = share(m);
        return prev.halfWidth * t + (1.0f - t) * cur.halfWidth;
    }
    // Numbers from .begin up to but not .end among which the position nearest to (x, y) is, the first one on a
    // tie; none where all are farther than `reach`. The positions lie evenly on a straight line, so that all but
    // those around the foot of the perpendicular are farther by more than single precision can lose.
    struct numbers
    {
        int begin;
        int end;
    };
    numbers nearest_to(float at_x, float at_y, float reach) const noexcept;
    PF_Pixel color(int m) const noexcept
    {
        const float t = share(m);
        return {mix_channel(prev.color.alpha, cur.color.alpha, t), mix_channel(prev.color.red, cur.color.red, t),
                mix_channel(prev.color.green, cur.color.green, t),
                mix_channel(prev.color.blue, cur.color.blue, t)};
    }
};
