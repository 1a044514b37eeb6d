#include "encoder_frame.hpp"

#include "argb_converter.hpp"

#include <algorithm>
#include <cstring>
#include <new>

namespace media
{
namespace
{
av::owner<AVFrame> with_buffer(AVPixelFormat format, int width, int height)
{
    av::owner<AVFrame> frame = av::new_frame();
    frame->format = format;
    frame->width = width;
    frame->height = height;
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        throw std::bad_alloc();
    return frame;
}

std::uint8_t* row_of(AVFrame& frame, int y)
{
    return frame.data[0] + static_cast<std::ptrdiff_t>(y) * frame.linesize[0];
}

bool is_rgb(AVPixelFormat format)
{
    return (av_pix_fmt_desc_get(format)->flags & AV_PIX_FMT_FLAG_RGB) != 0;
}

// A row of pixels with the bytes in another order: byte i of a pixel is byte From[i] of its alpha, red, green,
// blue.
template <int... From>
void reorder(const std::uint8_t* from, std::uint8_t* to, int count)
{
    constexpr int order[] = {From...};
    constexpr int bytes = sizeof...(From);
    for (int x = 0; x < count; ++x)
        for (int i = 0; i < bytes; ++i)
            to[bytes * x + i] = from[4 * x + order[i]];
}

void pack(const_image_view image, AVFrame& frame)
{
    auto* row = reorder<0, 1, 2, 3>;
    if (frame.format == AV_PIX_FMT_RGBA)
        row = reorder<1, 2, 3, 0>;
    if (frame.format == AV_PIX_FMT_BGRA)
        row = reorder<3, 2, 1, 0>;
    if (frame.format == AV_PIX_FMT_BGR24)
        row = reorder<3, 2, 1>;
    for (int y = 0; y < image.height; ++y)
        row(image.row(y), row_of(frame, y), image.width);
}

// swscale shifts alpha to ten bits, which leaves 255 at 1020: not opaque to others.
void widen_alpha(AVFrame& argb, AVFrame& frame)
{
    for (int y = 0; y < frame.height; ++y)
    {
        const std::uint8_t* from = row_of(argb, y);
        std::uint8_t* to = frame.data[3] + static_cast<std::ptrdiff_t>(y) * frame.linesize[3];
        for (int x = 0; x < frame.width; ++x)
        {
            const auto wide = static_cast<std::uint16_t>((from[4 * x] * 1023 + 127) / 255);
            std::memcpy(to + 2 * x, &wide, sizeof wide);
        }
    }
}
} // namespace

encoder_frame::encoder_frame(AVPixelFormat format, int width, int height, AVColorSpace matrix, bool full_range)
    : format_(format), width_(width), height_(height), matrix_(matrix), full_range_(full_range)
{
    if (is_rgb(format))
        return;
    padded_ = with_buffer(AV_PIX_FMT_ARGB, width, height);
    scaler_.reset(sws_getContext(width, height, AV_PIX_FMT_ARGB, width, height, format, exact_scaling, nullptr,
                                 nullptr, nullptr));
    if (!scaler_)
        throw std::bad_alloc();
    sws_setColorspaceDetails(scaler_.get(), sws_getCoefficients(SWS_CS_DEFAULT), 1,
                             sws_getCoefficients(scaler_matrix(matrix)), full_range ? 1 : 0, 0, 1 << 16, 1 << 16);
}

av::owner<AVFrame> encoder_frame::make(const_image_view image)
{
    av::owner<AVFrame> frame = with_buffer(format_, width_, height_);
    if (!scaler_)
    {
        pack(image, *frame);
        return frame;
    }
    frame->colorspace = matrix_;
    frame->color_range = full_range_ ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    for (int y = 0; y < padded_->height; ++y)
    {
        const std::uint8_t* from = image.row(std::min(y, image.height - 1));
        std::uint8_t* to = row_of(*padded_, y);
        std::memcpy(to, from, 4 * static_cast<std::size_t>(image.width));
        for (int x = image.width; x < padded_->width; ++x)
            std::memcpy(to + 4 * x, from + 4 * (image.width - 1), 4);
    }
    sws_scale(scaler_.get(), padded_->data, padded_->linesize, 0, padded_->height, frame->data, frame->linesize);
    if (format_ == AV_PIX_FMT_YUVA444P10)
        widen_alpha(*padded_, *frame);
    return frame;
}
} // namespace media
