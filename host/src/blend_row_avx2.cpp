// Compiled for AVX2: nothing here is called on a processor without it.
#include "blend_lanes.hpp"

#if defined(__AVX2__)
namespace host
{
void in_front_rows_avx2(const rows_on_rows& rows)
{
    in_front_rows<32>::blend(rows);
}
} // namespace host
#endif
