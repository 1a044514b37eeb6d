#include "bench/host/pictures.hpp"

#include "tests/support/bit_generator.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace bench
{
namespace
{
// Bands of radius 12, 160 pixels apart, waving across.
int band_alpha(int x, int y)
{
    const double wave = 20.0 * std::sin(x / 60.0);
    const double off = std::fabs(std::fmod(y + wave + 160.0, 160.0) - 80.0);
    return static_cast<int>(255.0 * std::clamp(12.5 - off, 0.0, 1.0));
}

int alpha_of(filling f, int x, int y, bit_generator& g)
{
    switch (f)
    {
    case filling::clear:
        return 0;
    case filling::strokes:
        return band_alpha(x, y);
    case filling::mixed:
        return g.below(256);
    case filling::opaque:
        break;
    }
    return 255;
}
} // namespace

const char* filling_name(filling f)
{
    switch (f)
    {
    case filling::clear:
        return "clear";
    case filling::strokes:
        return "strokes";
    case filling::mixed:
        return "mixed";
    case filling::opaque:
        break;
    }
    return "opaque";
}

std::vector<PF_Pixel> filled_picture(filling f, int width, int height)
{
    bit_generator g{11};
    std::vector<PF_Pixel> pixels;
    pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
        {
            const auto alpha = static_cast<A_u_char>(alpha_of(f, x, y, g));
            const bool coloured = alpha != 0;
            pixels.push_back({alpha, static_cast<A_u_char>(coloured ? g.below(256) : 0),
                              static_cast<A_u_char>(coloured ? g.below(256) : 0),
                              static_cast<A_u_char>(coloured ? 90 : 0)});
        }
    return pixels;
}
} // namespace bench
