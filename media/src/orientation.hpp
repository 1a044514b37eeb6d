#pragma once
// How stored pictures have to be turned and mirrored to stand upright.

#include "av.hpp"
#include "media/image.hpp"

namespace media
{
// Applied in this order: rows and columns change places, then left and right, then top and bottom.
struct orientation
{
    bool transposes = false;
    bool flips_x = false;
    bool flips_y = false;

    bool upright() const { return !transposes && !flips_x && !flips_y; }
    int shown_width(const AVFrame& frame) const { return transposes ? frame.height : frame.width; }
    int shown_height(const AVFrame& frame) const { return transposes ? frame.width : frame.height; }
};

// As the stream says or, where it says nothing, the picture itself (a camera's JPEG). Other angles count as the
// nearest quarter turn, a broken matrix as none.
orientation orientation_of(const AVStream* stream, const AVFrame& frame);

// Fills `to`, which has the shown size, with the stored picture `from`.
void set_upright(const_image_view from, const orientation& how, image_view to);
} // namespace media
