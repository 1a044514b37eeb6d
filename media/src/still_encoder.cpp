#include "still_encoder.hpp"

#include "encoder_frame.hpp"

namespace media
{
namespace
{
AVPixelFormat pixels_of(const std::string& encoder)
{
    if (encoder == "mjpeg")
        return AV_PIX_FMT_YUVJ444P;
    if (encoder == "bmp")
        return AV_PIX_FMT_BGR24;
    if (encoder == "libwebp")
        return AV_PIX_FMT_BGRA;
    return AV_PIX_FMT_RGBA;
}

void set_quality(AVCodecContext& codec)
{
    if (codec.codec_id == AV_CODEC_ID_MJPEG)
    {
        codec.flags |= AV_CODEC_FLAG_QSCALE;
        codec.global_quality = 2 * FF_QP2LAMBDA; // the best that players agree on
    }
    // Half the time of the defaults. Rows are stored as what they differ by from the one above, which makes up for
    // most of the size: lines go on from row to row.
    if (codec.codec_id == AV_CODEC_ID_PNG)
    {
        codec.compression_level = 3;
        av_opt_set(codec.priv_data, "pred", "up", 0);
    }
    if (codec.codec_id == AV_CODEC_ID_WEBP)
        av_opt_set_int(codec.priv_data, "lossless", 1, 0);
}
} // namespace

av::owner<AVPacket> encode_still(const std::string& encoder, const_image_view image, const std::string& name)
{
    const AVCodec* codec = avcodec_find_encoder_by_name(encoder.c_str());
    if (codec == nullptr)
        throw error(name + ": the installed FFmpeg libraries cannot write this kind of picture (no " + encoder +
                    " encoder); choose .png");
    const AVPixelFormat format = pixels_of(encoder);
    av::owner<AVCodecContext> context = av::new_codec(codec);
    context->width = image.width;
    context->height = image.height;
    context->pix_fmt = format;
    context->time_base = {1, 25};
    context->thread_count = 1;
    context->colorspace = AVCOL_SPC_SMPTE170M; // used by JPEG alone
    context->color_range = AVCOL_RANGE_JPEG;
    set_quality(*context);

    av::owner<AVPacket> packet = av::new_packet();
    const av::owner<AVFrame> frame =
        encoder_frame(format, image.width, image.height, AVCOL_SPC_SMPTE170M, true).make(image);
    int code = avcodec_open2(context.get(), codec, nullptr);
    if (code >= 0)
        code = avcodec_send_frame(context.get(), frame.get());
    if (code >= 0)
        code = avcodec_send_frame(context.get(), nullptr);
    if (code >= 0)
        code = avcodec_receive_packet(context.get(), packet.get());
    if (code < 0)
        throw error(name + ": the picture cannot be encoded (" + av::reason(code) + ")");
    return packet;
}
} // namespace media
