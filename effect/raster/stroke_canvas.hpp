#pragma once
// The canvas as a stroke sees it: pixels by their position along the stroke's main axis and across it.

#include "effect/raster/aeg.hpp"
#include "effect/raster/lanes.hpp"
#include "effect/raster/line_creator.hpp"
#include "effect/raster/stroke_candidates.hpp"

class stroke_canvas
{
public:
    explicit stroke_canvas(const LineCreatorClass& creator) noexcept
        : creator_(creator), along_y_(creator.axis == 1), size(along_y_ ? creator.height : creator.width),
          across(along_y_ ? creator.width : creator.height)
    {
    }

    // Notes the tile of the drawing context that each position lies in. False where `memory` is short.
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

    void store(int main_at, int cross_at, PF_Pixel color) const noexcept
    {
        *(along_y_ ? creator_.pixel_at(cross_at, main_at) : creator_.pixel_at(main_at, cross_at)) = color;
        mark(main_at, cross_at);
    }

    // One row of a whole tile.
    void fill(int main_at, int cross_at, PF_Pixel color) const noexcept
    {
        PF_Pixel* const first =
            along_y_ ? creator_.pixel_at(cross_at, main_at) : creator_.pixel_at(main_at, cross_at);
        for (int i = 0; i < kLanes; ++i)
        {
            if (along_y_)
                *creator_.pixel_at(cross_at, main_at + i) = color;
            else
                first[i] = color;
            mark(main_at + i, cross_at);
        }
    }

private:
    void mark(int main_at, int cross_at) const noexcept
    {
        const int m = tile_of_main_[main_at];
        const int c = tile_of_cross_[cross_at];
        creator_.context->tileDirty[along_y_ ? c * aeg::kTiles + m : m * aeg::kTiles + c] = 1;
    }

    static void fill_tiles(std::uint8_t* tiles, int size, int tile_size) noexcept
    {
        for (int i = 0, tile = 0, left = tile_size; i < size; ++i, --left)
        {
            if (left <= 0 && tile < aeg::kTiles - 1)
            {
                ++tile;
                left = tile_size;
            }
            tiles[i] = static_cast<std::uint8_t>(tile_size > 0 ? tile : aeg::kTiles - 1);
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
