// Compiled for AVX2: nothing here is called on a processor without it.
#if defined(__AVX2__)
#include "map_eight_avx2.hpp"

#include <limits>

namespace host
{
void bilinear_row_avx2(const PF_EffectWorld& src, const row_map& map, int column, int count, PF_Pixel* out)
{
    eight_fetched(mapped_run(src)).sample(map, column, count, out);
}

void nearest_row_avx2(const PF_EffectWorld& src, const row_map& map, int column, int count, PF_Pixel* out)
{
    const mapped_run run(src);
    if (std::int64_t{src.rowbytes} * src.height <= std::numeric_limits<std::int32_t>::max())
        eight_fetched(run).nearest(map, column, count, out);
    else
        run.sample<false>(map, column, count, out);
}
} // namespace host
#endif
