#pragma once
// The boxes that a radius sweeps along a stroke: the one around the first sample, then for each sample the strips
// that the move to it uncovers. Small functions are inlined for certain: no copy that is compiled for a level of
// instructions may stand for all.

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
[[gnu::always_inline]] inline span joined(span a, span b) noexcept
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

// The pixel at a position, truncated toward zero and held to 0 .. size - 1; 0 for what does not fit an integer.
[[gnu::always_inline]] inline int clamped(float position, int size) noexcept
{
    const float inside = position > 0.0f && position < 2147483648.0f ? position : 0.0f;
    return trunc_i32_fitting(std::min(inside, static_cast<float>(size - 1)));
}

[[gnu::always_inline]] inline span box(float center, float radius, int size) noexcept
{
    return {clamped(center - radius, size), clamped(center + radius, size)};
}

[[gnu::always_inline]] inline strip uncovered(float from, float d, float radius, int size) noexcept
{
    const float first = d > 0.0f ? from + radius : from - radius;
    const float last = d > 0.0f ? first + d - 1.0f : first + d + 1.0f;
    const int first_pixel = clamped(first, size);
    const int last_pixel = clamped(last, size);
    return {first_pixel, d > 0.0f ? 1 : -1, std::abs(last_pixel - first_pixel) + 1};
}

// Calls columns(from, d, sample) for each sample whose x lies in another pixel than that of the one where it last
// did: it was `from` there and is from + d now; and rows(from, d, sample) the same way for y. Of a sample that
// does both, x comes first.
template <class Columns, class Rows>
void walk_moves(const LineCreatorClass& creator, Columns columns, Rows rows)
{
    float px = creator.points[0].x;
    float py = creator.points[0].y;
    std::int32_t column = trunc_i32_select(px);
    std::int32_t row = trunc_i32_select(py);
    for (int i = 0; i < creator.pointCount; ++i)
    {
        const StrokePoint& p = creator.points[i];
        const std::int32_t to_column = trunc_i32_select(p.x);
        const std::int32_t to_row = trunc_i32_select(p.y);
        if (to_column != column)
        {
            columns(px, p.x - px, p);
            px = p.x;
            column = to_column;
        }
        if (to_row != row)
        {
            rows(py, p.y - py, p);
            py = p.y;
            row = to_row;
        }
    }
}

// Calls start(columns, rows) for the box of half side `radius` around the first sample; then for each sample in
// turn columns(strip, rows) and rows(strip, columns) for what is newly uncovered. Boxes lie on the canvas.
template <class Start, class Columns, class Rows>
void walk_swept_boxes(const LineCreatorClass& creator, float radius, Start start, Columns columns, Rows rows)
{
    const int width = creator.width;
    const int height = creator.height;
    start(box(creator.points[0].x, radius, width), box(creator.points[0].y, radius, height));
    walk_moves(
        creator,
        [&](float from, float d, const StrokePoint& p)
        { columns(uncovered(from, d, radius, width), box(p.y, radius, height)); },
        [&](float from, float d, const StrokePoint& p)
        { rows(uncovered(from, d, radius, height), box(p.x, radius, width)); });
}
