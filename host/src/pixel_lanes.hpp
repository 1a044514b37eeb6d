#pragma once
// Pixels side by side in one vector, 32 bits each, alpha in the lowest byte. The compiler's vectors, so that one
// text serves every processor. Included by files that are compiled for instruction sets of their own: everything
// here is the file's alone, and nothing of the library's may be inlined beside it.

#include <cstdint>
#include <cstring>

#if defined(__AVX2__)
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "alpha is taken from the lowest byte");

namespace host
{
namespace
{
// Written out for each size: gcc converts vectors of a stated size alone.
template <int Bytes>
struct lane_types;

template <>
struct lane_types<16>
{
    typedef std::uint32_t word __attribute__((vector_size(16))); // a pixel in each
    typedef std::int32_t integer __attribute__((vector_size(16)));
    typedef std::uint8_t byte __attribute__((vector_size(16)));
    typedef std::uint16_t half __attribute__((vector_size(16))); // two channels of a pixel
    typedef float real __attribute__((vector_size(16)));

    // 0 to 2^31 - 1, exactly where they are below 2^24.
    static real to_real(word value) { return __builtin_convertvector((integer)value, real); }
    // Towards zero.
    static word to_word(real value) { return (word) __builtin_convertvector(value, integer); }
};

template <>
struct lane_types<32>
{
    typedef std::uint32_t word __attribute__((vector_size(32)));
    typedef std::int32_t integer __attribute__((vector_size(32)));
    typedef std::uint8_t byte __attribute__((vector_size(32)));
    typedef std::uint16_t half __attribute__((vector_size(32)));
    typedef float real __attribute__((vector_size(32)));

    static real to_real(word value) { return __builtin_convertvector((integer)value, real); }
    static word to_word(real value) { return (word) __builtin_convertvector(value, integer); }
};

template <int Bytes>
struct lanes : lane_types<Bytes>
{
    using word = typename lane_types<Bytes>::word;
    static constexpr int count = Bytes / 4;

    static word load(const void* from)
    {
        word value;
        std::memcpy(&value, from, sizeof value);
        return value;
    }
    static void store(void* to, word value) { std::memcpy(to, &value, sizeof value); }

    // The first few of a vector's pixels, and zeros after them; nothing is read or written behind them.
    static word load_some(const void* from, int some)
    {
#if defined(__AVX2__)
        if constexpr (Bytes == 32)
            return (word)_mm256_maskload_epi32(static_cast<const int*>(from), first_lanes(some));
#endif
        word value = {};
        for (int i = 0; i < some; ++i)
            std::memcpy((char*)&value + 4 * i, static_cast<const char*>(from) + 4 * i, 4);
        return value;
    }
    static void store_some(void* to, word value, int some)
    {
#if defined(__AVX2__)
        if constexpr (Bytes == 32)
            return _mm256_maskstore_epi32(static_cast<int*>(to), first_lanes(some), (__m256i)value);
#endif
        for (int i = 0; i < some; ++i)
            std::memcpy(static_cast<char*>(to) + 4 * i, (const char*)&value + 4 * i, 4);
    }

    static bool all_zero(word value)
    {
#if defined(__AVX2__)
        if constexpr (Bytes == 32)
            return _mm256_testz_si256((__m256i)value, (__m256i)value) != 0;
#endif
#if defined(__SSE2__)
        if constexpr (Bytes == 16)
            return _mm_movemask_epi8(_mm_cmpeq_epi8((__m128i)value, _mm_setzero_si128())) == 0xffff;
#endif
        std::uint64_t parts[Bytes / 8];
        std::memcpy(parts, &value, sizeof parts);
        std::uint64_t sum = 0;
        for (const std::uint64_t part : parts)
            sum |= part;
        return sum == 0;
    }

private:
#if defined(__AVX2__)
    static __m256i first_lanes(int some)
    {
        return _mm256_cmpgt_epi32(_mm256_set1_epi32(some), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
    }
#endif
};
} // namespace
} // namespace host
