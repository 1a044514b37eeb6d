#pragma once
// Several frames at once, results in order, memory bounded by the number of jobs.

#include "host/render.hpp"

#include <atomic>
#include <functional>

namespace host
{
struct frame_range
{
    std::int32_t first = 0;
    std::int32_t last = 0; // included
};

// For every frame of the range, in order: `source(frame, input)` fills the input picture, transparent black before
// (called on one thread at a time, frames ascending; false ends the range early: no more input), a worker renders
// it, `finish(frame, output)` may change the finished picture and make what the sink will need of it (on the
// worker, for several frames at once, in any order), and `sink(frame, output)` is handed it (one thread at a time,
// frames ascending; it may use the pixels until it returns). Without a source (empty) every input is transparent
// black, without a finish nothing is done there. Frames for which `wanted(frame)` is false, asked as `source` is
// called and just before it, are left out; without it (empty) all are wanted. At most jobs + 2 frames are in
// flight. Frames are the same, bit for bit, for any number of jobs >= 1. `stop` set to true ends the work soon
// (after the frames in flight); the first exception from wanted, source, render, finish or sink ends it and is
// thrown here once all workers are idle. Returns the number of frames handed to the sink.
std::int32_t render_frames(const plugin& effect, const composition& comp, const param_tracks& values,
                           frame_range range, int jobs,
                           const std::function<bool(std::int32_t frame, image_view input)>& source,
                           const std::function<void(std::int32_t frame, const_image_view output)>& sink,
                           const std::atomic<bool>* stop = nullptr, const render_options& options = {},
                           const std::function<void(std::int32_t frame, image_view output)>& finish = {},
                           const std::function<bool(std::int32_t frame)>& wanted = {});
} // namespace host
