#pragma once
// The worlds of one render: the input, the output and what the effect asks for, numbered in order of making.

#include "findings.hpp"
#include "pixel_block.hpp"

#include <deque>
#include <string>

namespace host
{
class world_store
{
public:
    // `reserve`, where the pixels of worlds come from, may be null.
    world_store(findings& found, memory_reserve* reserve) : found_(found), reserve_(reserve) {}

    // The host's own worlds, named for messages; they are never disposed of by the effect.
    PF_EffectWorld adopt(std::string name, pixel_block block);

    // The new_world and dispose_world calls. A disposed world's record keeps no pixels, but keeps its identity.
    PF_Err make(int width, int height, PF_NewWorldFlags flags, int row_padding, PF_EffectWorld* world);
    PF_Err dispose(PF_EffectWorld* world);
    // The effect has done its part in giving the world back, although the call was made to fail.
    void forgive(const PF_EffectWorld* world);

    // "input", "output", "#n", or "?" for pixels that this host did not make.
    std::string name_of(const PF_EffectWorld* world) const;
    // Whether a call may work on the world; in checked mode says in `found` why it may not.
    bool usable(const char* call, const PF_EffectWorld* world);

    // Whether pixels are cleared past the caches.
    bool past_caches() const { return reserve_ != nullptr && reserve_->exceeds_caches(); }

    // At the end of the render, in checked mode: guards, padding and worlds that were never given back.
    void check_all();

private:
    struct record
    {
        std::string name;
        pixel_block block;
        PF_Pixel* data = nullptr; // outlives the block's memory, as a name for it
        bool own = false;         // the host's
        bool disposed = false;
        bool forgiven = false;
    };

    const record* find(const PF_EffectWorld* world) const;
    record* find(const PF_EffectWorld* world);
    void check(const record& entry);

    findings& found_;
    memory_reserve* const reserve_;
    std::deque<record> records_;
    mutable const record* found_last_ = nullptr; // an effect asks for the same one pixel after pixel
    int made_ = 0;
};
} // namespace host
