#pragma once
// Which instructions the pixel work may use. Every level gives the same bytes; they differ in time alone.

namespace host
{
enum class simd_level
{
    scalar, // the plain functions, which say what the others do
    sse2,   // vectors of 16 bytes: on every x86-64, and as the compiler makes them on other processors
    avx2,   // vectors of 32 bytes
};

bool machine_has(simd_level level);

// What FILIGRANE_SIMD asks for ("scalar", "sse2" or "avx2", as far as the machine has it), else the machine's
// best. Read once.
simd_level chosen_simd_level();
} // namespace host
