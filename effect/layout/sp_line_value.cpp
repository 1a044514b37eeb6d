#include "effect/layout/sp_line.hpp"

bool sp_line::value(const curve_pt_t* pts, int n, float t, float* out) const noexcept
{
    const auto at = static_cast<double>(t);
    for (int i = n - 1; i >= 1; --i)
    {
        const double r0 = run(pts[i - 1]);
        const double r1 = run(pts[i]);
        if (!(r1 <= at && at < r0))
            continue;
        const double a0 = across(pts[i - 1]);
        const double a1 = across(pts[i]);
        const auto f = static_cast<float>((at - r0) / (r0 - r1));
        *out = static_cast<float>(a0 + static_cast<double>(f) * (a0 - a1));
        return true;
    }
    return false;
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
