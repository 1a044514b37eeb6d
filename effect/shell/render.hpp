#pragma once
// The render command: one block of host memory, one pool over it, one grid in the pool.

#include "effect/pf/effect_api.hpp"

#include <cstdint>
#include <optional>

// Bytes of the frame's pool: the square of the grid's diagonal, a term that grows with rows, columns, turbulence
// and time, and at least a mebibyte more, in whole mebibytes. Nothing where that is no number of bytes: such a
// render has no memory.
std::optional<std::uint64_t> pool_size(const PF_InData* in_data, PF_ParamDef** params);

// Renders one frame onto `output`. PF_Err_OUT_OF_MEMORY where there is no block; otherwise PF_Err_NONE, whatever
// the drawing met.
PF_Err Render(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);
