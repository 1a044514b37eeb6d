#pragma once
// The parameter records that a render hands to an effect: as registered, with the value at a time.

#include "host/parameters.hpp"
#include "host/render.hpp"

namespace host
{
// `input` is the layer that parameter 0 delivers. Points come in pixels of the downsampled picture; whole-number
// kinds rounded to nearest, 16.16 kinds to the nearest 1/65536; the text fields are zero.
PF_ParamDef param_record_at(const param_info& info, const track& values, const composition& comp,
                            const PF_LayerDef& input, double seconds);
} // namespace host
