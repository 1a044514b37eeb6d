// A small effect. Every output pixel is
//   alpha  the "Alpha" slider
//   red    the frame number
//   green  the "Level" slider, or with "Show Size" the width of the picture
//   blue   the input's blue at that place
// "Fail At" makes the render of that frame fail; "Stop At" sends this process a signal in it ("Signal", at first
// an interrupt), "Twice" on two of them, after which the effect never returns.

#include "effect/pf/effect_api.hpp"

#include <csignal>
#include <cstring>
#include <unistd.h>

namespace
{
enum index
{
    input_layer,
    level,
    alpha,
    fail_at,
    stop_at,
    show_size,
    signal_number,
    twice,
    count,
};

PF_Err add_slider(PF_InData* in_data, A_long id, const char* name, A_long minimum, A_long maximum, A_long dephault)
{
    PF_ParamDef def;
    std::memset(&def, 0, sizeof def);
    def.uu.id = id;
    def.param_type = PF_Param_SLIDER;
    std::strncpy(def.name, name, sizeof def.name - 1);
    def.u.sd.valid_min = def.u.sd.slider_min = minimum;
    def.u.sd.valid_max = def.u.sd.slider_max = maximum;
    def.u.sd.value = def.u.sd.dephault = dephault;
    return in_data->inter.add_param(in_data->effect_ref, -1, &def);
}

PF_Err add_checkbox(PF_InData* in_data, A_long id, const char* name)
{
    PF_ParamDef def;
    std::memset(&def, 0, sizeof def);
    def.uu.id = id;
    def.param_type = PF_Param_CHECKBOX;
    def.u.bd.u.nameptr = name;
    return in_data->inter.add_param(in_data->effect_ref, -1, &def);
}

PF_Err add_params(PF_InData* in_data, PF_OutData* out_data)
{
    PF_Err err = add_slider(in_data, level, "Level", 0, 255, 200);
    if (err == PF_Err_NONE)
        err = add_slider(in_data, alpha, "Alpha (of all)", 0, 255, 255);
    if (err == PF_Err_NONE)
        err = add_slider(in_data, fail_at, "Fail At", -1, 10000, -1);
    if (err == PF_Err_NONE)
        err = add_slider(in_data, stop_at, "Stop At", -1, 10000, -1);
    if (err == PF_Err_NONE)
        err = add_checkbox(in_data, show_size, "Show Size");
    if (err == PF_Err_NONE)
        err = add_slider(in_data, signal_number, "Signal", 1, 64, SIGINT);
    if (err == PF_Err_NONE)
        err = add_checkbox(in_data, twice, "Twice");
    out_data->num_params = count;
    return err;
}

void stop(PF_ParamDef* params[])
{
    std::raise(static_cast<int>(params[signal_number]->u.sd.value));
    if (params[twice]->u.bd.value == 0)
        return;
    std::raise(static_cast<int>(params[signal_number]->u.sd.value));
    for (;;)
        pause();
}

PF_Err render(PF_InData* in_data, PF_ParamDef* params[], PF_LayerDef* output)
{
    const A_long frame = in_data->current_time / in_data->time_step;
    if (params[fail_at]->u.sd.value == frame)
        return PF_Err_INTERNAL_STRUCT_DAMAGED;
    if (params[stop_at]->u.sd.value == frame)
        stop(params);
    const PF_LayerDef& input = params[input_layer]->u.ld;
    for (A_long y = 0; y < output->height; ++y)
    {
        const auto* from =
            reinterpret_cast<const PF_Pixel*>(reinterpret_cast<char*>(input.data) + y * input.rowbytes);
        auto* to = reinterpret_cast<PF_Pixel*>(reinterpret_cast<char*>(output->data) + y * output->rowbytes);
        for (A_long x = 0; x < output->width; ++x)
        {
            to[x].alpha = static_cast<A_u_char>(params[alpha]->u.sd.value);
            to[x].red = static_cast<A_u_char>(frame);
            to[x].green = static_cast<A_u_char>(params[show_size]->u.bd.value != 0 ? in_data->width
                                                                                   : params[level]->u.sd.value);
            to[x].blue = from[x].blue;
        }
    }
    return PF_Err_NONE;
}
} // namespace

extern "C" __attribute__((visibility("default"))) PF_Err PluginEntry(PF_Cmd cmd, PF_InData* in_data,
                                                                     PF_OutData* out_data, PF_ParamDef* params[],
                                                                     PF_LayerDef* output, void*)
{
    switch (cmd)
    {
    case PF_Cmd_ABOUT:
        std::strcpy(out_data->return_msg, "Test effect\rpaints plain colours.");
        return PF_Err_NONE;
    case PF_Cmd_GLOBAL_SETUP:
        out_data->my_version = PF_VERSION(2, 5, 1, PF_Stage_BETA, 7);
        out_data->out_flags = PF_OutFlag_NON_PARAM_VARY;
        return PF_Err_NONE;
    case PF_Cmd_PARAMS_SETUP:
        return add_params(in_data, out_data);
    case PF_Cmd_RENDER:
        return render(in_data, params, output);
    default:
        return PF_Err_NONE;
    }
}
