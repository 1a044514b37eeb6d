#pragma once
// Fills a frame record from the host's parameters.

#include "effect/pf/effect_api.hpp"

class frame_data;
struct mem_pool;

// Writes every field of `frame` but the two matrices, the scratch world and the rasteriser's canvas, all zero so
// far.
void set_up_frame(frame_data& frame, mem_pool* pool, PF_InData* in_data, PF_OutData* out_data,
                  PF_ParamDef** params, PF_LayerDef* output);
