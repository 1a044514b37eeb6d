#include "effect/raster/fast_stroke.hpp"

#include "effect/raster/line_creator.hpp"

#include <cmath>

namespace
{
// The fast way takes the processor's square root, correctly rounded as the arithmetic everywhere demands. A host
// whose own differs is asked for every pixel.
bool rounds_correctly(const PF_ANSICallbacks& ansi)
{
    for (const double v : {0.0, 0.1, 0.7, 2.0, 3.0, 5.5, 1234.5678, 16777215.0})
        if (ansi.sqrt(v) != std::sqrt(v))
            return false;
    return true;
}
} // namespace

bool draw_stroke_fast(LineCreatorClass& creator) noexcept
{
    const bool solid_core = creator.subRenderFunction == &LineCreatorClass::SubRenderMonocolor;
    const bool one_color = creator.pixelFunction == &LineCreatorClass::CalculatePixelMonocolor;
    const bool no_core = creator.subRenderFunction == &LineCreatorClass::SubRenderMulticolor;
    const bool many_colors = creator.pixelFunction == &LineCreatorClass::CalculatePixelMulticolor;
    if (!(solid_core || no_core) || !(one_color || many_colors) || (solid_core && !one_color) ||
        (creator.axis != 0 && creator.axis != 1) || creator.pointCount <= 0)
        return false;
    const float first_main = creator.axis == 1 ? creator.points[0].y : creator.points[0].x;
    if (!(std::fabs(first_main) < 1e8f) || creator.pool == nullptr ||
        !rounds_correctly(creator.in_data->utils->ansi))
        return false;
#if defined(__x86_64__)
    if (creator.level == simd_level::avx2)
        return draw_stroke_avx2(creator, solid_core, one_color);
#endif
    return draw_stroke_baseline(creator, solid_core, one_color);
}
