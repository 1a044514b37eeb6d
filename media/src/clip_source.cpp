#include "argb_converter.hpp"
#include "clip_rate.hpp"
#include "frame_decoder.hpp"
#include "orientation.hpp"
#include "source.hpp"

#include <algorithm>
#include <new>
#include <string_view>

namespace media
{
namespace
{
// Times here are in the stream's time base; time 0 of the output is the first picture's.
class clip_source : public reader::source
{
public:
    clip_source(const std::filesystem::path& path, std::optional<rational> rate)
        : path_(path), decoder_(std::in_place, path), current_(av::new_frame()), following_(av::new_frame())
    {
        if (!begin())
            throw error(name() + ": has no pictures in it");
        origin_ = time_of(*current_);
        orientation_ = orientation_of(decoder_->stream(), *current_);
        describe(rate);
    }

    bool read(std::int32_t frame, image_view into) override
    {
        require_size(info, into, name());
        const std::int64_t time = origin_ + output_time(frame);
        if (frame < 0 || (known_end_ && time >= *known_end_))
            return false;
        if (time < time_of(*current_) || time - time_of(*current_) > seek_distance())
            seek(time);
        while (have_following_ && time_of(*following_) <= time + slack())
            step();
        if (!have_following_)
            require_complete();
        if (!have_following_ && time >= end_of_current())
        {
            known_end_ = end_of_current();
            return false;
        }
        show(into);
        return true;
    }

private:
    const std::string& name() const { return decoder_->file().name(); }
    AVRational time_base() const { return decoder_->stream()->time_base; }

    // Rounded to the nearest tick, as the container's own times are: in ticks of 1 ms, frame 2 at 30000/1001 is at
    // 67, not at 66.7, where it would still show frame 1.
    std::int64_t output_time(std::int64_t frame) const
    {
        return av_rescale_q_rnd(frame, AVRational{info.rate.den, info.rate.num}, time_base(), AV_ROUND_NEAR_INF);
    }

    // The same for times that were once rounded to milliseconds and now stand in finer ticks: half of one.
    std::int64_t slack() const { return av_rescale_q_rnd(1, AVRational{1, 2000}, time_base(), AV_ROUND_DOWN); }

    std::int64_t time_of(const AVFrame& frame) const
    {
        return frame.best_effort_timestamp != AV_NOPTS_VALUE ? frame.best_effort_timestamp : untimed_;
    }

    std::int64_t nominal_duration() const
    {
        const rational own = clip_rate(decoder_->stream());
        return std::max<std::int64_t>(1, av_rescale_q(1, AVRational{own.den, own.num}, time_base()));
    }

    std::int64_t end_of_current() const
    {
        const std::int64_t duration = current_->pkt_duration > 0 ? current_->pkt_duration : nominal_duration();
        return time_of(*current_) + duration;
    }

    // Farther ahead than this, decoding from an entry point is worth a try: two seconds.
    std::int64_t seek_distance() const { return av_rescale_q(2, AVRational{1, 1}, time_base()); }

    void describe(std::optional<rational> rate)
    {
        const AVStream* stream = decoder_->stream();
        info.kind = source_kind::clip;
        info.width = orientation_.shown_width(*current_);
        info.height = orientation_.shown_height(*current_);
        info.rate = rate.value_or(clip_rate(stream));
        info.alpha = argb_converter::has_alpha(*current_);
        AVFormatContext* format = decoder_->file().format();
        const AVRational aspect =
            av_guess_sample_aspect_ratio(format, format->streams[stream->index], current_.get());
        if (aspect.num > 0 && aspect.den > 0)
            info.pixel_aspect =
                orientation_.transposes ? rational{aspect.den, aspect.num} : rational{aspect.num, aspect.den};
        info.audio = av_find_best_stream(format, AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0) >= 0;
        info.frames = count_frames();
    }

    // Frames at the output's rate, where the container tells how long it is.
    std::optional<std::int32_t> count_frames() const
    {
        const AVStream* stream = decoder_->stream();
        if (!have_following_)
            return count_until(end_of_current() - origin_);
        if (stream->duration > 0)
            return count_until(stream->duration);
        const std::int64_t whole = decoder_->file().format()->duration;
        if (whole > 0 && decoder_->file().format()->nb_streams == 1)
            return count_until(av_rescale_q(whole, AVRational{1, AV_TIME_BASE}, time_base()));
        return std::nullopt;
    }

    // How many output times lie before `duration`.
    std::optional<std::int32_t> count_until(std::int64_t duration) const
    {
        std::int64_t count = av_rescale_q(duration, time_base(), AVRational{info.rate.den, info.rate.num});
        while (output_time(count) < duration)
            ++count;
        while (count > 1 && output_time(count - 1) >= duration)
            --count;
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(count, 1, INT32_MAX));
    }

    // Decodes the picture after the current one.
    void fetch()
    {
        const AVFrame* next = decoder_->next();
        have_following_ = next != nullptr;
        if (!have_following_)
            return;
        av_frame_unref(following_.get());
        if (av_frame_ref(following_.get(), next) < 0)
            throw std::bad_alloc();
        following_->best_effort_timestamp = time_of(*following_);
        untimed_ = following_->best_effort_timestamp + nominal_duration();
    }

    void step()
    {
        std::swap(current_, following_);
        fetch();
    }

    // The first two pictures from where the decoder stands; false where there is none.
    bool begin()
    {
        fetch();
        if (!have_following_)
            return false;
        step();
        return true;
    }

    void seek(std::int64_t time)
    {
        known_end_.reset();
        if (time >= origin_ && decoder_->seek(time) && begin() && time_of(*current_) <= time)
            return;
        // There is no entry point, or it lay too late: from the beginning, then.
        decoder_.emplace(path_);
        untimed_ = origin_;
        if (!begin())
            throw error(name() + ": has no pictures in it");
    }

    // QuickTime's tables tell how long the pictures last; an end well before that is a file cut short. Matroska's
    // times do not tell it as surely, for a last picture may be meant to stay: there the file's own length counts.
    void require_complete() const
    {
        const AVStream* stream = decoder_->stream();
        const bool told = std::string_view(decoder_->file().format()->iformat->name).starts_with("mov");
        const bool early =
            told && stream->duration > 0 && end_of_current() - origin_ + 2 * nominal_duration() < stream->duration;
        if (early || decoder_->file().is_cut_off())
            throw error(name() + ": the file is cut off (its pictures end too early); copy or export it anew");
    }

    void show(image_view into)
    {
        if (orientation_.shown_width(*current_) != into.width ||
            orientation_.shown_height(*current_) != into.height)
            throw error(name() + ": changes its size in the middle; convert it to one size first");
        if (orientation_.upright())
        {
            converter_.convert(*current_, decoder_->codec(), into);
            return;
        }
        picture lying(current_->width, current_->height);
        converter_.convert(*current_, decoder_->codec(), lying.view());
        set_upright(lying.view(), orientation_, into);
    }

    std::filesystem::path path_;
    std::optional<frame_decoder> decoder_;
    argb_converter converter_;
    av::owner<AVFrame> current_;
    av::owner<AVFrame> following_;
    bool have_following_ = false;
    std::int64_t untimed_ = 0; // time of the next picture, should the container give none
    std::int64_t origin_ = 0;
    std::optional<std::int64_t> known_end_;
    orientation orientation_;
};
} // namespace

std::unique_ptr<reader::source> open_clip(const std::filesystem::path& path, std::optional<rational> rate)
{
    return std::make_unique<clip_source>(path, rate);
}
} // namespace media
