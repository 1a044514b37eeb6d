#include "effect/model/numeric.hpp"
#include "effect/raster/aeg.hpp"
#include "effect/raster/line_creator.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace
{
// Pixels of the canvas along one axis, both ends included; empty where last is below first.
struct span
{
    int first;
    int last;
};

// The pixel at a position, truncated toward zero and held to 0 .. size - 1.
int clamped(float position, int size) noexcept
{
    return std::clamp(trunc_i32(static_cast<double>(position)), 0, size - 1);
}

span box(float center, float radius, int size) noexcept
{
    return {clamped(center - radius, size), clamped(center + radius, size)};
}

// The strip that a box uncovers when its centre moves from `from` by `d`: `count` pixels from `first` on, in the
// direction of `d`.
struct strip
{
    int first;
    int step;
    int count;
};

strip uncovered(float from, float d, float radius, int size) noexcept
{
    const float first = d > 0.0f ? from + radius : from - radius;
    const float last = d > 0.0f ? first + d - 1.0f : first + d + 1.0f;
    const int first_pixel = clamped(first, size);
    const int last_pixel = clamped(last, size);
    return {first_pixel, d > 0.0f ? 1 : -1, std::abs(last_pixel - first_pixel) + 1};
}

// Visits every pixel of the boxes of half side `radius` swept along the stroke: the box around the first sample,
// then for each sample the strips newly uncovered, columns before rows. A pixel may be visited more than once.
template <class Visit>
void walk_swept_boxes(const LineCreatorClass& creator, float radius, Visit visit)
{
    const int width = creator.width;
    const int height = creator.height;
    float px = creator.points[0].x;
    float py = creator.points[0].y;

    const span start_rows = box(py, radius, height);
    const span start_columns = box(px, radius, width);
    for (int y = start_rows.first; y <= start_rows.last; ++y)
        for (int x = start_columns.first; x <= start_columns.last; ++x)
            visit(x, y);

    for (int i = 0; i < creator.pointCount; ++i)
    {
        const StrokePoint& p = creator.points[i];
        if (trunc_i32(static_cast<double>(p.x)) != trunc_i32(static_cast<double>(px)))
        {
            const strip columns = uncovered(px, p.x - px, radius, width);
            const span rows = box(p.y, radius, height);
            for (int n = 0, x = columns.first; n < columns.count && x >= 0 && x < width; ++n, x += columns.step)
                for (int y = rows.first; y <= rows.last; ++y)
                    visit(x, y);
            px = p.x;
        }
        if (trunc_i32(static_cast<double>(p.y)) != trunc_i32(static_cast<double>(py)))
        {
            const strip rows = uncovered(py, p.y - py, radius, height);
            const span columns = box(p.x, radius, width);
            for (int n = 0, y = rows.first; n < rows.count && y >= 0 && y < height; ++n, y += rows.step)
                for (int x = columns.first; x <= columns.last; ++x)
                    visit(x, y);
            py = p.y;
        }
    }
}
} // namespace

int LineCreatorClass::Render()
{
    (this->*subRenderFunction)();
    return 1;
}

void LineCreatorClass::SubRenderMonocolor()
{
    const auto mask_bytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    std::memset(coveredMask, 0, mask_bytes);
    const auto mask_at = [this](int x, int y) -> std::uint8_t&
    { return coveredMask[static_cast<std::ptrdiff_t>(y) * width + x]; };

    const PF_Pixel color = points[0].color;
    walk_swept_boxes(*this, innerRadius,
                     [&](int x, int y)
                     {
                         *pixel_at(x, y) = color;
                         mask_at(x, y) = 1;
                         context->mark(x, y);
                     });
    walk_swept_boxes(*this, outerRadius,
                     [&](int x, int y)
                     {
                         if (mask_at(x, y) == 0)
                             (this->*pixelFunction)(x, y);
                     });
}

void LineCreatorClass::SubRenderMulticolor()
{
    walk_swept_boxes(*this, outerRadius, [this](int x, int y) { (this->*pixelFunction)(x, y); });
}
