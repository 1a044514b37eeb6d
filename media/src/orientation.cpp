#include "orientation.hpp"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace media
{
namespace
{
// Nine numbers in three rows, or null.
const std::int32_t* display_matrix(const AVStream* stream, const AVFrame& frame)
{
    const std::uint8_t* bytes = av_stream_get_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr);
    if (bytes == nullptr)
    {
        const AVFrameSideData* own = av_frame_get_side_data(&frame, AV_FRAME_DATA_DISPLAYMATRIX);
        bytes = own != nullptr ? own->data : nullptr;
    }
    return reinterpret_cast<const std::int32_t*>(bytes);
}
} // namespace

orientation orientation_of(const AVStream* stream, const AVFrame& frame)
{
    const std::int32_t* matrix = display_matrix(stream, frame);
    if (matrix == nullptr)
        return {};
    // The stored x axis points to (a, b) in the shown picture, the stored y axis to (c, d); y goes down.
    const std::int64_t a = matrix[0], b = matrix[1], c = matrix[3], d = matrix[4];
    if (std::abs(b) > std::abs(a))
        return c != 0 ? orientation{true, c < 0, b < 0} : orientation{};
    return a != 0 && d != 0 ? orientation{false, a < 0, d < 0} : orientation{};
}

void set_upright(const_image_view from, const orientation& how, image_view to)
{
    for (int y = 0; y < to.height; ++y)
        for (int x = 0; x < to.width; ++x)
        {
            int from_x = how.flips_x ? to.width - 1 - x : x;
            int from_y = how.flips_y ? to.height - 1 - y : y;
            if (how.transposes)
                std::swap(from_x, from_y);
            std::copy_n(from.row(from_y) + 4 * from_x, 4, to.row(y) + 4 * x);
        }
}
} // namespace media
