#pragma once
// The one source of chance: a seeded generator whose every draw is part of the picture, and what is built on it.
// Each function states how many steps it takes; a step more or less changes every line that follows.

#include "effect/pf/effect_api.hpp"

#include <cstdint>

namespace Loom
{
// The minimal-standard multiplicative congruential generator (S. K. Park and K. W. Miller, "Random number
// generators: good ones are hard to find", CACM 31, 1988): state' = 16807 * state mod 2^31 - 1. A value; copy it
// to fork it.
class RandomGenerator32
{
public:
    explicit RandomGenerator32(unsigned int seed) noexcept { ReSeed(seed); }

    // A seed of 0 counts as 1. Any 32-bit seed will do; the first step reduces it below the modulus.
    void ReSeed(unsigned int seed) noexcept { state_ = seed == 0 ? 1 : seed; }

    // One step.
    void rand31pm_next() noexcept;

    // One step; the new state over the modulus, in [0, 1]: exactly 0 only for a state of 0, which stays 0 for
    // ever, exactly 1 for the 64 highest states, which narrowing rounds up.
    float GetNextRandom() noexcept;

    // One step; the new state, 0 to 2147483646.
    unsigned int GetNextRandomInt() noexcept;

    // `count` steps; out[i] is what MATH_Rand_IMP::random(lo, hi) draws, narrowed.
    void fill(double lo, double hi, float* out, std::int64_t count) noexcept;

private:
    std::uint32_t state_ = 1;
};
} // namespace Loom

// Draws in double precision from a generator that it refers to.
class MATH_Rand_IMP
{
public:
    explicit MATH_Rand_IMP(Loom::RandomGenerator32& gen) noexcept : gen_(gen) {}

    // One step; [0, 1].
    double random() noexcept { return static_cast<double>(gen_.GetNextRandom()); }

    // One step; lo + r * (hi - lo).
    double random(double lo, double hi) noexcept { return lo + random() * (hi - lo); }

private:
    Loom::RandomGenerator32& gen_;
};

// `value` spread evenly by +- `randomness` percent. One step always, even where `randomness` is 0.
float rand_param(Loom::RandomGenerator32& gen, float value, float randomness) noexcept;

// The parameter `valueIndex`, spread by the parameter `randomnessIndex`, both checked out from the host at the
// times 0, 1, ... `frames` (in frames), summed in single precision. Takes one step whatever `frames` is and leaves
// the generator reseeded with that draw; an error from a check-out ends it with 0 and leaves the generator where
// it is. Both values are read as doubles, also where the parameter is an integer slider: what then comes out (a
// subnormal number, in effect no randomness) is what saved projects were made with.
float sum_param_rnd(Loom::RandomGenerator32& gen, PF_InData* in_data, int valueIndex, int randomnessIndex,
                    int frames);
