#pragma once
// Lines like the effect's ripples: sums of three sines across the whole frame, the same in every run.

#include "effect/raster/stroke_point.hpp"

#include <vector>

namespace bench
{
struct point
{
    double x;
    double y;
};

// One line as everybody draws it, in pixels of a frame with its top-left corner at (0, 0).
struct wave_stroke
{
    int axis = 0; // 0 along x, 1 along y
    float radius = 0.0f;
    std::vector<StrokePoint> one_color;  // two samples a pixel, the largest main coordinate first
    std::vector<StrokePoint> per_sample; // width 0.8 to 1.2 times the radius, a colour each
    std::vector<point> center;           // the same samples
    std::vector<point> outline;          // the band that a disc of the radius sweeps, a closed polygon
};

// `columns` vertical and `rows` horizontal lines, evenly spread.
std::vector<wave_stroke> wave_strokes(int width, int height, int columns, int rows, float radius);
} // namespace bench
