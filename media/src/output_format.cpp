#include "media/error.hpp"
#include "media/sequence_name.hpp"
#include "media/writer.hpp"

#include <algorithm>
#include <cctype>
#include <cstdint>

namespace media
{
namespace
{
struct still_kind
{
    const char* ending;
    const char* encoder;
    bool alpha;
    int largest_side;
};

// Where a format itself sets no limit within reach, what fits a signed count of bytes a row.
constexpr int large_side = INT32_MAX / 8;

constexpr still_kind still_kinds[] = {
    {".png", "png", true, large_side},  {".jpg", "mjpeg", false, 65500},     {".jpeg", "mjpeg", false, 65500},
    {".tif", "tiff", true, large_side}, {".tiff", "tiff", true, large_side}, {".bmp", "bmp", false, large_side},
    {".webp", "libwebp", true, 16383},
};

std::string lower_ending(const std::filesystem::path& path)
{
    std::string ending = path.extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return ending;
}

output_format clip_format(const char* muxer, clip_codec codec)
{
    switch (codec)
    {
    case clip_codec::prores4444:
        return {output_kind::clip, muxer, "prores_ks", true, 65535};
    case clip_codec::animation:
        return {output_kind::clip, muxer, "qtrle", true, 65535};
    case clip_codec::h264:
        break;
    }
    return {output_kind::clip, muxer, "libx264", false, 16384};
}
} // namespace

clip_codec codec_from_name(std::string_view name)
{
    if (name == "h264")
        return clip_codec::h264;
    if (name == "prores4444")
        return clip_codec::prores4444;
    if (name == "animation")
        return clip_codec::animation;
    throw error("codec \"" + std::string(name) + "\" is not known; choose prores4444, animation or h264");
}

output_format format_of(const std::filesystem::path& output, std::optional<clip_codec> codec)
{
    const std::string ending = lower_ending(output);
    const std::string name = output.string();
    if (ending == ".mov")
        return clip_format("mov", codec.value_or(clip_codec::prores4444));
    if (ending == ".mp4")
    {
        if (codec.value_or(clip_codec::h264) != clip_codec::h264)
            throw error(name + ": an .mp4 holds h264 only; name the output .mov for this codec");
        return clip_format("mp4", clip_codec::h264);
    }
    if (codec)
        throw error(name + ": a codec can be chosen for .mov and .mp4 only");
    if (ending == ".gif")
        return {output_kind::clip, "gif", "gif", true, 65535};
    for (const still_kind& kind : still_kinds)
        if (ending == kind.ending)
            return {sequence_name::parse(output) ? output_kind::sequence : output_kind::still, "", kind.encoder,
                    kind.alpha, kind.largest_side};
    throw error(name + ": the name must end in .png, .jpg, .tif, .bmp, .webp, .mp4, .mov or .gif");
}
} // namespace media
