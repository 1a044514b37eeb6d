#pragma once
// One picture as the bytes of a file.

#include "av.hpp"
#include "media/image.hpp"

namespace media
{
// `encoder` is libav's name: png, mjpeg, tiff, bmp or libwebp. `name` stands in messages.
av::owner<AVPacket> encode_still(const std::string& encoder, const_image_view image, const std::string& name);
} // namespace media
