#pragma once
// A second, plainly written way from the parameters to the strokes: every line as the list of samples that its
// stroke is made of. Nothing of the effect is used but the API's records; chance comes from a generator of its
// own, drawn in the order in which the effect promises to draw. Slow and generous with memory.
//
// The order of the draws:
//   without ends, both directions rippling (columns first, then rows), for each line:
//     width, ripple seed, ripple turbulence, place in its cell, opacity
//   without ends, one direction rippling:
//     for each straight line: place
//     for each rippled line: width, ripple seed, turbulence, place, one bend for each straight line, opacity
//     for each straight line again: width, opacity
//   with ends:
//     one draw that is kept; for each column: width, ripple seed, turbulence, place, start, growth (one step, and
//     the generator is then where that step left it), length, and opacity if the line has any extent; the kept
//     draw becomes the seed; for each row the same.
//   A ripple draws from a generator of its own: size, wavelength, speed, then its samples.

#include "tests/support/effect_fixture.hpp"

#include <cstdint>
#include <vector>

namespace reference
{
class park_miller
{
public:
    explicit park_miller(std::uint32_t seed) { reseed(seed); }
    void reseed(std::uint32_t seed) { state_ = seed == 0 ? 1.0 : static_cast<double>(seed); }
    std::uint32_t integer();
    float unit();

private:
    double state_ = 1.0;
};

// `value` spread by `percent` percent: one draw.
float spread(park_miller& chance, float value, float percent);

class ripple
{
public:
    ripple(std::uint32_t seed, int skip, std::int64_t frame, float turbulence, A_long width, A_long height,
           float size, float size_percent, float wavelength, float wavelength_percent, float speed,
           float speed_percent);

    bool base(float t, float* out) const;
    bool sum(float t, float* out) const;
    bool octave(int k, float t, float* out) const;
    std::size_t floats_carved() const { return samples_.size(); }

    int octaves = 0;
    float last_weight = 0.0f;
    std::int64_t count = 0;
    int size = 0;       // pixels
    int wavelength = 0; // pixels

private:
    float slid(int k, float t) const;

    float speed_ = 0.0f;
    std::int64_t frame_ = 0;
    std::vector<float> samples_;
};

struct sample
{
    float x;
    float y;
    float half_width;
};

// One piece handed to the rasteriser.
struct stroke
{
    int axis = 0;
    int alpha = 0;
    float inner_radius = 0.0f;
    float outer_radius = 0.0f;
    std::vector<sample> samples;
};

// Whether two strokes are the same to the bit (one NaN is as good as another).
bool same(const stroke& a, const stroke& b);

// The strokes of one frame, in the order of drawing.
std::vector<stroke> strokes_of(effect_fixture& host);
} // namespace reference
