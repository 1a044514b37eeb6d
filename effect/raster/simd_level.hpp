#pragma once
// How much of the processor a render uses. Every level draws the same picture.

#include <cstdint>

enum class simd_level : std::uint8_t
{
    scalar,   // the plain functions that define the picture, everywhere
    baseline, // the fast ways, with what every processor of the kind has: SSE2 on 64-bit x86, NEON on 64-bit Arm
    avx2,
};

// The level that the environment variable FILIGRANE_SIMD names (scalar, sse2 for the baseline, avx2), as far as
// the processor goes; without it, or with another word in it, the highest that the processor has.
simd_level chosen_simd_level() noexcept;
