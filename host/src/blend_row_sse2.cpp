#include "blend_lanes.hpp"

namespace host
{
void in_front_rows_sse2(const rows_on_rows& rows)
{
    in_front_rows<16>::blend(rows);
}
} // namespace host
