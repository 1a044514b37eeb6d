#include "stop_signal.hpp"

#include <csignal>

namespace cli
{
namespace
{
std::atomic<bool> stopped = false;
static_assert(std::atomic<bool>::is_always_lock_free); // or a handler could not set it

void note_stop(int)
{
    stopped = true;
}
} // namespace

void watch_stop_signals()
{
    struct sigaction action = {};
    action.sa_handler = note_stop;
    // The first asks, the second ends the process at once.
    action.sa_flags = SA_RESTART | SA_RESETHAND;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    std::signal(SIGXFSZ, SIG_IGN);
}

const std::atomic<bool>& stop_requested()
{
    return stopped;
}
} // namespace cli
