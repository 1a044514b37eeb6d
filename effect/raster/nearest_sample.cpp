#include "effect/raster/nearest_sample.hpp"

#include <algorithm>
#include <cmath>

gap_bridge::numbers gap_bridge::nearest_to(float at_x, float at_y, float reach) const noexcept
{
    constexpr numbers kNone = {1, 1};
    if (count < 1)
        return kNone;
    const auto sx = static_cast<double>(step_x);
    const auto sy = static_cast<double>(step_y);
    const double dx = static_cast<double>(at_x) - static_cast<double>(prev.x);
    const double dy = static_cast<double>(at_y) - static_cast<double>(prev.y);
    const double squared_step = sx * sx + sy * sy;
    const double foot = std::clamp((dx * sx + dy * sy) / squared_step, 1.0, static_cast<double>(count));
    const double off_x = dx - foot * sx;
    const double off_y = dy - foot * sy;
    const double distance = std::sqrt(off_x * off_x + off_y * off_y);
    // Rounding: of a position, three times by half an ulp of its terms; of a distance, by an ulp or two.
    const double largest = std::fabs(static_cast<double>(prev.x)) + std::fabs(static_cast<double>(prev.y)) +
                           static_cast<double>(count) * (std::fabs(sx) + std::fabs(sy));
    const double lost = 2e-7 * (largest + distance);
    if (!(distance - lost <= static_cast<double>(reach)))
        return kNone;
    // The position next to the foot is at most half a step off it.
    const double next = std::sqrt(distance * distance + 0.25 * squared_step) + 2.0 * lost;
    const double off = std::sqrt(next * next - distance * distance);
    const double spread = off / std::sqrt(squared_step) + 2.0;
    return {static_cast<int>(std::max(1.0, foot - spread)),
            static_cast<int>(std::min(static_cast<double>(count), foot + spread)) + 1};
}
