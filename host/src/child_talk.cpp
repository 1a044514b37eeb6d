#include "child_talk.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace host::child_talk
{
namespace
{
using clock = std::chrono::steady_clock;
constexpr std::size_t head_bytes = 1 + sizeof(std::uint64_t);

void write_all(int descriptor, const char* bytes, std::size_t size)
{
    while (size > 0)
    {
        const ssize_t put = ::write(descriptor, bytes, size);
        if (put < 0 && errno != EINTR)
        {
            return; // the parent has gone, and what is said is of no use
        }
        bytes += std::max<ssize_t>(put, 0);
        size -= static_cast<std::size_t>(std::max<ssize_t>(put, 0));
    }
}

// Adds what is there within the time; false at the end of the pipe.
bool read_some(int descriptor, std::chrono::milliseconds within, std::string& into)
{
    pollfd readable{descriptor, POLLIN, 0};
    if (poll(&readable, 1, static_cast<int>(within.count())) <= 0)
    {
        return true;
    }
    std::array<char, 65536> buffer;
    const ssize_t got = ::read(descriptor, buffer.data(), buffer.size());
    into.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    return got > 0 || (got < 0 && errno == EINTR);
}

bool has_ended(pid_t child, int& status)
{
    return waitpid(child, &status, WNOHANG) == child;
}

// Splits what was read; an incomplete last message is left out.
void parse(const std::string& said, ending& end)
{
    std::size_t at = 0;
    while (said.size() - at >= head_bytes)
    {
        std::uint64_t length = 0;
        std::memcpy(&length, said.data() + at + 1, sizeof length);
        if (length > said.size() - at - head_bytes)
        {
            return;
        }
        const std::string text = said.substr(at + head_bytes, length);
        if (said[at] == stage)
        {
            end.stage = text;
        }
        else
        {
            end.kind = said[at];
            end.text = text;
        }
        at += head_bytes + length;
    }
}
} // namespace

void say(int descriptor, char kind, const std::string& text)
{
    const std::uint64_t length = text.size();
    std::string message(1, kind);
    message.append(reinterpret_cast<const char*>(&length), sizeof length);
    message += text;
    write_all(descriptor, message.data(), message.size());
}

ending listen(int descriptor, pid_t child, std::chrono::milliseconds patience)
{
    // The end of the pipe tells most ends at once; of the others the child's own state is asked now and then.
    constexpr std::chrono::milliseconds now_and_then{20};
    const clock::time_point deadline = clock::now() + patience;
    ending end;
    std::string said;
    bool open = true;
    while (!has_ended(child, end.status))
    {
        if (clock::now() >= deadline)
        {
            end.timed_out = true;
            kill(-child, SIGKILL);
            kill(child, SIGKILL);
            waitpid(child, &end.status, 0);
            break;
        }
        if (open)
        {
            open = read_some(descriptor, now_and_then, said);
        }
        else
        {
            usleep(1000);
        }
    }
    // What it said last may still be in the pipe.
    for (std::size_t before = said.size() + 1; open && before != said.size();)
    {
        before = said.size();
        open = read_some(descriptor, std::chrono::milliseconds{0}, said);
    }
    parse(said, end);
    return end;
}
} // namespace host::child_talk
