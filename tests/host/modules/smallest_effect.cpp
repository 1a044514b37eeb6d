// The smallest effect that loads from a file: no parameters, paints its output one colour.
#include "effect/pf/effect_api.hpp"

#ifdef _WIN32
#define EXPORTED __declspec(dllexport)
#else
#define EXPORTED __attribute__((visibility("default")))
#endif

extern "C" EXPORTED PF_Err PluginEntry(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef**,
                                       PF_LayerDef* output, void*)
{
    if (command == PF_Cmd_PARAMS_SETUP)
        out->num_params = 1;
    if (command != PF_Cmd_RENDER)
        return PF_Err_NONE;
    const PF_Pixel color{255, 10, 20, 30};
    return in->utils->fill(in->effect_ref, &color, nullptr, output);
}
