#pragma once
// Random numbers from 64-bit integer arithmetic alone (G. Steele, D. Lea and C. Flood, Fast splittable
// pseudorandom number generators, 2014).

#include <cstdint>

struct bit_generator
{
    std::uint64_t state;

    std::uint64_t next()
    {
        state += 0x9E3779B97F4A7C15U;
        std::uint64_t z = state;
        z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31U);
    }
    // From 0 to n - 1.
    int below(int n) { return static_cast<int>(next() % static_cast<std::uint64_t>(n)); }
    // From 0 to 1, in steps of 1/4096.
    double fraction() { return below(4097) / 4096.0; }
};
