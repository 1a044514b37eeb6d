#pragma once
// The pictures of a file in the order they are shown, as libav decodes them.

#include "input_file.hpp"

#include <cstdint>
#include <optional>

namespace media
{
class frame_decoder
{
public:
    // Opens the file's (best) picture stream. Throws media::error.
    explicit frame_decoder(const std::filesystem::path& path);

    // The next picture, valid until the next call; null at the end. Throws media::error for damaged data.
    const AVFrame* next();
    // Continues at the latest point at or before `time` (in the stream's time base) where decoding can begin.
    // False where the file cannot do it; next() then goes on as if nothing had been asked.
    bool seek(std::int64_t time);

    const input_file& file() const { return file_; }
    const AVStream* stream() const { return stream_; }
    AVCodecID codec() const { return stream_->codecpar->codec_id; }

private:
    void feed();
    [[noreturn]] void damaged(const std::string& why) const;

    input_file file_;
    AVStream* stream_ = nullptr;
    av::owner<AVCodecContext> decoder_;
    av::owner<AVPacket> packet_;
    av::owner<AVFrame> frame_;
    std::int64_t decoded_ = 0; // pictures since the start, for messages
};
} // namespace media
