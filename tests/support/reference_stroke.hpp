#pragma once
// Strokes drawn by brute force: every pixel of the canvas looks at every sample and at every position that bridges
// a gap. Written from what a stroke is, not from how the rasteriser finds it; single precision throughout.

#include "effect/raster/stroke_point.hpp"

#include <cmath>
#include <vector>

namespace reference
{
struct stroke
{
    std::vector<StrokePoint> samples; // largest main coordinate first
    int axis = 0;                     // 0 along x, 1 along y
    int samples_per_pixel = 2;
    float core_opacity = 1.0f;
    bool monocolor = false;
    const float* coverage = nullptr; // rows of 256: hundredths of edge by 255ths of the sine
};

// A place that a pixel can be nearest to.
struct place
{
    float x, y, radius;
    PF_Pixel color;
};

inline std::uint8_t mixed(std::uint8_t a, std::uint8_t b, float t)
{
    const float v = a * t + b * (1.0f - t);
    return static_cast<std::uint8_t>(static_cast<int>(v));
}

// The positions between two neighbouring samples, from the one with the higher index; none but for a steep step at
// high quality.
inline void add_bridge(std::vector<place>& places, const stroke& s, const StrokePoint& from, const StrokePoint& to)
{
    const float across = s.axis == 0 ? to.y - from.y : to.x - from.x;
    if (s.samples_per_pixel < 2 || !(static_cast<double>(std::fabs(across)) > 1.2))
        return;
    const int n = static_cast<int>(std::fabs(across) * static_cast<float>(s.samples_per_pixel));
    const float step_x = (to.x - from.x) / static_cast<float>(n + 1);
    const float step_y = (to.y - from.y) / static_cast<float>(n + 1);
    for (int m = 1; m <= n; ++m)
    {
        const float t = static_cast<float>(n - (m - 1)) / static_cast<float>(n);
        place p{};
        p.x = from.x + step_x * static_cast<float>(m);
        p.y = from.y + step_y * static_cast<float>(m);
        p.radius = from.halfWidth * t + (1.0f - t) * to.halfWidth;
        p.color.alpha = mixed(from.color.alpha, to.color.alpha, t);
        p.color.red = mixed(from.color.red, to.color.red, t);
        p.color.green = mixed(from.color.green, to.color.green, t);
        p.color.blue = mixed(from.color.blue, to.color.blue, t);
        places.push_back(p);
    }
}

// All places of the stroke from sample `last` up to sample `first`, `first` (the lowest main coordinate) first.
// A sample is passed over where `counts` says so; its bridges are not.
template <class Counts>
std::vector<place> places_of(const stroke& s, int first, int last, Counts counts)
{
    std::vector<place> places;
    for (int i = first; i >= last; --i)
    {
        const StrokePoint& sample = s.samples[static_cast<std::size_t>(i)];
        if (i != first)
            add_bridge(places, s, s.samples[static_cast<std::size_t>(i + 1)], sample);
        if (counts(sample))
            places.push_back({sample.x, sample.y, sample.halfWidth, sample.color});
    }
    return places;
}

// What pixel (x, y) becomes, given the places it may be nearest to. False where it is left alone. `edge`: how far
// the pixel's centre lies within the reach of its place, pixels; 1 at the rim.
inline bool shade(const stroke& s, const std::vector<place>& places, int x, int y, PF_Pixel* out,
                  float* edge_out = nullptr)
{
    const float cx = static_cast<float>(x) + 0.5f;
    const float cy = static_cast<float>(y) + 0.5f;
    float nearest = 16777215.0f; // squared; farther is nowhere
    const place* found = nullptr;
    for (const place& p : places)
    {
        const float squared = (cx - p.x) * (cx - p.x) + (cy - p.y) * (cy - p.y);
        if (squared < nearest)
        {
            nearest = squared;
            found = &p;
        }
    }
    if (found == nullptr)
        return false;
    const float distance = static_cast<float>(std::sqrt(static_cast<double>(nearest)));
    const float edge = 1.0f - (distance - found->radius);
    if (edge_out != nullptr)
        *edge_out = edge;
    if (!(edge > 0.0f))
        return false;

    *out = s.monocolor ? s.samples[0].color : found->color;
    if (s.samples_per_pixel < 2)
        return true;
    float fall = 1.0f;
    if (s.core_opacity != 1.0f && distance > 0.0f)
        fall = 1.0f - (1.0f - s.core_opacity) * (distance / found->radius);
    out->alpha = fall > 0.0f ? static_cast<std::uint8_t>(static_cast<int>(out->alpha * fall)) : std::uint8_t{0};
    if (edge < 2.0f)
    {
        const float sine = distance > 0.0f ? std::fabs(cy - found->y) / distance : 0.0f;
        const int row = static_cast<int>(edge * 100.0f);
        const int column = static_cast<int>(sine * 255.0f);
        out->alpha = static_cast<std::uint8_t>(static_cast<int>(out->alpha * s.coverage[row * 256 + column]));
    }
    return true;
}
} // namespace reference
