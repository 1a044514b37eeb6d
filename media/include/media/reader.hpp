#pragma once
// Frames out of a picture, a numbered sequence of pictures, or a clip.

#include "media/image.hpp"
#include "media/rational.hpp"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

namespace media
{
enum class source_kind
{
    still,
    sequence,
    clip,
};

struct source_info
{
    source_kind kind = source_kind::still;
    int width = 0; // as shown: upright, however the file stores it
    int height = 0;
    rational rate{25, 1};               // frames per second
    rational pixel_aspect{1, 1};        // width to height of one pixel
    std::int32_t first = 0;             // number of the first frame: a sequence's lowest number, otherwise 0
    std::optional<std::int32_t> frames; // from `first` on; empty where only reading tells, and for a still
    bool alpha = false;
    bool audio = false;
};

// Opens on construction; every failure is a media::error that names the file. Not for use by two threads at once.
class reader
{
public:
    // `rate`: of the frames handed out. A still or a sequence has none of its own (25 when not given); a clip's
    // own frames are resampled by time.
    explicit reader(const std::filesystem::path& path, std::optional<rational> rate = std::nullopt);
    ~reader();
    reader(reader&&) noexcept;
    reader& operator=(reader&&) noexcept;

    const source_info& info() const;
    // Fills `into`, which has the size of info(), with frame `frame`; false past the end. Any order works,
    // ascending is fast. A still is every frame; of a clip it is the latest picture that has begun at the frame's
    // time; of a sequence it is the file of that number, and a number missing among those present is an error.
    bool read(std::int32_t frame, image_view into);

    struct source;

private:
    std::unique_ptr<source> source_;
};
} // namespace media
