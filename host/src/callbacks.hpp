#pragma once
// The functions that the host's tables offer to an effect, and how each of them is served.

#include "session.hpp"

#include <new>

namespace host
{
void fill_interact_callbacks(PF_InteractCallbacks& table);
void fill_world_callbacks(PF_UtilCallbacks& table);
void fill_handle_callbacks(PF_UtilCallbacks& table, bool none);
// Functions that round come from portable_math.hpp, the same bits on every system; the rest is the C library's.
// Where calls are logged, each is wrapped in one that does so.
void fill_ansi_callbacks(PF_ANSICallbacks& table, bool logged);

inline session* session_of(PF_ProgPtr effect_ref)
{
    return reinterpret_cast<session*>(effect_ref);
}

// Runs one call of the effect: clock, log line, injected failure, then the work, from which nothing is thrown into
// the effect. `describe()` is the log line, asked only when there is a log; `work(result)` does the call and may
// put what the log tells of its outcome into `result`.
template <class Describe, class Work>
PF_Err serve(session* host, const char* name, Describe describe, Work work) noexcept
{
    if (!host)
        return PF_Err_BAD_CALLBACK_PARAM;
    try
    {
        std::string outcome;
        if (host->trace.idle())
            return work(outcome);
        const host_time time(host->trace);
        const std::size_t line = host->trace.logging() ? host->trace.note(describe()) : 0;
        PF_Err answer = host->trace.injected(name);
        if (answer == PF_Err_NONE)
            answer = work(outcome);
        if (host->trace.logging() && answer != PF_Err_NONE)
            outcome = " -> error " + std::to_string(answer);
        if (!outcome.empty())
            host->trace.add_to(line, outcome);
        return answer;
    }
    catch (const std::bad_alloc&)
    {
        return PF_Err_OUT_OF_MEMORY;
    }
    catch (...)
    {
        host->trace.keep_exception();
        return PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
}
} // namespace host
