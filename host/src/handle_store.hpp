#pragma once
// The relocatable blocks that an effect asks for: handles point to a master pointer, which points to the block.

#include "findings.hpp"
#include "memory_reserve.hpp"

#include "effect/pf/effect_api.hpp"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

namespace host
{
// One loaded effect has a store for its global data, used by all its renders at once; every render has its own.
class handle_store
{
public:
    // `reserve`, where the blocks come from, may be null.
    explicit handle_store(bool checked, memory_reserve* reserve = nullptr) : checked_(checked), reserve_(reserve)
    {
    }

    PF_Handle make(std::uint64_t size);
    bool has(PF_Handle handle) const; // live or, in checked mode, disposed of
    // Each answers null or 0, and says why in `found`, for a handle that is not live.
    void* lock(PF_Handle handle, findings& found);
    void unlock(PF_Handle handle, findings& found);
    void dispose(PF_Handle handle, findings& found);
    std::uint64_t size(PF_Handle handle, findings& found);
    // The effect has done its part in giving the handle back, although the call was made to fail.
    void forgive(PF_Handle handle);

    // "handle 1", in order of making.
    std::string name_of(PF_Handle handle) const;
    // In checked mode: guards, locks and handles that were never given back.
    void check_all(findings& found) const;

private:
    struct block
    {
        char* master = nullptr; // what the handle points at; must stay first
        memory_block memory;
        std::uint64_t size = 0;
        int number = 0;
        int locks = 0;
        bool disposed = false;
        bool forgiven = false;
    };

    block* find(PF_Handle handle) const;
    block* live(const char* call, PF_Handle handle, findings& found) const;
    static void check(const block& entry, findings& found);

    const bool checked_;
    memory_reserve* const reserve_;
    mutable std::mutex mutex_;
    std::unordered_map<PF_Handle, std::unique_ptr<block>> blocks_;
    int made_ = 0;
};
} // namespace host
