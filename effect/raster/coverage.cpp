#include "effect/model/numeric.hpp"
#include "effect/raster/aeg.hpp"
#include "effect/raster/line_creator.hpp"

#include <algorithm>
#include <cmath>

namespace
{
// The nearest sample so far, seen from one pixel's centre.
struct nearest_sample
{
    float best = 16777215.0f; // squared distance
    float radius = 0.0f;
    float row_offset = 0.0f; // pixel centre minus candidate, in y, whatever the main axis
    PF_Pixel color = {255, 0, 0, 0};
};

struct candidate
{
    float x;
    float y;
};

float squared_distance(float center_x, float center_y, candidate c) noexcept
{
    const float dx = center_x - c.x;
    const float dy = center_y - c.y;
    return dx * dx + dy * dy;
}

A_u_char mix_channel(A_u_char prev, A_u_char cur, float t) noexcept
{
    return trunc_u8(static_cast<double>(static_cast<float>(prev) * t + static_cast<float>(cur) * (1.0f - t)));
}

// Index of the sample at main coordinate `limit`, held to the stroke. Samples are 1/k apart, so it is arithmetic.
int sample_at(float first_main, float limit, int k, int count) noexcept
{
    const int index = trunc_i32(static_cast<double>((first_main - limit) * static_cast<float>(k)));
    return index < 0 ? 0 : std::min(index, count - 1);
}
} // namespace

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
        const float step = along_y ? cur.x - prev->x : cur.y - prev->y;
        const bool gap =
            (step > 0.0f && static_cast<double>(step) > 1.2) || (step <= 0.0f && static_cast<double>(step) < -1.2);
        if (gap && k > 1)
        {
            const int n = trunc_i32(static_cast<double>(std::fabs(step) * static_cast<float>(k)));
            const auto parts = static_cast<float>(wrap_add(n, 1));
            const float step_x = (cur.x - prev->x) / parts;
            const float step_y = (cur.y - prev->y) / parts;
            for (int m = 1; m <= n; ++m)
            {
                const candidate c = {prev->x + step_x * static_cast<float>(m),
                                     prev->y + step_y * static_cast<float>(m)};
                const float q = squared_distance(center_x, center_y, c);
                if (q < near.best)
                {
                    const float t = static_cast<float>(n - (m - 1)) / static_cast<float>(n);
                    near.best = q;
                    near.radius = prev->halfWidth * t + (1.0f - t) * cur.halfWidth;
                    near.row_offset = center_y - c.y;
                    if constexpr (Multicolor)
                        near.color = {mix_channel(prev->color.alpha, cur.color.alpha, t),
                                      mix_channel(prev->color.red, cur.color.red, t),
                                      mix_channel(prev->color.green, cur.color.green, t),
                                      mix_channel(prev->color.blue, cur.color.blue, t)};
                }
            }
        }

        const float cross = along_y ? cur.x : cur.y;
        if (cross_min <= cross && cross <= cross_max)
        {
            const float q = squared_distance(center_x, center_y, {cur.x, cur.y});
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

    // Its disc covers the pixel or it does not; a radius that is not a number covers nothing.
    const auto dist = static_cast<float>(in_data->utils->ansi.sqrt(static_cast<double>(near.best)));
    const float edge = 1.0f - (dist - near.radius);
    if (!(edge > 0.0f))
        return;

    PF_Pixel color = Multicolor ? near.color : points[0].color;
    if (k > 1)
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
    *pixel_at(x, y) = color;
    context->mark(x, y);
}

void LineCreatorClass::CalculatePixelMonocolor(int x, int y)
{
    calculate_pixel<false>(x, y);
}

void LineCreatorClass::CalculatePixelMulticolor(int x, int y)
{
    calculate_pixel<true>(x, y);
}
