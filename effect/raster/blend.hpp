#pragma once
// The colour of a sample between the normal and the stressed colour.

#include "effect/pf/types.hpp"

// Mixes by how far a sample lies off its line's base (`deviation`, pixels, 0 to `maxDeviation`). A `blendPercent`
// of 100 is the normal colour everywhere, 0 the stressed one; between them a band near one end keeps its colour
// pure and the rest ramps to the other. A pure colour is written whole, alpha included; a mixed one leaves the
// alpha of `out` alone.
void blend_color(const PF_Pixel& normal, const PF_Pixel& stressed, short blendPercent, float deviation,
                 float maxDeviation, PF_Pixel* out) noexcept;

// As many colours are blended at once.
constexpr int kBlendBlock = 64;

// The same for each of kBlendBlock deviations. Mixed colours have the alpha of `normal`.
void blend_colors(const PF_Pixel& normal, const PF_Pixel& stressed, short blendPercent, const float* deviations,
                  float maxDeviation, PF_Pixel* out) noexcept;
