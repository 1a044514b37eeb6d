#pragma once
// Point records of the line generator.

// A point in canvas pixels, y down.
struct fpoint_t
{
    double x;
    double y;
};

// A point of a line. `angle` is the direction of the line's tangent in degrees: its slope is tan(angle), across
// per unit of running distance; 0 is a flat tangent.
struct curve_pt_t
{
    double x;
    double y;
    double angle;
};
