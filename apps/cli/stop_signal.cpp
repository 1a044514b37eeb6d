#include "stop_signal.hpp"

#include "media/unfinished.hpp"

#include <csignal>
#include <cstring>
#include <unistd.h>

namespace cli
{
namespace
{
// All that a handler touches is set before it can be called, or lock-free.
std::atomic<bool> stopped = false;
std::atomic<int> stopped_by = 0;
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);
char crash_text[1024];
const char* line_begin = "";

struct named_signal
{
    int number;
    const char* name;
};

constexpr named_signal crashes[] = {
    {SIGSEGV, "SIGSEGV"}, {SIGBUS, "SIGBUS"}, {SIGFPE, "SIGFPE"}, {SIGILL, "SIGILL"}, {SIGABRT, "SIGABRT"},
};

// The signal comes again when its handler returns, and then does what it does without one.
void end_by(int number)
{
    media::remove_unfinished_files();
    std::signal(number, SIG_DFL);
    std::raise(number);
}

void note_stop(int number)
{
    int none = 0;
    if (!stopped_by.compare_exchange_strong(none, number))
        return end_by(number);
    stopped = true;
}

void say(const char* text)
{
    if (::write(STDERR_FILENO, text, std::strlen(text)) < 0)
        return; // nobody listens, and there is nobody else to tell
}

void note_crash(int number)
{
    say(line_begin);
    say("filigrane: ");
    for (const named_signal& crash : crashes)
        if (crash.number == number)
            say(crash.name);
    say(": ");
    say(crash_text);
    say("\n");
    end_by(number);
}

// What is ignored already stays so: a program started with nohup, or in the background, is meant to go on.
void unless_ignored(int number, void (*handler)(int))
{
    struct sigaction action = {};
    sigaction(number, nullptr, &action);
    if (action.sa_handler == SIG_IGN)
        return;
    action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
}
} // namespace

void watch_signals(const std::string& crash_note)
{
    crash_note.copy(crash_text, sizeof crash_text - 1);
    if (::isatty(STDERR_FILENO) != 0)
        line_begin = "\r\033[K"; // there may be a bar in the line
    for (const int wish : {SIGINT, SIGTERM, SIGHUP})
        unless_ignored(wish, note_stop);
    for (const named_signal& crash : crashes)
        unless_ignored(crash.number, note_crash);
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
}

const std::atomic<bool>& stop_requested()
{
    return stopped;
}

int stop_status()
{
    return 128 + stopped_by;
}
} // namespace cli
