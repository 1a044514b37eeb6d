#pragma once
// The kinds of target behind a writer.

#include "av.hpp"
#include "media/writer.hpp"

namespace media
{
struct prepared_frame::content
{
    std::int32_t number = 0;
    av::owner<AVPacket> picture; // a whole file
    av::owner<AVFrame> frame;    // a clip's
};

struct writer::target
{
    virtual ~target() = default;
    virtual void prepare(std::int32_t number, const_image_view frame, prepared_frame::content& made) = 0;
    virtual void write(prepared_frame::content& frame) = 0;
    virtual void finish() = 0;
    virtual bool has(std::int32_t /*number*/) const { return false; }
    std::vector<std::string> notes;
    int width = 0; // of what is written
    int height = 0;
};

// Single pictures, numbered or not.
std::unique_ptr<writer::target> make_picture_target(const std::filesystem::path& output,
                                                    const output_format& format, const write_options& options);
std::unique_ptr<writer::target> make_clip_target(const std::filesystem::path& output, const output_format& format,
                                                 const write_options& options);
} // namespace media
