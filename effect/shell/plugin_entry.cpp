#include "effect/pf/effect_api.hpp"
#include "effect/shell/host_strcpy.hpp"
#include "effect/shell/params.hpp"
#include "effect/shell/render.hpp"

#include <new>

#if defined(_WIN32)
#define FILIGRANE_EXPORT __declspec(dllexport)
#else
#define FILIGRANE_EXPORT __attribute__((visibility("default")))
#endif

namespace
{
// Lines end in carriage returns; 0xA9 is the circled C in the host's character set.
constexpr char kAboutText[] = "Filigrane 1.4\r"
                              "\xA9 The Filigrane authors\r"
                              "A field of hand-drawn lines.";

PF_Err about(PF_InData* in_data, PF_OutData* out_data)
{
    Loom::Host::AE::strcpy(in_data, out_data->return_msg, kAboutText);
    return PF_Err_NONE;
}

PF_Err global_setup(PF_OutData* out_data)
{
    out_data->my_version = PF_VERSION(1, 3, 2, PF_Stage_RELEASE, 0);
    out_data->out_flags |= PF_OutFlag_WIDE_TIME_INPUT | PF_OutFlag_NON_PARAM_VARY | PF_OutFlag_USE_OUTPUT_EXTENT;
    return PF_Err_NONE;
}

PF_Err dispatch(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[], PF_LayerDef* output)
{
    switch (cmd)
    {
    case PF_Cmd_ABOUT:
        return about(in_data, out_data);
    case PF_Cmd_GLOBAL_SETUP:
        return global_setup(out_data);
    case PF_Cmd_PARAMS_SETUP:
        return add_params(in_data, out_data);
    case PF_Cmd_RENDER:
        return Render(in_data, out_data, params, output);
    default:
        return PF_Err_NONE;
    }
}
} // namespace

static_assert(PF_VERSION(1, 3, 2, PF_Stage_RELEASE, 0) == 0x99600);

// The one exported symbol, and the one place that catches.
extern "C" FILIGRANE_EXPORT PF_Err PluginEntry(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data,
                                               PF_ParamDef* params[], PF_LayerDef* output, void* /*extra*/)
{
    try
    {
        return dispatch(cmd, in_data, out_data, params, output);
    }
    catch (const std::bad_alloc&)
    {
        return PF_Err_OUT_OF_MEMORY;
    }
    catch (...)
    {
        in_data->utils->ansi.strcpy(out_data->return_msg, "Unknown internal error");
        out_data->out_flags |= PF_OutFlag_DISPLAY_ERROR_MESSAGE;
        return PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
}
