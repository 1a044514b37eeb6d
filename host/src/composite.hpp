#pragma once
// How one pixel is laid on another. Straight alpha, whole numbers only: every result is the exact rational value,
// rounded to nearest, halves upwards, and so the same with every compiler.
//
// With s and d the source's and destination's alpha over 255, and t = opacity/255 * mask/255:
//   COPY      weights  s*t  and  d*(1 - t)
//   IN_FRONT  weights  s*t  and  d*(1 - s*t)
//   BEHIND    weights  s*t*(1 - d)  and  d
// The alpha is the sum of the two weights, each colour channel the weighted mean. Where both weights are 0 the
// destination stays as it is. A COPY with t = 1 takes the source pixel as it is, colour under zero alpha included.
// With `rgb_only` the destination keeps its alpha and takes the channels.

#include "simd_level.hpp"

#include "effect/pf/effect_api.hpp"

#include <cstddef>

namespace host
{
struct blend
{
    PF_TransferMode mode = PF_Xfer_COPY;
    unsigned opacity = 255;
    bool rgb_only = false;

    bool known() const { return mode == PF_Xfer_COPY || mode == PF_Xfer_BEHIND || mode == PF_Xfer_IN_FRONT; }
};

// The definition. `mask` is 0 to 255.
PF_Pixel blended(const blend& how, PF_Pixel src, PF_Pixel dst, unsigned mask);

// The same for a row of pixels without a mask, faster where the pixels allow it. Rows do not overlap.
void blend_row(const blend& how, const PF_Pixel* src, PF_Pixel* dst, int count);

// Pixels of a rectangle and those they are laid on; bytes from one row to the next.
struct rows_on_rows
{
    const PF_Pixel* src;
    std::ptrdiff_t src_rowbytes;
    PF_Pixel* dst;
    std::ptrdiff_t dst_rowbytes;
    int width, height;
};

// blend_row for each row with the instructions of a level that the machine has: the same bytes.
void blend_rows_at(simd_level level, const blend& how, const rows_on_rows& rows);

// IN_FRONT at full opacity, alpha and all, at one level each.
void in_front_rows_sse2(const rows_on_rows& rows);
void in_front_rows_avx2(const rows_on_rows& rows);
} // namespace host
