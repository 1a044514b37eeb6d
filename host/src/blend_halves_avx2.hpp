#pragma once
// IN_FRONT at full opacity for sixteen pixels, whatever their alphas: each channel in a vector of its own, 16 bits
// a pixel. Included by the file for AVX2 alone.

#include <immintrin.h>

namespace host
{
namespace
{
// With a = 255 * s, b = d * (255 - s) and sum = a + b, all below 2^16, a channel is to.c + a * D / sum, with the
// difference D = from.c - to.c, rounded to nearest, halves upwards.
//
// a / sum is taken to the nearest 1/2^15. That moves D * a / sum by at most 255 / 2^16 and a bit, so that its
// rounded value r is either right or 1 off, and the rest a * D - sum * r lies within
//   sum / 2 + 255/65536 * sum < 2^15.
// Its last 16 bits are all of it, and tell r from its neighbours: r is right for -sum/2 <= rest < sum/2.
class in_front_halves
{
public:
    struct two
    {
        __m256i first, second;
    };

    [[gnu::always_inline]] static two blend(const two& s, const two& d)
    {
        const channels from(s), to(d);
        const __m256i a = _mm256_mullo_epi16(from.alpha, halves_of(255));
        const __m256i b = _mm256_mullo_epi16(to.alpha, _mm256_xor_si256(from.alpha, halves_of(255)));
        const in_front_halves pixels(a, _mm256_add_epi16(a, b));
        return side_by_side(pixels.alpha(), pixels.mean(from.red, to.red), pixels.mean(from.green, to.green),
                            pixels.mean(from.blue, to.blue));
    }

private:
    struct channels
    {
        // Of every four pixels in a row: the alphas, the reds and so on, then eight of each, then 16 bits of each.
        [[gnu::always_inline]] explicit channels(const two& pixels)
        {
            const __m256i apart =
                _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
            const __m256i first = _mm256_shuffle_epi8(pixels.first, apart);
            const __m256i second = _mm256_shuffle_epi8(pixels.second, apart);
            const __m256i alpha_red = _mm256_unpacklo_epi32(first, second);
            const __m256i green_blue = _mm256_unpackhi_epi32(first, second);
            const __m256i zero = _mm256_setzero_si256();
            alpha = _mm256_unpacklo_epi8(alpha_red, zero);
            red = _mm256_unpackhi_epi8(alpha_red, zero);
            green = _mm256_unpacklo_epi8(green_blue, zero);
            blue = _mm256_unpackhi_epi8(green_blue, zero);
        }

        __m256i alpha, red, green, blue;
    };

    [[gnu::always_inline]] in_front_halves(__m256i a, __m256i sum)
        : a_(a), sum_(sum), highest_(_mm256_srli_epi16(sum, 1)), share_(negative_share(a, sum))
    {
        const __m256i one = _mm256_srli_epi16(_mm256_cmpeq_epi16(sum, sum), 15);
        const __m256i lowest = _mm256_add_epi16(_mm256_sub_epi16(highest_, sum), one);
        lowest_ = _mm256_min_epi16(lowest, _mm256_setzero_si256()); // a sum of 0 leaves 0, which is right
    }

    // By 32 bits, which gcc takes from memory; constants of 16 it makes anew in every turn of a loop.
    static __m256i halves_of(int number) { return _mm256_set1_epi32(number << 16 | number); }

    // -2^15 * a / sum to the nearest: negative, since 2^15 itself is no 16-bit number. 0 where the sum is 0.
    [[gnu::always_inline]] static __m256i negative_share(__m256i a, __m256i sum)
    {
        const __m256i zero = _mm256_setzero_si256();
        return _mm256_packs_epi32(
            negative_quotient(_mm256_unpacklo_epi16(a, zero), _mm256_unpacklo_epi16(sum, zero)),
            negative_quotient(_mm256_unpackhi_epi16(a, zero), _mm256_unpackhi_epi16(sum, zero)));
    }
    [[gnu::always_inline]] static __m256i negative_quotient(__m256i a, __m256i sum)
    {
        const __m256 whole = _mm256_max_ps(_mm256_cvtepi32_ps(sum), _mm256_set1_ps(1.0f));
        return _mm256_cvtps_epi32(
            _mm256_div_ps(_mm256_mul_ps(_mm256_cvtepi32_ps(a), _mm256_set1_ps(-32768.0f)), whole));
    }

    [[gnu::always_inline]] __m256i mean(__m256i from, __m256i to) const
    {
        const __m256i minus_difference = _mm256_sub_epi16(to, from);
        const __m256i r = _mm256_mulhrs_epi16(minus_difference, share_);
        const __m256i minus_rest =
            _mm256_add_epi16(_mm256_mullo_epi16(a_, minus_difference), _mm256_mullo_epi16(sum_, r));
        const __m256i above = _mm256_cmpgt_epi16(minus_rest, highest_);
        const __m256i below = _mm256_cmpgt_epi16(lowest_, minus_rest);
        return _mm256_sub_epi16(_mm256_add_epi16(_mm256_add_epi16(to, r), above), below);
    }

    // sum / 255 to the nearest: for t below 2^16, (t + (t >> 8)) >> 8 is 257 * t >> 16.
    [[gnu::always_inline]] __m256i alpha() const
    {
        return _mm256_mulhi_epu16(_mm256_add_epi16(sum_, halves_of(128)), halves_of(257));
    }

    // channels(), back again.
    [[gnu::always_inline]] static two side_by_side(__m256i alpha, __m256i red, __m256i green, __m256i blue)
    {
        const __m256i alpha_red = _mm256_or_si256(alpha, _mm256_slli_epi16(red, 8));
        const __m256i green_blue = _mm256_or_si256(green, _mm256_slli_epi16(blue, 8));
        return {_mm256_unpacklo_epi16(alpha_red, green_blue), _mm256_unpackhi_epi16(alpha_red, green_blue)};
    }

    __m256i a_, sum_;
    __m256i highest_, lowest_; // what minus the rest may be where r is right
    __m256i share_;
};
} // namespace
} // namespace host
