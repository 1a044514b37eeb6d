#pragma once
// A picture in a host's memory: any depth, order of rows, padding and place, with guards around it.

#include "adapters/openfx/api/types.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace strict
{
// Straight RGBA bytes, rows from the top.
struct plain_picture
{
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgba;

    plain_picture(int w, int h)
        : width(w), height(h), rgba(static_cast<std::size_t>(w) * static_cast<std::size_t>(h) * 4)
    {
    }
    std::uint8_t* at(int x, int y)
    {
        return rgba.data() +
               (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) * 4;
    }
    const std::uint8_t* at(int x, int y) const
    {
        return rgba.data() +
               (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) * 4;
    }
    bool operator==(const plain_picture&) const = default;
};

struct image_manner
{
    std::string depth = "OfxBitDepthByte";
    std::string components = "OfxImageComponentRGBA";
    std::string premultiplication = "OfxImageAlphaUnPremultiplied";
    std::string field = "OfxFieldNone";
    bool top_down = false; // rows in memory from the top: row bytes below 0
    bool blue_first = false;
    int padding = 0; // bytes after each row
    int left = 0;    // x1 and y1 of the bounds
    int bottom = 0;
    double scale = 1.0;
    double pixel_aspect = 1.0;
};

class host_image
{
public:
    host_image(int width, int height, image_manner manner);

    const image_manner& manner() const { return manner_; }
    OfxRectI bounds() const
    {
        return {manner_.left, manner_.bottom, manner_.left + width_, manner_.bottom + height_};
    }
    OfxRectI defined{}; // the region of definition in pixels: the bounds unless changed
    int row_bytes() const { return manner_.top_down ? -stride_ : stride_; }
    void* data(); // of the bottom row's left pixel
    std::byte* row(int from_top);
    int channels() const;
    int channel_bytes() const;

    // What a plain picture becomes here, worked out in double precision, and back, rounded to nearest.
    // Premultiplied colours are rounded only once.
    void fill(const plain_picture& picture);
    plain_picture read() const;
    // One channel as stored, 0 to 255, 0 to 65535, or the float.
    double stored(int x, int from_top, int channel) const;
    void put(int x, int from_top, int channel, float as_stored);

    // Junk everywhere, also between rows; guards_hold tells whether what is no pixel is still that.
    void spoil();
    bool guards_hold() const;
    std::vector<std::byte> bytes() const { return memory_; }

private:
    const std::byte* row(int from_top) const;
    void store(std::byte* at, double value) const;
    int width_, height_;
    image_manner manner_;
    int stride_ = 0;
    std::vector<std::byte> memory_;
};
} // namespace strict
