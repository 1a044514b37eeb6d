#pragma once
// From a request to everything that a render needs, with all that can be refused refused beforehand.

#include "command_line.hpp"

#include "host/frame_pool.hpp"
#include "media/compose.hpp"
#include "media/reader.hpp"
#include "media/writer.hpp"

namespace cli
{
struct render_plan
{
    explicit render_plan(const host::plugin& effect) : values(effect.params()) {}

    host::composition comp;
    host::frame_range range;
    bool length_known = true; // false: the range ends where the input does
    host::param_tracks values;
    std::optional<media::reader> input; // none: transparent
    media::write_options writing;
    media::background under;
    int jobs = 1;
    std::vector<std::string> notes;
};

// Throws usage_error, host::error or media::error.
render_plan prepare_render(const render_request& request, const host::plugin& effect);
} // namespace cli
