#pragma once
// The drawing context of one render: strokes are drawn on the canvas; each finished stroke is laid over the
// destination, tile by tile, and the canvas is clear again. Carved from the frame's pool; the worlds are the
// caller's.

#include "effect/model/ae_obj.hpp"
#include "effect/pf/effect_api.hpp"
#include "effect/shell/mem_pool.hpp"

#include <cstdint>

class aeg : public ae_obj
{
public:
    static constexpr int kTiles = 32; // along each side

    // The canvas and the destination have the same size. `flag`, `a` and `b` are kept for the record only.
    aeg(mem_pool* pool, PF_InData* in_data, PF_LayerDef* destination, PF_LayerDef* canvas, unsigned char flag,
        short a, short b) noexcept;

    // Composites every dirty tile of the canvas onto the destination and clears it, rows of tiles from the top.
    // What the host answers is not looked at.
    void flush();

    // Marks the tile that holds canvas pixel (x, y).
    void mark(int x, int y) noexcept { tileDirty[tile_of(x, tileWidth) * kTiles + tile_of(y, tileHeight)] = 1; }

    PF_LayerDef* destination;
    PF_LayerDef* canvas;
    short a;
    short b;
    unsigned char flag;
    std::int32_t rowPixels;
    std::int32_t tileWidth; // pixels; what is left over on the right belongs to no tile's rectangle
    std::int32_t tileHeight;
    std::uint8_t tileDirty[kTiles * kTiles] = {}; // index: column of tiles x 32 + row of tiles
    PF_Rect tileRect[kTiles * kTiles] = {};
    mem_pool* pool;
    PF_InData* in_data;

private:
    static int tile_of(int position, std::int32_t tile_size) noexcept
    {
        const int tile = tile_size > 0 ? position / tile_size : kTiles - 1;
        return tile < kTiles ? tile : kTiles - 1;
    }
};
