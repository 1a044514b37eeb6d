#pragma once
// Pixels as they cross the media library's border: straight-alpha 8-bit pixels in the byte order alpha, red,
// green, blue, rows from the top, `rowbytes` apart (at least 4 * width; may be padded). Views own nothing.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace media
{
struct image_view
{
    std::uint8_t* argb = nullptr;
    int width = 0;
    int height = 0;
    int rowbytes = 0;

    std::uint8_t* row(int y) const { return argb + static_cast<std::ptrdiff_t>(y) * rowbytes; }
};

struct const_image_view
{
    const std::uint8_t* argb = nullptr;
    int width = 0;
    int height = 0;
    int rowbytes = 0;

    const_image_view() = default;
    const_image_view(const std::uint8_t* pixels, int w, int h, int bytes)
        : argb(pixels), width(w), height(h), rowbytes(bytes)
    {
    }
    const_image_view(const image_view& v) : argb(v.argb), width(v.width), height(v.height), rowbytes(v.rowbytes) {}
    const std::uint8_t* row(int y) const { return argb + static_cast<std::ptrdiff_t>(y) * rowbytes; }
};

// A picture that owns its pixels; rows are packed. Made transparent black.
class picture
{
public:
    picture() = default;
    picture(int width, int height)
        : width_(width), height_(height), pixels_(4 * static_cast<std::size_t>(width) * height)
    {
    }
    image_view view() { return {pixels_.data(), width_, height_, 4 * width_}; }
    const_image_view view() const { return {pixels_.data(), width_, height_, 4 * width_}; }
    int width() const { return width_; }
    int height() const { return height_; }
    const std::vector<std::uint8_t>& bytes() const { return pixels_; }

private:
    int width_ = 0;
    int height_ = 0;
    std::vector<std::uint8_t> pixels_;
};
} // namespace media
