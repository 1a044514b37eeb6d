#include "effect/layout/sp_line.hpp"

#include "effect/layout/sort.hpp"
#include "effect/model/curve.hpp"
#include "effect/model/frame_data.hpp"
#include "effect/model/matrix.hpp"
#include "effect/model/numeric.hpp"

#include <algorithm>
#include <cmath>

namespace
{
// Points that the crossings of a straight line can append, and its two ends; `max_points` where that is less.
// Without this bound a wide frame with one row and twenty columns would exhaust the pool.
std::int64_t straight_line_room(const frame_data& frame, bool vertical, std::int64_t max_points) noexcept
{
    const auto crossings = static_cast<double>(vertical ? frame.rows : frame.columns);
    const double bend = 2.0 * static_cast<double>(frame.distortion) *
                            (1.0 + static_cast<double>(frame.distortionRandomness) / 100.0) +
                        1.0;
    const double each = frame.angularLines != 0 ? static_cast<double>(frame.tolerance) + 2.0 : bend;
    const double wanted = std::max(2.0, 2.0 + crossings * each);
    return wanted < static_cast<double>(max_points) ? trunc_i64(wanted) : max_points;
}

// Distance between the samples of a rippled line, pixels.
float ripple_step(const frame_data& frame, bool vertical) noexcept
{
    if (frame.angularLines == 0)
        return 1.0f;
    const std::int32_t cell = vertical ? frame.rowSpacing : frame.columnSpacing;
    const float step = static_cast<float>(cell) / static_cast<float>(frame.tolerance);
    return step > 0.0f ? step : 1.0f;
}

// Slots that sampling at 0, step, 2 step, ... below `length` fills, summed as the sampling does; `limit` + 1 where
// they are more than `limit`.
std::int64_t ripple_slots(float length, float step, std::int64_t limit) noexcept
{
    std::int64_t slots = 0;
    for (float t = 0.0f; length > t && slots <= limit; t += step)
        ++slots;
    return slots;
}
} // namespace

sp_line::sp_line(frame_data* frame_, unsigned char vertical_) noexcept
    : vertical(vertical_), in_data(frame_->in_data), frame(frame_)
{
}

sp_line::sp_line(frame_data* frame_, unsigned char vertical_, const fpoint_t* pts, int n)
    : sp_line(frame_, vertical_)
{
    max_points = n;
    num_points = n;
    carve(n);
    if (points == nullptr)
        return;
    for (int i = 0; i < n; ++i)
    {
        points[i].x = pts[i].x;
        points[i].y = pts[i].y;
    }
    sort();
}

sp_line::sp_line(frame_data* frame_, unsigned char vertical_, const curve_pt_t& a, const curve_pt_t& b,
                 const curve_pt_t& c)
    : sp_line(frame_, vertical_)
{
    max_points = 3;
    num_points = 3;
    fixed_points = 1;
    set_base(a.x, a.y);
    carve(3);
    if (points == nullptr)
        return;
    points[0] = a;
    points[1] = b;
    points[2] = c;
    sort();
}

sp_line::sp_line(frame_data* frame_, unsigned char vertical_, const fpoint_t& a, const fpoint_t& b)
    : sp_line(frame_, vertical_)
{
    max_points = trunc_i64(static_cast<double>(static_cast<float>(frame->squareSize) / frame->qualityStep));
    fixed_points = 1;
    set_base(a.x, a.y);
    if (max_points >= 2)
        carve(straight_line_room(*frame, vertical != 0, max_points));
    if (points != nullptr)
    {
        points[0] = {a.x, a.y, 0.0};
        points[1] = {b.x, b.y, 0.0};
        num_points = 2;
    }
    affect_compression();
}

sp_line::sp_line(frame_data* frame_, unsigned char vertical_, const fpoint_t& start, const curve* c, short from,
                 short to)
    : sp_line(frame_, vertical_)
{
    const int length = to - from;
    max_points = length;
    num_points = length;
    set_base(start.x, start.x);

    const auto end = static_cast<float>(length);
    const float step = ripple_step(*frame, vertical != 0);
    const bool closes = frame->angularLines != 0;
    if (length > 0)
    {
        const auto most = static_cast<std::int64_t>(frame->pool->remaining / sizeof(curve_pt_t));
        carve(ripple_slots(end, step, most) + (closes ? 1 : 0));
    }
    if (points == nullptr)
    {
        num_points = 0;
        affect_compression();
        return;
    }

    num_points = frame->lineCreator.level == simd_level::scalar ? follow(*c, start.x, from, end, step)
                                                                : follow_fast(*c, start.x, from, end, step);
    if (closes)
    {
        const auto t = static_cast<float>(length - 1);
        float v = 0.0f;
        if (c->F(t, &v))
            points[num_points] = rippled(from, t, start.x, v);
        ++num_points;
    }
    affect_compression();
}

int sp_line::follow(const curve& c, double base, short from, float end, float step) noexcept
{
    int k = 0;
    for (float t = 0.0f; end > t; t += step)
    {
        float v = 0.0f;
        if (c.F(t, &v))
            points[k] = rippled(from, t, base, v);
        ++k;
    }
    return k;
}

int sp_line::follow_fast(const curve& c, double base, short from, float end, float step) noexcept
{
    float at[curve::kBlock] = {};
    float v[curve::kBlock] = {};
    std::int32_t there[curve::kBlock];
    int k = 0;
    for (float t = 0.0f; end > t;)
    {
        int n = 0;
        for (; n < curve::kBlock && end > t; t += step)
            at[n++] = t;
        c.sums(at, v, there);
        for (int i = 0; i < n; ++i)
            if (there[i] != 0)
                points[k + i] = rippled(from, at[i], base, v[i]);
        k += n;
    }
    return k;
}

sp_line::sp_line(const sp_line* other) : sp_line(other->frame, other->vertical)
{
    max_points = other->max_points;
    fixed_points = other->fixed_points;
    base_y = other->base_y;
    base_x = other->base_x;
    in_data = other->in_data;
    num_points = other->num_points;
    if (other->points != nullptr)
        carve(num_points);
    if (points != nullptr)
        std::copy(other->points, other->points + num_points, points);
}

curve_pt_t sp_line::rippled(short from, float t, double base, float v) const noexcept
{
    return point_at(static_cast<double>(static_cast<float>(from) + t), static_cast<double>(v) + base);
}

curve_pt_t sp_line::point_at(double running, double crossing) const noexcept
{
    return vertical != 0 ? curve_pt_t{crossing, running, 0.0} : curve_pt_t{running, crossing, 0.0};
}

void sp_line::set_base(double x, double y) noexcept
{
    if (vertical != 0)
        base_x = static_cast<float>(x);
    else
        base_y = static_cast<float>(y);
}

void sp_line::carve(std::int64_t count) noexcept
{
    points = count > 0 ? pool_array<curve_pt_t>(frame->pool, count) : nullptr;
    room = points != nullptr ? count : 0;
}

void sp_line::sort() noexcept
{
    sort_points(frame->pool, points, num_points, vertical != 0 ? cmp_pt_y : cmp_pt_x);
}

void sp_line::affect_compression() noexcept
{
    fpoint_t center = {static_cast<double>(frame->compressionCenterX),
                       static_cast<double>(frame->compressionCenterY)};
    AEG_TransformPoints(&frame->layoutMatrix, 1, &center);
    float& base = vertical != 0 ? base_x : base_y;
    const double distance = static_cast<double>(base) - (vertical != 0 ? center.x : center.y);
    const auto shift = static_cast<float>(distance * static_cast<double>(frame->lineCompression) / 100.0);
    compression_shift = shift;
    base += shift;
    if (points == nullptr)
        return;
    for (int i = num_points - 1; i >= 0; --i)
        across(points[i]) += static_cast<double>(shift);
}

void sp_line::filter() noexcept
{
    if (!has_points())
        return;
    sort();
    for (int i = 0; i + 1 < num_points; ++i)
    {
        double& a = across(points[i]);
        double& b = across(points[i + 1]);
        if (std::fabs(run(points[i + 1]) - run(points[i])) <= 1.0 && std::fabs(b - a) > 1.0)
        {
            const double mean = (a + b) * 0.5;
            a = mean;
            b = mean;
        }
    }
}
