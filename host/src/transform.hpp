#pragma once
// Pixels between pixels: sampling a world at a fractional position, and mapping one world onto another.

#include "worlds.hpp"

#include <cstdint>

namespace host
{
// The world at a 16.16 position where (0, 0) is the centre of the top-left pixel and y goes down.
//
// Bilinear: the four pixels around, weighted by (65536 - fx) * (65536 - fy) and so on, fx and fy being the 16 bits
// behind the point. The alpha is the weighted mean of the alphas, a colour channel the mean weighted by weight and
// alpha, each the exact quotient rounded to nearest, halves upwards. Pixels outside the world have zero alpha;
// where all alphas are zero the sample is zero. On a pixel's centre the sample is that pixel, whatever its alpha.
PF_Pixel sample_bilinear(const PF_EffectWorld& world, std::int64_t x, std::int64_t y);

// The pixel whose centre is nearest, halves to the right and downwards; zero outside the world.
PF_Pixel sample_nearest(const PF_EffectWorld& world, std::int64_t x, std::int64_t y);

using sampler = PF_Pixel (*)(const PF_EffectWorld&, std::int64_t x, std::int64_t y);
sampler sampler_for(PF_Quality quality);

// An affine map of points of the continuous plane, where pixel (i, j) is the square from (i, j) to (i + 1, j + 1),
// and its centre is at (i + 1/2, j + 1/2).
struct transform
{
    const PF_FloatMatrix* matrices = nullptr;
    int count = 0;        // above 1: positions during one exposure, averaged
    bool src2dst = false; // which way the matrices go
};

// Samples the source at every pixel of the destination rectangle and lays the sample on the destination. A
// sample's position is computed in double and rounded to the nearest 1/65536 of a pixel, halves upwards. Several
// matrices give the mean of their samples, colours weighted by alpha, rounded to nearest. A matrix that cannot be
// inverted samples nothing; if that goes for all of them nothing is drawn. The mask's alpha weighs the source's
// pixels before they are sampled (rounded to nearest).
void transform_onto(const blend& how, PF_Quality quality, const PF_EffectWorld& src, const PF_MaskWorld* mask,
                    const transform& map, const PF_Rect* dest_rect, const PF_EffectWorld& dst,
                    simd_level level = chosen_simd_level());
} // namespace host
