#include "effect/raster/blend.hpp"

#include "effect/model/numeric.hpp"

#include <bit>
#include <cstdint>
#include <cstring>

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

namespace
{
// Where one channel lies a share of -0.99999 to 0.99999 along the way from `from` to `to`; as mix().
class channel_ramp
{
public:
    channel_ramp(A_u_char from, A_u_char to) noexcept
        : start_(static_cast<float>(from)), length_(static_cast<float>(to) - start_)
    {
    }

    void mix(const float* __restrict shares, std::int32_t* __restrict out) const noexcept
    {
        for (int i = 0; i < kBlendBlock; ++i)
        {
            const float v = start_ + length_ * shares[i];
            // Less a hundred thousandth above 254 is above 254: the next single-precision number is farther off.
            const float rounded = v > 254.0f ? 255.0f : v;
            out[i] = trunc_i32_fitting(rounded == rounded ? rounded : 0.0f) & 255;
        }
    }

private:
    float start_;
    float length_;
};

// Where byte `i` of a pixel in memory lies in a word.
constexpr unsigned place(unsigned i) noexcept
{
    return 8 * (std::endian::native == std::endian::little ? i : 3 - i);
}

// What is pure, and how far the others are mixed: blend_color's two bands.
void blend_shares(short percent, const float* __restrict deviations, float max_deviation,
                  std::int32_t* __restrict pure, float* __restrict shares) noexcept
{
    if (percent > 49)
    {
        const float t = static_cast<float>(percent - 50) * max_deviation / 50.0f;
        const float end = t + 0.00001f;
        const float ramp = max_deviation - t;
        for (int i = 0; i < kBlendBlock; ++i)
            shares[i] = (deviations[i] - t) / ramp;
        for (int i = 0; i < kBlendBlock; ++i)
            pure[i] = end >= deviations[i] ? -1 : 0;
        return;
    }
    const float t = static_cast<float>(percent) * max_deviation / 50.0f;
    const float end = t - 0.00001f;
    for (int i = 0; i < kBlendBlock; ++i)
        shares[i] = (t - deviations[i]) / t;
    for (int i = 0; i < kBlendBlock; ++i)
        pure[i] = deviations[i] >= end ? -1 : 0;
}
} // namespace

void blend_colors(const PF_Pixel& normal, const PF_Pixel& stressed, short blendPercent, const float* deviations,
                  float maxDeviation, PF_Pixel* out) noexcept
{
    const PF_Pixel& from = blendPercent > 49 ? normal : stressed;
    const PF_Pixel& to = blendPercent > 49 ? stressed : normal;
    std::int32_t pure[kBlendBlock];
    float shares[kBlendBlock];
    blend_shares(blendPercent, deviations, maxDeviation, pure, shares);
    for (float& share : shares)
    {
        const float low = share < -0.99999f ? -0.99999f : share;
        share = low > 0.99999f ? 0.99999f : low;
    }

    std::int32_t red[kBlendBlock];
    std::int32_t green[kBlendBlock];
    std::int32_t blue[kBlendBlock];
    channel_ramp(from.red, to.red).mix(shares, red);
    channel_ramp(from.green, to.green).mix(shares, green);
    channel_ramp(from.blue, to.blue).mix(shares, blue);
    const auto pure_word = std::bit_cast<std::uint32_t>(from);
    const std::uint32_t alpha_word = std::uint32_t{normal.alpha} << place(0);
    std::uint32_t words[kBlendBlock];
    for (int i = 0; i < kBlendBlock; ++i)
    {
        const std::uint32_t mixed = alpha_word | static_cast<std::uint32_t>(red[i]) << place(1) |
                                    static_cast<std::uint32_t>(green[i]) << place(2) |
                                    static_cast<std::uint32_t>(blue[i]) << place(3);
        const auto chosen = static_cast<std::uint32_t>(pure[i]);
        words[i] = (pure_word & chosen) | (mixed & ~chosen);
    }
    std::memcpy(out, words, sizeof words);
}
