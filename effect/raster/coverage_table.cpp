#include "effect/raster/line_creator.hpp"

// How much of a pixel an edge covers that lies (row/100 - 1) pixels beyond the pixel's centre. The pixel's extent
// across the edge grows from 1 to sqrt(2) as the edge turns from an axis to a diagonal; a triangle over the sine
// of the direction stands for that: 0 at both ends of the row, 1 in its middle.
int LineCreatorClass::CreateTables()
{
    coverageTable = pool_array<float>(pool, kTableRows * kTableColumns);
    if (coverageTable == nullptr)
        return 1;
    const auto e = static_cast<float>((in_data->utils->ansi.sqrt(2.0) - 1.0) * 0.5);
    for (int i = 0; i < kTableFilledRows; ++i)
    {
        for (int j = 0; j < kTableColumns; ++j)
        {
            const float s = static_cast<float>(j) / 255.0f * 2.0f;
            const float f = s <= 1.0f ? s : 2.0f - s;
            const float dpos = static_cast<float>(i) / 100.0f;
            const float num = dpos - (0.5f - e * f);
            const float den = 2.0f * e * f + 1.0f;
            const float inside = num < 0.0f ? 0.0f : num / den;
            coverageTable[i * kTableColumns + j] = num > den ? 1.0f : inside;
        }
    }
    return 1;
}
