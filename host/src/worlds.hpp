#pragma once
// Whole-world pixel work: filling, copying, laying one rectangle on another. Coordinates are pixels of a world,
// (0, 0) its top-left pixel; rectangles are half-open and are clipped to their worlds.

#include "composite.hpp"

#include <cstddef>
#include <vector>

namespace host
{
inline PF_Pixel* row_of(const PF_EffectWorld& world, int y)
{
    return reinterpret_cast<PF_Pixel*>(reinterpret_cast<char*>(world.data) +
                                       static_cast<std::ptrdiff_t>(y) * world.rowbytes);
}

// The part of a rectangle inside a world; a null rectangle is the whole world. May be empty (right <= left).
PF_Rect clipped(const PF_Rect* rect, const PF_EffectWorld& world);
inline bool is_empty(const PF_Rect& rect)
{
    return rect.right <= rect.left || rect.bottom <= rect.top;
}

// A world's pixels where they stay readable while the other world is written to: in place, or as a copy where the
// two share memory, so that every call works as if it had read its source whole first.
class stable_source
{
public:
    stable_source(const PF_EffectWorld& src, const PF_EffectWorld& dst);
    const PF_EffectWorld& world() const { return world_; }

private:
    PF_EffectWorld world_;
    std::vector<PF_Pixel> copy_;
};

// A null colour is transparent black. `past_caches`: see clear_memory.
void fill_world(const PF_EffectWorld& world, const PF_Rect* rect, const PF_Pixel* color, bool past_caches = false);

// From the source rectangle's top-left to the destination rectangle's, as much as both rectangles hold.
void copy_world(const PF_EffectWorld& src, const PF_Rect* src_rect, const PF_EffectWorld& dst,
                const PF_Rect* dst_rect);

// Lays the source rectangle on the destination, its top-left at (dest_x, dest_y). The mask's alpha weighs the
// source; mask pixel (0, 0) lies over the source pixel at `offset`, and outside the mask nothing is laid.
void transfer(const blend& how, const PF_EffectWorld& src, const PF_Rect* src_rect, const PF_MaskWorld* mask,
              const PF_EffectWorld& dst, int dest_x, int dest_y, simd_level level = chosen_simd_level());

// A mask's alpha over a source pixel, 255 without a mask.
unsigned mask_alpha(const PF_MaskWorld* mask, int x, int y);
} // namespace host
