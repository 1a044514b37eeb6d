// Compiled for AVX2: nothing here is called on a processor without it.
#include "map_lanes.hpp"

#if defined(__AVX2__)
namespace host
{
void bilinear_row_avx2(const PF_EffectWorld& src, const row_map& map, int column, int count, PF_Pixel* out)
{
    mapped_run(src).sample<true>(map, column, count, out);
}

void nearest_row_avx2(const PF_EffectWorld& src, const row_map& map, int column, int count, PF_Pixel* out)
{
    mapped_run(src).sample<false>(map, column, count, out);
}
} // namespace host
#endif
