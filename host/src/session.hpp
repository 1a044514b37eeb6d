#pragma once
// One conversation with an effect, on one thread: a set-up, an about box, or a frame. `effect_ref` points here;
// the calls that carry no effect_ref find it through the thread.

#include "call_trace.hpp"
#include "findings.hpp"
#include "handle_store.hpp"
#include "param_registry.hpp"
#include "world_store.hpp"

#include "host/render.hpp"

#include <string>
#include <vector>

namespace host
{
// What a frame's parameters are made from.
struct frame_values
{
    const std::vector<param_info>& params;
    const param_tracks& values;
    const composition& comp;
    PF_LayerDef input{};
};

// Parameters checked out and not yet checked in.
class checkout_ledger
{
public:
    void out(const PF_ParamDef* record, std::string call);
    bool in(const PF_ParamDef* record); // false where the record was not checked out
    void check_all(findings& found) const;

private:
    struct entry
    {
        const PF_ParamDef* record;
        std::string call;
    };
    std::vector<entry> open_;
};

struct session
{
    // `global` holds the handles that outlive this session, `reserve` its memory when it is over; null where there
    // are none. Checked mode does without the reserve: memory of its own shows more.
    session(const render_options& how, handle_store* global, memory_reserve* reserve = nullptr);
    session(const session&) = delete;
    session& operator=(const session&) = delete;

    // The store that a handle belongs to.
    handle_store& store_of(PF_Handle handle);
    // Sends one command, with this session as the thread's. Handles that the effect stores in its output record
    // are carried over to the input record. Throws host::error where an exception leaves the effect.
    PF_Err send(PF_EntryPoint entry, const std::string& effect, PF_Cmd command, PF_OutData& out,
                PF_ParamDef* params[] = nullptr, PF_LayerDef* output = nullptr);

    render_options options;
    findings found;
    call_trace trace;
    world_store worlds;
    handle_store handles;
    handle_store* global_handles;
    checkout_ledger checkouts;
    param_registry* registry = nullptr;  // during parameter set-up
    const frame_values* frame = nullptr; // during a frame
    bool makes_global_handles = false;   // during set-up: what is made then outlives the session
    std::uint64_t largest_handle = 0;

    PF_UtilCallbacks utils{};
    PF_InData in_data{};

    // The thread's session; null outside any.
    static session* current();
};
} // namespace host
