#pragma once
// An instance's parameter values, asked of the host when they are wanted.

#include "adapters/openfx/param_table.hpp"
#include "adapters/openfx/suites.hpp"

#include "host/parameters.hpp"

#include <cstdint>
#include <map>
#include <vector>

namespace openfx
{
struct library;

// Reads one value; the default where the host has no such parameter or fails to tell. A host that cannot tell it
// at a time is asked for the one it shows.
numbers read_value(const param_row& row, OfxParamHandle param, OfxTime time);

// The handle of a parameter; null where the host does not have it.
OfxParamHandle param_handle(OfxParamSetHandle set, const char* name);

// An instance's parameters; null where the host does not give them.
OfxParamSetHandle params_of(OfxImageEffectHandle effect);

// The values of one frame, and of those before it as far as the effect asks. Frames are times: the composition has
// one frame a second. To be used on one thread, and outlived by nothing that `tracks` answered.
class frame_values
{
public:
    // `time` is what the frame `frame` is drawn at: a field's lies between two frames.
    frame_values(const library& lib, OfxParamSetHandle params, OfxTime time, std::int32_t frame);
    frame_values(const frame_values&) = delete;
    frame_values& operator=(const frame_values&) = delete;

    host::param_tracks tracks();
    // The value at the frame's own time of the parameter with that label; 0 where there is none.
    double number(const char* label);

private:
    // Growth asks for the same frames for every line.
    const host::param_value& at(std::size_t row, double frame);

    const library& lib_;
    OfxTime time_;
    double frame_;
    std::vector<OfxParamHandle> handles_; // for each row of the table
    std::vector<std::map<double, host::param_value>> known_;
};
} // namespace openfx
