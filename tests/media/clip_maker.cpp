#include "clip_maker.hpp"

#include <cmath>
#include <cstring>
#include <optional>
#include <stdexcept>

extern "C"
{
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
}

namespace media_test
{
namespace
{
void check(int code)
{
    if (code < 0)
        throw std::runtime_error("libav: " + std::to_string(code));
}

// One encoder and its stream in the output.
struct track
{
    AVFormatContext* format;
    AVCodecContext* codec;
    AVStream* stream;

    track(AVFormatContext* output, const char* encoder)
        : format(output), codec(avcodec_alloc_context3(avcodec_find_encoder_by_name(encoder))),
          stream(avformat_new_stream(output, nullptr))
    {
    }
    ~track() { avcodec_free_context(&codec); }
    track(const track&) = delete;
    track& operator=(const track&) = delete;

    void open()
    {
        if ((format->oformat->flags & AVFMT_GLOBALHEADER) != 0)
            codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        check(avcodec_open2(codec, nullptr, nullptr));
        check(avcodec_parameters_from_context(stream->codecpar, codec));
        stream->time_base = codec->time_base;
    }

    void send(AVFrame* frame, std::int64_t duration = 0)
    {
        check(avcodec_send_frame(codec, frame));
        AVPacket* packet = av_packet_alloc();
        while (avcodec_receive_packet(codec, packet) >= 0)
        {
            packet->stream_index = stream->index;
            if (duration > 0)
                packet->duration = duration;
            av_packet_rescale_ts(packet, codec->time_base, stream->time_base);
            check(av_interleaved_write_frame(format, packet));
        }
        av_packet_free(&packet);
    }
};

void set_axes(AVStream* stream, const std::array<int, 4>& axes)
{
    const std::int32_t matrix[9] = {axes[0] * 65536, axes[1] * 65536, 0, axes[2] * 65536, axes[3] * 65536, 0, 0, 0,
                                    1 << 30};
    std::uint8_t* data = av_stream_new_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, sizeof matrix);
    std::memcpy(data, matrix, sizeof matrix);
}

void send_pictures(track& video, const clip_recipe& recipe)
{
    for (std::size_t i = 0; i < recipe.frames.size(); ++i)
    {
        const timed_frame& timed = recipe.frames[i];
        const bool last = i + 1 == recipe.frames.size();
        AVFrame* frame = av_frame_alloc();
        frame->format = video.codec->pix_fmt;
        frame->width = timed.picture.width();
        frame->height = timed.picture.height();
        check(av_frame_get_buffer(frame, 0));
        for (int y = 0; y < frame->height; ++y)
            std::memcpy(frame->data[0] + y * frame->linesize[0], timed.picture.view().row(y),
                        4 * static_cast<std::size_t>(frame->width));
        frame->pts = timed.time;
        video.send(frame, last ? 1 : recipe.frames[i + 1].time - timed.time);
        av_frame_free(&frame);
    }
    video.send(nullptr);
}

void send_sound(track& audio, double seconds)
{
    const int chunk = audio.codec->frame_size > 0 ? audio.codec->frame_size : 1024;
    const auto samples = static_cast<std::int64_t>(seconds * 48000);
    for (std::int64_t at = 0; at < samples; at += chunk)
    {
        AVFrame* frame = av_frame_alloc();
        frame->format = audio.codec->sample_fmt;
        frame->nb_samples = chunk;
        frame->sample_rate = 48000;
        av_channel_layout_default(&frame->ch_layout, 1);
        check(av_frame_get_buffer(frame, 0));
        for (int i = 0; i < chunk; ++i)
        {
            // A rising tone: no two packets are alike.
            const double t = static_cast<double>(at + i) / 48000;
            const double level = 0.5 * std::sin(6.2832 * (200 + 100 * t) * t);
            if (audio.codec->sample_fmt == AV_SAMPLE_FMT_FLTP)
                reinterpret_cast<float*>(frame->data[0])[i] = static_cast<float>(level);
            else
                reinterpret_cast<std::int16_t*>(frame->data[0])[i] = static_cast<std::int16_t>(30000 * level);
        }
        frame->pts = at;
        audio.send(frame);
        av_frame_free(&frame);
    }
    audio.send(nullptr);
}
} // namespace

void make_clip(const std::filesystem::path& file, const clip_recipe& recipe)
{
    av_log_set_level(AV_LOG_QUIET);
    AVFormatContext* format = nullptr;
    check(avformat_alloc_output_context2(&format, nullptr, recipe.muxer.c_str(), file.c_str()));
    {
        track video(format, recipe.video_encoder.c_str());
        video.codec->width = recipe.frames.front().picture.width();
        video.codec->height = recipe.frames.front().picture.height();
        video.codec->pix_fmt = recipe.video_encoder == "png" ? AV_PIX_FMT_RGBA : AV_PIX_FMT_ARGB;
        video.codec->time_base = {1, recipe.time_base_den};
        video.codec->gop_size = 4;
        video.open();
        set_axes(video.stream, recipe.axes);
        const bool sound = !recipe.audio_encoder.empty();
        std::optional<track> audio;
        if (sound)
        {
            audio.emplace(format, recipe.audio_encoder.c_str());
            audio->codec->sample_rate = 48000;
            audio->codec->sample_fmt = recipe.audio_encoder == "aac" ? AV_SAMPLE_FMT_FLTP : AV_SAMPLE_FMT_S16;
            av_channel_layout_default(&audio->codec->ch_layout, 1);
            audio->codec->time_base = {1, 48000};
            audio->open();
        }
        check(avio_open(&format->pb, file.c_str(), AVIO_FLAG_WRITE));
        check(avformat_write_header(format, nullptr));
        send_pictures(video, recipe);
        if (sound)
            send_sound(*audio, recipe.audio_seconds);
        check(av_write_trailer(format));
        check(avio_closep(&format->pb));
    }
    avformat_free_context(format);
}

std::vector<audio_packet> audio_packets(const std::filesystem::path& file)
{
    AVFormatContext* format = nullptr;
    check(avformat_open_input(&format, file.c_str(), nullptr, nullptr));
    check(avformat_find_stream_info(format, nullptr));
    const int index = av_find_best_stream(format, AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    std::vector<audio_packet> found;
    AVPacket* packet = av_packet_alloc();
    while (index >= 0 && av_read_frame(format, packet) >= 0)
    {
        const double unit = av_q2d(format->streams[packet->stream_index]->time_base);
        if (packet->stream_index == index)
            found.push_back(
                {static_cast<double>(packet->pts) * unit, static_cast<double>(packet->duration) * unit,
                 std::string(reinterpret_cast<char*>(packet->data), static_cast<std::size_t>(packet->size))});
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    avformat_close_input(&format);
    return found;
}

clip_tags tags_of(const std::filesystem::path& file)
{
    AVFormatContext* format = nullptr;
    check(avformat_open_input(&format, file.c_str(), nullptr, nullptr));
    check(avformat_find_stream_info(format, nullptr));
    const int index = av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    const AVStream* stream = format->streams[index];
    const auto pixels = static_cast<AVPixelFormat>(stream->codecpar->format);
    const clip_tags found{av_get_pix_fmt_name(pixels), av_color_space_name(stream->codecpar->color_space),
                          av_color_range_name(stream->codecpar->color_range), static_cast<int>(stream->nb_frames)};
    avformat_close_input(&format);
    return found;
}
} // namespace media_test
