#pragma once
// IN_FRONT at full opacity for a whole row, several pixels at a time: what blended() answers for each of them.
// Included by one file for each instruction set.

#include "composite.hpp"
#include "pixel_lanes.hpp"

namespace host
{
namespace
{
template <int Bytes>
class in_front_row
{
public:
    static void blend(const PF_Pixel* src, PF_Pixel* dst, int count)
    {
        if (count < v::count)
            return blend_few(src, dst, static_cast<std::size_t>(count) * sizeof(PF_Pixel));
        // The last vector overlaps the one before, so it is blended while the pixels are as they were.
        const int last = count - v::count;
        const word end = v::load(src + last);
        const bool end_shows = !v::all_zero(end & 0xff);
        const word blended_end = end_shows ? blended_apart(end, v::load(dst + last)) : end;
        int looked_at = 0; // in vain for a run, up to here
        for (int x = 0; x < last; x += v::count)
        {
            if (x >= looked_at && x + wide <= count)
            {
                if (blend_alike(src + x, dst + x))
                {
                    x += wide - v::count;
                    continue;
                }
                looked_at = x + wide;
            }
            const word s = v::load(src + x);
            if (!v::all_zero(s & 0xff))
                v::store(dst + x, blended_lanes(s, v::load(dst + x)));
        }
        if (end_shows)
            v::store(dst + last, blended_end);
    }

private:
    using v = lanes<Bytes>;
    using word = typename v::word;
    using half = typename v::half;
    using real = typename v::real;
    static constexpr int wide = 4 * v::count;

    // Lines leave most of a picture empty, and are opaque inside: such runs are seen at once. False where
    // it is no such run.
    [[gnu::always_inline]] static bool blend_alike(const PF_Pixel* src, PF_Pixel* dst)
    {
        const word s[4] = {v::load(src), v::load(src + v::count), v::load(src + 2 * v::count),
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
    static void blend_few(const PF_Pixel* src, PF_Pixel* dst, std::size_t bytes)
    {
        word s = {}, d = {};
        std::memcpy(&s, src, bytes);
        std::memcpy(&d, dst, bytes);
        d = blended_apart(s, d);
        std::memcpy(dst, &d, bytes);
    }

    // A second copy of the code, so that the loop's keeps its constants in registers.
    [[gnu::noinline]] static word blended_apart(word s, word d) { return blended_lanes(s, d); }

    // onto_any(s, d, s_alpha, d_alpha), without its divisions where every pixel of one side is empty or opaque:
    // lines laid on lines, all but where their edges cross.
    [[gnu::always_inline]] static word blended_lanes(word s, word d)
    {
        const word s_alpha = s & 0xff;
        const word d_alpha = d & 0xff;
        const word opaque = (word)(d_alpha == 255);
        if (v::all_zero(~opaque))
            return onto_opaque(s, d, s_alpha);
        const word keeps = (word)(s_alpha == 0);
        const word takes = (word)(s_alpha == 255) | (word)(d_alpha == 0);
        const word easy = keeps | takes;
        if (v::all_zero(~easy))
            return (d & keeps) | (s & ~keeps);
        if (!v::all_zero(~(easy | opaque)))
            return onto_any(s, d, s_alpha, d_alpha);
        const word taken = (s & takes) | (onto_opaque(s, d, s_alpha) & ~takes);
        return (d & keeps) | (taken & ~keeps);
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
