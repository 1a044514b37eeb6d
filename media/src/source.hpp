#pragma once
// The three kinds of source behind a reader.

#include "media/reader.hpp"

namespace media
{
struct reader::source
{
    virtual ~source() = default;
    virtual bool read(std::int32_t frame, image_view into) = 0;
    source_info info;
};

// Throws media::error naming the file where `into` is not of the source's size.
void require_size(const source_info& info, image_view into, const std::string& name);

std::unique_ptr<reader::source> open_sequence(const std::filesystem::path& pattern, rational rate);
// A still or a clip, as the file's contents say.
std::unique_ptr<reader::source> open_file(const std::filesystem::path& path, std::optional<rational> rate);
std::unique_ptr<reader::source> open_clip(const std::filesystem::path& path, std::optional<rational> rate);
} // namespace media
