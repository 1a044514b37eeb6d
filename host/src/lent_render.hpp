#pragma once
// A frame whose pictures are lent to the effect, not copied for it: for callers inside the library.

#include "host/render.hpp"

namespace host
{
// As render_frame; the pictures do not overlap. Outside checked mode an effect that breaks its word and writes to
// its input does so to `input`.
render_stats render_lent_frame(const plugin& effect, const composition& comp, const param_tracks& values,
                               std::int32_t frame, image_view input, image_view output,
                               const render_options& options);

// Throws host::error where no frame of this size or with these options can be rendered.
void check_renderable(const composition& comp, const render_options& options);
} // namespace host
