#include "input_file.hpp"

#include "stated_size.hpp"

#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace media
{
namespace
{
constexpr int buffer_bytes = 1 << 16;

int read_bytes(void* opaque, std::uint8_t* into, int size)
{
    const int descriptor = *static_cast<int*>(opaque);
    ssize_t got = 0;
    do
        got = ::read(descriptor, into, static_cast<std::size_t>(size));
    while (got < 0 && errno == EINTR);
    if (got < 0)
        return AVERROR(errno);
    return got == 0 ? AVERROR_EOF : static_cast<int>(got);
}

std::int64_t seek_bytes(void* opaque, std::int64_t offset, int whence)
{
    const int descriptor = *static_cast<int*>(opaque);
    if ((whence & AVSEEK_SIZE) != 0)
    {
        struct stat status = {};
        return ::fstat(descriptor, &status) == 0 ? status.st_size : AVERROR(errno);
    }
    const off_t at = ::lseek(descriptor, offset, whence & ~AVSEEK_FORCE);
    return at >= 0 ? at : AVERROR(errno);
}
} // namespace

input_file::input_file(const std::filesystem::path& path) : name_(path.string())
{
    av::quiet();
    try
    {
        open_bytes(path);
        open_format();
    }
    catch (...)
    {
        close();
        throw;
    }
}

input_file::~input_file()
{
    close();
}

void input_file::close()
{
    avformat_close_input(&format_);
    if (bytes_ != nullptr)
        av_freep(&bytes_->buffer);
    avio_context_free(&bytes_);
    if (descriptor_ >= 0)
        ::close(descriptor_);
    descriptor_ = -1;
}

void input_file::open_bytes(const std::filesystem::path& path)
{
    // Not blocking, so that a pipe without a writer is refused below instead of waited for.
    descriptor_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor_ < 0)
        throw error(name_ + ": cannot be read (" + std::strerror(errno) + ")");
    struct stat status = {};
    if (::fstat(descriptor_, &status) != 0)
        throw error(name_ + ": cannot be read (" + std::strerror(errno) + ")");
    if (S_ISDIR(status.st_mode))
        throw error(name_ + ": is a folder; name a file, or its pictures as in " +
                    (path / "frame_%04d.png").string());
    if (!S_ISREG(status.st_mode))
        throw error(name_ + ": is no regular file; name a picture or a clip");
    if (status.st_size == 0)
        throw error(name_ + ": the file is empty");
}

void input_file::open_format()
{
    auto* buffer = static_cast<unsigned char*>(av_malloc(buffer_bytes));
    bytes_ = avio_alloc_context(buffer, buffer_bytes, 0, &descriptor_, read_bytes, nullptr, seek_bytes);
    if (bytes_ == nullptr)
    {
        av_free(buffer);
        throw std::bad_alloc();
    }
    format_ = avformat_alloc_context();
    if (format_ == nullptr)
        throw std::bad_alloc();
    format_->pb = bytes_;
    format_->flags |= AVFMT_FLAG_CUSTOM_IO;
    av::options options;
    options.set("protocol_whitelist", "none");
    // A picture is one packet, however large: some kinds would otherwise arrive in pieces of 4096 bytes.
    struct stat status = {};
    if (::fstat(descriptor_, &status) == 0 && status.st_size <= INT_MAX)
        options.set("frame_size", std::to_string(status.st_size).c_str());
    if (avformat_open_input(&format_, nullptr, nullptr, options.get()) < 0)
        throw error(name_ + ": holds no picture or clip that can be read (damaged, cut off, or of another kind)");
    if (const int code = avformat_find_stream_info(format_, nullptr); code < 0)
        throw error(name_ + ": cannot be read (" + av::reason(code) + ")");
}

bool input_file::is_picture() const
{
    const std::string demuxer = format_->iformat->name;
    return demuxer.ends_with("_pipe");
}

bool input_file::is_cut_off() const
{
    struct stat status = {};
    const std::optional<std::uint64_t> stated = stated_size(descriptor_);
    return stated && ::fstat(descriptor_, &status) == 0 && static_cast<std::uint64_t>(status.st_size) < *stated;
}
} // namespace media
