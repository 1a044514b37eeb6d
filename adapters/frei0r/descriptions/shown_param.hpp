#pragma once
// A parameter as editors show it: in the effect's own unit, percentages times 100.

#include "adapters/frei0r/param_table.hpp"

#include <string>

namespace frei0r
{
struct shown_param
{
    double low = 0.0;  // what 0 stands for, as shown
    double high = 1.0; // what 1 stands for
    double minimum = 0.0;
    double maximum = 1.0;
    double standard = 0.0;
    int decimals = 0;
    std::string suffix;
};

// Of a number or a point's part.
shown_param as_shown(const param_row& row);

bool is_number(const param_row& row);

// The shortest decimal with at most `digits` behind the point: "0.5", "12".
std::string decimal(double value, int digits = 6);

// The share of 1 that choice k (from 0) of so many stands at.
std::string choice_share(std::size_t k, std::size_t count);

// The colour as "#rrggbb".
std::string color_text(const param_row& row);

// &, < and quotes as XML writes them.
std::string xml_text(const std::string& text);
} // namespace frei0r
