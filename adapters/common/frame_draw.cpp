#include "adapters/common/frame_draw.hpp"

#include <bit>
#include <cstring>
#include <memory>

namespace adapter
{
namespace
{
// Rows of whole words, as the host library wants them, in the target itself where that can be.
struct argb_rows
{
    std::uint8_t* bytes = nullptr;
    int rowbytes = 0;
    std::unique_ptr<std::uint8_t[]> own;
};

argb_rows rows_for(rgba_target target, int width, int height)
{
    constexpr std::ptrdiff_t longest_row = 1 << 30;
    if (target.rowbytes >= std::ptrdiff_t{4} * width && target.rowbytes <= longest_row)
        return {target.top, static_cast<int>(target.rowbytes), nullptr};
    argb_rows rows;
    rows.rowbytes = 4 * width;
    rows.own.reset(new std::uint8_t[static_cast<std::size_t>(rows.rowbytes) * static_cast<std::size_t>(height)]);
    rows.bytes = rows.own.get();
    return rows;
}

// Four bytes in memory, the last moved to the front (1) or the first to the end (-1).
template <int Places>
std::uint32_t moved(std::uint32_t pixel)
{
    return std::rotl(pixel, std::endian::native == std::endian::little ? 8 * Places : -8 * Places);
}

// A row of pixels with their bytes moved. Both may be the same row: pixels are read before they are written. Whole
// blocks are loops of a fixed length, which compilers turn into vectors.
template <int Places>
void move_bytes(const std::uint8_t* from, std::uint8_t* to, int width)
{
    constexpr int lanes = 8;
    std::uint32_t block[lanes];
    int x = 0;
    for (; x + lanes <= width; x += lanes, from += sizeof block, to += sizeof block)
    {
        std::memcpy(block, from, sizeof block);
        for (std::uint32_t& pixel : block)
            pixel = moved<Places>(pixel);
        std::memcpy(to, block, sizeof block);
    }
    for (; x < width; ++x, from += 4, to += 4)
    {
        std::memcpy(block, from, 4);
        block[0] = moved<Places>(block[0]);
        std::memcpy(to, block, 4);
    }
}

void argb_of_rgba(const std::uint8_t* from, std::uint8_t* to, int width)
{
    move_bytes<1>(from, to, width);
}

void rgba_of_argb(const std::uint8_t* from, std::uint8_t* to, int width)
{
    move_bytes<-1>(from, to, width);
}
} // namespace

void draw_frame(const loaded_effect& effect, const host::composition& comp, const host::param_tracks& values,
                std::int32_t frame, rgba_source source, rgba_target target)
{
    const int width = comp.picture_width();
    const int height = comp.picture_height();
    const argb_rows rows = rows_for(target, width, height);
    const auto row = [&rows](int y) { return rows.bytes + std::ptrdiff_t{rows.rowbytes} * y; };
    for (int y = 0; y < height; ++y)
        if (source.top)
            argb_of_rgba(source.top + source.rowbytes * y, row(y), width);
        else
            std::memset(row(y), 0, static_cast<std::size_t>(width) * 4);
    // The input is copied by the host library before the output is cleared: both may be in one place.
    host::render_frame(effect.plugin, comp, values, frame, {rows.bytes, width, height, rows.rowbytes},
                       {rows.bytes, width, height, rows.rowbytes});
    for (int y = 0; y < height; ++y)
        rgba_of_argb(row(y), target.top + target.rowbytes * y, width);
}
} // namespace adapter
