#pragma once
// A canvas, a destination and a pool for the rasteriser to work on, and as much of a host as it calls. Rows are
// padded, and the padding filled with a byte that must survive. The stage is the host that its callbacks answer
// for: one at a time.

#include "effect/model/frame_data.hpp"
#include "effect/raster/aeg.hpp"
#include "effect/raster/line_creator.hpp"

#include <cmath>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace raster_test
{
constexpr std::uint8_t kPoison = 0xA5;

inline bool same(const PF_Pixel& a, const PF_Pixel& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

inline std::string text(const PF_Pixel& p)
{
    return std::to_string(p.alpha) + "/" + std::to_string(p.red) + "/" + std::to_string(p.green) + "/" +
           std::to_string(p.blue);
}

// A transparent world; owns its pixels.
class world
{
public:
    world(int width, int height, int padding_bytes)
        : bytes_(static_cast<std::size_t>(4 * width + padding_bytes) * static_cast<std::size_t>(height), kPoison)
    {
        layer_.width = width;
        layer_.height = height;
        layer_.rowbytes = 4 * width + padding_bytes;
        layer_.data = reinterpret_cast<PF_Pixel*>(bytes_.data());
        clear();
    }

    PF_LayerDef* layer() { return &layer_; }
    PF_Pixel& at(int x, int y)
    {
        return reinterpret_cast<PF_Pixel*>(bytes_.data() + static_cast<std::ptrdiff_t>(y) * layer_.rowbytes)[x];
    }
    void clear()
    {
        for (int y = 0; y < layer_.height; ++y)
            for (int x = 0; x < layer_.width; ++x)
                at(x, y) = {0, 0, 0, 0};
    }
    bool padding_is_untouched() const
    {
        for (int y = 0; y < layer_.height; ++y)
            for (int i = 4 * layer_.width; i < layer_.rowbytes; ++i)
                if (bytes_[static_cast<std::size_t>(y * layer_.rowbytes + i)] != kPoison)
                    return false;
        return true;
    }

private:
    std::vector<std::uint8_t> bytes_;
    PF_LayerDef layer_{};
};

// One call of the drawing context to its host.
struct host_call
{
    std::string name;
    PF_ProgPtr effect_ref;
    PF_Quality quality; // of a transfer
    PF_Rect rect;
    PF_Pixel color; // of a fill
    PF_CompositeMode mode;
    A_long dest_x;
    A_long dest_y;
    const void* from;
    const void* to;
    bool plain; // mode flags and field 0, no mask
};

class stage
{
public:
    stage(int width, int height, int padding_bytes = 0, std::size_t pool_bytes = std::size_t{1} << 22)
        : canvas(width, height, padding_bytes), destination(width, height, padding_bytes), memory_(pool_bytes / 8)
    {
        current() = this;
        auto* const base = reinterpret_cast<std::byte*>(memory_.data());
        pool = {base, base, memory_.size() * 8};
        utils.transfer_rect = transfer_rect;
        utils.fill = fill;
        utils.ansi.sqrt = sqrt;
        utils.ansi.sin = std::sin;
        utils.ansi.cos = std::cos;
        in_data.utils = &utils;
        in_data.effect_ref = reinterpret_cast<PF_ProgPtr>(this);
        in_data.quality = PF_Quality_HI;
        context = std::make_unique<aeg>(&pool, &in_data, destination.layer(), canvas.layer(),
                                        static_cast<unsigned char>(0), short{0}, short{0});
    }
    ~stage() { current() = nullptr; }
    stage(const stage&) = delete;
    stage& operator=(const stage&) = delete;

    // Points a rasteriser at the canvas, at high quality, multicolour, with its table.
    void set_up(LineCreatorClass& creator)
    {
        creator.pool = &pool;
        creator.in_data = &in_data;
        creator.context = context.get();
        creator.pixels = canvas.layer()->data;
        creator.width = canvas.layer()->width;
        creator.height = canvas.layer()->height;
        creator.rowBytes = canvas.layer()->rowbytes;
        creator.samplesPerPixel = 2;
        creator.coreOpacity = 1.0f;
        creator.monocolor = false;
        creator.pixelFunction = &LineCreatorClass::CalculatePixelMulticolor;
        creator.subRenderFunction = &LineCreatorClass::SubRenderMulticolor;
        creator.coveredMask = pool_array<std::uint8_t>(&pool, std::int64_t{creator.width} * creator.height);
        creator.CreateTables();
    }

    world canvas;
    world destination;
    mem_pool pool{};
    PF_UtilCallbacks utils{};
    PF_InData in_data{};
    std::unique_ptr<aeg> context;
    std::vector<host_call> calls;
    std::function<void()> on_sqrt; // once for every pixel that is decided on its own

private:
    static stage*& current()
    {
        static stage* the_stage = nullptr;
        return the_stage;
    }

    static double sqrt(double v)
    {
        if (current()->on_sqrt)
            current()->on_sqrt();
        return std::sqrt(v);
    }

    static PF_Err transfer_rect(PF_ProgPtr effect_ref, PF_Quality quality, PF_ModeFlags flags, PF_Field field,
                                const PF_Rect* rect, const PF_EffectWorld* from, const PF_CompositeMode* mode,
                                const PF_MaskWorld* mask, A_long x, A_long y, PF_EffectWorld* to)
    {
        current()->calls.push_back({"transfer_rect",
                                    effect_ref,
                                    quality,
                                    *rect,
                                    {},
                                    *mode,
                                    x,
                                    y,
                                    from,
                                    to,
                                    flags == 0 && field == 0 && mask == nullptr});
        return PF_Err_BAD_CALLBACK_PARAM; // must not be looked at
    }

    static PF_Err fill(PF_ProgPtr effect_ref, const PF_Pixel* color, const PF_Rect* rect, PF_EffectWorld* to)
    {
        current()->calls.push_back({"fill", effect_ref, 0, *rect, *color, {}, 0, 0, nullptr, to, true});
        for (int py = rect->top; py < rect->bottom; ++py)
            for (int px = rect->left; px < rect->right; ++px)
                current()->canvas.at(px, py) = *color;
        return PF_Err_BAD_CALLBACK_PARAM;
    }

    std::vector<std::uint64_t> memory_;
};
} // namespace raster_test
