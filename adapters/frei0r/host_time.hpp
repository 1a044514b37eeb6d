#pragma once
// From what a host passes as "time" to the number of the frame.
//
// frei0r asks for seconds. FFmpeg's library passes milliseconds, every other host that was tried seconds. Whoever
// called tells which: `auto` is milliseconds where the caller is libavfilter, or one of FFmpeg's programs with the
// library linked in. For rows that FFmpeg has to copy, the frame's time is lost on the way, and a number far
// beyond any time comes instead; then frames are counted from 0, which is right where a clip is played from its
// start at one rate.

#include "adapters/common/frame_rate.hpp"

#include <atomic>
#include <optional>
#include <string_view>

namespace frei0r
{
enum class time_unit
{
    seconds,
    milliseconds,
};

// "seconds" or "s", "milliseconds" or "ms", "auto" or nothing: `of_host`. No value for any other text.
std::optional<time_unit> unit_of_text(std::string_view text, time_unit of_host);

// What the host counts whose code lies in the file of that name.
time_unit unit_of_caller(std::string_view file_name);

// The frame of a time; what can be none is counted with `untimed`, the first being 0.
std::int32_t frame_of(double time, time_unit unit, adapter::frame_rate rate, std::atomic<std::int32_t>& untimed);
} // namespace frei0r
