#include "media/compose.hpp"

#include <algorithm>
#include <cstring>

namespace media
{
namespace
{
std::uint8_t mix(std::uint8_t over, std::uint8_t under, unsigned alpha)
{
    return static_cast<std::uint8_t>((over * alpha + under * (255 - alpha) + 127) / 255);
}

void average_block(const_image_view in, int left, int top, int factor, std::uint8_t* out)
{
    const int right = std::min(left + factor, in.width);
    const int bottom = std::min(top + factor, in.height);
    std::uint64_t alpha = 0;
    std::uint64_t weighted[3] = {};
    for (int y = top; y < bottom; ++y)
    {
        const std::uint8_t* p = in.row(y) + 4 * left;
        for (int x = left; x < right; ++x, p += 4)
        {
            alpha += p[0];
            for (int c = 0; c < 3; ++c)
                weighted[c] += static_cast<std::uint64_t>(p[0]) * p[1 + c];
        }
    }
    const std::uint64_t count =
        static_cast<std::uint64_t>(right - left) * static_cast<std::uint64_t>(bottom - top);
    out[0] = static_cast<std::uint8_t>((2 * alpha + count) / (2 * count));
    for (int c = 0; c < 3; ++c)
        out[1 + c] = alpha == 0 ? 0 : static_cast<std::uint8_t>((2 * weighted[c] + alpha) / (2 * alpha));
}
} // namespace

void lay_over(const background& under, image_view picture)
{
    if (under.fill == background::pattern::transparent)
        return;
    const bool checker = under.fill == background::pattern::checker;
    for (int y = 0; y < picture.height; ++y)
    {
        std::uint8_t* p = picture.row(y);
        for (int x = 0; x < picture.width; ++x, p += 4)
        {
            const unsigned alpha = p[0];
            if (alpha == 255)
                continue;
            const std::uint8_t grey = ((x / 8 + y / 8) & 1) == 0 ? 204 : 153;
            const std::uint8_t below[3] = {checker ? grey : under.red, checker ? grey : under.green,
                                           checker ? grey : under.blue};
            p[0] = 255;
            for (int c = 0; c < 3; ++c)
                p[1 + c] = alpha == 0 ? below[c] : mix(p[1 + c], below[c], alpha);
        }
    }
}

void box_average(const_image_view in, int factor, image_view out)
{
    if (factor == 1)
    {
        for (int y = 0; y < out.height; ++y)
            std::memcpy(out.row(y), in.row(y), 4 * static_cast<std::size_t>(out.width));
        return;
    }
    for (int y = 0; y < out.height; ++y)
        for (int x = 0; x < out.width; ++x)
            average_block(in, x * factor, y * factor, factor, out.row(y) + 4 * x);
}
} // namespace media
