#include "blend_lanes.hpp"

namespace host
{
void in_front_row_sse2(const PF_Pixel* src, PF_Pixel* dst, int count)
{
    in_front_row<16>::blend(src, dst, count);
}
} // namespace host
