#include "progress.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <unistd.h>

namespace cli
{
namespace
{
constexpr int bar_cells = 30;

std::string clock_text(double seconds)
{
    const long whole = std::lround(std::min(seconds, 359999.0));
    char text[32];
    if (whole >= 3600)
        std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60, whole % 60);
    else
        std::snprintf(text, sizeof text, "%ld:%02ld", whole / 60, whole % 60);
    return text;
}
} // namespace

progress::progress(std::optional<std::int32_t> total, bool quiet)
    : total_(total), quiet_(quiet), terminal_(isatty(STDERR_FILENO) == 1)
{
}

progress::~progress()
{
    clear();
}

double progress::seconds() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begun_).count();
}

std::string progress::text() const
{
    const double rate = done_ / std::max(seconds(), 1e-3);
    char speed[48];
    std::snprintf(speed, sizeof speed, "%.1f frames/s", rate);
    if (!total_)
        return std::to_string(done_) + " frames, " + speed;
    const std::string left = clock_text((to_draw() - done_) / rate);
    return std::to_string(done_) + "/" + std::to_string(to_draw()) + " frames, " + speed + ", " + left + " left";
}

void progress::frame_done()
{
    ++done_;
    const auto now = std::chrono::steady_clock::now();
    const auto pause = terminal_ ? std::chrono::milliseconds(100) : std::chrono::milliseconds(2000);
    if (quiet_ || now - shown_ < pause)
        return;
    shown_ = now;
    if (!terminal_)
    {
        std::fprintf(stderr, "filigrane: %s\n", text().c_str());
        return;
    }
    std::string bar;
    if (total_)
    {
        const auto full = static_cast<std::size_t>(std::int64_t{bar_cells} * done_ / std::max(to_draw(), 1));
        bar = "[" + std::string(full, '#') + std::string(bar_cells - std::min<std::size_t>(full, bar_cells), '.') +
              "] ";
    }
    std::fprintf(stderr, "\r%s%s\033[K", bar.c_str(), text().c_str());
    std::fflush(stderr);
    drawn_ = true;
}

void progress::clear()
{
    if (drawn_)
        std::fputs("\r\033[K", stderr);
    drawn_ = false;
}
} // namespace cli
