// A ripple at many positions at once: plain loops of a fixed length over what curve::F does one position at a
// time, each operation rounded alike.

#include "effect/model/curve.hpp"

#include "effect/model/numeric.hpp"

#include <algorithm>
#include <limits>

namespace
{
constexpr int kBlock = curve::kBlock;

// The low 16 bits of each value, truncated: trunc_i16.
void truncate(const float* __restrict values, std::int32_t* __restrict out) noexcept
{
    for (int i = 0; i < kBlock; ++i)
        out[i] = static_cast<std::int32_t>(static_cast<std::uint32_t>(trunc_i32_select(values[i])) << 16U) >> 16;
}
} // namespace

void curve::waves(const float* __restrict t, float* __restrict out, std::int32_t* __restrict there) const noexcept
{
    const std::int32_t width = step_;
    const auto step = static_cast<float>(step_);
    const auto last =
        static_cast<std::int32_t>(std::min<std::int64_t>(count_ - 1, std::numeric_limits<std::int16_t>::max()));
    float place[kBlock];
    std::int32_t index[kBlock];
    for (int i = 0; i < kBlock; ++i)
        place[i] = t[i] / step;
    truncate(place, index);
    for (int i = 0; i < kBlock; ++i)
    {
        there[i] = (index[i] >= 0 ? -1 : 0) & (index[i] <= last ? -1 : 0);
        index[i] &= there[i];
    }

    std::int32_t highest = 0;
    for (int i = 0; i < kBlock; ++i)
        highest = index[i] > highest ? index[i] : highest;
    need_samples(highest + 2);

    float before[kBlock];
    float after[kBlock];
    for (int i = 0; i < kBlock; ++i)
    {
        before[i] = samples_[index[i]];
        after[i] = samples_[index[i] + 1];
    }
    for (int i = 0; i < kBlock; ++i)
    {
        const float u = (t[i] - static_cast<float>(index[i] * width)) / step;
        const float u2 = u * u;
        const float u3 = u2 * u;
        out[i] = (2.0f * u3 - 3.0f * u2 + 1.0f) * before[i] + (-2.0f * u3 + 3.0f * u2) * after[i];
    }
}

void curve::sums(const float* __restrict t, float* __restrict out, std::int32_t* __restrict there) const noexcept
{
    if (samples_ == nullptr || step_ == 0 || count_ < 1)
    {
        std::fill_n(there, kBlock, 0);
        return;
    }
    float t0[kBlock];
    for (int i = 0; i < kBlock; ++i)
        t0[i] = static_cast<float>(step_) + t[i];
    waves(t0, out, there);

    float position[kBlock];
    float v[kBlock];
    std::int32_t also[kBlock];
    const int last = octaves_ < 1 ? 1 : octaves_;
    for (int k = 1; k <= last; ++k)
    {
        const auto pace = static_cast<double>(2 * k);
        const auto slide = static_cast<double>(octave_slide(k));
        for (int i = 0; i < kBlock; ++i)
            position[i] = static_cast<float>(pace * static_cast<double>(t0[i]) + slide);
        waves(position, v, also);
        const auto part = static_cast<float>(2 * k);
        if (k < last)
        {
            for (int i = 0; i < kBlock; ++i)
                out[i] += v[i] / part;
            for (int i = 0; i < kBlock; ++i)
                there[i] &= also[i];
            continue;
        }
        const float weight = last_weight_;
        for (int i = 0; i < kBlock; ++i)
            v[i] = out[i] + weight * v[i] / part;
        for (int i = 0; i < kBlock; ++i)
            out[i] = also[i] != 0 ? v[i] : out[i];
    }
}
