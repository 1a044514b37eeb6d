#pragma once
// Where the effect's picture lies among the host's pixels, and at what scale it is drawn.
//
// "Lines" are rows of whole frames at the render scale, y pointing up. The effect's picture covers `frame`, its
// row 0 being the topmost line. An image of one field has every other line, or has each of its lines twice.

#include "adapters/openfx/image.hpp"

#include "host/render.hpp"

#include <cstdint>
#include <optional>

namespace openfx
{
enum class row_layout : std::uint8_t
{
    whole,   // row y is line y
    single,  // row y is line 2y, or 2y + 1 of an upper field
    doubled, // rows 2y and 2y + 1 are that line
};

// The rows of one image among the lines of frames.
struct row_map
{
    row_layout layout = row_layout::whole;
    int parity = 0; // of an upper field 1

    int line_of(int row) const;
    // The row that shows a line, or the nearest of its field.
    int row_of(int line) const;
};

// What a host says of sizes; canonical pixels are square ones of the full scale.
struct told_sizes
{
    double scale_x = 1.0; // as the action has it
    double scale_y = 1.0;
    std::optional<OfxRectD> defined;       // the clip's region of definition, canonical
    std::optional<OfxPointD> project_size; // canonical
};

struct placement
{
    OfxRectI frame{}; // in lines: what the picture covers
    row_map rows;     // of the output
    host::composition comp;
};

// The placement for an output image. A scale that does not fit the sizes is taken for 1; so is what is no scale.
// Scales of a whole part, the same each way, are the effect's downsample (1 to 4), others its finer one.
placement place(const image& output, const told_sizes& told);

// The rows of another image, of a clip with the region of definition `defined`, for a frame drawn at that scale.
row_map rows_of(const image& any, double scale_y, const std::optional<OfxRectD>& defined);

// Infinite, empty and nonsensical regions are none.
std::optional<OfxRectD> usable_region(const OfxRectD& region);
} // namespace openfx
