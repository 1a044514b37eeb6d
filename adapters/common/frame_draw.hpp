#pragma once
// One picture through the effect, in the byte order that hosts have: red, green, blue, alpha; straight alpha, rows
// from the top.

#include "adapters/common/effect_loan.hpp"

#include "host/parameters.hpp"
#include "host/render.hpp"

#include <cstddef>
#include <cstdint>

namespace adapter
{
// Bytes red, green, blue, alpha of rows `rowbytes` apart; below 0 where rows are stored from the bottom, `top`
// being the first byte of the topmost row either way. No alignment is asked for.
struct rgba_source
{
    const std::uint8_t* top = nullptr;
    std::ptrdiff_t rowbytes = 0;
};

struct rgba_target
{
    std::uint8_t* top = nullptr;
    std::ptrdiff_t rowbytes = 0;
};

// Draws one frame of comp.picture_width() by comp.picture_height() pixels over `source` into `target`, as
// host::render_frame does. A source without pixels is transparent black. Source and target may be the same memory,
// or apart; they may not overlap otherwise. Nothing is kept from one call to the next; calls on several threads do
// not disturb each other. Throws host::error (see host::render_frame) and std::bad_alloc; the target then holds
// something or other.
void draw_frame(const loaded_effect& effect, const host::composition& comp, const host::param_tracks& values,
                std::int32_t frame, rgba_source source, rgba_target target);
} // namespace adapter
