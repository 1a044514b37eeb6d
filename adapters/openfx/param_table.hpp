#pragma once
// The effect's parameters as an OpenFX host sees them, made once from what the effect registered. Their texts live
// as long as the library, as hosts ask.
//
//   slider                 Integer
//   fixed and float slider Double, in the value's own unit: a percentage's 100 % is 1
//   angle                  Double of type angle, degrees; counter-clockwise here, clockwise in the effect
//   point                  Double2D, plain: fractions of the frame from its bottom left corner, y pointing up; the
//                          effect counts from the top left, y pointing down
//   colour                 RGBA
//   checkbox               Boolean
//   popup                  Choice, counted from 0; the effect counts from 1

#include "host/parameters.hpp"

#include <array>
#include <string>
#include <vector>

namespace openfx
{
// Numbers of a parameter or of one value of it, in the host's manner; those past the kind's dimension are not
// used.
using numbers = std::array<double, 4>;

struct param_row
{
    const host::param_info* info = nullptr;
    const char* type = nullptr; // the host's word for the kind
    int dimension = 1;
    bool whole = false;  // int for the host, not double
    bool ranged = false; // has limits
    // Never changed: projects name parameters by it. Letters and digits.
    std::string name;
    std::string label; // letters, digits and blanks: some hosts warn of others
    const char* hint = "";
    std::string parent; // the group's name; empty outside any
    numbers initial{};
    double minimum = 0.0, maximum = 0.0;         // what may be typed
    double display_min = 0.0, display_max = 0.0; // the slider's ends
    double increment = 1.0;
    int digits = 2;
};

struct group_row
{
    std::string name;
    std::string label;
};

struct param_table
{
    explicit param_table(const std::vector<host::param_info>& params);

    std::vector<group_row> groups;
    std::vector<param_row> rows; // of all parameters that have a value, in the order of registration
};

// A value, from the host's manner to the effect's and back. Numbers outside the limits become the nearest limit,
// what is no number the default.
host::param_value effect_value(const param_row& row, const numbers& value);
numbers host_value(const param_row& row, const host::param_value& value);

// "normal-line-width" -> "normalLineWidth".
std::string camel_name(const std::string& hyphened);
// What a label may hold in every host: letters, digits and blanks; other characters are left out.
std::string plain_label(const std::string& label);
} // namespace openfx
