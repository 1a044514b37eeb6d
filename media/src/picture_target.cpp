#include "av.hpp"
#include "media/sequence_name.hpp"
#include "pending_file.hpp"
#include "still_encoder.hpp"
#include "target.hpp"

namespace media
{
namespace
{
class picture_target : public writer::target
{
public:
    picture_target(const std::filesystem::path& output, const output_format& format, const write_options& options)
        : output_(output), encoder_(format.encoder), options_(options),
          overwrite_(options.overwrite || options.resume)
    {
        av::quiet();
        width = options.width;
        height = options.height;
        if (format.kind == output_kind::sequence)
            pattern_ = sequence_name::parse(output);
        for (std::int32_t i = 0; i < options.count; ++i)
            require_free_name(file_of(options.first + i), overwrite_);
        // Whether the folder may be written to shows now, not after the first frame.
        pending_file trial(file_of(options.first), overwrite_);
    }

    void prepare(std::int32_t number, const_image_view frame, prepared_frame::content& made) override
    {
        const std::filesystem::path file = file_of(number);
        if (frame.width != options_.width || frame.height != options_.height)
            throw error(file.string() + ": a frame has another size than announced");
        made.picture = encode_still(encoder_, frame, file.string());
    }

    void write(prepared_frame::content& frame) override
    {
        const std::filesystem::path file = file_of(frame.number);
        if (!pattern_ && any_)
            throw error(file.string() + ": one picture cannot hold several frames");
        pending_file made(file, overwrite_);
        made.write(frame.picture->data, static_cast<std::size_t>(frame.picture->size));
        if (options_.resume)
            made.sync();
        made.commit();
        any_ = true;
    }

    void finish() override
    {
        if (!any_ && !options_.resume)
            throw error(output_.string() + ": there was no frame to write");
    }

    bool has(std::int32_t number) const override
    {
        std::error_code failed;
        const std::filesystem::path file = file_of(number);
        return options_.resume && std::filesystem::is_regular_file(file, failed) &&
               std::filesystem::file_size(file, failed) > 0 && !failed;
    }

private:
    std::filesystem::path file_of(std::int32_t frame) const { return pattern_ ? pattern_->file(frame) : output_; }

    std::filesystem::path output_;
    std::string encoder_;
    write_options options_;
    std::optional<sequence_name> pattern_;
    bool overwrite_;
    bool any_ = false; // a picture was written
};
} // namespace

std::unique_ptr<writer::target> make_picture_target(const std::filesystem::path& output,
                                                    const output_format& format, const write_options& options)
{
    return std::make_unique<picture_target>(output, format, options);
}
} // namespace media
