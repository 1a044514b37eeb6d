#pragma once
// All places of a stroke that a pixel can be nearest to: its samples and the positions that bridge its steep
// steps, as separate arrays, in the order in which a search meets them.

#include "effect/raster/nearest_sample.hpp"

#include <cstddef>
#include <cstdint>

class LineCreatorClass;

// Memory that nobody else uses while a stroke is drawn, handed out in order.
class scratch_memory
{
public:
    scratch_memory(void* base, std::uint64_t bytes) noexcept : next_(static_cast<std::byte*>(base)), left_(bytes)
    {
    }

    // Room for `count` values of T, not cleared; null where it does not fit. Aligned to 32 bytes.
    template <class T>
    T* take(std::int64_t count) noexcept
    {
        constexpr std::uint64_t kAlignment = 32;
        const auto skip = (kAlignment - reinterpret_cast<std::uintptr_t>(next_) % kAlignment) % kAlignment;
        if (count < 0 || skip > left_ || static_cast<std::uint64_t>(count) > (left_ - skip) / sizeof(T))
            return nullptr;
        auto* const room = reinterpret_cast<T*>(next_ + skip);
        next_ += skip + static_cast<std::uint64_t>(count) * sizeof(T);
        left_ -= skip + static_cast<std::uint64_t>(count) * sizeof(T);
        return room;
    }
    std::uint64_t left() const noexcept { return left_; }

private:
    std::byte* next_;
    std::uint64_t left_;
};

struct stroke_candidates
{
    static constexpr int kPadding = 8; // readable values past the last candidate, none of them near anything

    // The places between sample `first` and sample `last` (first >= last: indices fall along the main axis),
    // bridges before `first` left out. A sample that no pixel may take (off the canvas across, or no number) is
    // far away. Positions farther than `reach` off the canvas are left out: they reach no pixel. Cuts its arrays
    // from `memory`; false where they do not fit.
    bool collect(const LineCreatorClass& creator, int first, int last, float reach,
                 scratch_memory& memory) noexcept;

    // The first place that belongs to the sample of this index, or of a lower one where that has no place.
    int first_of(int index) const noexcept;

    float* main = nullptr;  // along the stroke
    float* cross = nullptr; // across it; kFarAway for a sample that does not count
    float* radius = nullptr;
    std::int32_t* sample = nullptr; // index of the sample, or of the one that the bridge leads to; descending
    std::int32_t* place = nullptr;  // 0 for the sample itself, else the position's number in its bridge
    int count = 0;
    bool ascending = true;   // main never falls
    bool all_numbers = true; // no radius is NaN

    static constexpr float kFarAway = 1e18f;
};
