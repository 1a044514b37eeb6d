// Presets of any text: taken whole or refused with one line, and then nothing has changed.

#include "fuzz/effect_params.hpp"
#include "fuzz/require.hpp"
#include "host/error.hpp"
#include "host/param_text.hpp"
#include "host/preset.hpp"

#include <cmath>
#include <cstdint>

namespace
{
constexpr double kUntouched = -98765.0;

// Tracks that no preset can set.
host::param_tracks marked_tracks()
{
    const auto& params = fuzz::effect_params();
    host::param_tracks values(params);
    for (const host::param_info& info : params)
    {
        host::param_value value;
        value.x = kUntouched;
        values.set(info.index, value);
    }
    return values;
}

// What was set reads back as it was written, and has a value at any time.
void check_track(const host::param_info& info, const host::track& track)
{
    double last = -1e300;
    for (const host::keyframe& key : track.keys)
    {
        fuzz::require(std::isfinite(key.seconds) && key.seconds > last, "keys stand in ascending time");
        last = key.seconds;
        host::parse_value(info, host::format_value(info, key.value));
    }
    host::parse_value(info, host::format_value(info, track.constant));
    for (const double seconds : {-1.0, 0.0, 0.04, 1.5, 1e9})
    {
        const host::param_value value = track.at(seconds);
        fuzz::require(std::isfinite(value.x) && std::isfinite(value.y), "a value is a number at any time");
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto& params = fuzz::effect_params();
    host::composition frames;
    frames.width = 1920;
    frames.height = 1080;
    host::param_tracks values = marked_tracks();
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try
    {
        const host::preset read = host::read_preset(text, "looks/fuzz.json", params, frames, values);
        fuzz::require(read.name == "fuzz", "a preset has its file's name");
        for (const host::param_info& info : params)
        {
            const host::track& track = values.of(info.index);
            if (!track.keys.empty() || track.constant.x != kUntouched)
                check_track(info, track);
        }
    }
    catch (const host::error& failure)
    {
        fuzz::require_one_line(failure.what());
        for (const host::param_info& info : params)
            fuzz::require(values.of(info.index).constant.x == kUntouched && values.of(info.index).keys.empty(),
                          "a refused preset changes nothing");
    }
    return 0;
}
