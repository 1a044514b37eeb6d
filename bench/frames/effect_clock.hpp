#pragma once
// Which part of a render is the effect's own. The host's callbacks are wrapped so that a clock stands meanwhile;
// calls for every pixel are too short for that: of `iterate`, which calls the effect back, the host's part is what
// the same iteration takes with nothing but the two samples a pixel that a displacement asks for. The maths table
// is left alone: what an effect calculates is its own.

#include "host/plugin.hpp"

namespace bench
{
// What is left of a frame's time when the host's part is taken off, and the host's part; seconds. The clock is a
// wall clock: what other processes took meanwhile is taken off both parts alike.
struct frame_times
{
    double effect = 0.0;
    double host = 0.0;
};

// The plug-in's file, with the clock around its entry point. One thread renders.
const host::plugin& clocked_effect();

// Of the last render.
frame_times last_frame_times();
} // namespace bench
