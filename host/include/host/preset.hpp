#pragma once
// A preset: parameter values by name, in JSON, with keyframes for the animatable ones.
//
//   { "description": "...",
//     "values": {
//       "Rows": 12, "Blend Amount": "50%", "Normal Color": "#ff8800", "Affect": "Horz Lines",
//       "Line Wrapping": true, "Position": "50%,50%",
//       "Rotation": {"keys": [[0, 0], ["2s", 360]], "interpolation": "linear"} } }
//
// A bare object of values (without "values") is read the same way. A key's time is a frame number or "<seconds>s".
// At most 1 MiB, nested at most 32 deep, 4096 entries in one object.

#include "host/parameters.hpp"
#include "host/render.hpp"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace host
{
struct preset
{
    std::string name;        // the file's stem
    std::string description; // one line; may be empty
};

// Reads a preset and sets its values on `values`; what it does not name is left alone. `frames` gives the frame
// rate for key times. All or nothing: on an error `values` is unchanged. Throws host::error naming the file, the
// line or the parameter, and the remedy: unreadable file, malformed JSON, unknown or duplicate names, wrong types,
// values out of range, keys out of order, keyframes on a parameter that cannot be animated, nesting too deep.
preset load_preset(const std::filesystem::path& file, const std::vector<param_info>& params,
                   const composition& frames, param_tracks& values);
preset read_preset(std::string_view json, const std::string& name_for_messages,
                   const std::vector<param_info>& params, const composition& frames, param_tracks& values);

// What a preset's file says, for showing: whether an effect has these names and takes these values is not asked.
struct preset_outline
{
    struct entry
    {
        std::string name;
        std::string value;
    };
    std::string description;
    std::vector<entry> values; // in the order of the file
};
preset_outline outline_preset(const std::filesystem::path& file);
} // namespace host
