#pragma once
// The parameters that an effect registers, and the values that a user gives them over time.

#include "effect/pf/effect_api.hpp"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace host
{
enum class param_kind
{
    layer,
    slider,       // whole number
    fixed_slider, // 16.16
    angle,        // degrees, 16.16
    checkbox,
    color,
    point, // two 16.16 numbers
    popup,
    float_slider,
    group_start,
    group_end,
    unknown,
};

// The kind in words: "integer slider", "fixed slider", "angle", "checkbox", "colour", "point", "popup", ...
const char* kind_name(param_kind kind);

// One registered parameter. `definition` is the record as the effect added it (index 0: the host's input layer);
// its label pointers point into `label` / `choices_text`-like copies owned by the parameter set, never into the
// effect.
struct param_info
{
    int index = 0;
    param_kind kind = param_kind::unknown;
    std::string name;  // as registered; empty for checkboxes
    std::string label; // what a person sees: the name, or a checkbox's own label
    std::string topic; // the enclosing group's label; empty outside any group
    bool animatable = false;
    bool percent = false; // shown as a percentage: a value of 1.0 reads "100%"
    double minimum = 0.0; // valid range in the value's own unit; for sliders and popups alone
    double maximum = 0.0;
    std::vector<std::string> choices; // of a popup; choice i is value i + 1
    PF_ParamDef definition{};

    bool has_value() const; // false for layers and groups
};

// A value in natural units:
//   slider, popup, checkbox: x is the number (choices count from 1, a checkbox is 0 or 1)
//   fixed_slider, float_slider: x is the real value (a percentage slider's 100 % is 1.0)
//   angle: x is degrees
//   point: (x, y) in pixels of the full-resolution layer, or in percent of the layer where `percent` is set
//   color: `color`
struct param_value
{
    double x = 0.0;
    double y = 0.0;
    bool percent = false;
    PF_Pixel color{};
};

// The default that the effect registered.
param_value default_value(const param_info& info);

enum class interpolation
{
    hold,   // a key's value lasts until the next key
    linear, // straight between keys
    smooth, // u*u*(3 - 2u) between keys: leaves and reaches every key level
};

struct keyframe
{
    double seconds = 0.0;
    param_value value;
};

// A parameter's value over time: constant (`keys` empty), keyframed, or known elsewhere. Before the first key the
// first value holds, after the last the last. Keys are in strictly ascending time.
struct track
{
    param_value constant;
    std::vector<keyframe> keys;
    interpolation between = interpolation::linear;
    // Where set, asked instead of the above, on the thread that renders: for values that another program keeps.
    std::function<param_value(double seconds)> elsewhere = {};

    // The value at a time in seconds; numbers are interpolated in double, colours per channel and rounded to
    // nearest. Whole-number kinds are rounded to nearest when they are handed to the effect, not here.
    param_value at(double seconds) const;
};

// One track per registered parameter, all at their defaults to begin with. Index as registered.
class param_tracks
{
public:
    explicit param_tracks(const std::vector<param_info>& params);
    void set(int index, param_value value); // constant
    void set(int index, track keyed);
    const track& of(int index) const;
    int count() const;

private:
    std::vector<track> tracks_;
};
} // namespace host
