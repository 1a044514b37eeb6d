#include "adapters/openfx/pixels.hpp"

#include <algorithm>
#include <cstring>

namespace openfx
{
namespace
{
// What each depth makes of a channel. Colours under premultiplied alpha are worked out in the depth's own numbers.
struct bytes
{
    using channel = std::uint8_t;

    static std::uint8_t in(channel v) { return v; }
    static std::uint8_t divided(channel v, channel alpha)
    {
        if (alpha == 0)
            return 0;
        return static_cast<std::uint8_t>(std::min((255u * v + alpha / 2u) / alpha, 255u));
    }
    static channel out(std::uint8_t v) { return v; }
    static channel multiplied(std::uint8_t v, std::uint8_t alpha)
    {
        return static_cast<channel>((static_cast<unsigned>(v) * alpha + 127u) / 255u);
    }
    static constexpr channel white = 255;
};

struct words
{
    using channel = std::uint16_t;

    static std::uint8_t in(channel v) { return static_cast<std::uint8_t>((v + 128u) / 257u); }
    static std::uint8_t divided(channel v, channel alpha)
    {
        if (alpha == 0)
            return 0;
        return static_cast<std::uint8_t>(std::min((255u * v + alpha / 2u) / alpha, 255u));
    }
    static channel out(std::uint8_t v) { return static_cast<channel>(257u * v); }
    // v / 255 * alpha / 255 of 65535, which is 257 times 255.
    static channel multiplied(std::uint8_t v, std::uint8_t alpha)
    {
        return static_cast<channel>((257u * v * alpha + 127u) / 255u);
    }
    static constexpr channel white = 65535;
};

struct floats
{
    using channel = float;

    static std::uint8_t in(channel v) { return nearest(static_cast<double>(v)); }
    static std::uint8_t divided(channel v, channel alpha)
    {
        return alpha > 0.0f ? nearest(static_cast<double>(v) / static_cast<double>(alpha)) : std::uint8_t{0};
    }
    static channel out(std::uint8_t v) { return static_cast<float>(v) / 255.0f; }
    static channel multiplied(std::uint8_t v, std::uint8_t alpha)
    {
        return static_cast<float>(static_cast<unsigned>(v) * alpha) / 65025.0f;
    }
    static constexpr channel white = 1.0f;

private:
    // To nearest, halves upwards; the product is exact.
    static std::uint8_t nearest(double v)
    {
        if (!(v > 0.0))
            return 0;
        return static_cast<std::uint8_t>((static_cast<unsigned>(std::min(v, 1.0) * 510.0) + 1u) / 2u);
    }
};

template <class Depth, int Components>
void read_row(const pixel_format& format, const std::byte* from, std::uint8_t* argb, int count)
{
    constexpr std::size_t step = Components * sizeof(typename Depth::channel);
    const int red = format.blue_first ? 2 : 0;
    const bool alpha_counts = Components == 4 && format.alpha != alpha_kind::opaque;
    const bool divide = alpha_counts && format.alpha == alpha_kind::premultiplied;
    for (int x = 0; x < count; ++x, from += step, argb += 4)
    {
        typename Depth::channel c[4] = {{}, {}, {}, Depth::white};
        std::memcpy(c, from, step);
        const auto colour = [&](int i) { return divide ? Depth::divided(c[i], c[3]) : Depth::in(c[i]); };
        argb[0] = alpha_counts ? Depth::in(c[3]) : std::uint8_t{255};
        argb[1] = colour(red);
        argb[2] = colour(1);
        argb[3] = colour(2 - red);
    }
}

// Straight to its place: channels gathered in between would be waited for.
template <class Channel>
void store(std::byte* pixel, int index, Channel value)
{
    std::memcpy(pixel + static_cast<std::size_t>(index) * sizeof value, &value, sizeof value);
}

template <class Depth, int Components>
void write_row(const pixel_format& format, const std::uint8_t* argb, std::byte* to, int count)
{
    constexpr std::size_t step = Components * sizeof(typename Depth::channel);
    const int red = format.blue_first ? 2 : 0;
    const bool opaque = Components == 3 || format.alpha == alpha_kind::opaque;
    const bool multiply = opaque || format.alpha == alpha_kind::premultiplied;
    for (int x = 0; x < count; ++x, argb += 4, to += step)
    {
        const auto colour = [&](int i)
        { return multiply ? Depth::multiplied(argb[i], argb[0]) : Depth::out(argb[i]); };
        store(to, red, colour(1));
        store(to, 1, colour(2));
        store(to, 2 - red, colour(3));
        if constexpr (Components == 4)
            store(to, 3, opaque ? Depth::white : Depth::out(argb[0]));
    }
}

using reader = void (*)(const pixel_format&, const std::byte*, std::uint8_t*, int);
using writer = void (*)(const pixel_format&, const std::uint8_t*, std::byte*, int);

template <class Depth>
reader reader_of(const pixel_format& format)
{
    return format.components == 4 ? read_row<Depth, 4> : read_row<Depth, 3>;
}

template <class Depth>
writer writer_of(const pixel_format& format)
{
    return format.components == 4 ? write_row<Depth, 4> : write_row<Depth, 3>;
}
} // namespace

void read_pixels(const pixel_format& format, const std::byte* from, std::uint8_t* argb, int count)
{
    switch (format.each)
    {
    case depth::byte:
        return reader_of<bytes>(format)(format, from, argb, count);
    case depth::word:
        return reader_of<words>(format)(format, from, argb, count);
    case depth::single:
        return reader_of<floats>(format)(format, from, argb, count);
    }
}

void write_pixels(const pixel_format& format, const std::uint8_t* argb, std::byte* to, int count)
{
    switch (format.each)
    {
    case depth::byte:
        return writer_of<bytes>(format)(format, argb, to, count);
    case depth::word:
        return writer_of<words>(format)(format, argb, to, count);
    case depth::single:
        return writer_of<floats>(format)(format, argb, to, count);
    }
}
} // namespace openfx
