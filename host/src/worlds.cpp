#include "worlds.hpp"

#include "clear_memory.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>

namespace host
{
namespace
{
// A rectangle of the source and where its pixels go. 64 bits: an effect's numbers may lie anywhere.
struct placement
{
    std::int64_t src_x, src_y, dst_x, dst_y, width, height;
};

std::int64_t clip_axis(std::int64_t& from, std::int64_t& to, std::int64_t size, std::int64_t from_limit,
                       std::int64_t to_limit)
{
    const std::int64_t cut = std::max({std::int64_t{0}, -from, -to});
    from += cut;
    to += cut;
    return std::min({size - cut, from_limit - from, to_limit - to});
}

placement clipped(placement place, const PF_EffectWorld& src, const PF_EffectWorld& dst)
{
    place.width = clip_axis(place.src_x, place.dst_x, place.width, src.width, dst.width);
    place.height = clip_axis(place.src_y, place.dst_y, place.height, src.height, dst.height);
    if (place.width <= 0)
        place.height = 0;
    return place;
}

PF_Rect whole(const PF_Rect* rect, const PF_EffectWorld& world)
{
    return rect ? *rect : PF_Rect{0, 0, world.width, world.height};
}

std::int64_t width_of(const PF_Rect& rect)
{
    return std::int64_t{rect.right} - rect.left;
}

std::int64_t height_of(const PF_Rect& rect)
{
    return std::int64_t{rect.bottom} - rect.top;
}

// Calls row(source pixels, destination pixels, count, source x, source y) for every row of the placement.
template <class Row>
void each_row(const placement& place, const PF_EffectWorld& src, const PF_EffectWorld& dst, Row row)
{
    for (std::int64_t y = 0; y < place.height; ++y)
    {
        const int src_y = static_cast<int>(place.src_y + y);
        row(row_of(src, src_y) + place.src_x, row_of(dst, static_cast<int>(place.dst_y + y)) + place.dst_x,
            static_cast<int>(place.width), static_cast<int>(place.src_x), src_y);
    }
}

bool share_memory(const PF_EffectWorld& a, const PF_EffectWorld& b)
{
    const auto end = [](const PF_EffectWorld& world) { return row_of(world, world.height - 1) + world.width; };
    const std::less<const PF_Pixel*> before;
    return before(a.data, end(b)) && before(b.data, end(a));
}

void set_rows(const PF_EffectWorld& world, const PF_Rect& area, A_u_char byte, std::size_t row_bytes,
              bool past_caches)
{
    const auto rows = static_cast<std::size_t>(area.bottom - area.top);
    const bool whole_rows = row_bytes == static_cast<std::size_t>(world.rowbytes);
    if (whole_rows && byte == 0)
        clear_memory(row_of(world, area.top), rows * row_bytes, past_caches);
    else if (whole_rows)
        std::memset(row_of(world, area.top), byte, rows * row_bytes);
    else
        for (int y = area.top; y < area.bottom; ++y)
            std::memset(row_of(world, y) + area.left, byte, row_bytes);
}
} // namespace

PF_Rect clipped(const PF_Rect* rect, const PF_EffectWorld& world)
{
    const PF_Rect all = whole(rect, world);
    return {std::max(all.left, 0), std::max(all.top, 0), std::min(all.right, world.width),
            std::min(all.bottom, world.height)};
}

stable_source::stable_source(const PF_EffectWorld& src, const PF_EffectWorld& dst) : world_(src)
{
    if (!share_memory(src, dst))
        return;
    const auto width = static_cast<std::size_t>(src.width);
    copy_.resize(width * static_cast<std::size_t>(src.height));
    for (int y = 0; y < src.height; ++y)
        std::memcpy(&copy_[width * static_cast<std::size_t>(y)], row_of(src, y), width * sizeof(PF_Pixel));
    world_.data = copy_.data();
    world_.rowbytes = src.width * 4;
}

void fill_world(const PF_EffectWorld& world, const PF_Rect* rect, const PF_Pixel* color, bool past_caches)
{
    const PF_Rect area = clipped(rect, world);
    if (is_empty(area))
        return;
    const PF_Pixel value = color ? *color : PF_Pixel{};
    const auto bytes = static_cast<std::size_t>(area.right - area.left) * sizeof(PF_Pixel);
    // The C library knows the machine's widest stores.
    if (value.alpha == value.red && value.red == value.green && value.green == value.blue)
        return set_rows(world, area, value.alpha, bytes, past_caches);
    PF_Pixel* const first = row_of(world, area.top) + area.left;
    std::fill(first, first + (area.right - area.left), value);
    for (int y = area.top + 1; y < area.bottom; ++y)
        std::memcpy(row_of(world, y) + area.left, first, bytes);
}

void copy_world(const PF_EffectWorld& src, const PF_Rect* src_rect, const PF_EffectWorld& dst,
                const PF_Rect* dst_rect)
{
    const PF_Rect from = whole(src_rect, src);
    const PF_Rect to = whole(dst_rect, dst);
    const placement place = clipped({from.left, from.top, to.left, to.top, std::min(width_of(from), width_of(to)),
                                     std::min(height_of(from), height_of(to))},
                                    src, dst);
    const stable_source source(src, dst);
    each_row(place, source.world(), dst,
             [](const PF_Pixel* in, PF_Pixel* out, int count, int, int)
             { std::memcpy(out, in, static_cast<std::size_t>(count) * sizeof(PF_Pixel)); });
}

unsigned mask_alpha(const PF_MaskWorld* mask, int x, int y)
{
    if (!mask)
        return 255;
    const std::int64_t mask_x = std::int64_t{x} - mask->offset.h;
    const std::int64_t mask_y = std::int64_t{y} - mask->offset.v;
    if (mask_x < 0 || mask_y < 0 || mask_x >= mask->mask.width || mask_y >= mask->mask.height)
        return 0;
    return row_of(mask->mask, static_cast<int>(mask_y))[mask_x].alpha;
}

void transfer(const blend& how, const PF_EffectWorld& src, const PF_Rect* src_rect, const PF_MaskWorld* mask,
              const PF_EffectWorld& dst, int dest_x, int dest_y, simd_level level)
{
    const PF_Rect from = whole(src_rect, src);
    const placement place =
        clipped({from.left, from.top, dest_x, dest_y, width_of(from), height_of(from)}, src, dst);
    const stable_source source(src, dst);
    if (place.height <= 0)
        return;
    if (!mask)
    {
        const PF_EffectWorld& readable = source.world();
        return blend_rows_at(level, how,
                             {row_of(readable, static_cast<int>(place.src_y)) + place.src_x, readable.rowbytes,
                              row_of(dst, static_cast<int>(place.dst_y)) + place.dst_x, dst.rowbytes,
                              static_cast<int>(place.width), static_cast<int>(place.height)});
    }
    each_row(place, source.world(), dst,
             [&](const PF_Pixel* in, PF_Pixel* out, int count, int x, int y)
             {
                 for (int i = 0; i < count; ++i)
                     out[i] = blended(how, in[i], out[i], mask_alpha(mask, x + i, y));
             });
}
} // namespace host
