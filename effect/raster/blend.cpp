#include "effect/raster/blend.hpp"

#include "effect/model/numeric.hpp"

namespace
{
A_u_char to_byte(float v) noexcept
{
    return static_cast<double>(v) - 0.00001 > 254.0 ? A_u_char{255} : trunc_u8(static_cast<double>(v));
}

A_u_char mix(A_u_char from, A_u_char to, float f) noexcept
{
    const auto start = static_cast<float>(from);
    return to_byte(start + (static_cast<float>(to) - start) * f);
}

void mix_rgb(const PF_Pixel& from, const PF_Pixel& to, float f, PF_Pixel* out) noexcept
{
    if (f < -0.99999f)
        f = -0.99999f;
    else if (f > 0.99999f)
        f = 0.99999f;
    out->red = mix(from.red, to.red, f);
    out->green = mix(from.green, to.green, f);
    out->blue = mix(from.blue, to.blue, f);
}
} // namespace

void blend_color(const PF_Pixel& normal, const PF_Pixel& stressed, short blendPercent, float deviation,
                 float maxDeviation, PF_Pixel* out) noexcept
{
    if (blendPercent > 49)
    {
        const float t = static_cast<float>(blendPercent - 50) * maxDeviation / 50.0f;
        const float f = (deviation - t) / (maxDeviation - t);
        if (t + 0.00001f >= deviation)
            *out = normal;
        else
            mix_rgb(normal, stressed, f, out);
        return;
    }
    const float t = static_cast<float>(blendPercent) * maxDeviation / 50.0f;
    const float f = (t - deviation) / t;
    if (deviation >= t - 0.00001f)
        *out = stressed;
    else
        mix_rgb(stressed, normal, f, out);
}
