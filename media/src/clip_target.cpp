#include "argb_converter.hpp"
#include "audio_copy.hpp"
#include "encoder_frame.hpp"
#include "palette.hpp"
#include "pending_file.hpp"
#include "target.hpp"

#include <cstring>
#include <mutex>
#include <new>
#include <optional>
#include <vector>

namespace media
{
namespace
{
AVPixelFormat pixels_of(const std::string& encoder)
{
    if (encoder == "prores_ks")
        return AV_PIX_FMT_YUVA444P10;
    if (encoder == "qtrle")
        return AV_PIX_FMT_ARGB;
    if (encoder == "gif")
        return AV_PIX_FMT_PAL8;
    return AV_PIX_FMT_YUV420P;
}

// Says how the colours are coded, so that no player has to guess.
void tag_colors(AVCodecContext& codec)
{
    const bool high_definition = codec.colorspace == AVCOL_SPC_BT709;
    codec.color_range = AVCOL_RANGE_MPEG;
    codec.color_primaries = high_definition ? AVCOL_PRI_BT709 : AVCOL_PRI_SMPTE170M;
    codec.color_trc = high_definition ? AVCOL_TRC_BT709 : AVCOL_TRC_SMPTE170M;
    codec.chroma_sample_location = AVCHROMA_LOC_LEFT;
}

class clip_target : public writer::target
{
public:
    clip_target(const std::filesystem::path& output, const output_format& format, const write_options& options)
        : name_(output.string()), options_(options), pixels_(pixels_of(format.encoder)), packet_(av::new_packet())
    {
        av::quiet();
        const AVCodec* codec = avcodec_find_encoder_by_name(format.encoder.c_str());
        if (codec == nullptr)
            throw error(name_ + ": the installed FFmpeg libraries cannot write this kind of clip (no " +
                        format.encoder + " encoder); choose another --codec or ending");
        file_.emplace(output, options.overwrite);
        try
        {
            open(codec, format.muxer);
        }
        catch (...)
        {
            close();
            throw;
        }
    }

    ~clip_target() override { close(); }

    void prepare(std::int32_t, const_image_view frame, prepared_frame::content& made) override
    {
        if (frame.width != options_.width || frame.height != options_.height)
            throw error(name_ + ": a frame has another size than announced");
        if (pixels_ == AV_PIX_FMT_PAL8)
            made.frame = paletted(frame);
        else
            made.frame = converted(frame);
    }

    void write(prepared_frame::content& frame) override
    {
        frame.frame->pts = written_;
        send(frame.frame.get());
        ++written_;
        if (audio_)
            audio_->write_until(written_);
    }

    void finish() override
    {
        if (written_ == 0)
            throw error(name_ + ": there was no frame to write");
        send(nullptr);
        check(av_interleaved_write_frame(format_, nullptr));
        muxing_ = false;
        check(av_write_trailer(format_));
        avio_flush(format_->pb);
        check(format_->pb->error);
        check(avio_closep(&format_->pb));
        file_->commit();
    }

private:
    void open(const AVCodec* codec, const std::string& muxer)
    {
        avformat_alloc_output_context2(&format_, nullptr, muxer.c_str(), nullptr);
        stream_ = format_ != nullptr ? avformat_new_stream(format_, nullptr) : nullptr;
        if (stream_ == nullptr)
            throw std::bad_alloc();
        open_encoder(codec);
        if (!options_.audio_from.empty())
            audio_.emplace(options_.audio_from, format_, options_.first, options_.rate, notes);
        const std::string url = "file:" + file_->hidden().string();
        format_->url = av_strdup(url.c_str());
        check(avio_open(&format_->pb, url.c_str(), AVIO_FLAG_WRITE));
        av::options muxing;
        if (muxer == "mp4")
            muxing.set("movflags", "+faststart");
        check(avformat_write_header(format_, muxing.get()));
        muxing_ = true;
    }

    void open_encoder(const AVCodec* codec)
    {
        const bool halved_chroma = pixels_ == AV_PIX_FMT_YUV420P;
        width = halved_chroma ? options_.width + options_.width % 2 : options_.width;
        height = halved_chroma ? options_.height + options_.height % 2 : options_.height;
        if (width != options_.width || height != options_.height)
            notes.push_back("padded to " + std::to_string(width) + "x" + std::to_string(height) +
                            ": H.264 needs even sizes");
        encoder_ = av::new_codec(codec);
        encoder_->width = width;
        encoder_->height = height;
        encoder_->pix_fmt = pixels_;
        encoder_->time_base = {options_.rate.den, options_.rate.num};
        encoder_->framerate = {options_.rate.num, options_.rate.den};
        encoder_->sample_aspect_ratio = {options_.pixel_aspect.num, options_.pixel_aspect.den};
        encoder_->thread_count = 0;
        if (pixels_ == AV_PIX_FMT_YUV420P || pixels_ == AV_PIX_FMT_YUVA444P10)
        {
            encoder_->colorspace = matrix_for_size(width, height);
            tag_colors(*encoder_);
        }
        if ((format_->oformat->flags & AVFMT_GLOBALHEADER) != 0)
            encoder_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        av::options quality;
        if (codec->id == AV_CODEC_ID_H264)
            quality.set("crf", "16");
        if (codec->id == AV_CODEC_ID_PRORES)
            quality.set("profile", "4444");
        // Cropping to what has changed loses everything in a picture of one row.
        if (codec->id == AV_CODEC_ID_GIF && height == 1)
            quality.set("gifflags", "0");
        check(avcodec_open2(encoder_.get(), codec, quality.get()));
        check(avcodec_parameters_from_context(stream_->codecpar, encoder_.get()));
        stream_->time_base = encoder_->time_base;
        stream_->avg_frame_rate = encoder_->framerate;
        stream_->sample_aspect_ratio = encoder_->sample_aspect_ratio;
        if (pixels_ == AV_PIX_FMT_PAL8 && options_.rate.num > 50 * static_cast<std::int64_t>(options_.rate.den))
            notes.push_back("GIF players slow down above 50 frames a second");
    }

    // Threads that prepare frames at once have a converter each.
    av::owner<AVFrame> converted(const_image_view image)
    {
        std::unique_ptr<encoder_frame> converter = spare_converter();
        av::owner<AVFrame> frame = converter->make(image);
        const std::lock_guard hold(converters_mutex_);
        converters_.push_back(std::move(converter));
        return frame;
    }

    std::unique_ptr<encoder_frame> spare_converter()
    {
        {
            const std::lock_guard hold(converters_mutex_);
            if (!converters_.empty())
            {
                auto converter = std::move(converters_.back());
                converters_.pop_back();
                return converter;
            }
        }
        return std::make_unique<encoder_frame>(pixels_, width, height, encoder_->colorspace, false);
    }

    static av::owner<AVFrame> paletted(const_image_view image)
    {
        const paletted_picture picture = make_palette(image);
        av::owner<AVFrame> frame = av::new_frame();
        frame->format = AV_PIX_FMT_PAL8;
        frame->width = image.width;
        frame->height = image.height;
        if (av_frame_get_buffer(frame.get(), 0) < 0)
            throw std::bad_alloc();
        for (int y = 0; y < image.height; ++y)
            std::memcpy(frame->data[0] + static_cast<std::ptrdiff_t>(y) * frame->linesize[0],
                        picture.pixels.data() +
                            static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width),
                        static_cast<std::size_t>(image.width));
        std::memcpy(frame->data[1], picture.colors.data(), sizeof picture.colors);
        return frame;
    }

    // Encodes a frame, or with null what is still waiting, and writes the packets that come out.
    void send(const AVFrame* frame)
    {
        check(avcodec_send_frame(encoder_.get(), frame));
        for (;;)
        {
            const int code = avcodec_receive_packet(encoder_.get(), packet_.get());
            if (code == AVERROR(EAGAIN))
                return;
            if (code == AVERROR_EOF)
                break;
            check(code);
            packet_->stream_index = stream_->index;
            packet_->duration = 1;
            av_packet_rescale_ts(packet_.get(), encoder_->time_base, stream_->time_base);
            check(av_interleaved_write_frame(format_, packet_.get()));
            check(format_->pb->error);
        }
    }

    void check(int code) const
    {
        if (code < 0)
            throw error(name_ + ": cannot be written (" + av::reason(code) + ")");
    }

    void close()
    {
        if (format_ == nullptr)
            return;
        // The GIF muxer holds a packet of its own that only its trailer frees.
        if (muxing_ && pixels_ == AV_PIX_FMT_PAL8)
            av_write_trailer(format_);
        muxing_ = false;
        avio_closep(&format_->pb);
        avformat_free_context(format_);
        format_ = nullptr;
    }

    std::string name_;
    write_options options_;
    AVPixelFormat pixels_;
    std::optional<pending_file> file_;
    AVFormatContext* format_ = nullptr;
    AVStream* stream_ = nullptr;
    bool muxing_ = false; // the header is written and the trailer is not
    av::owner<AVCodecContext> encoder_;
    av::owner<AVPacket> packet_;
    std::mutex converters_mutex_;
    std::vector<std::unique_ptr<encoder_frame>> converters_;
    std::optional<audio_copy> audio_;
    std::int64_t written_ = 0;
};
} // namespace

std::unique_ptr<writer::target> make_clip_target(const std::filesystem::path& output, const output_format& format,
                                                 const write_options& options)
{
    return std::make_unique<clip_target>(output, format, options);
}
} // namespace media
