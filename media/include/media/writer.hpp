#pragma once
// Frames into a picture, a numbered sequence of pictures, or a clip.
//
// Nothing half-written is ever seen under the output's name: a file is written under a hidden name in the same
// folder and renamed when it is complete. A writer that goes away without finish() takes its file with it (of a
// sequence, the pictures already complete stay). What a killed process leaves under a hidden name goes when the
// next writer into the folder opens.

#include "media/image.hpp"
#include "media/rational.hpp"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace media
{
enum class clip_codec
{
    h264,
    prores4444,
    animation, // lossless run lengths, with alpha
};

// "h264", "prores4444" or "animation"; throws media::error that lists them for anything else.
clip_codec codec_from_name(std::string_view name);

enum class output_kind
{
    still,
    sequence,
    clip,
};

// What an output's name and the codec asked for make of it.
struct output_format
{
    output_kind kind = output_kind::still;
    std::string muxer;    // of a clip: "mp4", "mov" or "gif"
    std::string encoder;  // libav's name of the encoder
    bool alpha = false;   // keeps transparency (in GIF: a pixel is there or not)
    int largest_side = 0; // width and height are at most this
};

// Decides by the name: .png .jpg .jpeg .tif .tiff .bmp .webp, a pattern of one of these (see sequence_name), .mp4,
// .mov (prores4444 unless asked otherwise), .gif. Throws media::error for any other name, or a codec that the
// container cannot hold.
output_format format_of(const std::filesystem::path& output, std::optional<clip_codec> codec = std::nullopt);

struct write_options
{
    int width = 0;
    int height = 0;
    rational rate{25, 1};
    rational pixel_aspect{1, 1};
    std::int32_t first = 0; // number of the first frame: names a sequence's files, and where the audio begins
    std::int32_t count = 1; // frames that will come, at most
    std::optional<clip_codec> codec;
    bool overwrite = false;
    // Of a sequence: pictures that are there are taken for finished, see has(). One that somebody else finishes
    // meanwhile is replaced by the same, and every one reaches the disk before it has its name.
    bool resume = false;
    // A clip whose audio is carried over, as it is, into an output that can hold it. Empty: none.
    std::filesystem::path audio_from;
};

// A frame in the form that the file takes it in.
class prepared_frame
{
public:
    struct content;
    explicit prepared_frame(std::unique_ptr<content> made);
    ~prepared_frame();
    prepared_frame(prepared_frame&&) noexcept;
    prepared_frame& operator=(prepared_frame&&) noexcept;

private:
    friend class writer;
    std::unique_ptr<content> content_;
};

class writer
{
public:
    // Refuses at once what cannot work: a folder that is missing or read-only, a name that is taken, a single
    // picture's name for several frames, a size that the format does not hold.
    writer(const std::filesystem::path& output, const write_options& options);
    ~writer();
    writer(writer&&) noexcept;
    writer& operator=(writer&&) noexcept;

    // The next frame. Where the format keeps no transparency the alpha is ignored: lay a background under it
    // first.
    void write(const_image_view frame);
    // With `resume`: whether the picture of this frame is there, and not empty. Asked anew at every call.
    bool has(std::int32_t number) const;
    // The same in two steps. The first is most of the work for pictures (their whole encoding) and some for clips
    // (their colours), and any number of threads may do it at once, in any order; `number` is the frame's. The
    // second takes them in order, like write; of a sequence some may be left out.
    prepared_frame prepare(std::int32_t number, const_image_view frame) const;
    void write(prepared_frame frame);
    // Completes the file and gives it its name.
    void finish();
    // What the user may want to know, one line each: an odd size that was padded, audio that stayed behind.
    const std::vector<std::string>& notes() const;
    // The size of what is written: H.264's is even, whatever the frames' is.
    int width() const;
    int height() const;

    struct target;

private:
    std::unique_ptr<target> target_;
    std::int32_t next_;
};
} // namespace media
