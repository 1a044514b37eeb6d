#include "effect/model/random.hpp"

#include "effect/model/numeric.hpp"

#include <cstring>

namespace
{
constexpr std::uint64_t kMultiplier = 16807;
constexpr std::uint64_t kModulus = 2147483647; // 2^31 - 1, a prime

// One parameter's value slot at frame `i`, read as a double. False where the host refuses the check-out.
bool checked_out_value(PF_InData* in_data, int index, std::int64_t i, double* value)
{
    PF_ParamDef def;
    std::memset(&def, 0, sizeof def);
    const A_long what_time = wrap_mul(static_cast<A_long>(i), in_data->time_step);
    const PF_Err err = in_data->inter.checkout_param(in_data->effect_ref, index, what_time, in_data->time_step,
                                                     in_data->time_scale, &def);
    if (err != PF_Err_NONE)
        return false;
    std::memcpy(value, &def.u, sizeof *value);
    in_data->inter.checkin_param(in_data->effect_ref, &def);
    return true;
}

// product mod 2^31 - 1, for products below 2^62: 2^31 is 1 there, so the bits above the lowest 31 count as if they
// were shifted down to them.
std::uint32_t reduced(std::uint64_t product) noexcept
{
    const auto folded = static_cast<std::uint32_t>((product & kModulus) + (product >> 31U)); // below 2 * modulus
    return folded >= kModulus ? folded - static_cast<std::uint32_t>(kModulus) : folded;
}

constexpr int kStreams = 4;
constexpr std::uint64_t kLeap = // kStreams steps at once
    kMultiplier * kMultiplier % kModulus * (kMultiplier * kMultiplier % kModulus) % kModulus;

constexpr int kBlock = 64; // draws worked on at a time

// The next kBlock states after `state`, which becomes the last of them. They are stepped as kStreams sequences
// that do not wait for each other.
void next_states(std::uint32_t* state, std::int32_t* states) noexcept
{
    std::uint32_t stream[kStreams];
    std::uint32_t s = *state;
    for (std::uint32_t& first : stream)
        first = s = reduced(s * kMultiplier);
    for (int i = 0; i < kBlock; i += kStreams)
        for (int k = 0; k < kStreams; ++k)
        {
            states[i + k] = static_cast<std::int32_t>(stream[k]);
            stream[k] = reduced(stream[k] * kLeap);
        }
    *state = static_cast<std::uint32_t>(states[kBlock - 1]);
}
} // namespace

namespace Loom
{
void RandomGenerator32::rand31pm_next() noexcept
{
    // In general: fmod((double)state * 16807.0, 2147483647.0), which is exact because the product stays below
    // 2^53.
    state_ = reduced(state_ * kMultiplier);
}

void RandomGenerator32::fill(double lo, double hi, float* out, std::int64_t count) noexcept
{
    const double spread = hi - lo;
    std::int32_t states[kBlock];
    float share[kBlock];
    for (; count >= kBlock; count -= kBlock, out += kBlock)
    {
        next_states(&state_, states);
        for (int i = 0; i < kBlock; ++i)
            share[i] = static_cast<float>(static_cast<double>(states[i]) / 2147483647.0);
        for (int i = 0; i < kBlock; ++i)
            out[i] = static_cast<float>(lo + static_cast<double>(share[i]) * spread);
    }
    for (; count > 0; --count, ++out)
        *out = static_cast<float>(lo + static_cast<double>(GetNextRandom()) * spread);
}

float RandomGenerator32::GetNextRandom() noexcept
{
    rand31pm_next();
    return static_cast<float>(static_cast<double>(state_) / 2147483647.0);
}

unsigned int RandomGenerator32::GetNextRandomInt() noexcept
{
    rand31pm_next();
    return state_;
}
} // namespace Loom

float rand_param(Loom::RandomGenerator32& gen, float value, float randomness) noexcept
{
    const float spread = value * randomness / 100.0f;
    const float lo = value - spread;
    const float hi = value + spread;
    return static_cast<float>(MATH_Rand_IMP(gen).random(static_cast<double>(lo), static_cast<double>(hi)));
}

float sum_param_rnd(Loom::RandomGenerator32& gen, PF_InData* in_data, int valueIndex, int randomnessIndex,
                    int frames)
{
    const unsigned int saved = gen.GetNextRandomInt();
    float sum = 0.0f;
    for (std::int64_t i = 0; i <= frames; ++i)
    {
        double randomness = 0.0;
        double value = 0.0;
        if (!checked_out_value(in_data, randomnessIndex, i, &randomness) ||
            !checked_out_value(in_data, valueIndex, i, &value))
            return 0.0f;
        sum += rand_param(gen, static_cast<float>(value), static_cast<float>(randomness));
    }
    gen.ReSeed(saved);
    return sum;
}
