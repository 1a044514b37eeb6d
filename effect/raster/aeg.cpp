#include "effect/raster/aeg.hpp"

aeg::aeg(mem_pool* pool_, PF_InData* in_data_, PF_LayerDef* destination_, PF_LayerDef* canvas_,
         unsigned char flag_, short a_, short b_) noexcept
    : destination(destination_), canvas(canvas_), a(a_), b(b_), flag(flag_), rowPixels(canvas_->rowbytes >> 2),
      tileWidth(canvas_->width / kTiles), tileHeight(canvas_->height / kTiles), pool(pool_), in_data(in_data_)
{
    for (int x = 0; x < kTiles; ++x)
        for (int y = 0; y < kTiles; ++y)
            tileRect[x * kTiles + y] = {x * tileWidth, y * tileHeight, (x + 1) * tileWidth, (y + 1) * tileHeight};
}

void aeg::flush()
{
    const PF_UtilCallbacks& utils = *in_data->utils;
    PF_CompositeMode mode{};
    mode.xfer = PF_Xfer_IN_FRONT;
    mode.rand_seed = 3256874;
    mode.opacity = 255;
    const PF_Pixel clear = {0, 0, 0, 0};

    // The rows of tiles that have a dirty one.
    std::uint8_t row_dirty[kTiles] = {};
    for (int x = 0; x < kTiles; ++x)
        for (int y = 0; y < kTiles; ++y)
            row_dirty[y] |= tileDirty[x * kTiles + y];

    for (int y = 0; y < kTiles; ++y)
    {
        for (int x = 0; row_dirty[y] != 0 && x < kTiles; ++x)
        {
            const int tile = x * kTiles + y;
            if (tileDirty[tile] == 0)
                continue;
            const PF_Rect& rect = tileRect[tile];
            utils.transfer_rect(in_data->effect_ref, in_data->quality, 0, 0, &rect, canvas, &mode, nullptr,
                                rect.left, rect.top, destination);
            utils.fill(in_data->effect_ref, &clear, &rect, canvas);
            tileDirty[tile] = 0;
        }
    }
}
