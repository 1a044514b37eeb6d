#include "media/writer.hpp"

#include "media/error.hpp"
#include "pending_file.hpp"
#include "target.hpp"

#include <algorithm>

namespace media
{
namespace
{
std::string size_text(int width, int height)
{
    return std::to_string(width) + "x" + std::to_string(height);
}

// "out.png" -> "out_%04d.png"
std::string as_sequence(const std::filesystem::path& output)
{
    const std::string file = output.stem().string() + "_%04d" + output.extension().string();
    return (output.parent_path() / file).string();
}
} // namespace

prepared_frame::prepared_frame(std::unique_ptr<content> made) : content_(std::move(made)) {}
prepared_frame::~prepared_frame() = default;
prepared_frame::prepared_frame(prepared_frame&&) noexcept = default;
prepared_frame& prepared_frame::operator=(prepared_frame&&) noexcept = default;

writer::writer(const std::filesystem::path& output, const write_options& options) : next_(options.first)
{
    const output_format format = format_of(output, options.codec);
    if (options.width < 1 || options.height < 1)
        throw error(output.string() + ": a picture of " + size_text(options.width, options.height) +
                    " cannot be written");
    if (std::max(options.width, options.height) > format.largest_side)
        throw error(output.string() + ": is " + size_text(options.width, options.height) +
                    " pixels, and this format holds at most " + std::to_string(format.largest_side) +
                    " a side; name a .png or .mov, or draw smaller");
    if (format.kind == output_kind::still && options.count > 1)
        throw error(output.string() + ": one picture cannot hold " + std::to_string(options.count) +
                    " frames; name the output " + as_sequence(output) + " for a file a frame");
    remove_abandoned_files(output);
    target_ = format.kind == output_kind::clip ? make_clip_target(output, format, options)
                                               : make_picture_target(output, format, options);
}

writer::~writer() = default;
writer::writer(writer&&) noexcept = default;
writer& writer::operator=(writer&&) noexcept = default;

void writer::write(const_image_view frame)
{
    write(prepare(next_, frame));
}

prepared_frame writer::prepare(std::int32_t number, const_image_view frame) const
{
    auto made = std::make_unique<prepared_frame::content>();
    made->number = number;
    target_->prepare(number, frame, *made);
    return prepared_frame(std::move(made));
}

void writer::write(prepared_frame frame)
{
    target_->write(*frame.content_);
    next_ = frame.content_->number + 1;
}

bool writer::has(std::int32_t number) const
{
    return target_->has(number);
}

void writer::finish()
{
    target_->finish();
}

int writer::width() const
{
    return target_->width;
}

int writer::height() const
{
    return target_->height;
}

const std::vector<std::string>& writer::notes() const
{
    return target_->notes;
}
} // namespace media
