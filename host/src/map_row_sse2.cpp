#include "map_lanes.hpp"

namespace host
{
void bilinear_row_sse2(const PF_EffectWorld& src, const row_map& map, int column, int count, PF_Pixel* out)
{
    mapped_run(src).sample<true>(map, column, count, out);
}

void nearest_row_sse2(const PF_EffectWorld& src, const row_map& map, int column, int count, PF_Pixel* out)
{
    mapped_run(src).sample<false>(map, column, count, out);
}
} // namespace host
