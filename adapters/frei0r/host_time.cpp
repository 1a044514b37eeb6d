#include "adapters/frei0r/host_time.hpp"

namespace frei0r
{
std::optional<time_unit> unit_of_text(std::string_view text, time_unit of_host)
{
    if (text.empty() || text == "auto")
        return of_host;
    if (text == "seconds" || text == "s")
        return time_unit::seconds;
    if (text == "milliseconds" || text == "ms")
        return time_unit::milliseconds;
    return std::nullopt;
}

time_unit unit_of_caller(std::string_view file_name)
{
    const bool of_ffmpeg = file_name.find("avfilter") != std::string_view::npos ||
                           file_name.starts_with("ffmpeg") || file_name.starts_with("ffplay") ||
                           file_name.starts_with("ffprobe");
    return of_ffmpeg ? time_unit::milliseconds : time_unit::seconds;
}

std::int32_t frame_of(double time, time_unit unit, adapter::frame_rate rate, std::atomic<std::int32_t>& untimed)
{
    const double seconds = unit == time_unit::milliseconds ? time / 1000.0 : time;
    const std::optional<std::int32_t> frame = adapter::frame_at(seconds, rate);
    return frame ? *frame : untimed.fetch_add(1, std::memory_order_relaxed);
}
} // namespace frei0r
