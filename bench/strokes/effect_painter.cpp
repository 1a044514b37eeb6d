#include "bench/strokes/painter.hpp"

#include "bench/effect_stage.hpp"

#include <cstddef>
#include <cstring>

namespace bench
{
namespace
{
class ours : public painter
{
public:
    ours(int width, int height, bool one_color, simd_level level) : stage_(width, height), one_color_(one_color)
    {
        stage_.set_up(creator_, one_color, level);
    }

    // As a line hands its samples over. The rasteriser only reads them.
    void draw(const wave_stroke& stroke) override
    {
        const std::vector<StrokePoint>& samples = one_color_ ? stroke.one_color : stroke.per_sample;
        creator_.points = const_cast<StrokePoint*>(samples.data());
        creator_.pointCount = static_cast<std::int32_t>(samples.size());
        creator_.axis = stroke.axis;
        if (one_color_)
            creator_.subRenderFunction = &LineCreatorClass::SubRenderMonocolor;
        set_radii(creator_, one_color_ ? stroke.radius : 0.8f * stroke.radius, one_color_ ? 0 : 50);
        creator_.Render();
    }

    void clear() override
    {
        std::memset(stage_.canvas.data, 0,
                    static_cast<std::size_t>(stage_.canvas.rowbytes) *
                        static_cast<std::size_t>(stage_.canvas.height));
    }

    std::uint64_t alpha_sum() const override
    {
        std::uint64_t sum = 0;
        for (int y = 0; y < creator_.height; ++y)
            for (int x = 0; x < creator_.width; ++x)
                sum += creator_.pixel_at(x, y)->alpha;
        return sum;
    }

private:
    effect_stage stage_;
    LineCreatorClass creator_;
    bool one_color_;
};
} // namespace

std::unique_ptr<painter> effect_painter(int width, int height, bool one_color, simd_level level)
{
    return std::make_unique<ours>(width, height, one_color, level);
}
} // namespace bench
