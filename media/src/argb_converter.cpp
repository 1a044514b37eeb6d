#include "argb_converter.hpp"

#include <cstring>
#include <new>
#include <vector>

namespace media
{
namespace
{
bool is_yuv(const AVPixFmtDescriptor& format)
{
    const bool colored = format.nb_components >= 3;
    return colored && (format.flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) == 0;
}

// Pictures of these kinds are defined to be BT.601 at any size.
bool always_601(AVCodecID codec)
{
    return codec == AV_CODEC_ID_MJPEG || codec == AV_CODEC_ID_WEBP || codec == AV_CODEC_ID_VP8;
}

AVColorSpace matrix_of(const AVFrame& frame, AVCodecID codec)
{
    if (frame.colorspace != AVCOL_SPC_UNSPECIFIED && frame.colorspace != AVCOL_SPC_RGB)
        return frame.colorspace;
    return always_601(codec) ? AVCOL_SPC_SMPTE170M : matrix_for_size(frame.width, frame.height);
}

bool is_full_range(const AVFrame& frame)
{
    switch (frame.format)
    {
    case AV_PIX_FMT_YUVJ420P:
    case AV_PIX_FMT_YUVJ422P:
    case AV_PIX_FMT_YUVJ444P:
    case AV_PIX_FMT_YUVJ440P:
    case AV_PIX_FMT_YUVJ411P:
        return true;
    default:
        return frame.color_range == AVCOL_RANGE_JPEG;
    }
}

// Where each of alpha, red, green, blue stands among a format's components; -1: opaque.
struct component_order
{
    int argb[4];
};

component_order order_of(const AVPixFmtDescriptor& format)
{
    const int count = format.nb_components;
    const bool alpha = (format.flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
    if (count <= 2) // grey
        return {{alpha ? 1 : -1, 0, 0, 0}};
    return {{alpha ? 3 : -1, 0, 1, 2}};
}

// Eight bits a component, each a whole byte: read in place.
bool is_bytes(const AVPixFmtDescriptor& format)
{
    for (int c = 0; c < format.nb_components; ++c)
        if (format.comp[c].depth != 8 || format.comp[c].shift != 0)
            return false;
    return (format.flags & (AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM | AV_PIX_FMT_FLAG_FLOAT)) == 0;
}

void fill_opaque(image_view out)
{
    for (int y = 0; y < out.height; ++y)
        for (int x = 0; x < out.width; ++x)
            out.row(y)[4 * x] = 255;
}

void copy_bytes(const AVFrame& frame, const AVPixFmtDescriptor& format, image_view out)
{
    const component_order order = order_of(format);
    for (int y = 0; y < out.height; ++y)
        for (int c = 0; c < 4; ++c)
        {
            if (order.argb[c] < 0)
                continue;
            const AVComponentDescriptor& comp = format.comp[order.argb[c]];
            const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(y) * frame.linesize[comp.plane];
            const std::uint8_t* from = frame.data[comp.plane] + start + comp.offset;
            std::uint8_t* to = out.row(y) + c;
            for (int x = 0; x < out.width; ++x)
                to[4 * x] = from[static_cast<std::ptrdiff_t>(comp.step) * x];
        }
    if (order.argb[0] < 0)
        fill_opaque(out);
}

void copy_palette(const AVFrame& frame, image_view out)
{
    for (int y = 0; y < out.height; ++y)
    {
        const std::uint8_t* from = frame.data[0] + static_cast<std::ptrdiff_t>(y) * frame.linesize[0];
        std::uint8_t* to = out.row(y);
        for (int x = 0; x < out.width; ++x, to += 4)
        {
            std::uint32_t color = 0; // entries are 0xAARRGGBB in the machine's own byte order
            std::memcpy(&color, frame.data[1] + 4 * from[x], sizeof color);
            for (int c = 0; c < 4; ++c)
                to[c] = static_cast<std::uint8_t>(color >> (24 - 8 * c));
        }
    }
}

// One component of any depth and packing into channel `c` of the output, scaled to 8 bits and rounded to nearest.
void copy_component(const AVFrame& frame, const AVPixFmtDescriptor& format, int component, int c, image_view out)
{
    const bool inverted = frame.format == AV_PIX_FMT_MONOWHITE;
    const std::uint8_t* planes[4] = {frame.data[0], frame.data[1], frame.data[2], frame.data[3]};
    const unsigned most = (1u << format.comp[component].depth) - 1;
    std::vector<std::uint16_t> line(static_cast<std::size_t>(out.width));
    for (int y = 0; y < out.height; ++y)
    {
        std::uint8_t* to = out.row(y) + c;
        av_read_image_line2(line.data(), planes, frame.linesize, &format, 0, y, component, out.width, 0, 2);
        for (const unsigned value : line)
        {
            *to = static_cast<std::uint8_t>(((inverted ? most - value : value) * 255u + most / 2) / most);
            to += 4;
        }
    }
}

void copy_components(const AVFrame& frame, const AVPixFmtDescriptor& format, image_view out)
{
    const component_order order = order_of(format);
    for (int c = 0; c < 4; ++c)
        if (order.argb[c] >= 0)
            copy_component(frame, format, order.argb[c], c, out);
        else
            fill_opaque(out);
}
} // namespace

AVColorSpace matrix_for_size(int width, int height)
{
    return width >= 1280 || height >= 720 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
}

int scaler_matrix(AVColorSpace space)
{
    switch (space)
    {
    case AVCOL_SPC_BT709:
        return SWS_CS_ITU709;
    case AVCOL_SPC_FCC:
        return SWS_CS_FCC;
    case AVCOL_SPC_SMPTE240M:
        return SWS_CS_SMPTE240M;
    case AVCOL_SPC_BT2020_NCL:
    case AVCOL_SPC_BT2020_CL:
        return SWS_CS_BT2020;
    default:
        return SWS_CS_ITU601;
    }
}

bool argb_converter::has_alpha(const AVFrame& frame)
{
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    if (format != nullptr && (format->flags & AV_PIX_FMT_FLAG_PAL) != 0)
    {
        for (int i = 0; i < 256; ++i)
        {
            std::uint32_t color = 0;
            std::memcpy(&color, frame.data[1] + 4 * i, sizeof color);
            if (color >> 24 != 255)
                return true;
        }
        return false;
    }
    return format != nullptr && (format->flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
}

void argb_converter::convert(const AVFrame& frame, AVCodecID codec, image_view out)
{
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    if (format == nullptr || (format->flags & AV_PIX_FMT_FLAG_HWACCEL) != 0)
        throw error("pictures of this pixel format cannot be read");
    const bool narrow_grey = format->nb_components <= 2 && frame.color_range == AVCOL_RANGE_MPEG;
    const bool odd_kind =
        format->comp[0].depth > 16 || (format->flags & (AV_PIX_FMT_FLAG_FLOAT | AV_PIX_FMT_FLAG_BAYER)) != 0;
    if ((format->flags & AV_PIX_FMT_FLAG_PAL) != 0)
        copy_palette(frame, out);
    else if (is_yuv(*format) || narrow_grey || odd_kind)
        scale(frame, codec, out);
    else if (is_bytes(*format))
        copy_bytes(frame, *format, out);
    else
        copy_components(frame, *format, out);
}

void argb_converter::scale(const AVFrame& frame, AVCodecID codec, image_view out)
{
    const int matrix = scaler_matrix(matrix_of(frame, codec));
    const int full = is_full_range(frame) ? 1 : 0;
    const auto format = static_cast<AVPixelFormat>(frame.format);
    if (!scaler_ || width_ != frame.width || height_ != frame.height || format_ != format || matrix_ != matrix ||
        full_range_ != full)
    {
        scaler_.reset(sws_getContext(frame.width, frame.height, format, frame.width, frame.height, AV_PIX_FMT_ARGB,
                                     exact_scaling, nullptr, nullptr, nullptr));
        if (!scaler_)
            throw error("pictures of this pixel format cannot be read");
        sws_setColorspaceDetails(scaler_.get(), sws_getCoefficients(matrix), full,
                                 sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, 1 << 16, 1 << 16);
        scaled_ = av::new_frame();
        scaled_->width = width_ = frame.width;
        scaled_->height = height_ = frame.height;
        scaled_->format = AV_PIX_FMT_ARGB;
        if (av_frame_get_buffer(scaled_.get(), 0) < 0)
            throw std::bad_alloc();
        format_ = format;
        matrix_ = matrix;
        full_range_ = full;
    }
    sws_scale(scaler_.get(), frame.data, frame.linesize, 0, frame.height, scaled_->data, scaled_->linesize);
    for (int y = 0; y < out.height; ++y)
        std::memcpy(out.row(y), scaled_->data[0] + static_cast<std::ptrdiff_t>(y) * scaled_->linesize[0],
                    4 * static_cast<std::size_t>(out.width));
    const AVPixFmtDescriptor& kind = *av_pix_fmt_desc_get(format);
    if ((kind.flags & AV_PIX_FMT_FLAG_ALPHA) != 0 && kind.comp[kind.nb_components - 1].depth <= 16 &&
        (kind.flags & AV_PIX_FMT_FLAG_FLOAT) == 0)
        copy_component(frame, kind, kind.nb_components - 1, 0, out);
}
} // namespace media
