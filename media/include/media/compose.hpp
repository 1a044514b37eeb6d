#pragma once
// The two operations on whole pictures that rendering to files needs.

#include "media/image.hpp"

#include <cstdint>

namespace media
{
struct background
{
    enum class pattern
    {
        transparent,
        checker, // squares of 8 pixels, light grey (204) at the top left, darker grey (153) beside it
        color,
    };
    pattern fill = pattern::transparent;
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
};

// Lays the picture over the background, rounded to nearest; the picture is opaque afterwards. A transparent
// background leaves it alone.
void lay_over(const background& under, image_view picture);

// Scales down by a whole factor: each pixel is the mean of its factor x factor block (less at the right and lower
// edge), colours weighted by alpha, rounded to nearest. `out` is ceil(size / factor); factor 1 copies.
void box_average(const_image_view in, int factor, image_view out);
} // namespace media
