#pragma once
// Pixels as they cross the host library's border: straight-alpha 8-bit pixels in the byte order alpha, red, green,
// blue, rows from the top, `rowbytes` apart (at least 4 * width; may be padded). Views own nothing.

#include <cstdint>

namespace host
{
struct image_view
{
    std::uint8_t* argb = nullptr;
    int width = 0;
    int height = 0;
    int rowbytes = 0;
};

struct const_image_view
{
    const std::uint8_t* argb = nullptr;
    int width = 0;
    int height = 0;
    int rowbytes = 0;
};
} // namespace host
