#pragma once
// A picture that the host lent, described once: where its pixels lie and what they are.
//
// Pixel (x, y) of the bounds is at data + (y - y1) * row_bytes + (x - x1) * pixel_bytes. y points up, and row y1
// is the bottom one, whatever the sign of row_bytes.

#include "adapters/openfx/suites.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace openfx
{
enum class depth : std::uint8_t
{
    byte,   // 0 to 255
    word,   // 0 to 65535
    single, // float, 0 to 1 and beyond
};

enum class alpha_kind : std::uint8_t
{
    straight,
    premultiplied,
    opaque, // alpha is white
};

struct pixel_format
{
    depth each = depth::byte;
    int components = 4; // 4 or 3: no alpha
    alpha_kind alpha = alpha_kind::straight;
    bool blue_first = false; // B, G, R in one family of hosts

    std::size_t pixel_bytes() const;
};

enum class field : std::uint8_t
{
    whole, // a frame
    lower, // its rows 0, 2, 4 ... from the bottom
    upper, // its rows 1, 3, 5 ...
};

struct image
{
    std::byte* data = nullptr;
    OfxRectI bounds{};
    std::optional<OfxRectI> defined; // what the image covers, pixels; where the host tells
    std::ptrdiff_t row_bytes = 0;
    pixel_format format;
    field lines = field::whole;
    double pixel_aspect = 1.0;

    int width() const { return bounds.x2 - bounds.x1; }
    int height() const { return bounds.y2 - bounds.y1; }
    std::byte* row(int y) const { return data + static_cast<std::ptrdiff_t>(y - bounds.y1) * row_bytes; }
};

// A clip of an instance and the image that it has at a time, given back at the end.
class fetched_image
{
public:
    // Fetches nothing where the clip is missing, unconnected or has no image then.
    fetched_image(OfxImageEffectHandle effect, const char* clip, OfxTime time);
    ~fetched_image();
    fetched_image(const fetched_image&) = delete;
    fetched_image& operator=(const fetched_image&) = delete;

    bool there() const { return handle_ != nullptr; }
    OfxImageClipHandle clip() const { return clip_; }
    // Nothing where there is no image, it has no pixels, or none of a kind that can be read.
    std::optional<image> describe() const;

private:
    OfxImageClipHandle clip_ = nullptr;
    OfxPropertySetHandle clip_properties_ = nullptr;
    OfxPropertySetHandle handle_ = nullptr;
};
} // namespace openfx
