#pragma once
// Eight neighbouring values worked on at once, in the compiler's own vector types: the same operations, each
// rounded alike, on every processor.

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

constexpr int kLanes = 8;
using float_lanes = float __attribute__((vector_size(32)));
using int_lanes = std::int32_t __attribute__((vector_size(32)));

inline float_lanes all_lanes(float v) noexcept
{
    return float_lanes{v, v, v, v, v, v, v, v};
}

inline int_lanes all_lanes(std::int32_t v) noexcept
{
    return int_lanes{v, v, v, v, v, v, v, v};
}

template <class Lanes, class T>
Lanes load_lanes(const T* from) noexcept
{
    static_assert(sizeof(Lanes) == kLanes * sizeof(T));
    Lanes lanes;
    std::memcpy(&lanes, from, sizeof lanes);
    return lanes;
}

// Bit i is set where lane i of a comparison holds.
inline unsigned lane_bits(int_lanes mask) noexcept
{
#if defined(__SSE2__)
    __m128 halves[2];
    std::memcpy(halves, &mask, sizeof halves);
    return static_cast<unsigned>(_mm_movemask_ps(halves[0])) | static_cast<unsigned>(_mm_movemask_ps(halves[1]))
                                                                   << 4U;
#else
    unsigned bits = 0;
    for (int i = 0; i < kLanes; ++i)
        bits |= mask[i] != 0 ? 1U << static_cast<unsigned>(i) : 0U;
    return bits;
#endif
}
