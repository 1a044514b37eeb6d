#include "composite.hpp"

#include <cstdint>
#include <cstring>

namespace host
{
namespace
{
using u32 = std::uint32_t;
using u64 = std::uint64_t;

// Nearest, halves upwards: floor(a/b + 1/2).
template <class Number>
A_u_char nearest(Number a, Number b)
{
    return static_cast<A_u_char>((2 * a + b) / (2 * b));
}

// The mean of two pixels by weight; `unit` is the weight that stands for one step of alpha.
template <class Number>
PF_Pixel mixed(PF_Pixel src, Number src_weight, PF_Pixel dst, Number dst_weight, Number unit)
{
    const Number sum = src_weight + dst_weight;
    if (sum == 0)
        return dst;
    return {nearest(sum, unit), nearest(src_weight * src.red + dst_weight * dst.red, sum),
            nearest(src_weight * src.green + dst_weight * dst.green, sum),
            nearest(src_weight * src.blue + dst_weight * dst.blue, sum)};
}

PF_Pixel blended_alpha_too(PF_TransferMode mode, u64 t, PF_Pixel src, PF_Pixel dst)
{
    // t is in 1/65025, alpha in 1/255; weights reach 255^4, times a channel 255^5 < 2^41.
    constexpr u64 one = 255 * 255;
    if (mode == PF_Xfer_COPY)
        return t == one ? src : mixed<u64>(src, src.alpha * t, dst, dst.alpha * (one - t), one);
    const u64 over = src.alpha * t;
    if (mode == PF_Xfer_IN_FRONT)
        return mixed<u64>(src, 255 * over, dst, dst.alpha * (255 * one - over), 255 * one);
    return mixed<u64>(src, over * (255 - dst.alpha), dst, dst.alpha * 255 * one, 255 * one);
}

// IN_FRONT at full opacity. The weights of the definition, divided by 65025: the quotients are the same.
PF_Pixel in_front(PF_Pixel src, PF_Pixel dst)
{
    const u32 s = src.alpha;
    if (s == 255 || dst.alpha == 0)
        return src;
    if (dst.alpha == 255)
    {
        const auto channel = [s](u32 from, u32 to)
        {
            return static_cast<A_u_char>((s * from + (255 - s) * to + 127) / 255); // 255 is odd: no halves
        };
        return {255, channel(src.red, dst.red), channel(src.green, dst.green), channel(src.blue, dst.blue)};
    }
    return mixed<u32>(src, 255 * s, dst, dst.alpha * (255 - s), 255);
}

// How many pixels from here on have zero alpha, looking at two at a time; alpha is a pixel's first byte.
int transparent_run(const PF_Pixel* src, int count)
{
    constexpr PF_Pixel alpha_only[2] = {{255, 0, 0, 0}, {255, 0, 0, 0}};
    u64 alphas = 0;
    std::memcpy(&alphas, alpha_only, sizeof alphas);
    int run = 0;
    for (; run + 2 <= count; run += 2)
    {
        u64 pair = 0;
        std::memcpy(&pair, src + run, sizeof pair);
        if ((pair & alphas) != 0)
            break;
    }
    while (run < count && src[run].alpha == 0)
        ++run;
    return run;
}

bool is_plain_in_front(const blend& how)
{
    return how.mode == PF_Xfer_IN_FRONT && how.opacity == 255 && !how.rgb_only;
}
} // namespace

PF_Pixel blended(const blend& how, PF_Pixel src, PF_Pixel dst, unsigned mask)
{
    PF_Pixel result = blended_alpha_too(how.mode, u64{how.opacity} * mask, src, dst);
    if (how.rgb_only)
        result.alpha = dst.alpha;
    return result;
}

void blend_row(const blend& how, const PF_Pixel* src, PF_Pixel* dst, int count)
{
    if (how.mode == PF_Xfer_COPY)
    {
        if (how.opacity == 255 && !how.rgb_only)
            std::memcpy(dst, src, static_cast<std::size_t>(count) * sizeof(PF_Pixel));
        else
            for (int x = 0; x < count; ++x)
                dst[x] = blended(how, src[x], dst[x], 255);
        return;
    }
    // Neither IN_FRONT nor BEHIND changes anything where the source has no alpha.
    const bool plain = is_plain_in_front(how);
    for (int x = transparent_run(src, count); x < count; x += transparent_run(src + x, count - x))
    {
        for (; x < count && src[x].alpha != 0; ++x)
            dst[x] = plain ? in_front(src[x], dst[x]) : blended(how, src[x], dst[x], 255);
    }
}

void blend_rows_at(simd_level level, const blend& how, const rows_on_rows& rows)
{
    if (level == simd_level::scalar || !is_plain_in_front(how))
    {
        const auto* src = reinterpret_cast<const char*>(rows.src);
        auto* dst = reinterpret_cast<char*>(rows.dst);
        for (int y = 0; y < rows.height; ++y, src += rows.src_rowbytes, dst += rows.dst_rowbytes)
            blend_row(how, reinterpret_cast<const PF_Pixel*>(src), reinterpret_cast<PF_Pixel*>(dst), rows.width);
        return;
    }
#if defined(__x86_64__)
    if (level == simd_level::avx2)
        return in_front_rows_avx2(rows);
#endif
    in_front_rows_sse2(rows);
}
} // namespace host
