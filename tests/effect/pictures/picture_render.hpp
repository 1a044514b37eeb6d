#pragma once
// One case through the plug-in's file, in the host library's checked mode.

#include "picture_cases.hpp"

#include "host/frame_pool.hpp"
#include "host/render.hpp"
#include "media/image.hpp"

namespace pictures
{
// The plug-in under test: the one just built, or the file that the environment variable FILIGRANE_PLUGIN names.
const host::plugin& effect();

host::composition composition_of(const picture_case& c);
host::render_options options_of(const picture_case& c);
host::param_tracks values_of(const picture_case& c);

// What the effect is laid over: soft colours, a hard-edged board, and some transparency, all from the position.
media::picture input_picture(int width, int height);

media::picture render(const picture_case& c);

inline host::const_image_view as_host(media::const_image_view v)
{
    return {v.argb, v.width, v.height, v.rowbytes};
}
inline host::image_view as_host(media::image_view v)
{
    return {v.argb, v.width, v.height, v.rowbytes};
}
} // namespace pictures
