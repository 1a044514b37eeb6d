#include "callbacks.hpp"

#include "param_record.hpp"
#include "text.hpp"

namespace host
{
namespace
{
std::string checkout_text(PF_ParamIndex index, A_long time, A_long step, A_u_long scale)
{
    return text_line("checkout_param ", index, " time ", time, " step ", step, " scale ", scale);
}

// The input layer is the same picture at every time: the host has no other frame of it at hand.
PF_Err checkout_param(PF_ProgPtr ref, PF_ParamIndex index, A_long time, A_long step, A_u_long scale,
                      PF_ParamDef* record)
{
    session* host = session_of(ref);
    return serve(
        host, "checkout_param", [&] { return checkout_text(index, time, step, scale); },
        [&](std::string&) -> PF_Err
        {
            const frame_values* frame = host->frame;
            if (!frame)
                return PF_Err_INVALID_CALLBACK;
            if (!record || scale == 0)
                return PF_Err_BAD_CALLBACK_PARAM;
            if (index < 0 || index >= frame->values.count())
                return PF_Err_INVALID_INDEX;
            *record = param_record_at(frame->params[static_cast<std::size_t>(index)], frame->values.of(index),
                                      frame->comp, frame->input, static_cast<double>(time) / scale);
            if (host->found.checked())
                host->checkouts.out(record, checkout_text(index, time, step, scale));
            return PF_Err_NONE;
        });
}

PF_Err checkin_param(PF_ProgPtr ref, PF_ParamDef* record)
{
    session* host = session_of(ref);
    bool served = false;
    const PF_Err answer = serve(
        host, "checkin_param", [] { return std::string("checkin_param"); },
        [&](std::string&) -> PF_Err
        {
            served = true;
            if (!host->found.checked() || host->checkouts.in(record))
                return PF_Err_NONE;
            host->found.add("checkin_param: a record that was not checked out");
            return PF_Err_BAD_CALLBACK_PARAM;
        });
    // Where the call was made to fail, the effect has done its part all the same.
    if (host && !served)
        host->checkouts.in(record);
    return answer;
}

PF_Err add_param(PF_ProgPtr ref, PF_ParamIndex index, PF_ParamDef* record)
{
    session* host = session_of(ref);
    return serve(
        host, "add_param", [&] { return text_line("add_param ", index); },
        [&](std::string&) -> PF_Err
        { return host->registry ? host->registry->add(index, record) : PF_Err_INVALID_CALLBACK; });
}

PF_Err abort_render(PF_ProgPtr ref)
{
    return serve(
        session_of(ref), "abort", [] { return std::string("abort"); },
        [](std::string&) -> PF_Err { return PF_Err_NONE; });
}

PF_Err progress(PF_ProgPtr ref, A_long done, A_long total)
{
    return serve(
        session_of(ref), "progress", [&] { return text_line("progress ", done, " of ", total); },
        [](std::string&) -> PF_Err { return PF_Err_NONE; });
}
} // namespace

void fill_interact_callbacks(PF_InteractCallbacks& table)
{
    table.checkout_param = checkout_param;
    table.checkin_param = checkin_param;
    table.add_param = add_param;
    table.abort = abort_render;
    table.progress = progress;
}
} // namespace host
