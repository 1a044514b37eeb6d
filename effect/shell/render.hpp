#pragma once
// The render command: one block of host memory, one pool over it, one grid in the pool.

#include "effect/pf/effect_api.hpp"

#include <cstdint>
#include <optional>

// Bytes of the frame's pool: the square of the grid's diagonal, a term that grows with rows, columns, turbulence
// and time, and at least a mebibyte more, in whole mebibytes. Nothing where that is no number of bytes: such a
// render has no memory.
std::optional<std::uint64_t> pool_size(const PF_InData* in_data, PF_ParamDef** params);

// Renders one frame onto `output` with a pool of `size` bytes, a multiple of 8. PF_Err_OUT_OF_MEMORY where there
// is no block of that size; otherwise PF_Err_NONE, whatever the drawing met: what does not fit is left out.
PF_Err render_with_pool(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output,
                        std::uint64_t size);

// The same with a pool of the frame's own size; PF_Err_OUT_OF_MEMORY, too, where that is no number of bytes.
PF_Err Render(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);
