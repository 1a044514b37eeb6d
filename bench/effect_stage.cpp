#include "bench/effect_stage.hpp"

#include <cstddef>
#include <stdexcept>

namespace bench
{
namespace
{
constexpr std::size_t kSpare = std::size_t{64} << 20; // bytes, beyond the mask
} // namespace

effect_stage::effect_stage(int width, int height, PF_Quality quality)
    : host(host::render_options{}, nullptr),
      memory_((static_cast<std::size_t>(width) * static_cast<std::size_t>(height) + kSpare) / 8)
{
    auto* const base = reinterpret_cast<std::byte*>(memory_.data());
    pool = {base, base, memory_.size() * 8};
    PF_InData& in_data = host.in_data;
    in_data.quality = quality;
    for (PF_EffectWorld* world : {&canvas, &destination})
        if (host.utils.new_world(in_data.effect_ref, width, height, PF_NewWorldFlag_CLEAR_PIXELS, world) !=
            PF_Err_NONE)
            throw std::runtime_error("the host has no memory for a canvas");
    context = std::make_unique<aeg>(&pool, &in_data, &destination, &canvas, static_cast<unsigned char>(0),
                                    short{0}, short{0});
}

void effect_stage::set_up(LineCreatorClass& creator, bool one_color, simd_level level)
{
    creator.pool = &pool;
    creator.in_data = &host.in_data;
    creator.context = context.get();
    creator.pixels = canvas.data;
    creator.width = canvas.width;
    creator.height = canvas.height;
    creator.rowBytes = canvas.rowbytes;
    creator.samplesPerPixel = host.in_data.quality + 1;
    creator.level = level;
    creator.coreOpacity = 1.0f;
    creator.monocolor = one_color;
    creator.pixelFunction =
        one_color ? &LineCreatorClass::CalculatePixelMonocolor : &LineCreatorClass::CalculatePixelMulticolor;
    creator.subRenderFunction =
        one_color ? &LineCreatorClass::SubRenderMonocolor : &LineCreatorClass::SubRenderMulticolor;
    creator.coveredMask = pool_array<std::uint8_t>(&pool, std::int64_t{creator.width} * creator.height);
    creator.CreateTables();
}

void set_radii(LineCreatorClass& creator, float radius, int stressed_pct)
{
    constexpr double kSqrt2 = 1.4142135623730951;
    const float widest = (1.0f + static_cast<float>(stressed_pct) / 100.0f) * radius;
    creator.innerRadius = static_cast<float>(static_cast<double>(radius) / kSqrt2 - 1.5);
    creator.outerRadius = static_cast<float>(static_cast<double>(widest) + 1.5);
    if (creator.innerRadius < 1.0f)
        creator.subRenderFunction = &LineCreatorClass::SubRenderMulticolor;
}
} // namespace bench
