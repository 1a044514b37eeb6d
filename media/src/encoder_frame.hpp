#pragma once
// ARGB bytes as the frames that an encoder takes.

#include "av.hpp"
#include "media/image.hpp"

namespace media
{
class encoder_frame
{
public:
    // `format` is RGBA, BGRA, BGR24, ARGB or a YUV format. `width` and `height` may exceed the pictures' (by a
    // pixel, where the format needs even sizes): the last column and row are repeated. `matrix` and `full_range`
    // are the YUV formats'.
    encoder_frame(AVPixelFormat format, int width, int height, AVColorSpace matrix, bool full_range);

    // The picture in the encoder's format. For one thread at a time.
    av::owner<AVFrame> make(const_image_view image);

private:
    AVPixelFormat format_;
    int width_;
    int height_;
    AVColorSpace matrix_;
    bool full_range_;
    av::owner<AVFrame> padded_; // YUV: the ARGB picture at the frame's size
    av::owner<SwsContext> scaler_;
};
} // namespace media
