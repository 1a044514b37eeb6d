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

    // Room for `count` values of T, not cleared; null where it does not fit. Aligned to 32 bytes. Inlined for
    // certain: no copy that is compiled for a level of instructions may stand for all.
    template <class T>
    [[gnu::always_inline]] T* take(std::int64_t count) noexcept
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
    static constexpr int kPadding = 16; // readable values past the last candidate, none of them near anything

    // The places between sample `first` and sample `last` (first >= last: indices fall along the main axis),
    // bridges before `first` left out. A sample that no pixel may take (off the canvas across, or no number) is
    // far away. Positions farther than `reach` off the canvas are left out: they reach no pixel. Cuts its arrays
    // from `memory`; false where they do not fit.
    bool collect(const LineCreatorClass& creator, int first, int last, float reach, bool colors,
                 scratch_memory& memory) noexcept;

    // The first place that belongs to the sample of this index, or of a lower one where that has no place.
    int first_of(int index) const noexcept;

    // The first place from `begin` on whose main coordinate is not below `main_at`; `end` where there is none.
    int from(int begin, int end, float main_at) const noexcept
    {
        if (even && !bridged)
        {
            // Near enough by arithmetic to walk the rest.
            const float guess = (main_at - main[0]) * per_pixel;
            int j = guess > static_cast<float>(begin) ? end : begin;
            if (guess > static_cast<float>(begin) && guess < static_cast<float>(end))
                j = trunc_i32(static_cast<double>(guess));
            while (j > begin && main[j - 1] >= main_at)
                --j;
            while (j < end && main[j] < main_at)
                ++j;
            return j;
        }
        while (begin < end)
        {
            const int mid = begin + (end - begin) / 2;
            if (main[mid] < main_at)
                begin = mid + 1;
            else
                end = mid;
        }
        return begin;
    }

    float* main = nullptr;  // along the stroke
    float* cross = nullptr; // across it; kFarAway for a sample that does not count
    float* radius = nullptr;
    std::int32_t* sample = nullptr; // index of the sample, or of the one that the bridge leads to; descending
    std::int32_t* place = nullptr;  // 0 for the sample itself, else the position's number in its bridge
    std::int32_t* color = nullptr;  // the bytes of a PF_Pixel; of strokes of many colours
    float per_pixel = 1.0f;         // samples
    int count = 0;
    bool ascending = true;   // main never falls
    bool all_numbers = true; // no radius is NaN
    bool one_radius = true;  // all radii are equal
    bool bridged = false;    // some places are no samples
    bool regular = false;    // none are, and samples lie exactly one over per_pixel apart
    bool even = true;        // samples lie where their indices say, to a hundredth of a pixel, 1 to 8 a pixel

    static constexpr float kFarAway = 1e18f;

private:
    enum class outcome
    {
        done,
        no_room,
        bridge, // where none was expected
    };
    outcome fill(const LineCreatorClass& creator, int first, int last, float reach, std::int64_t room,
                 bool bridges) noexcept;
    bool cut(std::int64_t room, bool colors, scratch_memory& memory) noexcept;
};
