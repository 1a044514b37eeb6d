#include "bench/host/pixman_peer.hpp"

#include <pixman.h>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <stdexcept>

namespace bench
{
namespace
{
std::uint32_t premultiplied(PF_Pixel p)
{
    const auto times_alpha = [&p](unsigned channel) { return (channel * p.alpha + 127U) / 255U; };
    return static_cast<std::uint32_t>(p.alpha) << 24U | times_alpha(p.red) << 16U | times_alpha(p.green) << 8U |
           times_alpha(p.blue);
}

// Which pixel of the source is seen at a pixel of the destination, for the time of one call.
class sampled_through
{
public:
    sampled_through(pixman_image_t* image, const pixman_f_transform& map, bool bilinear) : image_(image)
    {
        pixman_transform fixed;
        if (pixman_transform_from_pixman_f_transform(&fixed, &map) == 0)
            throw std::runtime_error("pixman cannot hold this transform");
        pixman_image_set_transform(image, &fixed);
        pixman_image_set_filter(image, bilinear ? PIXMAN_FILTER_BILINEAR : PIXMAN_FILTER_NEAREST, nullptr, 0);
    }
    ~sampled_through()
    {
        pixman_image_set_transform(image_, nullptr);
        pixman_image_set_filter(image_, PIXMAN_FILTER_NEAREST, nullptr, 0);
    }
    sampled_through(const sampled_through&) = delete;
    sampled_through& operator=(const sampled_through&) = delete;

private:
    pixman_image_t* image_;
};

void composite(pixman_op_t op, pixman_image_t* from, pixman_image_t* to, int from_x, int from_y, int x, int y,
               int width, int height)
{
    pixman_image_composite32(op, from, nullptr, to, from_x, from_y, 0, 0, x, y, width, height);
}
} // namespace

pixman_picture::pixman_picture(const std::vector<PF_Pixel>& straight, int width, int height)
    : width_(width), height_(height)
{
    original_.reserve(straight.size());
    for (const PF_Pixel p : straight)
        original_.push_back(premultiplied(p));
    pixels_ = original_;
    image_ = pixman_image_create_bits(PIXMAN_a8r8g8b8, width, height, pixels_.data(), 4 * width);
    if (image_ == nullptr)
        throw std::runtime_error("pixman has no memory for a picture");
}

pixman_picture::~pixman_picture()
{
    pixman_image_unref(image_);
}

// By rows, as the host's worlds are: of a picture at once, the C library may write past the caches.
void pixman_picture::restore()
{
    const auto width = static_cast<std::size_t>(width_);
    for (std::size_t at = 0; at < pixels_.size(); at += width)
        std::memcpy(pixels_.data() + at, original_.data() + at, width * sizeof pixels_[0]);
}

void pixman_picture::lay_over(pixman_picture& from, int x, int y)
{
    composite(PIXMAN_OP_OVER, from.image_, image_, 0, 0, x, y, from.width_, from.height_);
}

void pixman_picture::lay_tiles_over(pixman_picture& from, int tiles)
{
    const int width = width_ / tiles;
    const int height = height_ / tiles;
    for (int y = 0; y < tiles; ++y)
        for (int x = 0; x < tiles; ++x)
            composite(PIXMAN_OP_OVER, from.image_, image_, x * width, y * height, x * width, y * height, width,
                      height);
}

void pixman_picture::lay_turned_over(pixman_picture& from, double degrees, bool bilinear)
{
    const double angle = degrees * 3.14159265358979323846 / 180.0;
    pixman_f_transform map;
    pixman_f_transform_init_translate(&map, -0.5 * width_, -0.5 * height_);
    pixman_f_transform_rotate(&map, nullptr, std::cos(angle), -std::sin(angle));
    pixman_f_transform_translate(&map, nullptr, 0.5 * from.width_, 0.5 * from.height_);
    const sampled_through turned(from.image_, map, bilinear);
    composite(PIXMAN_OP_OVER, from.image_, image_, 0, 0, 0, 0, width_, height_);
}

void pixman_picture::copy(pixman_picture& from)
{
    composite(PIXMAN_OP_SRC, from.image_, image_, 0, 0, 0, 0, width_, height_);
}

void pixman_picture::copy_half_off(pixman_picture& from)
{
    pixman_f_transform map;
    pixman_f_transform_init_translate(&map, 0.5, 0.5);
    const sampled_through moved(from.image_, map, true);
    composite(PIXMAN_OP_SRC, from.image_, image_, 0, 0, 0, 0, width_, height_);
}

void pixman_picture::fill(std::uint32_t pixel)
{
    pixman_fill(pixels_.data(), width_, 32, 0, 0, width_, height_, pixel);
}
} // namespace bench
