#pragma once
// What a stroke is drawn on outside a render: the host's own callbacks, a canvas and a destination made by it, and
// a pool of a render's size.

#include "effect/model/frame_data.hpp"
#include "effect/raster/aeg.hpp"
#include "effect/raster/line_creator.hpp"

#include "session.hpp" // the host library's own

#include <cstdint>
#include <memory>
#include <vector>

namespace bench
{
class effect_stage
{
public:
    effect_stage(int width, int height, PF_Quality quality = PF_Quality_HI);

    // Points a rasteriser at the canvas, as a render does. Radii are for set_radii to say.
    void set_up(LineCreatorClass& creator, bool one_color, simd_level level);

    host::session host;
    PF_EffectWorld canvas{};
    PF_EffectWorld destination{};
    mem_pool pool{};
    std::unique_ptr<aeg> context;

private:
    std::vector<std::uint64_t> memory_;
};

// The radii of a stroke of `radius` pixels whose samples are up to `stressed_pct` (0 to 100) wider, as a line sets
// them; too thin for a solid core, it is drawn without one.
void set_radii(LineCreatorClass& creator, float radius, int stressed_pct);
} // namespace bench
