#pragma once
// The boxes that a radius sweeps along a stroke: the one around the first sample, then for each sample the strips
// that the move to it uncovers.

#include "effect/model/numeric.hpp"
#include "effect/raster/line_creator.hpp"

#include <algorithm>
#include <cstdlib>

// Pixels of the canvas along one axis, both ends included; empty where last is below first.
struct span
{
    int first;
    int last;
};

// One run of both, or the first alone where they do not meet.
inline span joined(span a, span b) noexcept
{
    if (b.first > b.last)
        return a;
    if (a.first > a.last)
        return b;
    if (b.first > a.last + 1 || b.last < a.first - 1)
        return a;
    return {std::min(a.first, b.first), std::max(a.last, b.last)};
}

// The strip that a box uncovers when its centre moves: `count` pixels from `first` on, in the direction of the
// move. Rounding can leave its end one pixel outside the canvas; that pixel is none.
struct strip
{
    int first;
    int step;
    int count;

    span pixels(int size) const noexcept
    {
        const int end = std::clamp(first + step * (count - 1), 0, size - 1);
        return {std::min(first, end), std::max(first, end)};
    }
};

// The pixel at a position, truncated toward zero and held to 0 .. size - 1.
inline int clamped(float position, int size) noexcept
{
    return std::clamp(trunc_i32(static_cast<double>(position)), 0, size - 1);
}

inline span box(float center, float radius, int size) noexcept
{
    return {clamped(center - radius, size), clamped(center + radius, size)};
}

inline strip uncovered(float from, float d, float radius, int size) noexcept
{
    const float first = d > 0.0f ? from + radius : from - radius;
    const float last = d > 0.0f ? first + d - 1.0f : first + d + 1.0f;
    const int first_pixel = clamped(first, size);
    const int last_pixel = clamped(last, size);
    return {first_pixel, d > 0.0f ? 1 : -1, std::abs(last_pixel - first_pixel) + 1};
}

// Calls start(columns, rows) for the box of half side `radius` around the first sample; then for each sample in
// turn columns(strip, rows) and rows(strip, columns) for what is newly uncovered. Boxes lie on the canvas.
template <class Start, class Columns, class Rows>
void walk_swept_boxes(const LineCreatorClass& creator, float radius, Start start, Columns columns, Rows rows)
{
    const int width = creator.width;
    const int height = creator.height;
    float px = creator.points[0].x;
    float py = creator.points[0].y;
    start(box(px, radius, width), box(py, radius, height));
    for (int i = 0; i < creator.pointCount; ++i)
    {
        const StrokePoint& p = creator.points[i];
        if (trunc_i32(static_cast<double>(p.x)) != trunc_i32(static_cast<double>(px)))
        {
            columns(uncovered(px, p.x - px, radius, width), box(p.y, radius, height));
            px = p.x;
        }
        if (trunc_i32(static_cast<double>(p.y)) != trunc_i32(static_cast<double>(py)))
        {
            rows(uncovered(py, p.y - py, radius, height), box(p.x, radius, width));
            py = p.y;
        }
    }
}
