#pragma once
// Decoded pictures as straight ARGB bytes. RGB and grey of every depth are exact (16 bits are rounded to nearest);
// YUV goes through swscale with the matrix and range that the picture names, or that its kind implies.

#include "av.hpp"
#include "media/image.hpp"

namespace media
{
class argb_converter
{
public:
    // `codec` tells what an untagged picture means. `out` has the frame's size.
    void convert(const AVFrame& frame, AVCodecID codec, image_view out);

    static bool has_alpha(const AVFrame& frame);

private:
    void scale(const AVFrame& frame, AVCodecID codec, image_view out);

    av::owner<SwsContext> scaler_;
    av::owner<AVFrame> scaled_; // swscale writes past a row's end: never straight into the caller's pixels
    int width_ = 0, height_ = 0, format_ = -1, matrix_ = -1, full_range_ = -1; // what scaler_ was made for
};

// The matrix of an untagged picture: BT.709 for high definition, BT.601 for less.
AVColorSpace matrix_for_size(int width, int height);
// swscale's table number for a matrix.
int scaler_matrix(AVColorSpace space);
// Slow and right: full chroma on both sides, rounded, the same bits on every machine.
constexpr int exact_scaling =
    SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP | SWS_BITEXACT;
} // namespace media
