#pragma once
// Pictures for the host's functions to work on, by how opaque they are.

#include "effect/pf/types.hpp"

#include <vector>

namespace bench
{
enum class filling
{
    clear,   // transparent
    strokes, // as a canvas is: a few bands with soft edges, transparent between
    mixed,   // every alpha, at random
    opaque,
};

const char* filling_name(filling f);

// Straight alpha, rows from the top without padding.
std::vector<PF_Pixel> filled_picture(filling f, int width, int height);
} // namespace bench
