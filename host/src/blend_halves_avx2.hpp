#pragma once
// IN_FRONT at full opacity for eight pixels, whatever their alphas, two channels of each side by side in 16 bits.
// Included by the file for AVX2 alone.

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
    [[gnu::always_inline]] static __m256i blend(__m256i s, __m256i d)
    {
        const __m256i s_alpha = _mm256_shuffle_epi8(s, alpha_twice());
        const __m256i d_alpha = _mm256_shuffle_epi8(d, alpha_twice());
        const __m256i full = halves_of(255);
        const __m256i a = _mm256_mullo_epi16(s_alpha, full);
        const __m256i b = _mm256_mullo_epi16(d_alpha, _mm256_xor_si256(s_alpha, full));
        const in_front_halves pixels(a, _mm256_add_epi16(a, b));

        const __m256i even_to = _mm256_and_si256(d, full);
        const __m256i odd_to = _mm256_srli_epi16(d, 8);
        const __m256i even = pixels.channels(_mm256_and_si256(s, full), even_to);
        const __m256i odd = pixels.channels(_mm256_srli_epi16(s, 8), odd_to);
        return _mm256_or_si256(_mm256_blend_epi16(even, pixels.alpha(), 0x55), _mm256_slli_epi16(odd, 8));
    }

private:
    in_front_halves(__m256i a, __m256i sum)
        : a_(a), sum_(sum), half_sum_(_mm256_srli_epi16(sum, 1)), share_(negative_share(a, sum))
    {
    }

    // By 32 bits, which gcc takes from memory; constants of 16 it makes anew in every turn of a loop.
    static __m256i halves_of(int number) { return _mm256_set1_epi32(number << 16 | number); }

    // Selects a pixel's lowest byte into the low byte of both its halves.
    static __m256i alpha_twice()
    {
        const __m128i four =
            _mm_set_epi8(-1, 12, -1, 12, -1, 8, -1, 8, -1, 4, -1, 4, -1, 0, -1, 0); // from the highest down
        return _mm256_broadcastsi128_si256(four);
    }

    // -2^15 * a / sum to the nearest: negative, since 2^15 itself is no 16-bit number. 0 where the sum is 0.
    static __m256i negative_share(__m256i a, __m256i sum)
    {
        const __m256 whole = _mm256_max_ps(in_floats(sum), _mm256_set1_ps(1.0f));
        const __m256 share = _mm256_div_ps(_mm256_mul_ps(in_floats(a), _mm256_set1_ps(-32768.0f)), whole);
        const __m256i rounded = _mm256_cvtps_epi32(share);
        const __m128i both = _mm_set_epi8(13, 12, 13, 12, 9, 8, 9, 8, 5, 4, 5, 4, 1, 0, 1, 0);
        return _mm256_shuffle_epi8(rounded, _mm256_broadcastsi128_si256(both));
    }

    static __m256 in_floats(__m256i halves) { return _mm256_cvtepi32_ps(_mm256_srli_epi32(halves, 16)); }

    [[gnu::always_inline]] __m256i channels(__m256i from, __m256i to) const
    {
        const __m256i minus_difference = _mm256_sub_epi16(to, from);
        const __m256i r = _mm256_mulhrs_epi16(minus_difference, share_);
        const __m256i minus_rest =
            _mm256_add_epi16(_mm256_mullo_epi16(a_, minus_difference), _mm256_mullo_epi16(sum_, r));
        // 0 <= rest + sum / 2 < sum where r is right; a number below 0 is a large one without its sign.
        const __m256i place = _mm256_sub_epi16(half_sum_, minus_rest);
        const __m256i off = _mm256_cmpeq_epi16(_mm256_max_epu16(place, sum_), place);
        return _mm256_add_epi16(_mm256_add_epi16(to, r), _mm256_sign_epi16(off, minus_rest));
    }

    // sum / 255 to the nearest: for t below 2^16, (t + (t >> 8)) >> 8 is 257 * t >> 16.
    __m256i alpha() const { return _mm256_mulhi_epu16(_mm256_add_epi16(sum_, halves_of(128)), halves_of(257)); }

    __m256i a_, sum_, half_sum_, share_;
};
} // namespace
} // namespace host
