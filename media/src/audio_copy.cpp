#include "audio_copy.hpp"

#include <new>

namespace media
{
namespace
{
// Where the pictures begin, which is time 0 for the frames, in `base`.
std::int64_t picture_start(AVFormatContext* format, AVRational base)
{
    const int index = av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (index < 0 || format->streams[index]->start_time == AV_NOPTS_VALUE)
        return 0;
    return av_rescale_q(format->streams[index]->start_time, format->streams[index]->time_base, base);
}

bool is_packed(AVCodecID codec)
{
    const AVCodecDescriptor* kind = avcodec_descriptor_get(codec);
    return kind != nullptr && (kind->props & AV_CODEC_PROP_LOSSY) != 0;
}
} // namespace

audio_copy::audio_copy(const std::filesystem::path& from, AVFormatContext* output, std::int32_t first,
                       rational rate, std::vector<std::string>& notes)
    : source_(from), output_(output), rate_(rate), packet_(av::new_packet())
{
    AVFormatContext* format = source_.format();
    for (unsigned i = 0; i < format->nb_streams; ++i)
    {
        AVStream* in = format->streams[i];
        in->discard = AVDISCARD_ALL;
        if (in->codecpar->codec_type != AVMEDIA_TYPE_AUDIO)
            continue;
        if (avformat_query_codec(output->oformat, in->codecpar->codec_id, FF_COMPLIANCE_NORMAL) != 1)
        {
            notes.push_back(std::string("the audio (") + avcodec_get_name(in->codecpar->codec_id) +
                            ") stays behind: ." + output->oformat->name + " cannot hold it");
            continue;
        }
        in->discard = AVDISCARD_DEFAULT;
        AVStream* out = avformat_new_stream(output, nullptr);
        if (out == nullptr || avcodec_parameters_copy(out->codecpar, in->codecpar) < 0)
            throw std::bad_alloc();
        out->codecpar->codec_tag = 0;
        out->time_base = in->time_base;
        const std::int64_t start = picture_start(format, in->time_base) +
                                   av_rescale_q(first, AVRational{rate.den, rate.num}, in->time_base);
        streams_.push_back({in, out, start, is_packed(in->codecpar->codec_id)});
    }
    if (streams_.empty())
        ended_ = true;
    else if (first > 0)
    {
        // A second early, so that nothing is missed; where it fails, reading from the beginning does as well.
        const carried& stream = streams_.front();
        const std::int64_t second = av_rescale_q(1, AVRational{1, 1}, stream.in->time_base);
        av_seek_frame(format, stream.in->index, stream.start - second, AVSEEK_FLAG_BACKWARD);
    }
}

void audio_copy::write_until(std::int64_t frames)
{
    while (!ended_)
    {
        if (!waiting_ && !read_packet())
            return;
        carried* stream = stream_of(*packet_);
        if (stream != nullptr && packet_->pts >= end_of(*stream, frames))
        {
            waiting_ = true;
            return;
        }
        waiting_ = false;
        if (stream != nullptr && starts_early_enough(*stream, *packet_))
            write(*stream);
    }
}

bool audio_copy::read_packet()
{
    av_packet_unref(packet_.get());
    const int code = av_read_frame(source_.format(), packet_.get());
    if (code < 0 && code != AVERROR_EOF)
        throw error(source_.name() + ": its audio cannot be read (" + av::reason(code) + ")");
    ended_ = code < 0;
    if (!ended_ && packet_->pts == AV_NOPTS_VALUE)
        packet_->pts = packet_->dts;
    return !ended_;
}

audio_copy::carried* audio_copy::stream_of(const AVPacket& packet)
{
    for (carried& stream : streams_)
        if (stream.in->index == packet.stream_index && packet.pts != AV_NOPTS_VALUE)
            return &stream;
    return nullptr;
}

// Reaches into the range, or is the one that the first such packet leans on. What lies before time 0 is decoded
// but not heard: the container's edit list says so.
bool audio_copy::starts_early_enough(const carried& stream, const AVPacket& packet) const
{
    return packet.pts + (stream.packed ? 2 : 1) * packet.duration > stream.start;
}

std::int64_t audio_copy::end_of(const carried& stream, std::int64_t frames) const
{
    return stream.start + av_rescale_q(frames, AVRational{rate_.den, rate_.num}, stream.in->time_base);
}

void audio_copy::write(carried& stream)
{
    packet_->pts -= stream.start;
    if (packet_->dts != AV_NOPTS_VALUE)
        packet_->dts -= stream.start;
    av_packet_rescale_ts(packet_.get(), stream.in->time_base, stream.out->time_base);
    packet_->stream_index = stream.out->index;
    packet_->pos = -1;
    if (const int code = av_interleaved_write_frame(output_, packet_.get()); code < 0)
        throw error("the audio of " + source_.name() + " cannot be written (" + av::reason(code) + ")");
}
} // namespace media
