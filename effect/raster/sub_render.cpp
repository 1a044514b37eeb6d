#include "effect/raster/aeg.hpp"
#include "effect/raster/fast_stroke.hpp"
#include "effect/raster/line_creator.hpp"
#include "effect/raster/swept_boxes.hpp"

#include <cstring>

namespace
{
// Visits every pixel of the swept boxes, columns before rows. A pixel may be visited more than once.
template <class Visit>
void visit_swept_boxes(const LineCreatorClass& creator, float radius, Visit visit)
{
    walk_swept_boxes(
        creator, radius,
        [&](span columns, span rows)
        {
            for (int y = rows.first; y <= rows.last; ++y)
                for (int x = columns.first; x <= columns.last; ++x)
                    visit(x, y);
        },
        [&](strip columns, span rows)
        {
            for (int n = 0, x = columns.first; n < columns.count && x >= 0 && x < creator.width;
                 ++n, x += columns.step)
                for (int y = rows.first; y <= rows.last; ++y)
                    visit(x, y);
        },
        [&](strip rows, span columns)
        {
            for (int n = 0, y = rows.first; n < rows.count && y >= 0 && y < creator.height; ++n, y += rows.step)
                for (int x = columns.first; x <= columns.last; ++x)
                    visit(x, y);
        });
}
} // namespace

int LineCreatorClass::Render()
{
    if (level == simd_level::scalar || !draw_stroke_fast(*this))
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
    visit_swept_boxes(*this, innerRadius,
                      [&](int x, int y)
                      {
                          *pixel_at(x, y) = color;
                          mask_at(x, y) = 1;
                          context->mark(x, y);
                      });
    visit_swept_boxes(*this, outerRadius,
                      [&](int x, int y)
                      {
                          if (mask_at(x, y) == 0)
                              (this->*pixelFunction)(x, y);
                      });
}

void LineCreatorClass::SubRenderMulticolor()
{
    visit_swept_boxes(*this, outerRadius, [this](int x, int y) { (this->*pixelFunction)(x, y); });
}
