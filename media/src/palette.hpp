#pragma once
// Up to 256 colours for a picture, and which of them each pixel takes.

#include "media/image.hpp"

#include <array>
#include <cstdint>
#include <vector>

namespace media
{
struct paletted_picture
{
    std::array<std::uint32_t, 256> colors{}; // 0xAARRGGBB; what is not used is opaque black
    std::vector<std::uint8_t> pixels;        // rows packed
};

// Alpha below 128 is one transparent colour, all else is opaque. Exact where the colours are few enough; otherwise
// median cut over 32 x 32 x 32 cells, without dithering (thin lines would fray, and flicker in motion).
paletted_picture make_palette(const_image_view image);
} // namespace media
