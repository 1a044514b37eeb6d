#pragma once
// The across coordinates of a line with tangents at many positions: what sp_line::value computes anew for each of
// them, with all that belongs to a segment kept while positions stay on it.

#include "effect/layout/sp_line.hpp"

// Tangents through the host's table, the latest few kept: lines that bend at one crossing share most of theirs.
class tangent_memory
{
public:
    explicit tangent_memory(const PF_ANSICallbacks& ansi) noexcept : tan_(ansi.tan) {}

    // tan of an angle in degrees, single precision.
    float of(double angle);

private:
    static constexpr int kKept = 2;

    double (*tan_)(double);
    double angle_[kKept] = {};
    float slope_[kKept] = {};
    int kept_ = 0;
    int oldest_ = 0;
};

class rising_values
{
public:
    rising_values() = default; // of no line

    // For the line's points as they are now.
    rising_values(const sp_line& line, tangent_memory& tangents) noexcept : line_(&line), tangents_(&tangents) {}

    // The same answer as line.value(t, out), for positions in any order. Not of no line.
    bool value(float t, float* out);

private:
    void enter(int segment);

    const sp_line* line_ = nullptr;
    tangent_memory* tangents_ = nullptr;
    int segment_ = -1; // what the following belongs to
    double length_ = 0.0;
    double slope_before_ = 0.0;
    double slope_after_ = 0.0;
};
