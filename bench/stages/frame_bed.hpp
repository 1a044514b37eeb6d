#pragma once
// The record of a frame in the middle of a render, as the layout of lines finds it: the host's parameters
// converted, both canvases made, the rasteriser pointed at them. Nothing is drawn that the caller does not draw.

#include "bench/frames/frame_scene.hpp"

#include "effect/model/frame_data.hpp"
#include "effect/raster/aeg.hpp"

#include <functional>

namespace bench
{
struct frame_bed
{
    frame_data& frame;
    aeg& context;
};

// Runs `work` inside a render of the scene at 1920x1080. What it throws ends the render with a host::error.
void in_a_frame(const frame_scene& scene, PF_Quality quality, const std::function<void(frame_bed&)>& work);
} // namespace bench
