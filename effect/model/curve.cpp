#include "effect/model/curve.hpp"

#include "effect/model/frame_data.hpp"
#include "effect/model/numeric.hpp"

#include <algorithm>

namespace
{
// An index is below the count and 16 bits wide, and the sample after it is read, too. All further samples, which
// is to say most of a turbulent ripple's bands, are never read, and never drawn.
constexpr std::int64_t kReadable = 32769;

constexpr std::int64_t kBatch = 64; // samples drawn at a time

std::int16_t octave_count(float turbulence) noexcept
{
    if (turbulence < 2.0f)
        return 2;
    if (turbulence > 7.0f)
        return curve::kMostHarmonics;
    return trunc_i16(static_cast<double>(turbulence));
}

// count * (bands + 1), or -1 where it cannot be had anyway.
std::int64_t sample_count(std::int64_t count, std::int16_t bands) noexcept
{
    constexpr std::int64_t kMost = std::int64_t{1} << 56; // far above any pool, far below an overflow
    if (count < 0 || count > kMost)
        return -1;
    return count * (bands + 1);
}
} // namespace

curve::curve(frame_data* frame, unsigned int seed, int skip, std::int64_t phase, float turbulence)
    : phase_(phase), in_data_(frame->in_data), frame_(frame)
{
    const PF_ANSICallbacks& ansi = in_data_->utils->ansi;
    octaves_ = octave_count(turbulence);
    bands_ = octaves_ > 2 ? static_cast<std::int16_t>(2 * octaves_) : octaves_;
    const auto wide = static_cast<double>(turbulence);
    last_weight_ = static_cast<float>(wide - ansi.floor(wide));

    // The draws, in this order: size, wavelength, speed, the skipped ones, the samples from first to last.
    Loom::RandomGenerator32 gen(seed);
    amplitude_ = trunc_i16(static_cast<double>(rand_param(gen, frame->rippleSize, frame->sizeRandomness)));
    step_ = trunc_i16(static_cast<double>(rand_param(gen, frame->rippleWavelength, frame->frequencyRandomness)));
    speed_ = rand_param(gen, frame->speed, frame->speedRandomness);

    const auto diagonal =
        static_cast<float>(ansi.hypot(static_cast<double>(frame->height), static_cast<double>(frame->width)));
    count_ = trunc_i64(static_cast<double>(static_cast<float>(phase) * speed_ + diagonal));
    const std::int64_t drawn = sample_count(count_, bands_);
    if (drawn < 0)
        return;
    samples_ = pool_array_used<float>(frame->pool, drawn + 1, 0);
    if (samples_ == nullptr)
        return;

    MATH_Rand_IMP rand(gen);
    for (int i = 0; i < skip; ++i)
        rand.random();
    generator_ = gen;
}

void curve::draw_samples(std::int64_t needed) const noexcept
{
    const std::int64_t all = count_ * (bands_ + 1);
    const std::int64_t readable = std::min({all + 1, count_ + 1, kReadable});
    const std::int64_t end = std::min((needed / kBatch + 1) * kBatch, readable);
    const std::int64_t random = std::max<std::int64_t>(std::min(end, all), ready_);
    const auto reach = static_cast<double>(amplitude_);
    generator_.fill(-reach, reach, samples_ + ready_, random - ready_);
    std::fill(samples_ + random, samples_ + end, 0.0f);
    ready_ = static_cast<std::int32_t>(end);
}

bool curve::f(float t, float* out) const noexcept
{
    if (samples_ == nullptr || step_ == 0)
        return false;
    const auto step = static_cast<float>(step_);
    const std::int16_t i = trunc_i16(static_cast<double>(t / step));
    if (i < 0 || i > count_ - 1)
        return false;
    need_samples(i + 2);
    // Cubic Hermite interpolation with zero slopes at the samples.
    const float u = (t - static_cast<float>(i * step_)) / step;
    const float u2 = u * u;
    const float u3 = u2 * u;
    *out = (2.0f * u3 - 3.0f * u2 + 1.0f) * samples_[i] + (-2.0f * u3 + 3.0f * u2) * samples_[i + 1];
    return true;
}

// By phase * (k + speed).
float curve::octave_slide(int k) const noexcept
{
    return static_cast<float>(phase_) * (static_cast<float>(k) + speed_);
}

// Octave k runs 2k times as fast as the base, and slides.
float curve::octave_position(int k, float t0) const noexcept
{
    return static_cast<float>(static_cast<double>(2 * k) * static_cast<double>(t0) +
                              static_cast<double>(octave_slide(k)));
}

bool curve::F(float t, float* out) const noexcept
{
    const float t0 = static_cast<float>(step_) + t;
    if (!f(t0, out))
        return false;
    const int last = octaves_ < 1 ? 1 : octaves_;
    float v = 0.0f;
    for (int k = 1; k < last; ++k)
    {
        if (!f(octave_position(k, t0), &v))
            return false;
        *out += v / static_cast<float>(2 * k);
    }
    if (f(octave_position(last, t0), &v))
        *out += last_weight_ * v / static_cast<float>(2 * last);
    return true;
}

bool curve::F(int k, float t, float* out) const noexcept
{
    if (octaves_ < k)
        return false;
    const float t0 = static_cast<float>(step_) + t;
    return f(k == 0 ? t0 : octave_position(k, t0), out);
}
