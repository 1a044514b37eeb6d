#pragma once
// The parameters as frei0r has them: made from the effect's own list, a point as two numbers, after the three of
// the adapter's own. Every number is a share of 1, because hosts cut it to 0..1.
//
//   number, angle, percentage:  value = low + x * (high - low), cut to the parameter's range
//     low    0 where the range has no numbers below 0, otherwise its lowest
//     high   its highest, 1,000,000 at most
//     An angle goes from -1000 to 1000 degrees, a point's part from -200 % to 300 % of the layer: steps that
//     people type are steps of a short decimal.
//   switch:  on from 0.5
//   choice k of n (from 1):  (k - 1) / (n - 1); 0..1 is divided into n equal steps
//   colour:  shares of 255, to the nearest
//
// A value is rounded to the billionth, a decimal number's ("number" in the list) to a ten-thousandth, so that what
// was typed as a decimal is the decimal.

#include "host/parameters.hpp"

#include <string>
#include <vector>

namespace frei0r
{
enum class row_kind
{
    look,      // text: a look's name, or a preset's file; empty or "none" for none
    rate,      // text: frames a second
    time_unit, // text: what the host's time counts
    number,    // slider, percentage, decimal number or angle of the effect
    point_x,
    point_y,
    toggle,
    choice,
    color,
};

struct param_row
{
    row_kind kind = row_kind::number;
    std::string name;        // as hosts show and save it
    std::string explanation; // one line or more, with the mapping
    int index = 0;           // the effect's own, 0 for the adapter's
    double low = 0.0;        // what 0 stands for
    double high = 1.0;       // what 1 stands for
    double minimum = 0.0;    // the effect's own range, or what 0 and 1 stand for where it has none
    double maximum = 1.0;
    double step = 1e-9;  // values are rounded to it
    double normal = 0.0; // the default as a share of 1
    std::string text;    // the default of a text
    PF_Pixel color{};    // the default of a colour
    std::string topic;   // the group that a person finds it in; empty for the adapter's
    bool animatable = false;
    bool percent = false; // shown as a percentage: 1 reads 100 %
    std::vector<std::string> choices;

    bool is_text() const;
    int type() const; // F0R_PARAM_...
};

// Row i is frei0r's parameter i. The adapter's own stand first, so that one more of the effect's moves none.
std::vector<param_row> make_table(const std::vector<host::param_info>& params);
// The adapter's own rows alone, where no effect can be loaded.
std::vector<param_row> adapter_rows();

// The value in the effect's unit of a number, point's part, switch or choice; `x` is in 0..1.
double natural_value(const param_row& row, double x);
// The share of 1 that stands for it.
double normal_value(const param_row& row, double natural);
} // namespace frei0r
