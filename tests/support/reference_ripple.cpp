// Chance and ripples of the second way: see reference_field.hpp.

#include "tests/support/reference_field.hpp"

#include <cmath>

namespace reference
{
namespace
{

double d(float v)
{
    return static_cast<double>(v);
}

float f(double v)
{
    return static_cast<float>(v);
}
} // namespace

std::uint32_t park_miller::integer()
{
    state_ = std::fmod(state_ * 16807.0, 2147483647.0);
    return static_cast<std::uint32_t>(state_);
}

float park_miller::unit()
{
    return f(integer() / 2147483647.0);
}

float spread(park_miller& chance, float value, float percent)
{
    const float product = value * percent;
    const float either_way = product / 100.0f;
    const float low = value - either_way;
    const float high = value + either_way;
    return f(d(low) + d(chance.unit()) * (d(high) - d(low)));
}

ripple::ripple(std::uint32_t seed, int skip, std::int64_t frame, float turbulence, A_long width, A_long height,
               float size_px, float size_percent, float wavelength_px, float wavelength_percent, float speed,
               float speed_percent)
    : frame_(frame)
{
    octaves = turbulence < 2.0f ? 2 : turbulence > 7.0f ? 7 : static_cast<int>(turbulence);
    const int bands = octaves > 2 ? octaves * 2 : octaves;
    last_weight = f(d(turbulence) - std::floor(d(turbulence)));
    park_miller chance(seed);
    size = static_cast<int>(spread(chance, size_px, size_percent));
    wavelength = static_cast<int>(spread(chance, wavelength_px, wavelength_percent));
    speed_ = spread(chance, speed, speed_percent);
    const float slid_by = static_cast<float>(frame) * speed_;
    count = static_cast<std::int64_t>(slid_by + f(std::hypot(height, width)));
    for (int i = 0; i < skip; ++i)
        chance.unit();
    for (std::int64_t i = 0; i < count * (bands + 1); ++i)
        samples_.push_back(f(-1.0 * size + d(chance.unit()) * (2.0 * size)));
    samples_.push_back(0.0f);
}

bool ripple::base(float t, float* out) const
{
    const float period = static_cast<float>(wavelength);
    const int i = static_cast<int>(t / period);
    if (t / period <= -1.0f || i >= count)
        return false;
    const float u = (t - static_cast<float>(i * wavelength)) / period;
    const float square = u * u;
    const float cube = square * u;
    const float falling = 2.0f * cube - 3.0f * square + 1.0f;
    const float rising = -2.0f * cube + 3.0f * square;
    const auto at = static_cast<std::size_t>(i);
    *out = falling * samples_[at] + rising * samples_[at + 1];
    return true;
}

float ripple::slid(int k, float t) const
{
    const float start = static_cast<float>(wavelength) + t;
    const float by = static_cast<float>(frame_) * (static_cast<float>(k) + speed_);
    return k == 0 ? start : f(2.0 * k * d(start) + d(by));
}

bool ripple::octave(int k, float t, float* out) const
{
    return k <= octaves && base(slid(k, t), out);
}

bool ripple::sum(float t, float* out) const
{
    float total = 0.0f;
    for (int k = 0; k <= octaves; ++k)
    {
        float v = 0.0f;
        if (!base(slid(k, t), &v))
        {
            if (k < octaves)
                return false;
            break;
        }
        if (k == octaves)
            v = last_weight * v;
        total = k == 0 ? v : total + v / (2.0f * static_cast<float>(k));
    }
    *out = total;
    return true;
}

} // namespace reference
