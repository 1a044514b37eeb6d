#include "effect/model/numeric.hpp"
#include "effect/raster/aeg.hpp"
#include "effect/raster/line_creator.hpp"
#include "effect/raster/nearest_sample.hpp"

#include <algorithm>
#include <cmath>

// The covered fraction of a pixel whose distance `dist` from the nearest sample leaves `edge` (0 to 2) of margin.
float LineCreatorClass::coverage(float edge, float row_offset, float dist) const noexcept
{
    const float sine = dist != 0.0f ? std::fabs(row_offset) / dist : 0.0f;
    const int row = std::clamp(trunc_i32(static_cast<double>(edge * 100.0f)), 0, kTableRows - 1);
    const int col = std::clamp(trunc_i32(static_cast<double>(sine * 255.0f)), 0, kTableColumns - 1);
    return coverageTable[row * kTableColumns + col];
}

template <bool Multicolor>
void LineCreatorClass::calculate_pixel(int x, int y)
{
    if (axis != 0 && axis != 1)
        return;
    const bool along_y = axis == 1;
    const int k = samplesPerPixel;

    // The samples that can matter lie within the outer radius of the pixel.
    const float r = outerRadius;
    const float cx0 = std::max(0.0f, static_cast<float>(x + 1) - r);
    const float cx1 = std::min(static_cast<float>(width), static_cast<float>(x + 1) + r);
    const float cy0 = std::max(0.0f, static_cast<float>(y + 1) - r);
    const float cy1 = std::min(static_cast<float>(height), static_cast<float>(y + 1) + r);
    const float first_main = along_y ? points[0].y : points[0].x;
    const int first = sample_at(first_main, along_y ? cy0 : cx0, k, pointCount);
    const int last = sample_at(first_main, along_y ? cy1 : cx1, k, pointCount);
    const float cross_min = along_y ? cx0 : cy0;
    const float cross_max = along_y ? cx1 : cy1;

    // The nearest of them, the earlier one on a tie.
    const float center_x = static_cast<float>(x) + 0.5f;
    const float center_y = static_cast<float>(y) + 0.5f;
    nearest_sample near;
    const StrokePoint* prev = &points[first];
    for (int i = first; i >= last; --i)
    {
        const StrokePoint& cur = points[i];

        // A steep step is bridged by positions between the two samples, at high quality.
        const gap_bridge bridge(*prev, cur, along_y, k);
        for (int m = 1; m <= bridge.count; ++m)
        {
            const float q = squared_distance(center_x, center_y, bridge.x(m), bridge.y(m));
            if (q < near.best)
            {
                near.best = q;
                near.radius = bridge.radius(m);
                near.row_offset = center_y - bridge.y(m);
                if constexpr (Multicolor)
                    near.color = bridge.color(m);
            }
        }

        const float cross = along_y ? cur.x : cur.y;
        if (cross_min <= cross && cross <= cross_max)
        {
            const float q = squared_distance(center_x, center_y, cur.x, cur.y);
            if (q < near.best)
            {
                near.best = q;
                near.radius = cur.halfWidth;
                near.row_offset = center_y - cur.y;
                if constexpr (Multicolor)
                    near.color = cur.color;
            }
        }
        prev = &cur;
    }

    const auto dist = static_cast<float>(in_data->utils->ansi.sqrt(static_cast<double>(near.best)));
    PF_Pixel color{};
    if (!shade<Multicolor>(near, dist, &color))
        return;
    *pixel_at(x, y) = color;
    context->mark(x, y);
}

template <bool Multicolor>
bool LineCreatorClass::shade(const nearest_sample& near, float dist, PF_Pixel* out) const noexcept
{
    // Its disc covers the pixel or it does not; a radius that is not a number covers nothing.
    const float edge = 1.0f - (dist - near.radius);
    if (!(edge > 0.0f))
        return false;

    PF_Pixel color = Multicolor ? near.color : points[0].color;
    if (samplesPerPixel > 1)
    {
        // The fall-off is exactly 1 for a core opacity of 1, whatever the radius.
        float fall = 1.0f;
        if (coreOpacity != 1.0f && dist != 0.0f)
            fall = 1.0f - (1.0f - coreOpacity) * (dist / near.radius);
        if (fall < 0.0f)
            fall = 0.0f;
        color.alpha = trunc_u8(static_cast<double>(static_cast<float>(color.alpha) * fall));
        if (edge < 2.0f)
        {
            const float c = coverage(edge, near.row_offset, dist);
            if (!Multicolor || c < 1.0f)
                color.alpha = trunc_u8(static_cast<double>(static_cast<float>(color.alpha) * c));
        }
    }
    *out = color;
    return true;
}

void LineCreatorClass::CalculatePixelMonocolor(int x, int y)
{
    calculate_pixel<false>(x, y);
}

void LineCreatorClass::CalculatePixelMulticolor(int x, int y)
{
    calculate_pixel<true>(x, y);
}

template bool LineCreatorClass::shade<false>(const nearest_sample&, float, PF_Pixel*) const noexcept;
template bool LineCreatorClass::shade<true>(const nearest_sample&, float, PF_Pixel*) const noexcept;
