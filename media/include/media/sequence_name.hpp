#pragma once
// Names of numbered files: `frame_%04d.png` or `frame_####.png`. The number is the frame's; a width pads with
// zeros and does not cut longer numbers. Only the file's own name is a pattern, never its folder.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace media
{
class sequence_name
{
public:
    // The pattern in a path, or nothing where it is a plain name. Throws media::error for more than one number.
    static std::optional<sequence_name> parse(const std::filesystem::path& path);

    std::filesystem::path file(std::int32_t number) const;
    // The numbers of the files that are there, ascending. Throws media::error where the folder cannot be read.
    std::vector<std::int32_t> numbers_present() const;

private:
    std::filesystem::path folder_;
    std::string before_;
    std::string after_;
    int width_ = 0;
};
} // namespace media
