#pragma once
// Whoever draws strokes onto a picture of its own.

#include "bench/strokes/waves.hpp"

#include "effect/raster/simd_level.hpp"

#include <cstdint>
#include <memory>

namespace bench
{
class painter
{
public:
    painter() = default;
    virtual ~painter() = default;
    painter(const painter&) = delete;
    painter& operator=(const painter&) = delete;

    virtual void draw(const wave_stroke& stroke) = 0;
    virtual void clear() = 0;
    // The sum of the picture's alpha, 255 for a covered pixel.
    virtual std::uint64_t alpha_sum() const = 0;
};

// Ours: a stroke of one colour and one width, or of a width and a colour for each sample.
std::unique_ptr<painter> effect_painter(int width, int height, bool one_color, simd_level level);

// Cairo's stroker, with the antialiasing it has when nothing is said.
std::unique_ptr<painter> cairo_stroke_painter(int width, int height);
// Cairo filling the stroke's outline, which is made outside the clock, with its fast antialiasing.
std::unique_ptr<painter> cairo_fill_painter(int width, int height);

// AGG filling the outline that is made outside the clock.
std::unique_ptr<painter> agg_fill_painter(int width, int height);
// The same with the outline made inside the clock.
std::unique_ptr<painter> agg_outline_painter(int width, int height);
// AGG's stroker.
std::unique_ptr<painter> agg_stroke_painter(int width, int height);
} // namespace bench
