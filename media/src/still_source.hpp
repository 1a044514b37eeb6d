#pragma once
// One picture file, decoded whole.

#include "frame_decoder.hpp"
#include "media/image.hpp"

namespace media
{
struct decoded_still
{
    picture pixels;
    bool alpha = false;
};

decoded_still decode_still(frame_decoder& file);
} // namespace media
