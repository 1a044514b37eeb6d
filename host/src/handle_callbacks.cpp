#include "callbacks.hpp"

#include "text.hpp"

#include <algorithm>

namespace host
{
namespace
{
// These calls carry no effect_ref; on a thread without a session they do nothing.
PF_Handle new_handle(std::uint64_t size)
{
    session* host = session::current();
    PF_Handle handle = nullptr;
    serve(
        host, "host_new_handle", [&] { return text_line("host_new_handle ", size); },
        [&](std::string& outcome) -> PF_Err
        {
            host->largest_handle = std::max(host->largest_handle, size);
            handle_store& store = host->makes_global_handles ? *host->global_handles : host->handles;
            handle = store.make(size);
            if (host->trace.logging())
                outcome = " -> " + store.name_of(handle);
            return PF_Err_NONE;
        });
    return handle;
}

std::string call_text(session& host, const char* name, PF_Handle handle)
{
    return text_line(name, " ", host.store_of(handle).name_of(handle));
}

void* lock_handle(PF_Handle handle)
{
    session* host = session::current();
    void* address = nullptr;
    serve(
        host, "host_lock_handle", [&] { return call_text(*host, "host_lock_handle", handle); },
        [&](std::string&) -> PF_Err
        {
            address = host->store_of(handle).lock(handle, host->found);
            return PF_Err_NONE;
        });
    return address;
}

void unlock_handle(PF_Handle handle)
{
    session* host = session::current();
    bool served = false;
    const auto work = [&] { host->store_of(handle).unlock(handle, host->found); };
    serve(
        host, "host_unlock_handle", [&] { return call_text(*host, "host_unlock_handle", handle); },
        [&](std::string&) -> PF_Err
        {
            served = true;
            work();
            return PF_Err_NONE;
        });
    // Where the call was made to fail, the effect has done its part all the same.
    if (host && !served)
        work();
}

void dispose_handle(PF_Handle handle)
{
    session* host = session::current();
    bool served = false;
    serve(
        host, "host_dispose_handle", [&] { return call_text(*host, "host_dispose_handle", handle); },
        [&](std::string&) -> PF_Err
        {
            served = true;
            host->store_of(handle).dispose(handle, host->found);
            return PF_Err_NONE;
        });
    if (host && !served)
        host->store_of(handle).forgive(handle);
}

std::uint64_t handle_size(PF_Handle handle)
{
    session* host = session::current();
    std::uint64_t size = 0;
    serve(
        host, "host_get_handle_size", [&] { return call_text(*host, "host_get_handle_size", handle); },
        [&](std::string&) -> PF_Err
        {
            size = host->store_of(handle).size(handle, host->found);
            return PF_Err_NONE;
        });
    return size;
}
} // namespace

void fill_handle_callbacks(PF_UtilCallbacks& table, bool none)
{
    table.host_get_handle_size = handle_size;
    if (none)
        return;
    table.host_new_handle = new_handle;
    table.host_lock_handle = lock_handle;
    table.host_unlock_handle = unlock_handle;
    table.host_dispose_handle = dispose_handle;
}
} // namespace host
