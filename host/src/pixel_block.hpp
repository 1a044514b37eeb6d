#pragma once
// The memory of one world: rows of pixels with padding, guard bytes before the first and after the last row.

#include "memory_reserve.hpp"

#include "effect/pf/effect_api.hpp"

#include <cstdint>

namespace host
{
// What fills guards, row padding and pixels that nobody asked to be cleared.
constexpr unsigned char poison = 0xC9;

class pixel_block
{
public:
    // A block without memory: what is left when there is not enough of it.
    pixel_block() = default;
    // Sizes are positive and the caller's business; check data() for null. `reserve` may be null.
    pixel_block(int width, int height, int row_padding, bool cleared, memory_reserve* reserve);
    // Over pixels of somebody else's, which stay as they are; without guards, and with padding that is not ours.
    static pixel_block lent(PF_Pixel* data, int width, int height, int rowbytes);

    PF_Pixel* data() const { return data_; }
    int width() const { return width_; }
    int height() const { return height_; }
    int rowbytes() const { return rowbytes_; }
    // A world over the whole block.
    PF_EffectWorld world() const;

    // Null while the guards and the padding are as made, else which of them was written to. Not for lent pixels.
    const char* damage() const;

    // Marks every pixel as no longer in use, and whether that has been respected.
    void poison_pixels();
    bool pixels_poisoned() const;

private:
    memory_block memory_;
    PF_Pixel* data_ = nullptr;
    int width_ = 0;
    int height_ = 0;
    int rowbytes_ = 0;
};

// Whether a world of this size can be made at all: row and total size fit a signed 32-bit count, which is what
// effects compute addresses in.
bool world_size_fits(std::int64_t width, std::int64_t height, int row_padding);
} // namespace host
