#pragma once
// The parameter set.

#include "effect/pf/effect_api.hpp"

// Registers parameters 1 to 63 with the host, in order, then sets out_data->num_params to 64. The first error of
// the host's ends it and is returned.
PF_Err add_params(PF_InData* in_data, PF_OutData* out_data);
