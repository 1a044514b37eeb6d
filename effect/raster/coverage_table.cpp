#include "effect/raster/lanes.hpp"
#include "effect/raster/line_creator.hpp"

#include <cstring>

// How much of a pixel an edge covers that lies (row/100 - 1) pixels beyond the pixel's centre. The pixel's extent
// across the edge grows from 1 to sqrt(2) as the edge turns from an axis to a diagonal; a triangle over the sine
// of the direction stands for that: 0 at both ends of the row, 1 in its middle.
int LineCreatorClass::CreateTables()
{
    static_assert(kTableColumns % kLanes == 0);
    constexpr int kUnfilled = (kTableRows - kTableFilledRows) * kTableColumns;
    coverageTable = pool_array_used<float>(pool, kTableRows * kTableColumns, 0);
    if (coverageTable == nullptr)
        return 1;

    // What a column shares: where the pixel's extent begins, less the centre, and how long it is.
    const auto e = static_cast<float>((in_data->utils->ansi.sqrt(2.0) - 1.0) * 0.5);
    float begin[kTableColumns];
    float extent[kTableColumns];
    for (int j = 0; j < kTableColumns; ++j)
    {
        const float s = static_cast<float>(j) / 255.0f * 2.0f;
        const float f = s <= 1.0f ? s : 2.0f - s;
        begin[j] = 0.5f - e * f;
        extent[j] = 2.0f * e * f + 1.0f;
    }

    for (int i = 0; i < kTableFilledRows; ++i)
    {
        const float dpos = static_cast<float>(i) / 100.0f;
        float* const row = coverageTable + i * kTableColumns;
        for (int j = 0; j < kTableColumns; j += kLanes)
        {
            const float_lanes num = dpos - load_lanes<float_lanes>(begin + j);
            const auto den = load_lanes<float_lanes>(extent + j);
            // Compilers make the plain choices lane by lane.
            store_lanes(row + j, lower_of(higher_of(num, all_lanes(0.0f)), den) / den);
        }
    }
    std::memset(coverageTable + kTableFilledRows * kTableColumns, 0, kUnfilled * sizeof(float));
    return 1;
}
