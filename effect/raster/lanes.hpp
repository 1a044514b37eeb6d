#pragma once
// Eight neighbouring values worked on at once, in the compiler's own vector types: the same operations, each
// rounded alike, on every processor. All of it is internal to the file that includes it, since each level of
// instructions compiles its own.

#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>

#if defined(__AVX2__)
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace
{
constexpr int kLanes = 8;
constexpr unsigned kLaneBits = 3; // of a lane's number
static_assert(kLanes == 1 << kLaneBits);
using float_lanes = float __attribute__((vector_size(32)));
using int_lanes = std::int32_t __attribute__((vector_size(32)));
constexpr int_lanes kLaneNumbers = {0, 1, 2, 3, 4, 5, 6, 7};

inline float_lanes all_lanes(float v) noexcept
{
    return float_lanes{v, v, v, v, v, v, v, v};
}

inline int_lanes all_lanes(std::int32_t v) noexcept
{
    return int_lanes{v, v, v, v, v, v, v, v};
}

template <class Lanes, class T>
inline Lanes load_lanes(const T* from) noexcept
{
    static_assert(sizeof(Lanes) == kLanes * sizeof(T));
    Lanes lanes;
    std::memcpy(&lanes, from, sizeof lanes);
    return lanes;
}

template <class Lanes, class T>
inline void store_lanes(T* to, Lanes lanes) noexcept
{
    static_assert(sizeof(Lanes) == kLanes * sizeof(T));
    std::memcpy(to, &lanes, sizeof lanes);
}

// Calls visit(i) for 0 up to but not `Count`, without a loop.
template <int Count, class Visit>
inline void unrolled(Visit visit) noexcept
{
    [&]<int... I>(std::integer_sequence<int, I...>)
    {
        (visit(I), ...);
    }
    (std::make_integer_sequence<int, Count>());
}

// Bit i is set where lane i of a comparison holds.
inline unsigned lane_bits(int_lanes mask) noexcept
{
#if defined(__AVX2__)
    __m256 lanes;
    std::memcpy(&lanes, &mask, sizeof lanes);
    return static_cast<unsigned>(_mm256_movemask_ps(lanes));
#elif defined(__SSE2__)
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

// All ones in lane i where bit i is set.
inline int_lanes lanes_of_bits(unsigned bits) noexcept
{
    constexpr int_lanes kBits = {1, 2, 4, 8, 16, 32, 64, 128};
    return (all_lanes(static_cast<std::int32_t>(bits)) & kBits) != 0;
}

// Square roots, correctly rounded.
inline float_lanes root(float_lanes v) noexcept
{
#if defined(__AVX2__)
    __m256 lanes;
    std::memcpy(&lanes, &v, sizeof lanes);
    lanes = _mm256_sqrt_ps(lanes);
    std::memcpy(&v, &lanes, sizeof v);
#elif defined(__SSE2__)
    __m128 halves[2];
    std::memcpy(halves, &v, sizeof halves);
    halves[0] = _mm_sqrt_ps(halves[0]);
    halves[1] = _mm_sqrt_ps(halves[1]);
    std::memcpy(&v, halves, sizeof v);
#else
    for (int i = 0; i < kLanes; ++i)
        v[i] = std::sqrt(v[i]);
#endif
    return v;
}

#if defined(__SSE2__) && !defined(__AVX2__)
// What of(x, y) answers for four lanes at a time.
template <class Of>
inline float_lanes by_halves(float_lanes a, float_lanes b, Of of) noexcept
{
    __m128 x[2];
    __m128 y[2];
    std::memcpy(x, &a, sizeof x);
    std::memcpy(y, &b, sizeof y);
    x[0] = of(x[0], y[0]);
    x[1] = of(x[1], y[1]);
    std::memcpy(&a, x, sizeof a);
    return a;
}
#endif

// a < b ? a : b in each lane, which is b where one is no number.
inline float_lanes lower_of(float_lanes a, float_lanes b) noexcept
{
#if defined(__AVX2__)
    return reinterpret_cast<float_lanes>(_mm256_min_ps(reinterpret_cast<__m256>(a), reinterpret_cast<__m256>(b)));
#elif defined(__SSE2__)
    return by_halves(a, b, [](__m128 x, __m128 y) { return _mm_min_ps(x, y); });
#else
    return a < b ? a : b;
#endif
}

// a > b ? a : b in each lane, which is b where one is no number.
inline float_lanes higher_of(float_lanes a, float_lanes b) noexcept
{
#if defined(__AVX2__)
    return reinterpret_cast<float_lanes>(_mm256_max_ps(reinterpret_cast<__m256>(a), reinterpret_cast<__m256>(b)));
#elif defined(__SSE2__)
    return by_halves(a, b, [](__m128 x, __m128 y) { return _mm_max_ps(x, y); });
#else
    return a > b ? a : b;
#endif
}

inline int_lanes lower_of(int_lanes a, int_lanes b) noexcept
{
    return a < b ? a : b;
}

inline int_lanes higher_of(int_lanes a, int_lanes b) noexcept
{
    return a > b ? a : b;
}

inline float_lanes magnitude(float_lanes v) noexcept
{
    int_lanes bits;
    std::memcpy(&bits, &v, sizeof bits);
    bits &= 0x7fffffff;
    std::memcpy(&v, &bits, sizeof v);
    return v;
}

// The least and the most of all lanes, none of which is NaN.
template <class Lanes>
inline auto least(Lanes v) noexcept
{
    v = lower_of(v, __builtin_shufflevector(v, v, 4, 5, 6, 7, 0, 1, 2, 3));
    v = lower_of(v, __builtin_shufflevector(v, v, 2, 3, 0, 1, 6, 7, 4, 5));
    v = lower_of(v, __builtin_shufflevector(v, v, 1, 0, 3, 2, 5, 4, 7, 6));
    return v[0];
}

template <class Lanes>
inline auto most(Lanes v) noexcept
{
    v = higher_of(v, __builtin_shufflevector(v, v, 4, 5, 6, 7, 0, 1, 2, 3));
    v = higher_of(v, __builtin_shufflevector(v, v, 2, 3, 0, 1, 6, 7, 4, 5));
    v = higher_of(v, __builtin_shufflevector(v, v, 1, 0, 3, 2, 5, 4, 7, 6));
    return v[0];
}

// Toward zero; every lane within 32 bits.
inline int_lanes whole(float_lanes v) noexcept
{
    return __builtin_convertvector(v, int_lanes);
}

// Lane i is from[at[i]].
inline float_lanes gather(const float* from, int_lanes at) noexcept
{
#if defined(__AVX2__)
    __m256i places;
    std::memcpy(&places, &at, sizeof places);
    const __m256 found = _mm256_i32gather_ps(from, places, 4);
    float_lanes lanes;
    std::memcpy(&lanes, &found, sizeof lanes);
    return lanes;
#else
    return float_lanes{from[at[0]], from[at[1]], from[at[2]], from[at[3]],
                       from[at[4]], from[at[5]], from[at[6]], from[at[7]]};
#endif
}

inline int_lanes gather(const std::int32_t* from, int_lanes at) noexcept
{
#if defined(__AVX2__)
    __m256i places;
    std::memcpy(&places, &at, sizeof places);
    const __m256i found = _mm256_i32gather_epi32(from, places, 4);
    int_lanes lanes;
    std::memcpy(&lanes, &found, sizeof lanes);
    return lanes;
#else
    return int_lanes{from[at[0]], from[at[1]], from[at[2]], from[at[3]],
                     from[at[4]], from[at[5]], from[at[6]], from[at[7]]};
#endif
}
} // namespace
