#pragma once
// The same pictures in pixman, premultiplied, alpha in the highest byte: the layout that it is fastest with.

#include "effect/pf/types.hpp"

#include <cstdint>
#include <vector>

union pixman_image;

namespace bench
{
class pixman_picture
{
public:
    pixman_picture(const std::vector<PF_Pixel>& straight, int width, int height);
    ~pixman_picture();
    pixman_picture(const pixman_picture&) = delete;
    pixman_picture& operator=(const pixman_picture&) = delete;

    void restore(); // its pixels as it was made

    // Lays `from` over this picture, whole, with its corner at (x, y); or in tiles, `tiles` along each side.
    void lay_over(pixman_picture& from, int x, int y);
    void lay_tiles_over(pixman_picture& from, int tiles);
    // Lays it over turned by so many degrees, centre on centre; sampled between four pixels, or the nearest one.
    void lay_turned_over(pixman_picture& from, double degrees, bool bilinear);
    // Takes its pixels as they are / from half a pixel off, sampled between four.
    void copy(pixman_picture& from);
    void copy_half_off(pixman_picture& from);
    void fill(std::uint32_t pixel);

private:
    int width_;
    int height_;
    std::vector<std::uint32_t> original_;
    std::vector<std::uint32_t> pixels_;
    pixman_image* image_;
};
} // namespace bench
