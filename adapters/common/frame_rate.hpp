#pragma once
// Frames a second as a fraction, and the frame that a time belongs to.

#include "host/render.hpp"

#include <cstdint>
#include <optional>
#include <string_view>

namespace adapter
{
struct frame_rate
{
    std::int32_t num = 25; // num / den frames a second; 0.001 to 1000, in lowest terms
    std::int32_t den = 1;

    bool operator==(const frame_rate&) const = default;
};

// "25", "29.97", "30000/1001". A rate with decimals near 24, 25, 30 ... times 1000/1001 is that one. Nothing for
// other text and for rates outside 0.001 to 1000.
std::optional<frame_rate> rate_of_text(std::string_view text);
// The same of a number: 29.97002997 is 30000/1001. Otherwise to the nearest thousandth.
std::optional<frame_rate> rate_of_number(double frames_a_second);

// The nearest frame to a time in seconds, halves upwards. Nothing where the time cannot be one: not a number, or
// farther from 0 than an effect's clock of 32 bits can tell (2^31 / num seconds, years at 25 frames a second).
std::optional<std::int32_t> frame_at(double seconds, frame_rate rate);

// One frame's composition: what host::render_frame and presets ask for. `width` and `height` are the layer's at
// full resolution.
host::composition composition_at(int width, int height, frame_rate rate, std::int32_t frame = 0);
} // namespace adapter
