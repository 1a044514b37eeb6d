#pragma once
// What can be timed, one function each.

#include "bench/report.hpp"

namespace bench
{
// Strokes of five kinds against Cairo, AGG and the plain functions.
void time_strokes(run& r);
// Ten times the radius, the same line.
void time_wide_strokes(run& r);
// Whole frames of the plug-in's file, fast against plain.
void time_frames(run& r);
// The same frames at three sizes and both qualities, the effect's part and the host's.
void time_frame_matrix(run& r);
// Frames in a row on one job and on two.
void time_jobs(run& r);
// A frame of every look.
void time_looks(run& r);
// A line from its ripple to its samples, stage by stage.
void time_layout(run& r);
// Swept boxes, pixel functions and flushing.
void time_raster(run& r);
// The host's compositing and sampling, against pixman where it has the same.
void time_host(run& r);
// Frames over their number of lines, width, size, number and turbulence.
void time_growth(run& r);
} // namespace bench
