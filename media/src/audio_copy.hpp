#pragma once
// Carries a clip's audio into another, packet by packet and untouched, cut to a range of frames.

#include "input_file.hpp"
#include "media/rational.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace media
{
class audio_copy
{
public:
    // Adds a stream to `output` for every audio stream of `from` that it can hold; a line to `notes` for any
    // other. Frame `first` of the source, at `rate`, is time 0 of the output.
    audio_copy(const std::filesystem::path& from, AVFormatContext* output, std::int32_t first, rational rate,
               std::vector<std::string>& notes);

    // Writes what begins before the end of the first `frames` frames (after the output's header).
    void write_until(std::int64_t frames);

private:
    struct carried
    {
        AVStream* in = nullptr;
        AVStream* out = nullptr;
        std::int64_t start = 0; // of the range, in the input stream's time base
        bool packed = false;    // a packet needs the one before it to be decoded whole
    };

    bool read_packet();
    carried* stream_of(const AVPacket& packet);
    bool starts_early_enough(const carried& stream, const AVPacket& packet) const;
    std::int64_t end_of(const carried& stream, std::int64_t frames) const;
    void write(carried& stream);

    input_file source_;
    AVFormatContext* output_;
    rational rate_;
    std::vector<carried> streams_;
    av::owner<AVPacket> packet_;
    bool waiting_ = false; // packet_ holds one that belongs to a later frame
    bool ended_ = false;
};
} // namespace media
