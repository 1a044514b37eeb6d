// Ripples with any settings, at any position; ordinary ones against a second way.

#include "effect/model/curve.hpp"
#include "effect/model/frame_data.hpp"
#include "fuzz/byte_reader.hpp"
#include "fuzz/fuzz_host.hpp"
#include "fuzz/require.hpp"
#include "tests/support/reference_field.hpp"

#include <cmath>
#include <cstddef>
#include <cstring>
#include <vector>

namespace
{
constexpr std::size_t kPoolBytes = 1 << 16;

struct settings
{
    std::uint32_t seed;
    int skip;
    std::int64_t phase;
    float turbulence;
};

bool within(float v, float limit)
{
    return std::fabs(v) <= limit; // false for what is no number
}

// The second way has no answers of its own for what does not fit an integer.
bool ordinary(const frame_data& f, const settings& s)
{
    return f.width >= 0 && f.width <= 200 && f.height >= 0 && f.height <= 200 && s.phase >= 0 && s.phase <= 20 &&
           within(s.turbulence, 100.0f) && within(f.rippleSize, 1000.0f) && within(f.sizeRandomness, 2000.0f) &&
           within(f.rippleWavelength, 1000.0f) && within(f.frequencyRandomness, 100.0f) && f.speed >= 0.0f &&
           f.speed <= 20.0f && within(f.speedRandomness, 100.0f);
}

bool same(bool a_has, float a, bool b_has, float b)
{
    return a_has == b_has && (!a_has || std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b)));
}

void compare(const frame_data& f, const settings& s, const curve& ripple, const std::vector<float>& positions)
{
    const reference::ripple other(s.seed, s.skip, s.phase, s.turbulence, f.width, f.height, f.rippleSize,
                                  f.sizeRandomness, f.rippleWavelength, f.frequencyRandomness, f.speed,
                                  f.speedRandomness);
    fuzz::require(ripple.harmonics() == other.octaves, "a ripple has as many octaves as the second way's");
    if (other.wavelength < 2)
        return;
    for (const float t : positions)
    {
        if (!within(t, 1000.0f))
            continue;
        float a = 0.0f;
        float b = 0.0f;
        bool has_a = ripple.f(t, &a);
        bool has_b = other.base(t, &b);
        fuzz::require(same(has_a, a, has_b, b), "the base wave is the second way's");
        has_a = ripple.F(t, &a);
        has_b = other.sum(t, &b);
        fuzz::require(same(has_a, a, has_b, b), "the sum is the second way's");
        for (int k = 0; k <= 8; ++k)
        {
            has_a = ripple.F(k, t, &a);
            has_b = other.octave(k, t, &b);
            fuzz::require(same(has_a, a, has_b, b), "an octave is the second way's");
        }
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::byte_reader bytes(data, size);
    static fuzz::fuzz_host host; // for its table of functions alone
    std::vector<std::max_align_t> memory(kPoolBytes / sizeof(std::max_align_t));
    auto* const base = reinterpret_cast<std::byte*>(memory.data());
    mem_pool pool = {base, base, kPoolBytes - 8 * std::uint64_t{bytes.u16()} % kPoolBytes};

    frame_data frame;
    frame.pool = &pool;
    frame.in_data = &host.in_data;
    frame.width = bytes.any_i32();
    frame.height = bytes.any_i32();
    frame.rippleSize = bytes.any_f32();
    frame.sizeRandomness = bytes.any_f32();
    frame.rippleWavelength = bytes.any_f32();
    frame.frequencyRandomness = bytes.any_f32();
    frame.speed = bytes.any_f32();
    frame.speedRandomness = bytes.any_f32();
    settings s{};
    s.seed = bytes.u32();
    s.skip = static_cast<std::int8_t>(bytes.byte());
    s.turbulence = bytes.any_f32();
    s.phase = bytes.any_i32();
    const curve ripple(&frame, s.seed, s.skip, s.phase, s.turbulence);

    std::vector<float> positions;
    while (bytes.more())
        positions.push_back(bytes.any_f32());
    for (const float t : positions)
    {
        float v = 7.0f;
        if (!ripple.f(t, &v))
            fuzz::require(v == 7.0f, "where the base wave has no value nothing is written");
        ripple.F(t, &v);
        for (int k = -1; k <= 8; ++k)
            ripple.F(k, t, &v);
        fuzz::require(ripple.sampled() || !ripple.f(t, &v), "a ripple without samples has no value");
    }
    if (ripple.sampled() && ordinary(frame, s))
        compare(frame, s, ripple, positions);
    return 0;
}
