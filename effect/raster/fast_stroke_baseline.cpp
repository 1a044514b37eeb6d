#include "effect/raster/fast_stroke.hpp"

#include "effect/raster/fast_stroke_body.hpp"

bool draw_stroke_baseline(LineCreatorClass& creator, bool solid_core, bool one_color) noexcept
{
    return draw_stroke(creator, solid_core, one_color);
}
