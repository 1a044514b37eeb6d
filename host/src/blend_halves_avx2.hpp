#pragma once
// IN_FRONT at full opacity for sixteen pixels, whatever their alphas: each channel in a vector of its own, 16 bits
// a pixel. Included by the file for AVX2 alone.

#include <immintrin.h>

namespace host
{
namespace
{
// With a = 255 * s and sum = a + d * (255 - s), all below 2^16, a channel is to.c + a * D / sum, with the
// difference D = from.c - to.c, rounded to nearest, halves upwards. The sum is 255 * d + s * (255 - d) as well.
//
// a / sum is taken to the nearest 1/2^15. That moves D * a / sum by at most 255 / 2^16 and a bit, so that its
// rounded value r is either right or 1 off, and the rest a * D - sum * r lies within
//   sum / 2 + 255/65536 * sum < 2^15.
// Its last 16 bits are all of it, and tell r from its neighbours: r is right for -sum/2 <= rest < sum/2.
//
// In three steps, so that many pixels can be taken through one after the other: each is a short chain of
// instructions, of which a processor works on several at once; of all three in a row it sees hardly two.
class in_front_halves
{
public:
    struct two
    {
        __m256i first, second;
    };

    [[gnu::always_inline]] static two blend(const two& s, const two& d)
    {
        in_front_halves pixels;
        pixels.take_apart(s, d);
        pixels.divide();
        return pixels.laid_on(d);
    }

    [[gnu::always_inline]] void take_apart(const two& s, const two& d)
    {
        const channels from(s), to(d);
        red_ = difference(_mm256_unpackhi_epi8(to.alpha_red, from.alpha_red));
        green_ = difference(_mm256_unpacklo_epi8(to.green_blue, from.green_blue));
        blue_ = difference(_mm256_unpackhi_epi8(to.green_blue, from.green_blue));
        // Of two numbers times 256 each, the upper half of the product is that of the numbers.
        const __m256i zero = _mm256_setzero_si256();
        const __m256i s_alpha = _mm256_unpacklo_epi8(zero, from.alpha_red);
        const __m256i d_alpha = _mm256_unpacklo_epi8(zero, to.alpha_red);
        const __m256i all = halves_of(0xff00);
        const __m256i gained = _mm256_mulhi_epu16(s_alpha, _mm256_xor_si256(d_alpha, all)); // s * (255 - d)
        a_ = _mm256_mulhi_epu16(s_alpha, all);
        // A sum of 1 instead of 0, which nothing can be divided by, leaves the pixel as it is.
        sum_ = _mm256_max_epu16(_mm256_add_epi16(gained, _mm256_mulhi_epu16(d_alpha, all)), halves_of(1));
        // What alpha gains, divided by 255 to the nearest: for t below 2^16, (t + (t >> 8)) >> 8 is 257 * t >> 16.
        alpha_ = _mm256_mulhi_epu16(_mm256_add_epi16(gained, halves_of(128)), halves_of(257));
    }

    // -2^15 * a / sum to the nearest: negative, since 2^15 itself is no 16-bit number.
    [[gnu::always_inline]] void divide()
    {
        // With these above them, 16 bits are the last of the numbers 2^38 + 2^15 * a and 2^23 + sum.
        const __m256i over_a = halves_of(0x5280), over_sum = halves_of(0x4b00);
        share_ = _mm256_packs_epi32(
            negative_quotient(_mm256_unpacklo_epi16(a_, over_a), _mm256_unpacklo_epi16(sum_, over_sum)),
            negative_quotient(_mm256_unpackhi_epi16(a_, over_a), _mm256_unpackhi_epi16(sum_, over_sum)));
    }

    // The result, d being what it was when taken apart.
    [[gnu::always_inline]] two laid_on(const two& d) const
    {
        const __m256i alpha_red = _mm256_add_epi16(alpha_, _mm256_slli_epi16(change(red_), 8));
        const __m256i green_blue = _mm256_add_epi16(change(green_), _mm256_slli_epi16(change(blue_), 8));
        // What one channel borrows of the next in 16 bits, adding the destination gives back.
        return {_mm256_add_epi16(d.first, _mm256_unpacklo_epi16(alpha_red, green_blue)),
                _mm256_add_epi16(d.second, _mm256_unpackhi_epi16(alpha_red, green_blue))};
    }

private:
    struct channels
    {
        // Of every four pixels in a row: the alphas, the reds and so on, then eight of each.
        [[gnu::always_inline]] explicit channels(const two& pixels)
        {
            const __m256i apart =
                _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
            const __m256i first = _mm256_shuffle_epi8(pixels.first, apart);
            const __m256i second = _mm256_shuffle_epi8(pixels.second, apart);
            alpha_red = _mm256_unpacklo_epi32(first, second);
            green_blue = _mm256_unpackhi_epi32(first, second);
        }

        __m256i alpha_red, green_blue;
    };

    // By 32 bits, which gcc takes from memory; constants of 16 it makes anew in every turn of a loop.
    static __m256i halves_of(unsigned number)
    {
        return _mm256_set1_epi32(static_cast<int>(number << 16 | number));
    }

    // Of each two bytes, the first less the second.
    [[gnu::always_inline]] static __m256i difference(__m256i pairs)
    {
        return _mm256_maddubs_epi16(pairs, _mm256_set1_epi32(static_cast<int>(0xff01ff01)));
    }

    [[gnu::always_inline]] static __m256i negative_quotient(__m256i above_a, __m256i above_sum)
    {
        const __m256 minus_a = _mm256_sub_ps(_mm256_set1_ps(0x1p38f), _mm256_castsi256_ps(above_a));
        const __m256 sum = _mm256_sub_ps(_mm256_castsi256_ps(above_sum), _mm256_set1_ps(0x1p23f));
        return _mm256_cvtps_epi32(_mm256_div_ps(minus_a, sum));
    }

    // What a channel of the destination changes by.
    [[gnu::always_inline]] __m256i change(__m256i minus_difference) const
    {
        const __m256i one = _mm256_srli_epi16(_mm256_cmpeq_epi16(sum_, sum_), 15);
        const __m256i highest = _mm256_srli_epi16(sum_, 1); // what minus the rest may be where r is right
        const __m256i lowest = _mm256_add_epi16(_mm256_sub_epi16(highest, sum_), one);
        const __m256i r = _mm256_mulhrs_epi16(minus_difference, share_);
        const __m256i minus_rest =
            _mm256_add_epi16(_mm256_mullo_epi16(a_, minus_difference), _mm256_mullo_epi16(sum_, r));
        const __m256i above = _mm256_cmpgt_epi16(minus_rest, highest);
        const __m256i below = _mm256_cmpgt_epi16(lowest, minus_rest);
        return _mm256_sub_epi16(_mm256_add_epi16(r, above), below);
    }

    __m256i a_, sum_, share_;
    __m256i alpha_;              // what it changes by
    __m256i red_, green_, blue_; // minus the differences
};

[[gnu::always_inline]] inline in_front_halves::two load_sixteen(const PF_Pixel* from)
{
    return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)),
            _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + 8))};
}

[[gnu::always_inline]] inline void store_sixteen(PF_Pixel* to, const in_front_halves::two& pixels)
{
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), pixels.first);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + 8), pixels.second);
}

// Apart from loops that have constants of their own to keep in registers. Where all is built for AVX2, the file
// for less has no use for it.
[[maybe_unused, gnu::noinline]] void blend_sixteen(const PF_Pixel* src, PF_Pixel* dst)
{
    store_sixteen(dst, in_front_halves::blend(load_sixteen(src), load_sixteen(dst)));
}

constexpr int most_sixteens = 16;

// Up to so many times sixteen pixels. Those behind them are asked for meanwhile.
[[maybe_unused, gnu::noinline]] void blend_sixteens(const PF_Pixel* src, PF_Pixel* dst, int count)
{
    in_front_halves pixels[most_sixteens];
    for (int i = 0; i < count; ++i)
        pixels[i].take_apart(load_sixteen(src + 16 * i), load_sixteen(dst + 16 * i));
    for (int i = 0; i < count; ++i)
    {
        pixels[i].divide();
        __builtin_prefetch(src + 16 * (count + i));
        __builtin_prefetch(dst + 16 * (count + i));
    }
    for (int i = 0; i < count; ++i)
        store_sixteen(dst + 16 * i, pixels[i].laid_on(load_sixteen(dst + 16 * i)));
}
} // namespace
} // namespace host
