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
} // namespace

encoder_frame::encoder_frame(AVPixelFormat format, int width, int height, AVColorSpace matrix, bool full_range)
    : frame_(with_buffer(format, width, height))
{
    if (is_rgb(format))
        return;
    frame_->colorspace = matrix;
    frame_->color_range = full_range ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    padded_ = with_buffer(AV_PIX_FMT_ARGB, width, height);
    scaler_.reset(sws_getContext(width, height, AV_PIX_FMT_ARGB, width, height, format, exact_scaling, nullptr,
                                 nullptr, nullptr));
    if (!scaler_)
        throw std::bad_alloc();
    sws_setColorspaceDetails(scaler_.get(), sws_getCoefficients(SWS_CS_DEFAULT), 1,
                             sws_getCoefficients(scaler_matrix(matrix)), full_range ? 1 : 0, 0, 1 << 16, 1 << 16);
}

AVFrame* encoder_frame::fill(const_image_view image)
{
    // The encoder may still hold the last one.
    if (av_frame_make_writable(frame_.get()) < 0)
        throw std::bad_alloc();
    if (!scaler_)
    {
        pack(image);
        return frame_.get();
    }
    for (int y = 0; y < padded_->height; ++y)
    {
        const std::uint8_t* from = image.row(std::min(y, image.height - 1));
        std::uint8_t* to = row_of(*padded_, y);
        std::memcpy(to, from, 4 * static_cast<std::size_t>(image.width));
        for (int x = image.width; x < padded_->width; ++x)
            std::memcpy(to + 4 * x, from + 4 * (image.width - 1), 4);
    }
    sws_scale(scaler_.get(), padded_->data, padded_->linesize, 0, padded_->height, frame_->data, frame_->linesize);
    if (frame_->format == AV_PIX_FMT_YUVA444P10)
        widen_alpha();
    return frame_.get();
}

// swscale shifts alpha to ten bits, which leaves 255 at 1020: not opaque to others.
void encoder_frame::widen_alpha()
{
    for (int y = 0; y < frame_->height; ++y)
    {
        const std::uint8_t* from = row_of(*padded_, y);
        std::uint8_t* to = frame_->data[3] + static_cast<std::ptrdiff_t>(y) * frame_->linesize[3];
        for (int x = 0; x < frame_->width; ++x)
        {
            const auto wide = static_cast<std::uint16_t>((from[4 * x] * 1023 + 127) / 255);
            std::memcpy(to + 2 * x, &wide, sizeof wide);
        }
    }
}

// Bytes in another order, without conversion.
void encoder_frame::pack(const_image_view image)
{
    const AVPixFmtDescriptor& format = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame_->format));
    const int component_of[4] = {3, 0, 1, 2}; // of alpha, red, green, blue
    for (int y = 0; y < image.height; ++y)
        for (int c = 0; c < 4; ++c)
        {
            if (component_of[c] >= format.nb_components)
                continue;
            const AVComponentDescriptor& comp = format.comp[component_of[c]];
            const std::uint8_t* from = image.row(y) + c;
            std::uint8_t* to = row_of(*frame_, y) + comp.offset;
            for (int x = 0; x < image.width; ++x)
                to[comp.step * x] = from[4 * x];
        }
}
} // namespace media
