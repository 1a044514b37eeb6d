#pragma once
// The ripple of one line: a one-dimensional random wave, sampled, evaluated along the line by smooth
// interpolation, with further octaves that slide with time. Carved from the frame's pool. Its samples are drawn as
// they are asked for, so that one thread at a time may evaluate it.

#include "effect/model/ae_obj.hpp"
#include "effect/model/random.hpp"

#include <cstdint>

class frame_data;

class curve : public ae_obj
{
public:
    static constexpr int kMostHarmonics = 7;

    // `phase` is the frame number, `turbulence` the line's own, `skip` a number of draws thrown away first.
    // Draws from a generator of its own, seeded with `seed`: size, wavelength, speed, the skipped ones, the
    // samples.
    curve(frame_data* frame, unsigned int seed, int skip, std::int64_t phase, float turbulence);

    // The base wave at t pixels. False (and `out` untouched) outside the sampled length.
    bool f(float t, float* out) const noexcept;

    // The turbulent sum at t pixels along the line. False where the base or an inner octave lies outside the
    // sampled length; the last octave is left out quietly there.
    bool F(float t, float* out) const noexcept;

    // The sum at each of kBlock positions; there[i] is -1 where F has a value at t[i], else 0 and out[i] anything.
    static constexpr int kBlock = 64;
    void sums(const float* __restrict t, float* __restrict out, std::int32_t* __restrict there) const noexcept;

    // Octave k alone, without its weight; k = 0 is the base.
    bool F(int k, float t, float* out) const noexcept;

    // False where the pool had no room for the samples: the curve then has no value anywhere.
    bool sampled() const noexcept { return samples_ != nullptr; }
    int harmonics() const noexcept { return octaves_; }
    std::int64_t phase() const noexcept { return phase_; }

private:
    float octave_slide(int k) const noexcept;
    float octave_position(int k, float t0) const noexcept;
    void waves(const float* __restrict t, float* __restrict out,
               std::int32_t* __restrict there) const noexcept; // f, where there are samples

    // Sees to it that the first `needed` samples are drawn, of those that may be read.
    void need_samples(std::int64_t needed) const noexcept
    {
        if (needed > ready_)
            draw_samples(needed);
    }
    void draw_samples(std::int64_t needed) const noexcept;

    mutable Loom::RandomGenerator32 generator_{0}; // of the samples that are not drawn yet
    std::int16_t octaves_ = 0;                     // 2 to 7 (0 for a turbulence that is not a number)
    std::int16_t bands_ = 0;                       // sizes the sample array only
    std::int64_t phase_ = 0;
    float last_weight_ = 0.0f; // of the last octave: the turbulence's fraction
    float speed_ = 0.0f;
    PF_InData* in_data_ = nullptr;
    frame_data* frame_ = nullptr;
    std::int64_t count_ = 0;         // usable samples
    std::int16_t amplitude_ = 0;     // pixels
    std::int16_t step_ = 0;          // wavelength in pixels: the distance between samples
    mutable std::int32_t ready_ = 0; // samples drawn so far: only as far as they have been read
    float* samples_ = nullptr;       // count * (bands + 1), and a zero
};
