#include "pending_file.hpp"

#include "media/error.hpp"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace media
{
namespace
{
[[noreturn]] void cannot_write(const std::string& name, int code)
{
    throw error(name + ": cannot be written (" + std::strerror(code) + ")");
}

// A link stands for the file it points at, so that overwriting keeps the link.
std::filesystem::path behind_links(const std::filesystem::path& path)
{
    std::error_code failed;
    if (!std::filesystem::is_symlink(path, failed))
        return path;
    const std::filesystem::path real = std::filesystem::weakly_canonical(path, failed);
    return failed ? path : real;
}

std::filesystem::path hidden_name(const std::filesystem::path& target)
{
    static std::atomic<unsigned> counter = 0;
    const std::string name =
        ".filigrane-" + std::to_string(::getpid()) + "-" + std::to_string(counter++) + ".part";
    return target.parent_path() / name;
}
} // namespace

void require_free_name(const std::filesystem::path& target, bool overwrite)
{
    const std::string name = target.string();
    std::error_code failed;
    const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
    if (!target.has_filename())
        throw error(name + ": is a folder; add a file name");
    if (!std::filesystem::exists(folder, failed))
        throw error(name + ": the folder " + folder.string() + " does not exist; make it first");
    if (!std::filesystem::is_directory(folder, failed))
        throw error(name + ": " + folder.string() + " is not a folder");
    const std::filesystem::file_status status = std::filesystem::status(target, failed);
    if (std::filesystem::is_directory(status))
        throw error(name + ": is a folder; add a file name");
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw error(name + ": is no regular file; name another output");
    if (std::filesystem::exists(status) && !overwrite)
        throw error(name + ": exists already; name another output, or overwrite it with --force");
}

pending_file::pending_file(const std::filesystem::path& target, bool overwrite)
    : target_(behind_links(target)), hidden_(hidden_name(target_)), name_(target.string()), overwrite_(overwrite)
{
    require_free_name(target, overwrite);
    const int descriptor = ::open(hidden_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0)
        cannot_write(name_, errno);
    ::close(descriptor);
}

pending_file::~pending_file()
{
    if (!hidden_.empty())
        ::unlink(hidden_.c_str());
}

void pending_file::write(const std::uint8_t* bytes, std::size_t size)
{
    const int descriptor = ::open(hidden_.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    if (descriptor < 0)
        cannot_write(name_, errno);
    int failure = 0;
    while (size > 0 && failure == 0)
    {
        const ssize_t put = ::write(descriptor, bytes, size);
        if (put >= 0)
        {
            bytes += put;
            size -= static_cast<std::size_t>(put);
        }
        else if (errno != EINTR)
            failure = errno;
    }
    if (::close(descriptor) != 0 && failure == 0 && errno != EINTR)
        failure = errno;
    if (failure != 0)
        cannot_write(name_, failure);
}

void pending_file::commit()
{
    // Once more: the name may have been taken while the file was made.
    require_free_name(target_, overwrite_);
    if (::rename(hidden_.c_str(), target_.c_str()) != 0)
        cannot_write(name_, errno);
    hidden_.clear();
}
} // namespace media
