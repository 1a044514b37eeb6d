#pragma once
// One frame through an effect. The host serves every callback on the calling thread; several frames may be
// rendered at once from several threads, each with its own call.

#include "host/image.hpp"
#include "host/parameters.hpp"
#include "host/plugin.hpp"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace host
{
// How frames are timed and sized. A frame f is at time f * time_step, in units of 1/time_scale second.
struct composition
{
    int width = 0; // of the layer at full resolution, pixels
    int height = 0;
    std::int32_t time_step = 1;
    std::uint32_t time_scale = 25;
    std::int32_t total_frames = 1;
    int downsample = 1; // 1 to 4: pictures are ceil(width / downsample) by ceil(height / downsample)
    // Any other reduction, each way for itself: where a numerator is not 0, `downsample` does not count and the
    // picture's side is ceil(side * num / den). Numerators are at most their denominators.
    PF_RationalScale reduce_x{0, 1};
    PF_RationalScale reduce_y{0, 1};
    PF_Quality quality = PF_Quality_HI;

    PF_RationalScale scale_x() const; // of a picture to its layer, as the effect is told
    PF_RationalScale scale_y() const;
    int picture_width() const;
    int picture_height() const;
};

struct render_options
{
    // Guard bytes, disposal, checkout, padding and input checks; a violation throws host::error that says which
    // host call or object it was.
    bool checked = false;
    // Measure the time spent inside host callbacks (costs two clock reads a call).
    bool timed = false;
    // When set, every host call of the render is appended as one line of text (arguments included), in order.
    std::vector<std::string>* log = nullptr;
    // When not empty: called before each counted callback with its name and 1-based count in this render; a
    // non-zero answer makes that call fail (the code is its result; null for handle calls) without doing its work.
    std::function<PF_Err(const char* callback, int nth)> fail;
    // Extra bytes at the end of every row of every world the host makes, the output and the input copy included.
    // Multiples of 4.
    int row_padding = 0;
    // Leave these four handle callbacks null, for hosts that have none.
    bool no_handle_callbacks = false;
    std::int32_t appl_id = 0x46585443;
};

struct render_stats
{
    PF_Err result = PF_Err_NONE;    // the effect's own answer
    double total_seconds = 0.0;     // the whole render command; 0 unless timed
    double host_seconds = 0.0;      // of which inside host callbacks
    std::uint64_t handle_bytes = 0; // the largest handle the effect asked for
};

// Renders frame `frame` (any integer). `input` must be picture_width by picture_height; `output` the same size,
// and is overwritten whole; after an exception it holds something or other. The input is not changed, unless both
// are the same memory, which they may be. Throws host::error where sizes do not match, where the effect's answer
// is an error (unless `fail` is set) or, in checked mode, on a violation. The effect's `plugin` keeps the memory
// of a frame for the next ones.
render_stats render_frame(const plugin& effect, const composition& comp, const param_tracks& values,
                          std::int32_t frame, const_image_view input, image_view output,
                          const render_options& options = {});
} // namespace host
