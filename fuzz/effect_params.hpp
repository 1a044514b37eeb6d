#pragma once
// The effect's own parameters, as the host library knows them.

#include "host/plugin.hpp"

extern "C" PF_Err PluginEntry(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                              PF_LayerDef* output, void* extra);

namespace fuzz
{
inline const std::vector<host::param_info>& effect_params()
{
    static const host::plugin effect(PluginEntry, "Filigrane");
    return effect.params();
}
} // namespace fuzz
