#pragma once
// One sample of a stroke.

#include "effect/pf/types.hpp"

// `x`, `y` in canvas pixels (pixel (0, 0) covers 0 to 1), `halfWidth` the stroke's radius there in pixels. Index 0
// of a stroke is the sample with the largest coordinate along the main axis; it decreases with the index, evenly.
struct StrokePoint
{
    float x;
    float y;
    float halfWidth;
    PF_Pixel color;
};
static_assert(sizeof(StrokePoint) == 16);
