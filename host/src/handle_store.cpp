#include "handle_store.hpp"

#include "pixel_block.hpp"
#include "text.hpp"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

namespace host
{
namespace
{
constexpr std::uint64_t guard_bytes = 64; // a multiple of every alignment that an effect may count on
constexpr std::uint64_t largest_handle = std::uint64_t{1} << 36;
// Fresh blocks are poisoned up to here: a pool of gigabytes, most of it never touched, must stay cheap.
constexpr std::uint64_t poisoned_bytes = std::uint64_t{1} << 20;

bool all_poison(const std::byte* bytes)
{
    return std::all_of(bytes, bytes + guard_bytes, [](std::byte byte) { return byte == std::byte{poison}; });
}
} // namespace

PF_Handle handle_store::make(std::uint64_t size)
{
    if (size > largest_handle)
        return nullptr;
    auto entry = std::make_unique<block>();
    entry->memory = memory_reserve::take(reserve_, size + 2 * guard_bytes, false);
    if (!entry->memory.data())
        return nullptr;
    entry->size = size;
    entry->master = reinterpret_cast<char*>(entry->memory.data()) + guard_bytes;
    std::memset(entry->memory.data(), poison, guard_bytes + std::min(size, poisoned_bytes));
    std::memset(entry->master + size, poison, guard_bytes);

    const std::lock_guard hold(mutex_);
    entry->number = ++made_;
    const PF_Handle handle = &entry->master;
    blocks_[handle] = std::move(entry);
    return handle;
}

handle_store::block* handle_store::find(PF_Handle handle) const
{
    const auto entry = blocks_.find(handle);
    return entry == blocks_.end() ? nullptr : entry->second.get();
}

handle_store::block* handle_store::live(const char* call, PF_Handle handle, findings& found) const
{
    block* entry = find(handle);
    if (!entry)
        found.add(text_line(call, ": a handle that this host did not make"));
    else if (entry->disposed)
        found.add(text_line(call, ": handle ", entry->number, " was already disposed of"));
    return entry && !entry->disposed ? entry : nullptr;
}

bool handle_store::has(PF_Handle handle) const
{
    const std::lock_guard hold(mutex_);
    return find(handle) != nullptr;
}

void* handle_store::lock(PF_Handle handle, findings& found)
{
    const std::lock_guard hold(mutex_);
    block* entry = live("host_lock_handle", handle, found);
    if (!entry)
        return nullptr;
    ++entry->locks;
    return entry->master;
}

void handle_store::unlock(PF_Handle handle, findings& found)
{
    const std::lock_guard hold(mutex_);
    block* entry = live("host_unlock_handle", handle, found);
    if (!entry)
        return;
    if (entry->locks == 0)
        found.add(text_line("host_unlock_handle: handle ", entry->number, " is not locked"));
    else
        --entry->locks;
}

void handle_store::dispose(PF_Handle handle, findings& found)
{
    const std::lock_guard hold(mutex_);
    block* entry = live("host_dispose_handle", handle, found);
    if (!entry)
        return;
    if (entry->locks != 0)
        found.add(text_line("host_dispose_handle: handle ", entry->number, " is still locked"));
    check(*entry, found);
    if (!checked_)
    {
        blocks_.erase(handle);
        return;
    }
    // The record stays, so that the handle's address is not handed out again and a second disposal is recognised.
    entry->disposed = true;
    entry->memory = {};
    entry->master = nullptr;
}

std::uint64_t handle_store::size(PF_Handle handle, findings& found)
{
    const std::lock_guard hold(mutex_);
    const block* entry = live("host_get_handle_size", handle, found);
    return entry ? entry->size : 0;
}

void handle_store::forgive(PF_Handle handle)
{
    const std::lock_guard hold(mutex_);
    if (block* entry = find(handle))
        entry->forgiven = true;
}

std::string handle_store::name_of(PF_Handle handle) const
{
    const std::lock_guard hold(mutex_);
    const block* entry = find(handle);
    return entry ? text_line("handle ", entry->number) : handle ? "handle ?" : "null";
}

void handle_store::check(const block& entry, findings& found)
{
    if (!found.checked())
        return;
    if (!all_poison(entry.memory.data()))
        found.add(text_line("handle ", entry.number, " was written to before its first byte"));
    if (!all_poison(entry.memory.data() + guard_bytes + entry.size))
        found.add(text_line("handle ", entry.number, " was written to past its last byte"));
}

void handle_store::check_all(findings& found) const
{
    const std::lock_guard hold(mutex_);
    std::vector<const block*> left;
    for (const auto& [handle, entry] : blocks_)
        if (!entry->disposed && !entry->forgiven)
            left.push_back(entry.get());
    std::sort(left.begin(), left.end(), [](const block* a, const block* b) { return a->number < b->number; });
    for (const block* entry : left)
    {
        check(*entry, found);
        found.add(text_line("host_new_handle: handle ", entry->number, " of ", entry->size,
                            " bytes was never disposed of"));
        if (entry->locks != 0)
            found.add(text_line("host_lock_handle: handle ", entry->number, " was never unlocked"));
    }
}
} // namespace host
