#include "tests/adapters/openfx/strict_host/host_image.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace strict
{
namespace
{
constexpr std::byte junk{0xCD};
constexpr std::size_t guard = 64;

std::uint8_t nearest(double value)
{
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 255.0)));
}
} // namespace

host_image::host_image(int width, int height, image_manner manner)
    : width_(width), height_(height), manner_(std::move(manner))
{
    defined = bounds();
    stride_ = width * channels() * channel_bytes() + manner_.padding;
    memory_.resize(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height) + 2 * guard);
    spoil();
}

int host_image::channels() const
{
    return manner_.components == "OfxImageComponentRGBA"  ? 4
           : manner_.components == "OfxImageComponentRGB" ? 3
                                                          : 1;
}

int host_image::channel_bytes() const
{
    return manner_.depth == "OfxBitDepthByte" ? 1 : manner_.depth == "OfxBitDepthFloat" ? 4 : 2;
}

std::byte* host_image::row(int from_top)
{
    const int stored = manner_.top_down ? from_top : height_ - 1 - from_top;
    return memory_.data() + guard + static_cast<std::ptrdiff_t>(stored) * stride_;
}

const std::byte* host_image::row(int from_top) const
{
    return const_cast<host_image*>(this)->row(from_top);
}

void* host_image::data()
{
    return row(height_ - 1);
}

void host_image::store(std::byte* at, double value) const
{
    if (manner_.depth == "OfxBitDepthByte")
    {
        const auto v = static_cast<std::uint8_t>(std::lround(value * 255.0));
        std::memcpy(at, &v, sizeof v);
    }
    else if (manner_.depth == "OfxBitDepthFloat")
    {
        const auto v = static_cast<float>(value);
        std::memcpy(at, &v, sizeof v);
    }
    else
    {
        const auto v = static_cast<std::uint16_t>(std::lround(value * 65535.0));
        std::memcpy(at, &v, sizeof v);
    }
}

double host_image::stored(int x, int from_top, int channel) const
{
    const int place = manner_.blue_first && channel != 3 ? 2 - channel : channel;
    const std::byte* at = row(from_top) + (x * channels() + place) * channel_bytes();
    if (manner_.depth == "OfxBitDepthByte")
        return std::to_integer<int>(*at);
    if (manner_.depth == "OfxBitDepthFloat")
    {
        float v = 0.0f;
        std::memcpy(&v, at, sizeof v);
        return static_cast<double>(v);
    }
    std::uint16_t v = 0;
    std::memcpy(&v, at, sizeof v);
    return v;
}

void host_image::put(int x, int from_top, int channel, float as_stored)
{
    std::byte* at = row(from_top) + (x * channels() + channel) * channel_bytes();
    const auto word = static_cast<std::uint16_t>(manner_.depth == "OfxBitDepthFloat" ? 0.0f : as_stored);
    if (manner_.depth == "OfxBitDepthFloat")
        std::memcpy(at, &as_stored, sizeof as_stored);
    else if (manner_.depth == "OfxBitDepthByte")
        *at = static_cast<std::byte>(word);
    else
        std::memcpy(at, &word, sizeof word);
}

void host_image::fill(const plain_picture& picture)
{
    const bool multiplied = manner_.premultiplication == "OfxImageAlphaPremultiplied";
    for (int y = 0; y < height_; ++y)
        for (int x = 0; x < width_; ++x)
        {
            const std::uint8_t* from = picture.at(x, y);
            for (int c = 0; c < channels(); ++c)
            {
                const int place = manner_.blue_first && c != 3 ? 2 - c : c;
                const double value = from[c] / 255.0 * (multiplied && c != 3 ? from[3] / 255.0 : 1.0);
                store(row(y) + (x * channels() + place) * channel_bytes(), value);
            }
        }
}

plain_picture host_image::read() const
{
    plain_picture picture(width_, height_);
    const double white = manner_.depth == "OfxBitDepthByte"    ? 255.0
                         : manner_.depth == "OfxBitDepthFloat" ? 1.0
                                                               : 65535.0;
    const bool multiplied = manner_.premultiplication == "OfxImageAlphaPremultiplied";
    for (int y = 0; y < height_; ++y)
        for (int x = 0; x < width_; ++x)
        {
            // One division, so that halves are exact.
            const double alpha = channels() == 4 ? stored(x, y, 3) : white;
            std::uint8_t* to = picture.at(x, y);
            to[3] = nearest(alpha * 255.0 / white);
            for (int c = 0; c < 3; ++c)
            {
                const double value = stored(x, y, c);
                if (!multiplied)
                    to[c] = nearest(value * 255.0 / white);
                else
                    to[c] = alpha > 0.0 ? nearest(value * 255.0 / alpha) : std::uint8_t{0};
            }
        }
    return picture;
}

void host_image::spoil()
{
    std::fill(memory_.begin(), memory_.end(), junk);
}

bool host_image::guards_hold() const
{
    const std::size_t used = static_cast<std::size_t>(stride_ - manner_.padding);
    for (std::size_t i = 0; i < memory_.size(); ++i)
    {
        const bool inside = i >= guard && i < memory_.size() - guard;
        if (inside && (i - guard) % static_cast<std::size_t>(stride_) < used)
            continue;
        if (memory_[i] != junk)
            return false;
    }
    return true;
}
} // namespace strict
