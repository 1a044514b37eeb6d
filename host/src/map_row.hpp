#pragma once
// The samples of one row of a mapped world, where they all lie well inside the source.

#include "effect/pf/effect_api.hpp"

namespace host
{
// Where the row's pixels come from: the sampling position of column c is ((xx * x + yx_y) + ox) - 0.5 to the
// right, and likewise down, with x = c + 0.5, in pixels.
struct row_map
{
    double xx, yx_y, ox;
    double xy, yy_y, oy;
};

// The fewest pixels that the functions below take.
constexpr int shortest_mapped_run = 16;

// As sample_bilinear and sample_nearest, for `count` pixels from `column` on. All positions are at least 0 and
// below 2^15 - 1, and the pixels around them are in the source.
void bilinear_row_sse2(const PF_EffectWorld& src, const row_map& map, int column, int count, PF_Pixel* out);
void bilinear_row_avx2(const PF_EffectWorld& src, const row_map& map, int column, int count, PF_Pixel* out);
void nearest_row_sse2(const PF_EffectWorld& src, const row_map& map, int column, int count, PF_Pixel* out);
void nearest_row_avx2(const PF_EffectWorld& src, const row_map& map, int column, int count, PF_Pixel* out);
} // namespace host
