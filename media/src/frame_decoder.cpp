#include "frame_decoder.hpp"

#include <algorithm>
#include <string_view>
#include <thread>

namespace media
{
namespace
{
// Larger pictures are refused before libav takes memory for them.
constexpr std::int64_t most_pixels = std::int64_t{1} << 28;

// libav fills up a JPEG that is cut off near its end; the end marker (FF D9) after the last scan's beginning (FF
// DA) tells that it is whole.
bool lacks_jpeg_end(const AVPacket& packet)
{
    const std::string_view bytes(reinterpret_cast<const char*>(packet.data),
                                 static_cast<std::size_t>(packet.size));
    const std::size_t scan = bytes.rfind("\xFF\xDA");
    const std::size_t end = bytes.rfind("\xFF\xD9");
    return end == std::string_view::npos || (scan != std::string_view::npos && end < scan);
}
} // namespace

frame_decoder::frame_decoder(const std::filesystem::path& path)
    : file_(path), packet_(av::new_packet()), frame_(av::new_frame())
{
    const AVCodec* codec = nullptr;
    const int index = av_find_best_stream(file_.format(), AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (index == AVERROR_DECODER_NOT_FOUND)
        throw error(file_.name() + ": the installed FFmpeg libraries have no decoder for its pictures");
    if (index < 0 || (file_.format()->streams[index]->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0)
        throw error(file_.name() + ": has no pictures in it");
    stream_ = file_.format()->streams[index];
    for (unsigned i = 0; i < file_.format()->nb_streams; ++i)
        file_.format()->streams[i]->discard = static_cast<int>(i) == index ? AVDISCARD_DEFAULT : AVDISCARD_ALL;

    decoder_ = av::new_codec(codec);
    int code = avcodec_parameters_to_context(decoder_.get(), stream_->codecpar);
    decoder_->pkt_timebase = stream_->time_base;
    decoder_->max_pixels = most_pixels;
    decoder_->thread_count = std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 8);
    if (file_.is_picture())
    {
        decoder_->thread_count = 1;
        // Strict, but for TIFF, whose decoder then refuses every tag that it does not know.
        if (codec->id != AV_CODEC_ID_TIFF)
            decoder_->err_recognition |= AV_EF_CRCCHECK | AV_EF_EXPLODE;
    }
    if (code >= 0)
        code = avcodec_open2(decoder_.get(), codec, nullptr);
    if (code < 0)
        throw error(file_.name() + ": cannot be decoded (" + av::reason(code) + ")");
}

const AVFrame* frame_decoder::next()
{
    for (;;)
    {
        const int code = avcodec_receive_frame(decoder_.get(), frame_.get());
        if (code >= 0)
        {
            if ((frame_->flags & AV_FRAME_FLAG_CORRUPT) != 0 || frame_->decode_error_flags != 0)
                damaged("picture " + std::to_string(decoded_) + " is damaged");
            ++decoded_;
            return frame_.get();
        }
        if (code == AVERROR_EOF)
            return nullptr;
        if (code != AVERROR(EAGAIN))
            damaged(av::reason(code));
        feed();
    }
}

// Hands the decoder one packet, or word that there are no more.
void frame_decoder::feed()
{
    int code = 0;
    do
    {
        av_packet_unref(packet_.get());
        code = av_read_frame(file_.format(), packet_.get());
    } while (code >= 0 && packet_->stream_index != stream_->index);

    if (code == AVERROR_EOF)
    {
        avcodec_send_packet(decoder_.get(), nullptr);
        return;
    }
    if (code < 0)
        damaged(av::reason(code));
    if ((packet_->flags & AV_PKT_FLAG_CORRUPT) != 0)
        damaged("cut off in picture " + std::to_string(decoded_));
    if (file_.is_picture() && codec() == AV_CODEC_ID_MJPEG && lacks_jpeg_end(*packet_))
        damaged("the end is missing");
    code = avcodec_send_packet(decoder_.get(), packet_.get());
    if (code < 0)
        damaged(av::reason(code));
}

bool frame_decoder::seek(std::int64_t time)
{
    if (av_seek_frame(file_.format(), stream_->index, time, AVSEEK_FLAG_BACKWARD) < 0)
        return false;
    avcodec_flush_buffers(decoder_.get());
    return true;
}

void frame_decoder::damaged(const std::string& why) const
{
    throw error(file_.name() + ": the file is damaged or cut off (" + why + "); copy or export it anew");
}
} // namespace media
