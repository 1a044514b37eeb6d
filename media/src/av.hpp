#pragma once
// libav's objects with owners, and its error codes in words. Include this, never libav's headers directly.

extern "C"
{
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include "media/error.hpp"

#include <memory>
#include <string>

namespace media::av
{
struct release
{
    void operator()(AVFrame* p) const { av_frame_free(&p); }
    void operator()(AVPacket* p) const { av_packet_free(&p); }
    void operator()(AVCodecContext* p) const { avcodec_free_context(&p); }
    void operator()(SwsContext* p) const { sws_freeContext(p); }
};
template <class T>
using owner = std::unique_ptr<T, release>;

// An owner, or std::bad_alloc in place of null.
owner<AVFrame> new_frame();
owner<AVPacket> new_packet();
owner<AVCodecContext> new_codec(const AVCodec* codec);

// What a libav error code means, in words.
std::string reason(int code);

// libav prints nothing of its own; call before the first use.
void quiet();

// libav's options of one call; takes them back when it goes.
class options
{
public:
    options() = default;
    ~options() { av_dict_free(&entries_); }
    options(const options&) = delete;
    options& operator=(const options&) = delete;
    void set(const char* key, const char* value) { av_dict_set(&entries_, key, value, 0); }
    AVDictionary** get() { return &entries_; }

private:
    AVDictionary* entries_ = nullptr;
};
} // namespace media::av
