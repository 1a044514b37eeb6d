#include "pending_file.hpp"

#include "media/error.hpp"
#include "unfinished_list.hpp"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
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

constexpr std::string_view hidden_begin = ".filigrane-";
constexpr std::string_view hidden_end = ".part";

std::filesystem::path hidden_name(const std::filesystem::path& target)
{
    static std::atomic<unsigned> counter = 0;
    const std::string number = std::to_string(::getpid()) + "-" + std::to_string(counter++);
    return target.parent_path() / (std::string(hidden_begin) + number + std::string(hidden_end));
}

// Locks a new file. False where somebody who removes abandoned files came between making and locking it. Where
// the file system has no locks nobody can tell an abandoned file, and none is removed.
bool take(int descriptor)
{
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0)
        return errno != EWOULDBLOCK;
    struct stat status = {};
    return ::fstat(descriptor, &status) != 0 || status.st_nlink > 0;
}

void remove_if_abandoned(const std::filesystem::path& file)
{
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return;
    struct stat status = {};
    const bool regular = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    if (regular && ::flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        ::unlink(file.c_str());
    ::close(descriptor);
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

void remove_abandoned_files(const std::filesystem::path& target)
{
    const std::filesystem::path folder = behind_links(target).parent_path();
    std::error_code failed;
    std::filesystem::directory_iterator entry(folder.empty() ? "." : folder, failed);
    for (; !failed && entry != std::filesystem::directory_iterator(); entry.increment(failed))
    {
        const std::string name = entry->path().filename().string();
        if (name.starts_with(hidden_begin) && name.ends_with(hidden_end))
            remove_if_abandoned(entry->path());
    }
}

pending_file::pending_file(const std::filesystem::path& target, bool overwrite)
    : target_(behind_links(target)), name_(target.string()), overwrite_(overwrite)
{
    require_free_name(target, overwrite);
    make();
    listed_ = unfinished::list(hidden_.c_str());
}

pending_file::~pending_file()
{
    unfinished::strike(listed_);
    if (!hidden_.empty())
        ::unlink(hidden_.c_str());
    if (descriptor_ >= 0)
        ::close(descriptor_);
}

void pending_file::make()
{
    for (;;)
    {
        hidden_ = hidden_name(target_);
        descriptor_ = ::open(hidden_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor_ >= 0 && take(descriptor_))
            return;
        // The name is taken where another process has our number on its own machine, or had it before.
        if (descriptor_ < 0 && errno != EEXIST)
            cannot_write(name_, errno);
        if (descriptor_ >= 0)
            ::close(descriptor_);
    }
}

void pending_file::write(const std::uint8_t* bytes, std::size_t size)
{
    int failure = 0;
    while (size > 0 && failure == 0)
    {
        const ssize_t put = ::write(descriptor_, bytes, size);
        if (put >= 0)
        {
            bytes += put;
            size -= static_cast<std::size_t>(put);
        }
        else if (errno != EINTR)
            failure = errno;
    }
    if (failure != 0)
        cannot_write(name_, failure);
}

void pending_file::sync()
{
    if (::fsync(descriptor_) != 0)
        cannot_write(name_, errno);
}

void pending_file::commit()
{
    // Once more: the name may have been taken while the file was made.
    require_free_name(target_, overwrite_);
    // Some file systems tell only when a file is closed what they could not write. Ours stays open for its lock.
    if (::close(::dup(descriptor_)) != 0 && errno != EINTR)
        cannot_write(name_, errno);
    if (::rename(hidden_.c_str(), target_.c_str()) != 0)
        cannot_write(name_, errno);
    unfinished::strike(listed_);
    listed_ = -1;
    hidden_.clear();
}
} // namespace media
