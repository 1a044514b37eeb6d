#include "session.hpp"

#include "callbacks.hpp"
#include "host/error.hpp"
#include "text.hpp"

#include <algorithm>

namespace host
{
namespace
{
thread_local session* thread_session = nullptr;

class bound_to_thread
{
public:
    explicit bound_to_thread(session& now) : before_(thread_session) { thread_session = &now; }
    ~bound_to_thread() { thread_session = before_; }
    bound_to_thread(const bound_to_thread&) = delete;
    bound_to_thread& operator=(const bound_to_thread&) = delete;

private:
    session* before_;
};
} // namespace

void checkout_ledger::out(const PF_ParamDef* record, std::string call)
{
    open_.push_back({record, std::move(call)});
}

bool checkout_ledger::in(const PF_ParamDef* record)
{
    const auto last = std::find_if(open_.rbegin(), open_.rend(),
                                   [record](const entry& candidate) { return candidate.record == record; });
    if (last == open_.rend())
        return false;
    open_.erase(last.base() - 1);
    return true;
}

void checkout_ledger::check_all(findings& found) const
{
    for (const entry& left : open_)
        found.add(text_line(left.call, ": was never checked in"));
}

session::session(const render_options& how, handle_store* global, memory_reserve* reserve)
    : options(how), found(how.checked), trace(options), worlds(found, how.checked ? nullptr : reserve),
      handles(how.checked, how.checked ? nullptr : reserve), global_handles(global)
{
    in_data.effect_ref = reinterpret_cast<PF_ProgPtr>(this);
    in_data.utils = &utils;
    in_data.version = {13, 0};
    in_data.appl_id = options.appl_id;
    in_data.quality = PF_Quality_HI;
    in_data.time_scale = 1;
    in_data.downsample_x = in_data.downsample_y = in_data.pixel_aspect_ratio = {1, 1};
    fill_interact_callbacks(in_data.inter);
    fill_world_callbacks(utils);
    fill_handle_callbacks(utils, options.no_handle_callbacks);
    fill_ansi_callbacks(utils.ansi, trace.logging());
}

session* session::current()
{
    return thread_session;
}

handle_store& session::store_of(PF_Handle handle)
{
    return global_handles && !handles.has(handle) && global_handles->has(handle) ? *global_handles : handles;
}

PF_Err session::send(PF_EntryPoint entry, const std::string& effect, PF_Cmd command, PF_OutData& out,
                     PF_ParamDef* params[], PF_LayerDef* output)
{
    const bound_to_thread bound(*this);
    out = PF_OutData{};
    out.global_data = in_data.global_data;
    out.sequence_data = in_data.sequence_data;
    out.frame_data = in_data.frame_data;
    PF_Err answer = PF_Err_NONE;
    try
    {
        answer = entry(command, &in_data, &out, params, output, nullptr);
    }
    catch (...)
    {
        throw error(text_line(effect, ": an exception left the effect's entry point during command ", command));
    }
    in_data.global_data = out.global_data;
    in_data.sequence_data = out.sequence_data;
    in_data.frame_data = out.frame_data;
    return answer;
}
} // namespace host
