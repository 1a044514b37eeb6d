#pragma once
// Samples of eight pixels at a time: what sample_bilinear and sample_nearest answer for each. Included by the file
// for AVX2 alone.

#include "map_lanes.hpp"

#include <immintrin.h>

namespace host
{
namespace
{
// The four pixels around each of eight points, and where the points lie between them, 0 to 65535.
struct eight_points
{
    __m256i upper_left, upper_right, lower_left, lower_right;
    __m256i fx, fy;
};

// One channel times alpha of each pixel, 0 to 65025, or alpha alone.
struct eight_products
{
    __m256i upper_left, upper_right, lower_left, lower_right;
};

// Sums of eight points, those with even numbers apart from those with odd ones.
struct eight_sums
{
    __m256i even, odd;
};

inline __m256i lerped(__m256i left, __m256i right, __m256i fx)
{
    // left * (65536 - fx) + right * fx: at most 65025 * 65536 < 2^32, so that nothing is lost on the way.
    return _mm256_add_epi32(_mm256_slli_epi32(left, 16), _mm256_mullo_epi32(_mm256_sub_epi32(right, left), fx));
}

class eight_samples
{
public:
    static __m256i bilinear(const eight_points& p)
    {
        const __m256i alphas = _mm256_or_si256(_mm256_or_si256(p.upper_left, p.upper_right),
                                               _mm256_or_si256(p.lower_left, p.lower_right));
        const __m256i on_pixel = _mm256_cmpeq_epi32(_mm256_or_si256(p.fx, p.fy), _mm256_setzero_si256());
        __m256i mean = _mm256_setzero_si256();
        if (_mm256_testz_si256(alphas, _mm256_set1_epi32(0xff)) == 0)
            mean = eight_samples(p).mean_by_alpha();
        // A pixel's own colour shows even where its alpha is 0.
        return _mm256_blendv_epi8(mean, p.upper_left, on_pixel);
    }

private:
    explicit eight_samples(const eight_points& p)
        : fx_(p.fx), below_{p.fy, _mm256_srli_epi64(p.fy, 32)}, upper_left_(p.upper_left),
          upper_right_(p.upper_right), lower_left_(p.lower_left), lower_right_(p.lower_right)
    {
        const __m256i whole = _mm256_set1_epi32(65536);
        above_ = {_mm256_sub_epi32(whole, below_.even), _mm256_sub_epi32(whole, below_.odd)};
    }

    // All whole numbers but for the quotients: weights add up to 2^32, times alpha to less than 2^40, times a
    // channel to less than 2^48, so that doubles have them exactly. A quotient v that is not a half is at least
    // 2^-41 from the next one. Multiplied by (1 + 2^-51) / alpha it comes out above v, since two roundings take
    // back at most 2^-52 of it, and by no more than 256 * 1.5 * 2^-51 < 2^-41: halves are above the half, all
    // others are where they were.
    __m256i mean_by_alpha() const
    {
        const __m256i byte = _mm256_set1_epi32(0xff);
        const eight_sums alpha =
            weighted({_mm256_and_si256(upper_left_, byte), _mm256_and_si256(upper_right_, byte),
                      _mm256_and_si256(lower_left_, byte), _mm256_and_si256(lower_right_, byte)});
        const __m256d even = reciprocal(alpha.even);
        const __m256d odd = reciprocal(alpha.odd);

        const eight_products red_blue{times_alpha(_mm256_srli_epi16(upper_left_, 8), upper_left_),
                                      times_alpha(_mm256_srli_epi16(upper_right_, 8), upper_right_),
                                      times_alpha(_mm256_srli_epi16(lower_left_, 8), lower_left_),
                                      times_alpha(_mm256_srli_epi16(lower_right_, 8), lower_right_)};
        const eight_products green{green_times_alpha(upper_left_), green_times_alpha(upper_right_),
                                   green_times_alpha(lower_left_), green_times_alpha(lower_right_)};
        const __m256i red = quotients(weighted(lower_halves(red_blue)), even, odd);
        const __m256i blue = quotients(weighted(upper_halves(red_blue)), even, odd);
        const __m256i others = quotients(weighted(green), even, odd);
        return _mm256_or_si256(_mm256_or_si256(rounded_alpha(alpha), _mm256_slli_epi32(red, 8)),
                               _mm256_or_si256(_mm256_slli_epi32(others, 16), _mm256_slli_epi32(blue, 24)));
    }

    // Two channels of each pixel, a product in each half.
    static __m256i times_alpha(__m256i halves, __m256i pixels)
    {
        const __m128i twice = _mm_set_epi8(-1, 12, -1, 12, -1, 8, -1, 8, -1, 4, -1, 4, -1, 0, -1, 0);
        return _mm256_mullo_epi16(halves, _mm256_shuffle_epi8(pixels, _mm256_broadcastsi128_si256(twice)));
    }
    static __m256i green_times_alpha(__m256i pixels)
    {
        const __m256i green = _mm256_and_si256(_mm256_srli_epi32(pixels, 16), _mm256_set1_epi32(0xff));
        return _mm256_mullo_epi16(green, _mm256_and_si256(pixels, _mm256_set1_epi32(0xff)));
    }

    static eight_products lower_halves(const eight_products& p)
    {
        const __m256i half = _mm256_set1_epi32(0xffff);
        return {_mm256_and_si256(p.upper_left, half), _mm256_and_si256(p.upper_right, half),
                _mm256_and_si256(p.lower_left, half), _mm256_and_si256(p.lower_right, half)};
    }
    static eight_products upper_halves(const eight_products& p)
    {
        return {_mm256_srli_epi32(p.upper_left, 16), _mm256_srli_epi32(p.upper_right, 16),
                _mm256_srli_epi32(p.lower_left, 16), _mm256_srli_epi32(p.lower_right, 16)};
    }

    eight_sums weighted(const eight_products& p) const
    {
        const __m256i upper = lerped(p.upper_left, p.upper_right, fx_);
        const __m256i lower = lerped(p.lower_left, p.lower_right, fx_);
        return {_mm256_add_epi64(_mm256_mul_epu32(upper, above_.even), _mm256_mul_epu32(lower, below_.even)),
                _mm256_add_epi64(_mm256_mul_epu32(_mm256_srli_epi64(upper, 32), above_.odd),
                                 _mm256_mul_epu32(_mm256_srli_epi64(lower, 32), below_.odd))};
    }

    // Below 2^52: the bits behind those of 2^52.
    static __m256d in_doubles(__m256i sums)
    {
        const __m256d base = _mm256_set1_pd(0x1p52);
        return _mm256_sub_pd(_mm256_castsi256_pd(_mm256_or_si256(sums, _mm256_castpd_si256(base))), base);
    }

    // 1 for an alpha of 0, where all products are 0.
    static __m256d reciprocal(__m256i alpha)
    {
        const __m256d sum = _mm256_max_pd(in_doubles(alpha), _mm256_set1_pd(1.0));
        return _mm256_div_pd(_mm256_set1_pd(1.0 + 0x1p-51), sum);
    }

    static __m256i quotients(const eight_sums& sums, __m256d even, __m256d odd)
    {
        return side_by_side(rounded(_mm256_mul_pd(in_doubles(sums.even), even)),
                            rounded(_mm256_mul_pd(in_doubles(sums.odd), odd)));
    }

    // To the nearest whole number, in the lower 32 bits. None is a half.
    static __m256i rounded(__m256d value)
    {
        return _mm256_castpd_si256(_mm256_add_pd(value, _mm256_set1_pd(0x1p52)));
    }

    static __m256i rounded_alpha(const eight_sums& alpha)
    {
        const __m256i half = _mm256_set1_epi64x(std::int64_t{1} << 31);
        return _mm256_blend_epi32(_mm256_srli_epi64(_mm256_add_epi64(alpha.even, half), 32),
                                  _mm256_add_epi64(alpha.odd, half), 0xAA);
    }

    static __m256i side_by_side(__m256i even, __m256i odd)
    {
        return _mm256_blend_epi32(even, _mm256_slli_epi64(odd, 32), 0xAA);
    }

    __m256i fx_;
    eight_sums below_, above_; // weights of the lower row and of the upper one
    __m256i upper_left_, upper_right_, lower_left_, lower_right_;
};

class eight_fetched
{
public:
    explicit eight_fetched(const mapped_run& src) : src_(src) {}

    void sample(const row_map& map, int column, int count, PF_Pixel* out) const
    {
        for (int done = 0; done < count; done += shortest_mapped_run)
        {
            // The last block overlaps the one before.
            const int start = done + shortest_mapped_run <= count ? done : count - shortest_mapped_run;
            std::int32_t x[shortest_mapped_run], y[shortest_mapped_run];
            mapped_run::locate(map, column + start, x, y);
            for (int i = 0; i < shortest_mapped_run; i += 8)
            {
                const __m256i samples = eight_samples::bilinear(around(x + i, y + i));
                _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + start + i), samples);
            }
        }
    }

    // The nearest pixels. All of the world's bytes are counted by 31 bits.
    void nearest(const row_map& map, int column, int count, PF_Pixel* out) const
    {
        const char* const first = src_.pixel_at(0, 0);
        for (int done = 0; done < count; done += shortest_mapped_run)
        {
            // The last block overlaps the one before.
            const int start = done + shortest_mapped_run <= count ? done : count - shortest_mapped_run;
            std::int32_t x[shortest_mapped_run], y[shortest_mapped_run], bytes[shortest_mapped_run];
            mapped_run::locate(map, column + start, x, y);
            for (int i = 0; i < shortest_mapped_run; i += 8)
                _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes + i), nearest_bytes(x + i, y + i));
            for (int i = 0; i < shortest_mapped_run; ++i)
                std::memcpy(out + start + i, first + bytes[i], sizeof(PF_Pixel));
        }
    }

private:
    // From the world's first pixel to the nearest ones.
    __m256i nearest_bytes(const std::int32_t* x, const std::int32_t* y) const
    {
        const __m256i rowbytes = _mm256_set1_epi32(static_cast<int>(src_.rowbytes()));
        return _mm256_add_epi32(_mm256_mullo_epi32(nearest_whole(y), rowbytes),
                                _mm256_slli_epi32(nearest_whole(x), 2));
    }
    static __m256i nearest_whole(const std::int32_t* fixed)
    {
        const __m256i value = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(fixed));
        return _mm256_srli_epi32(_mm256_add_epi32(value, _mm256_set1_epi32(32768)), 16);
    }

    eight_points around(const std::int32_t* x, const std::int32_t* y) const
    {
        const char* at[8];
        for (int i = 0; i < 8; ++i)
            at[i] = src_.pixel_at(x[i] >> 16, y[i] >> 16);
        eight_points p;
        split_pairs(at, 0, p.upper_left, p.upper_right);
        split_pairs(at, src_.rowbytes(), p.lower_left, p.lower_right);
        const __m256i fraction = _mm256_set1_epi32(0xffff);
        p.fx = _mm256_and_si256(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(x)), fraction);
        p.fy = _mm256_and_si256(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(y)), fraction);
        return p;
    }

    // The pixels at eight places, and those to their right.
    static void split_pairs(const char* const* at, std::ptrdiff_t offset, __m256i& left, __m256i& right)
    {
        const auto two = [=](int i, int j)
        {
            const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(at[i] + offset));
            const auto* const high = reinterpret_cast<const __m64*>(at[j] + offset);
            return _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(low), high));
        };
        const __m256 a = _mm256_castsi256_ps(_mm256_set_m128i(two(4, 5), two(0, 1)));
        const __m256 b = _mm256_castsi256_ps(_mm256_set_m128i(two(6, 7), two(2, 3)));
        left = _mm256_castps_si256(_mm256_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0)));
        right = _mm256_castps_si256(_mm256_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1)));
    }

    mapped_run src_;
};
} // namespace
} // namespace host
