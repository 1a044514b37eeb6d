#pragma once
// IN_FRONT at full opacity for whole rows, several pixels at a time: what blended() answers for each of them.
// Included by one file for each instruction set.

#include "composite.hpp"
#include "pixel_lanes.hpp"

#if defined(__AVX2__)
#include "blend_halves_avx2.hpp"
#endif

namespace host
{
namespace
{
template <int Bytes>
class in_front_rows
{
public:
    static void blend(const rows_on_rows& rows)
    {
        // Processors see by themselves where long rows go on.
        if (rows.width <= 256 && rows.height > 1)
            return blend_short_rows(rows);
        for (int y = 0; y < rows.height; ++y)
            blend_row(src_row(rows, y), dst_row(rows, y), rows.width);
    }

private:
    using v = lanes<Bytes>;
    using word = typename v::word;
    using byte = typename v::byte;
    using half = typename v::half;
    using real = typename v::real;
    static constexpr int wide = 4 * v::count;

    static const PF_Pixel* src_row(const rows_on_rows& rows, int y)
    {
        return reinterpret_cast<const PF_Pixel*>(reinterpret_cast<const char*>(rows.src) + y * rows.src_rowbytes);
    }
    static PF_Pixel* dst_row(const rows_on_rows& rows, int y)
    {
        return reinterpret_cast<PF_Pixel*>(reinterpret_cast<char*>(rows.dst) + y * rows.dst_rowbytes);
    }

    // Asks memory for rows of the source, then looks into them, and asks for rows of the destination only where
    // there is something to lay on them: each as long before as memory takes to answer.
    static void blend_short_rows(const rows_on_rows& rows)
    {
        constexpr int looked_ahead = 4;
        constexpr int asked_ahead = looked_ahead + 6;
        unsigned covered = 0; // of rows looked into, the latest in the lowest bit
        for (int y = -asked_ahead; y < rows.height; ++y)
        {
            if (y + asked_ahead < rows.height)
                fetch(src_row(rows, y + asked_ahead), rows.width);
            covered <<= 1;
            const int next = y + looked_ahead;
            if (next >= 0 && next < rows.height && !all_clear(src_row(rows, next), rows.width))
            {
                covered |= 1;
                fetch(dst_row(rows, next), rows.width);
            }
            if ((covered >> looked_ahead & 1) != 0)
                blend_row(src_row(rows, y), dst_row(rows, y), rows.width);
        }
    }

    [[gnu::always_inline]] static void fetch(const PF_Pixel* row, int width)
    {
        constexpr int cache_line = 16;
        for (int x = 0; x < width; x += cache_line)
            __builtin_prefetch(row + x);
    }

    [[gnu::always_inline]] static bool all_clear(const PF_Pixel* row, int width)
    {
        int x = 0;
        word any = {};
        for (; x + wide <= width; x += wide)
        {
            any = any | v::load(row + x) | v::load(row + x + v::count) | v::load(row + x + 2 * v::count) |
                  v::load(row + x + 3 * v::count);
            if (!v::all_zero(any & 0xff))
                return false;
        }
        for (; x + v::count <= width; x += v::count)
            any |= v::load(row + x);
        if (x < width)
            any |= width >= v::count ? v::load(row + width - v::count) : v::load_some(row, width);
        return v::all_zero(any & 0xff);
    }

    [[gnu::always_inline]] static void blend_row(const PF_Pixel* src, PF_Pixel* dst, int count)
    {
        int x = 0;
        bool divided = false;
        for (; x + wide <= count; x += wide)
        {
            if (blend_alike(src + x, dst + x))
                continue;
            if (divided)
                if (const int blended = blend_dividing(src + x, dst + x, count - x))
                {
                    x += blended - wide;
                    continue;
                }
            divided = true;
            for (int i = 0; i < wide; i += 2 * v::count)
                divided = blend_two_vectors(src + x + i, dst + x + i) && divided;
        }
        // Where all is nothing or all is full cover, it does no harm to blend some pixels again.
        if (x == count || (count >= wide && blend_alike(src + count - wide, dst + count - wide)))
            return;
        for (; x + 2 * v::count <= count; x += 2 * v::count)
            blend_two_vectors(src + x, dst + x);
        for (; x + v::count <= count; x += v::count)
            blend_vector(src + x, dst + x);
        if (x < count)
            blend_few(src + x, dst + x, count - x);
    }

    // Where nearly every pixel from here on seems to need a division, by those at the beginning of every few,
    // blends some, and says how many.
    [[gnu::always_inline]] static int blend_dividing([[maybe_unused]] const PF_Pixel* src,
                                                     [[maybe_unused]] PF_Pixel* dst, [[maybe_unused]] int count)
    {
        int x = 0;
#if defined(__AVX2__)
        if constexpr (Bytes == 32)
        {
            for (; x < 16 * most_sixteens && x + 2 * wide <= count; x += 2 * wide)
            {
                const word divides = dividing(v::load(src + x), v::load(dst + x));
                const int others = _mm256_movemask_ps((__m256)(divides == 0));
                if ((others & (others - 1)) != 0)
                    break;
            }
            if (x > 0)
                blend_sixteens(src, dst, x / 16);
        }
#endif
        return x;
    }

    // Whether all of them needed a division.
    [[gnu::always_inline]] static bool blend_two_vectors(const PF_Pixel* src, PF_Pixel* dst)
    {
#if defined(__AVX2__)
        if constexpr (Bytes == 32)
        {
            const word s[2] = {v::load(src), v::load(src + v::count)};
            const word d[2] = {v::load(dst), v::load(dst + v::count)};
            if (v::all_zero(~(d[0] & d[1]) & 0xff))
            {
                v::store(dst, onto_opaque(s[0], d[0], s[0] & 0xff));
                v::store(dst + v::count, onto_opaque(s[1], d[1], s[1] & 0xff));
                return false;
            }
            if (v::all_zero(dividing(s[0], d[0]) | dividing(s[1], d[1])))
            {
                blend_undivided(s[0], d[0], dst);
                blend_undivided(s[1], d[1], dst + v::count);
                return false;
            }
            blend_sixteen(src, dst);
            return true;
        }
#endif
        blend_vector(src, dst);
        blend_vector(src + v::count, dst + v::count);
        return false;
    }

    [[gnu::always_inline]] static void blend_vector(const PF_Pixel* src, PF_Pixel* dst)
    {
        const word s = v::load(src);
        const word d = v::load(dst);
        if (any_divides(s, d))
            v::store(dst, onto_any(s, d));
        else
            blend_undivided(s, d, dst);
    }

    [[gnu::always_inline]] static void blend_undivided(word s, word d, PF_Pixel* dst)
    {
        if (v::all_zero(~d & 0xff))
            v::store(dst, onto_opaque(s, d, s & 0xff));
        else if (!v::all_zero(s & 0xff))
            v::store(dst, onto_plain(s, d));
    }

    // Lines leave most of a picture empty, and are opaque inside: such runs are seen at once. False where
    // it is no such run.
    [[gnu::always_inline]] static bool blend_alike(const PF_Pixel* src, PF_Pixel* dst)
    {
        const word first = v::load(src);
        if (!v::all_zero((first + 1) & 0xfe)) // neither 0 nor 255
            return false;
        const word s[4] = {first, v::load(src + v::count), v::load(src + 2 * v::count),
                           v::load(src + 3 * v::count)};
        if (v::all_zero((s[0] | s[1] | s[2] | s[3]) & 0xff))
            return true;
        if (!v::all_zero(~(s[0] & s[1] & s[2] & s[3]) & 0xff))
            return false;
        for (int i = 0; i < 4; ++i)
            v::store(dst + i * v::count, s[i]);
        return true;
    }

    // Fewer pixels than a vector holds, in one that is filled up with nothing.
    static void blend_few(const PF_Pixel* src, PF_Pixel* dst, int count)
    {
        const word s = v::load_some(src, count);
        if (!v::all_zero(s & 0xff))
            v::store_some(dst, blended_apart(s, v::load_some(dst, count)), count);
    }

    // A second copy of the code, so that the loop's keeps its constants in registers.
    [[gnu::noinline]] static word blended_apart(word s, word d)
    {
        return any_divides(s, d) ? onto_any(s, d) : onto_plain(s, d);
    }

    // Not 0 where a pixel of the source, neither empty nor opaque, lies on such a one.
    [[gnu::always_inline]] static word dividing(word s, word d)
    {
        // From 255 and 0 to 0 and 1, all others to 2 and above.
        const byte from = (byte)s + 1;
        const byte to = (byte)d + 1;
        return (word)(from < to ? from : to) & 0xfe;
    }

    [[gnu::always_inline]] static bool any_divides(word s, word d)
    {
        return !v::all_zero(dividing(s, d));
    }

    // onto_any(s, d) where every pixel of one side is empty or opaque: lines laid on lines, all but where their
    // edges cross.
    [[gnu::always_inline]] static word onto_plain(word s, word d)
    {
        const word s_alpha = s & 0xff;
        const word keeps = (word)(s_alpha == 0);
        const word takes = (word)(s_alpha == 255) | (word)((d & 0xff) == 0);
        if (v::all_zero(~(keeps | takes)))
            return (d & keeps) | (s & ~keeps);
        const word taken = (s & takes) | (onto_opaque(s, d, s_alpha) & ~takes);
        return (d & keeps) | (taken & ~keeps);
    }

    [[gnu::always_inline]] static word onto_any(word s, word d)
    {
#if defined(__AVX2__)
        if constexpr (Bytes == 32)
        {
            const __m256i none = _mm256_setzero_si256();
            return (word)in_front_halves::blend({(__m256i)s, none}, {(__m256i)d, none}).first;
        }
#endif
        return onto_any(s, d, s & 0xff, d & 0xff);
    }

    // Alpha stays 255, and a channel is (s * from + (255 - s) * to + 127) / 255. No halves: 255 is odd. For 0 <= a
    // <= 255 * 255 the nearest whole number to a / 255 is t + (t >> 8) >> 8 with t = a + 128, all within 16 bits.
    [[gnu::always_inline]] static word onto_opaque(word s, word d, word s_alpha)
    {
        const half from = (half)(s_alpha | s_alpha << 16);
        const half to = 255 - from;
        const half low = (half)(s & 0x00ff00ff) * from + (half)(d & 0x00ff00ff) * to + 128;
        const half high = (half)(s >> 8 & 0x00ff00ff) * from + (half)(d >> 8 & 0x00ff00ff) * to + 128;
        const half even = (low + (low >> 8)) >> 8;
        const half odd = high + (high >> 8);
        return (word)even | ((word)odd & 0xff00ff00) | 0xff;
    }

    template <int Shift>
    static word mean(word s, word d, real from, real to, real sum)
    {
        const real weighted = from * v::to_real(s >> Shift & 0xff) + to * v::to_real(d >> Shift & 0xff);
        return v::to_word(weighted / sum + 0.5f) << Shift;
    }

    // The weights of the definition, divided by 65025: 255 * s and d * (255 - s), whose sum is at most 255 * 255.
    // All products are whole numbers below 2^24, so that single precision has them exactly. Their quotient by the
    // sum, if not a half, lies at least 1 / (2 * 65025) from the next half, more than half a step of numbers below
    // 256: it is on the same side of the half after rounding, and so is the sum with 0.5.
    [[gnu::always_inline]] static word onto_any(word s, word d, word s_alpha, word d_alpha)
    {
        const real from = v::to_real((s_alpha << 8) - s_alpha);
        const real to = v::to_real(d_alpha) * (255.0f - v::to_real(s_alpha));
        const real sum = from + to;
        const word whole_sum = v::to_word(sum);
        const word empty = (word)(whole_sum == 0);
        const real divisor = v::to_real(whole_sum - empty); // 1 for an empty pixel, which stays as it is
        const word t = whole_sum + 128;
        word result = (t + (t >> 8)) >> 8;
        result |= mean<8>(s, d, from, to, divisor) | mean<16>(s, d, from, to, divisor) |
                  mean<24>(s, d, from, to, divisor);
        return (d & empty) | (result & ~empty);
    }
};
} // namespace
} // namespace host
