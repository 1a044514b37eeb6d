#pragma once
// The displacement pass: the drawn lines' alpha shifts the input picture.

#include "effect/pf/effect_api.hpp"

// For the host's iterate, one pixel at a time: `refcon` is the frame_data, `in` the matte's pixel at (x, y), `out`
// the output's. Within the offset's width of a near edge the matte itself shows. Writes the frame's shared
// sampling block, so it must not run for two pixels at once.
PF_Err displace_img(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out);
