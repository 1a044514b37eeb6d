#pragma once
// The host's pixels to the effect's and back: straight alpha, 8 bits, in the byte order alpha, red, green, blue.
//
// In:  bytes as they are; 16 bits v to the nearest of v / 257; floats v, held in 0 to 1, to the nearest of v * 255
// (what
//      is no number becomes 0). Premultiplied colours are divided by alpha before they are rounded, and held in
//      the range; under an alpha of 0 they are 0. Opaque pictures and those without alpha have alpha 255.
// Out: bytes as they are; 16 bits v * 257; floats v / 255. Premultiplied, opaque and RGB pictures get colours
// times
//      alpha, bytes and 16 bits rounded to nearest; opaque ones get white alpha.

#include "adapters/openfx/image.hpp"

namespace openfx
{
// One row of `count` pixels. `from` and `to` need no alignment.
void read_pixels(const pixel_format& format, const std::byte* from, std::uint8_t* argb, int count);
void write_pixels(const pixel_format& format, const std::uint8_t* argb, std::byte* to, int count);
} // namespace openfx
