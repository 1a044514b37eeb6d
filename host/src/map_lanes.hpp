#pragma once
// Samples of a run of pixels: what sample_bilinear and sample_nearest answer for each. Included by one file for
// each instruction set.

#include "map_row.hpp"
#include "pixel_lanes.hpp"

#include <cstddef>

namespace host
{
namespace
{
typedef double real4 __attribute__((vector_size(32)));
typedef std::int32_t integer4 __attribute__((vector_size(16)));

// Alpha, red, green, blue of a pixel.
inline real4 channels(std::uint32_t pixel)
{
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    const __m128i bytes = _mm_cvtsi32_si128(static_cast<int>(pixel));
    const integer4 numbers = (integer4)_mm_unpacklo_epi16(_mm_unpacklo_epi8(bytes, zero), zero);
#else
    const auto at = [pixel](int shift) { return static_cast<std::int32_t>(pixel >> shift & 0xff); };
    const integer4 numbers = {at(0), at(8), at(16), at(24)};
#endif
    return __builtin_convertvector(numbers, real4);
}

// The whole parts, all 0 to 255.
inline std::uint32_t pixel_of(real4 value)
{
    const integer4 whole = __builtin_convertvector(value, integer4);
#if defined(__SSE2__)
    const __m128i halves = _mm_packs_epi32((__m128i)whole, (__m128i)whole);
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(halves, halves)));
#else
    return static_cast<std::uint32_t>(whole[0] | whole[1] << 8 | whole[2] << 16 | whole[3] << 24);
#endif
}

class mapped_run
{
public:
    explicit mapped_run(const PF_EffectWorld& src)
        : data_(reinterpret_cast<const char*>(src.data)), rowbytes_(src.rowbytes)
    {
    }

    template <bool Bilinear>
    void sample(const row_map& map, int column, int count, PF_Pixel* out) const
    {
        for (int done = 0; done < count; done += shortest_mapped_run)
        {
            // The last block overlaps the one before.
            const int start = done + shortest_mapped_run <= count ? done : count - shortest_mapped_run;
            std::int32_t x[shortest_mapped_run], y[shortest_mapped_run];
            locate(map, column + start, x, y);
            for (int i = 0; i < shortest_mapped_run; ++i)
            {
                const std::uint32_t pixel = Bilinear ? bilinear(x[i], y[i]) : nearest(x[i], y[i]);
                std::memcpy(out + start + i, &pixel, sizeof pixel);
            }
        }
    }

    // In 16.16. The positions are positive, so that their whole parts are the largest whole numbers below.
    static void locate(const row_map& map, int column, std::int32_t* x, std::int32_t* y)
    {
        for (int i = 0; i < shortest_mapped_run; ++i)
        {
            const double at = (column + i) + 0.5;
            // NOLINTBEGIN(bugprone-incorrect-roundings): as the plain way has it
            x[i] = static_cast<std::int32_t>((((map.xx * at + map.yx_y) + map.ox) - 0.5) * 65536.0 + 0.5);
            y[i] = static_cast<std::int32_t>((((map.xy * at + map.yy_y) + map.oy) - 0.5) * 65536.0 + 0.5);
            // NOLINTEND(bugprone-incorrect-roundings)
        }
    }

    const char* pixel_at(std::int32_t x, std::int32_t y) const
    {
        return data_ + std::ptrdiff_t{y} * rowbytes_ + std::ptrdiff_t{x} * 4;
    }
    std::ptrdiff_t rowbytes() const { return rowbytes_; }

private:
    std::uint32_t nearest(std::int32_t x, std::int32_t y) const
    {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, pixel_at((x + 32768) >> 16, (y + 32768) >> 16), sizeof pixel);
        return pixel;
    }

    // All in double precision, and all exact but for the quotients: weights add up to 2^32, times alpha to less
    // than 2^40, times a channel to less than 2^48. A quotient that is not a half is at least 2^-41 from the next
    // half, and rounding moves it by no more than 2^-46.
    std::uint32_t bilinear(std::int32_t x, std::int32_t y) const
    {
        std::uint64_t upper = 0, lower = 0;
        const char* const at = pixel_at(x >> 16, y >> 16);
        std::memcpy(&upper, at, sizeof upper);
        std::memcpy(&lower, at + rowbytes_, sizeof lower);
        const int fx = x & 0xffff, fy = y & 0xffff;
        if ((fx | fy) == 0)
            return static_cast<std::uint32_t>(upper);
        constexpr std::uint64_t alphas = 0x000000ff000000ff;
        if (((upper | lower) & alphas) == 0)
            return 0;
        const real4 pixels[4] = {
            channels(static_cast<std::uint32_t>(upper)), channels(static_cast<std::uint32_t>(upper >> 32)),
            channels(static_cast<std::uint32_t>(lower)), channels(static_cast<std::uint32_t>(lower >> 32))};
        const double right = fx, left = 65536 - fx, below = fy, above = 65536 - fy;
        const double weights[4] = {left * above, right * above, left * below, right * below};
        const std::uint64_t left_alphas = (upper & 0xff) * 0x0000000100000001;
        const bool one_alpha = (upper & alphas) == left_alphas && (lower & alphas) == left_alphas;
        return one_alpha ? plain_mean(pixels, weights) : mean_by_alpha(pixels, weights);
    }

    // The common alpha cancels out of the quotients.
    static std::uint32_t plain_mean(const real4* pixels, const double* weights)
    {
        const real4 sum =
            (pixels[0] * weights[0] + pixels[1] * weights[1]) + (pixels[2] * weights[2] + pixels[3] * weights[3]);
        return pixel_of(sum * one_of_2_32 + 0.5);
    }

    static std::uint32_t mean_by_alpha(const real4* pixels, const double* weights)
    {
        double by_alpha[4];
        for (int i = 0; i < 4; ++i)
            by_alpha[i] = weights[i] * pixels[i][0];
        const double alpha = (by_alpha[0] + by_alpha[1]) + (by_alpha[2] + by_alpha[3]);
        if (alpha == 0.0)
            return 0;
        const real4 sum = (pixels[0] * by_alpha[0] + pixels[1] * by_alpha[1]) +
                          (pixels[2] * by_alpha[2] + pixels[3] * by_alpha[3]);
        real4 mean = sum / alpha;
        mean[0] = alpha * one_of_2_32;
        return pixel_of(mean + 0.5);
    }

    static constexpr double one_of_2_32 = 1.0 / 4294967296.0;

    const char* data_;
    std::ptrdiff_t rowbytes_;
};
} // namespace
} // namespace host
