// Compiled for AVX2: nothing here is called on a processor without it.
#if defined(__AVX2__)
#include "map_eight_avx2.hpp"

namespace host
{
void bilinear_row_avx2(const PF_EffectWorld& src, const row_map& map, int column, int count, PF_Pixel* out)
{
    eight_fetched(mapped_run(src)).sample(map, column, count, out);
}

void nearest_row_avx2(const PF_EffectWorld& src, const row_map& map, int column, int count, PF_Pixel* out)
{
    mapped_run(src).sample<false>(map, column, count, out);
}
} // namespace host
#endif
