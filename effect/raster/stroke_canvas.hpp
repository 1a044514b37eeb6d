#pragma once
// The canvas as a stroke sees it: pixels by their position along the stroke's main axis and across it, and the
// tiles of the drawing context that they lie in. Internal to the file that includes it.

#include "effect/raster/aeg.hpp"
#include "effect/raster/line_creator.hpp"
#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/stroke_tile.hpp"

#include <algorithm>
#include <bit>

namespace
{
class stroke_canvas
{
public:
    explicit stroke_canvas(const LineCreatorClass& creator) noexcept
        : creator_(creator), along_y_(creator.axis == 1), size(along_y_ ? creator.height : creator.width),
          across(along_y_ ? creator.width : creator.height)
    {
    }

    // Notes the tile that each position lies in. False where `memory` is short.
    bool note_tiles(scratch_memory& memory) noexcept
    {
        tile_of_main_ = memory.take<std::uint8_t>(size);
        tile_of_cross_ = memory.take<std::uint8_t>(across);
        if (tile_of_main_ == nullptr || tile_of_cross_ == nullptr)
            return false;
        const aeg& context = *creator_.context;
        fill_tiles(tile_of_main_, size, along_y_ ? context.tileHeight : context.tileWidth);
        fill_tiles(tile_of_cross_, across, along_y_ ? context.tileWidth : context.tileHeight);
        return true;
    }

    int tile_across(int cross_at) const noexcept { return tile_of_cross_[cross_at]; }
    // The rows of such a tile.
    span tile_rows(int tile) const noexcept
    {
        const int rows = along_y_ ? creator_.context->tileWidth : creator_.context->tileHeight;
        if (rows <= 0)
            return {0, across - 1};
        return {tile * rows, tile < aeg::kTiles - 1 ? tile * rows + rows - 1 : across - 1};
    }

    PF_Pixel* pixel(int main_at, int cross_at) const noexcept
    {
        return along_y_ ? creator_.pixel_at(cross_at, main_at) : creator_.pixel_at(main_at, cross_at);
    }

    // One row of a tile: the lanes of `bits`, with the bytes of their pixels.
    void store(int main_at, int cross_at, unsigned bits, int_lanes colors) const noexcept
    {
        if (!along_y_ && main_at + kLanes <= size)
        {
            PF_Pixel* const to = creator_.pixel_at(main_at, cross_at);
            store_lanes(to, bits == 0xff ? colors : lanes_of_bits(bits) ? colors : load_lanes<int_lanes>(to));
            return;
        }
        if (bits == 0xff && main_at + kLanes <= size)
        {
            auto* to = reinterpret_cast<unsigned char*>(pixel(main_at, cross_at));
            const std::ptrdiff_t row_bytes = creator_.rowBytes;
            unrolled<kLanes>(
                [&](int i)
                {
                    const std::int32_t color = colors[i];
                    std::memcpy(to + i * row_bytes, &color, sizeof color);
                });
            return;
        }
        for (unsigned left = bits; left != 0; left &= left - 1)
        {
            const int lane = std::countr_zero(left);
            *pixel(main_at + lane, cross_at) = std::bit_cast<PF_Pixel>(static_cast<std::int32_t>(colors[lane]));
        }
    }

    // Rows of a tile that is whole, each with the bytes of its pixels that next() answers.
    template <class Next>
    void store_rows(int main_at, span rows, Next next) const noexcept
    {
        if (along_y_)
        {
            for (int row = rows.first; row <= rows.last; ++row)
                store(main_at, row, 0xff, next());
            return;
        }
        auto* at = reinterpret_cast<unsigned char*>(pixel(main_at, rows.first));
        const std::ptrdiff_t row_bytes = creator_.rowBytes;
        for (int row = rows.first; row <= rows.last; ++row, at += row_bytes)
            store_lanes(reinterpret_cast<PF_Pixel*>(at), next());
    }

    // The lanes of `bits`, each in its own row.
    void store_each(int main_at, int_lanes rows, unsigned bits, int_lanes colors) const noexcept
    {
        for (unsigned left = bits; left != 0; left &= left - 1)
        {
            const int lane = std::countr_zero(left);
            *pixel(main_at + lane, rows[lane]) = std::bit_cast<PF_Pixel>(static_cast<std::int32_t>(colors[lane]));
        }
    }

    // Eight rows of eight pixels, as vectors along the canvas's rows.
    void store_square(int main_at, int cross_at, const int_lanes* colors) const noexcept
    {
        auto* at = reinterpret_cast<unsigned char*>(pixel(main_at, cross_at));
        const std::ptrdiff_t row_bytes = creator_.rowBytes;
        unrolled<kLanes>([&](int i) { store_lanes(reinterpret_cast<PF_Pixel*>(at + i * row_bytes), colors[i]); });
    }

    // Row `cross_at` of a panel: the pixels of `mask`, bit i at main position `main_at` + i.
    void fill(int main_at, int cross_at, std::uint64_t mask, PF_Pixel color) const noexcept
    {
        while (mask != 0)
        {
            const int first = std::countr_zero(mask);
            const int count = std::countr_one(mask >> static_cast<unsigned>(first));
            if (along_y_)
            {
                for (int i = first; i < first + count; ++i)
                    *creator_.pixel_at(cross_at, main_at + i) = color;
            }
            else
            {
                fill_run(creator_.pixel_at(main_at + first, cross_at), count, color);
            }
            if (first + count >= 64)
                return;
            mask &= ~std::uint64_t{0} << static_cast<unsigned>(first + count);
        }
    }

    // Has the pixels of a row fetched that will be written soon, if it is one up to `last`: what lies below each
    // other in memory no processor expects.
    void expect(int main_at, int count, int cross_at, int last) const noexcept
    {
        constexpr int kLine = 16; // pixels that come together
        for (int i = 0; i < count && cross_at <= last; i += kLine)
            __builtin_prefetch(pixel(main_at + i, cross_at), 1);
    }

    // A run across at one main position, where such runs lie together in memory.
    bool fills_across() const noexcept { return along_y_; }
    void fill_across(int main_at, span rows, PF_Pixel color) const noexcept
    {
        fill_run(creator_.pixel_at(rows.first, main_at), rows.last - rows.first + 1, color);
    }

    // Marks the tiles, in row `tile_across` of them, that the panel's positions of `mask` lie in.
    void mark(int main_at, int tile_across, std::uint64_t mask) const noexcept
    {
        if (mask == 0)
            return;
        const int low = tile_of_main_[main_at + std::countr_zero(mask)];
        const int high = tile_of_main_[main_at + 63 - std::countl_zero(mask)];
        if (low == high)
        {
            mark_tile(low, tile_across);
            return;
        }
        while (mask != 0)
        {
            const int first = std::countr_zero(mask);
            const int tile = tile_of_main_[main_at + first];
            mark_tile(tile, tile_across);
            // Whatever else lies in the same tile.
            int next = first + 1;
            while (next < 64 && main_at + next < size && tile_of_main_[main_at + next] == tile)
                ++next;
            if (next >= 64)
                return;
            mask &= ~std::uint64_t{0} << static_cast<unsigned>(next);
        }
    }

    // A run of main positions in one row.
    void fill_along(span positions, int cross_at, PF_Pixel color) const noexcept
    {
        fill_run(pixel(positions.first, cross_at), positions.last - positions.first + 1, color);
    }

private:
    void mark_tile(int tile_along, int tile_across) const noexcept
    {
        creator_.context->tileDirty[along_y_ ? tile_across * aeg::kTiles + tile_along
                                             : tile_along * aeg::kTiles + tile_across] = 1;
    }

    static void fill_run(PF_Pixel* to, int count, PF_Pixel color) noexcept
    {
        const int_lanes colors = all_lanes(std::bit_cast<std::int32_t>(color));
        for (; count >= kLanes; count -= kLanes, to += kLanes)
            store_lanes(to, colors);
        std::fill_n(to, count, color);
    }

    static void fill_tiles(std::uint8_t* tiles, int size, int tile_size) noexcept
    {
        if (tile_size <= 0)
        {
            std::fill_n(tiles, size, static_cast<std::uint8_t>(aeg::kTiles - 1));
            return;
        }
        for (int tile = 0, at = 0; at < size; ++tile, at += tile_size)
        {
            const int end = tile < aeg::kTiles - 1 ? std::min(size, at + tile_size) : size;
            std::fill(tiles + at, tiles + end, static_cast<std::uint8_t>(tile));
            if (end == size)
                return;
        }
    }

    const LineCreatorClass& creator_;
    bool along_y_;
    std::uint8_t* tile_of_main_ = nullptr;
    std::uint8_t* tile_of_cross_ = nullptr;

public:
    const int size;   // of the canvas along the main axis, pixels
    const int across; // and across it
};
} // namespace
