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
} // namespace

namespace Loom
{
void RandomGenerator32::rand31pm_next() noexcept
{
    // In general: fmod((double)state * 16807.0, 2147483647.0), which is exact because the product stays below
    // 2^53.
    state_ = static_cast<std::uint32_t>(state_ * kMultiplier % kModulus);
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
