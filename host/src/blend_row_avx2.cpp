// Compiled for AVX2: nothing here is called on a processor without it.
#include "blend_lanes.hpp"

#if defined(__AVX2__)
namespace host
{
void in_front_row_avx2(const PF_Pixel* src, PF_Pixel* dst, int count)
{
    in_front_row<32>::blend(src, dst, count);
}
} // namespace host
#endif
