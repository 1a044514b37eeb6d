#pragma once
// The kinds of target behind a writer.

#include "media/writer.hpp"

namespace media
{
struct writer::target
{
    virtual ~target() = default;
    virtual void write(const_image_view frame) = 0;
    virtual void finish() = 0;
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
