#pragma once
// What LineCreatorClass::shade does for one pixel, for eight at once. Internal to the file that includes it, as
// lanes are.

#include "effect/raster/lanes.hpp"
#include "effect/raster/line_creator.hpp"
#include "effect/raster/pixel_coverage.hpp"

#include <bit>

namespace
{
class pixel_shade
{
public:
    explicit pixel_shade(const LineCreatorClass& creator) noexcept
        : half_diagonal_(creator.halfDiagonal), core_(creator.coreOpacity), smooth_(creator.samplesPerPixel > 1)
    {
    }

    // Pixels `squared` (squared distance) from places with these radii and colours (the bytes of a PF_Pixel),
    // whose centres lie `row_offset` below them. Where the answer's mask is set, the pixel is written with
    // `color`.
    int_lanes shade(float_lanes squared, float_lanes radius, float_lanes row_offset,
                    int_lanes* color) const noexcept
    {
        const float_lanes dist = root(squared);
        const float_lanes edge = 1.0f - (dist - radius);
        const int_lanes written = edge > 0.0f;
        if (!smooth_)
            return written;
        int_lanes alpha = *color & 0xff;
        if (core_ != 1.0f)
        {
            const float_lanes faded = 1.0f - (1.0f - core_) * (dist / radius);
            const float_lanes fall = dist != 0.0f ? faded : all_lanes(1.0f);
            alpha = scaled(alpha, fall < 0.0f ? all_lanes(0.0f) : fall);
        }
        const int_lanes rim = written & (edge < 2.0f);
        if (lane_bits(rim) != 0)
        {
            const int_lanes shared = scaled(alpha, coverage(edge, magnitude(row_offset), dist));
            alpha = rim ? shared : alpha;
        }
        *color = (*color & ~0xff) | alpha;
        return written;
    }

private:
    // The low byte of the product, toward zero; 0 where it does not fit 32 bits or is no number.
    static int_lanes scaled(int_lanes alpha, float_lanes by) noexcept
    {
        const float_lanes product = __builtin_convertvector(alpha, float_lanes) * by;
        const int_lanes fits = (product > -1.0f) & (product < 2147483648.0f);
        return whole(fits ? product : all_lanes(0.0f)) & 0xff;
    }

    // Edges are above 0 and below 2, where it matters, so that the table's row is a filled one.
    float_lanes coverage(float_lanes edge, float_lanes offset, float_lanes dist) const noexcept
    {
        const float_lanes ratio = offset / dist;
        const float_lanes sine = dist != 0.0f ? ratio : all_lanes(0.0f);
        const float_lanes column = held(sine * 255.0f, LineCreatorClass::kTableColumns - 1);
        const float_lanes row = held(edge * 100.0f, LineCreatorClass::kTableFilledRows - 1);
        return covered_share(row, extent_at(column, half_diagonal_));
    }

    // Toward zero, held to 0 .. last; 0 for what is no number.
    static float_lanes held(float_lanes v, int last) noexcept
    {
        const float_lanes low = v > 0.0f ? v : all_lanes(0.0f);
        return __builtin_convertvector(whole(lower_of(low, all_lanes(static_cast<float>(last)))), float_lanes);
    }

    float half_diagonal_;
    float core_;
    bool smooth_;
};
} // namespace
