#pragma once
// The frames of a plan, from the input through the effect to the output.

#include "progress.hpp"
#include "render_setup.hpp"

namespace cli
{
// Milliseconds over all frames.
struct time_spent
{
    double input = 0.0;  // decoding, scaling down
    double effect = 0.0; // the render without what the host did for it
    double host = 0.0;   // inside the host's callbacks
    double output = 0.0; // laying over the background, encoding
};

struct frames_done
{
    std::int32_t drawn = 0;
    std::int32_t found = 0; // that were there already

    std::int32_t all() const { return drawn + found; }
};

// Answers how many frames are done: fewer than planned where the input ended or a stop was asked for.
frames_done render_all(render_plan& plan, const host::plugin& effect, media::writer& output, progress& shown);
// The same with one job, measured.
frames_done render_all_timed(render_plan& plan, const host::plugin& effect, media::writer& output, progress& shown,
                             time_spent& spent);
} // namespace cli
