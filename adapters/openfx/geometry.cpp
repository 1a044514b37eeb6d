#include "adapters/openfx/geometry.hpp"

#include <algorithm>
#include <climits>
#include <cmath>

namespace openfx
{
namespace
{
constexpr std::int32_t scale_steps = 1000000;

bool contains(const OfxRectI& outer, const OfxRectI& inner)
{
    return outer.x1 <= inner.x1 && outer.y1 <= inner.y1 && outer.x2 >= inner.x2 && outer.y2 >= inner.y2;
}

// `seen` pixels of what is `full` pixels long at the full scale: regions are rounded outwards, or to nearest.
bool fits(double scale, double full, int seen)
{
    return std::abs(full * scale - seen) <= 1.5;
}

// The scale that the action has, unless the sizes say otherwise. `full` is 0 where nothing is known of it.
double trusted(double scale, double full, int seen)
{
    if (!(scale > 0.0 && scale < 1.0))
        return 1.0;
    return full <= 0.0 || fits(scale, full, seen) ? scale : 1.0;
}

// The whole number n of a scale of 1/n, else 0: 0.3333 is a third.
int whole_part(double scale)
{
    const double n = std::round(1.0 / scale);
    return n <= 1000.0 && std::abs(scale * n - 1.0) < 0.001 ? static_cast<int>(n) : 0;
}

PF_RationalScale ratio_of(double scale)
{
    if (const int n = whole_part(scale); n != 0)
        return {1, static_cast<A_u_long>(n)};
    const long steps = std::clamp(std::lround(scale * scale_steps), 1L, static_cast<long>(scale_steps));
    return {static_cast<A_long>(steps), static_cast<A_u_long>(scale_steps)};
}

int reduced(std::int64_t full, const PF_RationalScale& ratio)
{
    return static_cast<int>((full * ratio.num + ratio.den - 1) / ratio.den);
}

// The layer's side, of which a picture of `seen` pixels is the scaled one: the side that the host tells where that
// is so.
int layer_side(int seen, double full, const PF_RationalScale& ratio)
{
    const std::int64_t told = full > 0.0 ? std::llround(full) : 0;
    if (told > 0 && reduced(told, ratio) == seen)
        return static_cast<int>(told);
    return static_cast<int>(std::min(std::int64_t{seen} * ratio.den / ratio.num, std::int64_t{INT_MAX}));
}

// Floor of y / 2, below 0 too.
int half(int y)
{
    return y >> 1;
}

// The frame's lines that a rectangle of rows shows.
OfxRectI lines_of(const OfxRectI& rows, const row_map& map)
{
    switch (map.layout)
    {
    case row_layout::single:
        return {rows.x1, 2 * rows.y1, rows.x2, 2 * rows.y2};
    case row_layout::doubled:
        return {rows.x1, 2 * half(rows.y1), rows.x2, 2 * half(rows.y2 + 1)};
    default:
        return rows;
    }
}
} // namespace

int row_map::line_of(int row) const
{
    switch (layout)
    {
    case row_layout::single:
        return 2 * row + parity;
    case row_layout::doubled:
        return 2 * half(row) + parity;
    default:
        return row;
    }
}

int row_map::row_of(int line) const
{
    switch (layout)
    {
    case row_layout::single:
        return half(line);
    case row_layout::doubled:
        return 2 * half(line) + parity;
    default:
        return line;
    }
}

std::optional<OfxRectD> usable_region(const OfxRectD& region)
{
    constexpr double most = 1 << 20;
    const bool finite = std::abs(region.x1) <= most && std::abs(region.y1) <= most &&
                        std::abs(region.x2) <= most && std::abs(region.y2) <= most;
    if (!finite || !(region.x2 > region.x1) || !(region.y2 > region.y1))
        return std::nullopt;
    return region;
}

row_map rows_of(const image& any, double scale_y, const std::optional<OfxRectD>& defined)
{
    if (any.lines == field::whole)
        return {};
    const int parity = any.lines == field::upper ? 1 : 0;
    // As many rows as the frame has: each of them stands twice. Half of them was asked for.
    const int rows = any.defined ? any.defined->y2 - any.defined->y1 : any.height();
    const bool doubled = defined && fits(scale_y, defined->y2 - defined->y1, rows) && rows > 2;
    return {doubled ? row_layout::doubled : row_layout::single, parity};
}

placement place(const image& output, const told_sizes& told)
{
    const OfxRectI pixels =
        output.defined && contains(*output.defined, output.bounds) ? *output.defined : output.bounds;
    double full_width = 0.0;
    double full_height = 0.0;
    if (told.defined)
    {
        full_width = (told.defined->x2 - told.defined->x1) / output.pixel_aspect;
        full_height = told.defined->y2 - told.defined->y1;
    }
    else if (told.project_size && told.project_size->x > 0.0 && told.project_size->y > 0.0)
    {
        full_width = told.project_size->x / output.pixel_aspect;
        full_height = told.project_size->y;
    }

    placement result;
    result.rows = rows_of(output, told.scale_y, told.defined);
    result.frame = lines_of(pixels, result.rows);
    const int width = result.frame.x2 - result.frame.x1;
    const int height = result.frame.y2 - result.frame.y1;
    const PF_RationalScale across = ratio_of(trusted(told.scale_x, full_width, width));
    const PF_RationalScale down = ratio_of(trusted(told.scale_y, full_height, height));

    // Of an odd number of lines one field has one row more than the other: both belong to the same frame.
    const int whole_height = full_height > 0.0 ? reduced(std::llround(full_height), down) : height;
    if (result.rows.layout != row_layout::whole && std::abs(whole_height - height) <= 1)
        result.frame.y2 = result.frame.y1 + whole_height;

    host::composition& comp = result.comp;
    comp.width = layer_side(width, full_width, across);
    comp.height = layer_side(result.frame.y2 - result.frame.y1, full_height, down);
    comp.time_step = 1;
    comp.time_scale = 1; // a frame a second: times are frames
    if (across.num == 1 && down.num == 1 && across.den == down.den && across.den <= 4)
        comp.downsample = static_cast<int>(across.den);
    else
    {
        comp.reduce_x = across;
        comp.reduce_y = down;
    }
    return result;
}
} // namespace openfx
