#include "effect/raster/line_creator.hpp"
#include "effect/raster/pixel_coverage.hpp"

#include <cstring>

int LineCreatorClass::CreateTables()
{
    static_assert(kTableColumns % kLanes == 0);
    constexpr int kUnfilled = (kTableRows - kTableFilledRows) * kTableColumns;
    coverageTable = pool_array_used<float>(pool, kTableRows * kTableColumns, 0);
    if (coverageTable == nullptr)
        return 1;

    halfDiagonal = static_cast<float>((in_data->utils->ansi.sqrt(2.0) - 1.0) * 0.5);
    extent_across extents[kTableColumns / kLanes];
    for (int j = 0; j < kTableColumns; j += kLanes)
        extents[j / kLanes] = extent_at(__builtin_convertvector(kLaneNumbers + j, float_lanes), halfDiagonal);
    for (int i = 0; i < kTableFilledRows; ++i)
        for (int j = 0; j < kTableColumns; j += kLanes)
            store_lanes(coverageTable + i * kTableColumns + j,
                        covered_share(all_lanes(static_cast<float>(i)), extents[j / kLanes]));
    std::memset(coverageTable + kTableFilledRows * kTableColumns, 0, kUnfilled * sizeof(float));
    return 1;
}
