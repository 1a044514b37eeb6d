#include "av.hpp"

#include <new>

namespace media::av
{
namespace
{
template <class T>
owner<T> checked(T* made)
{
    if (made == nullptr)
        throw std::bad_alloc();
    return owner<T>(made);
}
} // namespace

owner<AVFrame> new_frame()
{
    return checked(av_frame_alloc());
}

owner<AVPacket> new_packet()
{
    return checked(av_packet_alloc());
}

owner<AVCodecContext> new_codec(const AVCodec* codec)
{
    return checked(avcodec_alloc_context3(codec));
}

std::string reason(int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

void quiet()
{
    av_log_set_level(AV_LOG_QUIET);
}
} // namespace media::av
