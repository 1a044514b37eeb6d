#include "pixel_block.hpp"

#include "clear_memory.hpp"

#include <cstring>
#include <limits>
#include <memory>

namespace host
{
namespace
{
constexpr std::size_t guard_bytes = 64; // and the alignment of the first pixel

bool all_poison(const unsigned char* bytes, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        if (bytes[i] != poison)
            return false;
    return true;
}
} // namespace

bool world_size_fits(std::int64_t width, std::int64_t height, int row_padding)
{
    constexpr std::int64_t limit = std::numeric_limits<std::int32_t>::max();
    const std::int64_t rowbytes = width * 4 + row_padding;
    return rowbytes <= limit && height <= limit / rowbytes;
}

pixel_block::pixel_block(int width, int height, int row_padding, bool cleared, memory_reserve* reserve)
    : width_(width), height_(height), rowbytes_(width * 4 + row_padding)
{
    const std::size_t pixels = static_cast<std::size_t>(rowbytes_) * static_cast<std::size_t>(height);
    std::size_t room = pixels + 3 * guard_bytes;
    memory_ = memory_reserve::take(reserve, room, cleared);
    if (!memory_.data())
        return;
    void* start = memory_.data() + guard_bytes;
    room -= guard_bytes;
    auto* first = static_cast<unsigned char*>(std::align(guard_bytes, pixels + guard_bytes, start, room));
    std::memset(first - guard_bytes, poison, guard_bytes);
    std::memset(first + pixels, poison, guard_bytes);
    if (!cleared)
        std::memset(first, poison, pixels);
    else if (!memory_.zero())
        clear_memory(first, pixels, reserve != nullptr && reserve->exceeds_caches());
    if (cleared && row_padding > 0)
        for (int y = 0; y < height; ++y)
            std::memset(first + static_cast<std::size_t>(y) * static_cast<std::size_t>(rowbytes_) + width * 4,
                        poison, static_cast<std::size_t>(row_padding));
    data_ = reinterpret_cast<PF_Pixel*>(first);
}

pixel_block pixel_block::lent(PF_Pixel* data, int width, int height, int rowbytes)
{
    pixel_block block;
    block.data_ = data;
    block.width_ = width;
    block.height_ = height;
    block.rowbytes_ = rowbytes;
    return block;
}

PF_EffectWorld pixel_block::world() const
{
    PF_EffectWorld world{};
    world.world_flags = PF_WorldFlag_WRITEABLE;
    world.data = data_;
    world.rowbytes = rowbytes_;
    world.width = width_;
    world.height = height_;
    world.extent_hint = {0, 0, width_, height_};
    world.pix_aspect_ratio = {1, 1};
    return world;
}

const char* pixel_block::damage() const
{
    const auto* first = reinterpret_cast<const unsigned char*>(data_);
    const auto rowbytes = static_cast<std::size_t>(rowbytes_);
    const auto used = static_cast<std::size_t>(width_) * 4;
    if (!all_poison(first - guard_bytes, guard_bytes))
        return "was written to before its first pixel";
    if (!all_poison(first + rowbytes * static_cast<std::size_t>(height_), guard_bytes))
        return "was written to past its last row";
    for (int y = 0; y < height_; ++y)
        if (!all_poison(first + rowbytes * static_cast<std::size_t>(y) + used, rowbytes - used))
            return "was written to in the padding of its rows";
    return nullptr;
}

void pixel_block::poison_pixels()
{
    std::memset(data_, poison, static_cast<std::size_t>(rowbytes_) * static_cast<std::size_t>(height_));
}

bool pixel_block::pixels_poisoned() const
{
    return all_poison(reinterpret_cast<const unsigned char*>(data_),
                      static_cast<std::size_t>(rowbytes_) * static_cast<std::size_t>(height_));
}
} // namespace host
