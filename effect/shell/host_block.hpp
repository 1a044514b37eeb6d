#pragma once
// One block of memory from the host, locked while this object lives.

#include "effect/pf/effect_api.hpp"

#include <cstdint>

// Takes the block with the host's handle callbacks. Where one of the four is missing, an aligned allocation of our
// own plays its part: a block is given back only by whoever made it, and locked by whoever offers to, through its
// master pointer.
class host_block
{
public:
    host_block(const PF_UtilCallbacks& utils, std::uint64_t bytes);
    host_block(const host_block&) = delete;
    host_block& operator=(const host_block&) = delete;

    // The locked memory; null where there is none. Then nothing is held.
    void* data() const noexcept { return data_; }

    // Unlocks and gives back. Not done by the destructor: when an exception leaves a render, the block stays
    // taken.
    void release();

private:
    void dispose();

    const PF_UtilCallbacks& utils_;
    PF_Handle handle_;
    bool ours_;
    void* data_ = nullptr;
};
