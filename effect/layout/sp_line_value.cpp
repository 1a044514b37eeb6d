#include "effect/layout/falling_values.hpp"
#include "effect/layout/sp_line.hpp"

#include <algorithm>
#include <limits>

float sp_line::value_on(const curve_pt_t& p0, const curve_pt_t& p1, double at) const noexcept
{
    const double r0 = run(p0);
    const double r1 = run(p1);
    const double a0 = across(p0);
    const double a1 = across(p1);
    const auto f = static_cast<float>((at - r0) / (r0 - r1));
    return static_cast<float>(a0 + static_cast<double>(f) * (a0 - a1));
}

bool sp_line::value(const curve_pt_t* pts, int n, float t, float* out) const noexcept
{
    const auto at = static_cast<double>(t);
    for (int i = n - 1; i >= 1; --i)
    {
        if (!on_segment(pts[i - 1], pts[i], at))
            continue;
        *out = value_on(pts[i - 1], pts[i], at);
        return true;
    }
    return false;
}

bool falling_values::fall(const sp_line& line) noexcept
{
    double curve_pt_t::*const run = line.vertical != 0 ? &curve_pt_t::y : &curve_pt_t::x;
    for (int i = 1; i < line.num_points; ++i)
        if (!(line.points[i].*run <= line.points[i - 1].*run))
            return false;
    return true;
}

falling_values::falling_values(const sp_line& line, double* highest) noexcept
    : line_(line), points_(line.points), run_(line.vertical != 0 ? &curve_pt_t::y : &curve_pt_t::x),
      highest_(highest), count_(line.num_points), falling_(fall(line))
{
    if (falling_ || highest_ == nullptr)
        return;
    double above = -std::numeric_limits<double>::infinity();
    for (int i = count_ - 1; i >= 1; --i)
    {
        above = std::max(above, points_[i - 1].*run_); // a position that is no number bounds nothing
        highest_[i] = above;
    }
}

int falling_values::search(double at) noexcept
{
    int i = count_ - 1;
    if (highest_ != nullptr)
    {
        while (cursor_ + 1 < count_ && highest_[cursor_ + 1] > at)
            ++cursor_;
        i = cursor_;
    }
    while (i >= 1 && !on_segment(i, at))
        --i;
    return std::max(i, 0);
}

bool falling_values::value(float t, float* out) noexcept
{
    const int i = segment(t);
    if (i == 0)
        return false;
    *out = line_.value_on(line_.points[i - 1], line_.points[i], static_cast<double>(t));
    return true;
}

bool sp_line::value(float t, float* out) const
{
    if (!has_points())
        return false;
    const auto at = static_cast<double>(t);
    const auto tan = in_data->utils->ansi.tan;
    for (int i = 0; i + 1 < num_points; ++i)
    {
        const curve_pt_t& p0 = points[i];
        const curve_pt_t& p1 = points[i + 1];
        if (!(run(p0) <= at && at < run(p1)))
            continue;
        const auto m0 = static_cast<float>(tan(p0.angle * 0.017453292519943295));
        const auto m1 = static_cast<float>(tan(p1.angle * 0.017453292519943295));
        const double d = run(p1) - run(p0);
        const auto s = static_cast<float>((at - run(p0)) / d);
        const float s2 = s * s;
        const float s3 = s2 * s;
        const float h00 = 2.0f * s3 - 3.0f * s2 + 1.0f;
        const float h01 = -2.0f * s3 + 3.0f * s2;
        const float h10 = s3 - 2.0f * s2 + s;
        const float h11 = s3 - s2;
        *out = static_cast<float>(static_cast<double>(h00) * across(p0) + static_cast<double>(h01) * across(p1) +
                                  static_cast<double>(m0) * d * static_cast<double>(h10) +
                                  static_cast<double>(m1) * d * static_cast<double>(h11));
        return true;
    }
    return false;
}
