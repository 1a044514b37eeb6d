#pragma once
// How much of the processor a render uses. Every level draws the same picture.

#include <cstdint>

// The baseline is 0: all of a frame record is zero before it is written.
enum class simd_level : std::int8_t
{
    scalar = -1, // the plain functions that define the picture, everywhere
    baseline =
        0,    // the fast ways, with what every processor of the kind has: SSE2 on 64-bit x86, NEON on 64-bit Arm
    avx2 = 1, // and the bits' instructions, BMI and BMI2, that processors with AVX2 have
};

// The level that the environment variable FILIGRANE_SIMD names (scalar, sse2 for the baseline, avx2), as far as
// the processor goes; without it, or with another word in it, the highest that the processor has.
simd_level chosen_simd_level() noexcept;
