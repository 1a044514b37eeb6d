#pragma once
// Clips that the media library itself does not make: frames of unequal length, and sound.

#include "media/image.hpp"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace media_test
{
struct timed_frame
{
    std::int64_t time = 0; // in units of the clip's time base
    media::picture picture;
};

struct clip_recipe
{
    std::vector<timed_frame> frames;
    int time_base_den = 10; // units per second
    std::string muxer = "mov";
    std::string video_encoder = "qtrle"; // without loss; "png" for Matroska, with bytes taken as R, G, B, A
    std::string audio_encoder;           // empty: no sound; "aac" or "pcm_s16le", 48 kHz, one channel
    double audio_seconds = 0.0;
    // Where the stored x axis (first two) and y axis (last two) point in the shown picture; x, y as 1, 0 or -1.
    std::array<int, 4> axes{1, 0, 0, 1};
};

void make_clip(const std::filesystem::path& file, const clip_recipe& recipe);

struct audio_packet
{
    double seconds = 0.0;
    double duration = 0.0;
    std::string bytes;
};

// The packets of the first audio stream as they stand in the file; empty where there is none.
std::vector<audio_packet> audio_packets(const std::filesystem::path& file);

struct clip_tags
{
    std::string pixel_format;
    std::string matrix;
    std::string range;
    int frames = 0; // as the container says
};

clip_tags tags_of(const std::filesystem::path& file);
} // namespace media_test
