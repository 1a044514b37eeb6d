#include "raster_stage.hpp"

#include <gtest/gtest.h>

#include <cstring>

namespace
{
using raster_test::stage;

constexpr std::size_t kTableBytes = 307200;

// The covered part of a pixel whose extent across the edge grows from 1 to the square root of 2, written a second
// way: where the edge lies between the extent's two ends.
float covered(int row, int column)
{
    const float half_growth = static_cast<float>((std::sqrt(2.0) - 1.0) * 0.5);
    const float twice_sine = 2.0f * (static_cast<float>(column) / 255.0f);
    const float towards_diagonal = column <= 127 ? twice_sine : 2.0f - twice_sine;
    const float growth = half_growth * towards_diagonal;
    const float near_end = 0.5f - growth;
    const float extent = 2.0f * half_growth * towards_diagonal + 1.0f;
    const float reached = static_cast<float>(row) / 100.0f - near_end;
    if (reached < 0.0f)
        return 0.0f;
    return reached > extent ? 1.0f : reached / extent;
}

TEST(coverage_table, is_the_covered_part_of_a_turning_pixel)
{
    stage s(64, 64);
    LineCreatorClass creator;
    s.set_up(creator);
    ASSERT_NE(creator.coverageTable, nullptr);
    for (int row = 0; row < 200; ++row)
        for (int column = 0; column < 256; ++column)
        {
            const float got = creator.coverageTable[row * 256 + column];
            const float want = covered(row, column);
            ASSERT_EQ(std::memcmp(&got, &want, sizeof got), 0)
                << "row " << row << ", column " << column << ": " << got << ", not " << want;
        }
}

TEST(coverage_table, has_the_values_of_an_axis_and_a_diagonal)
{
    stage s(64, 64);
    LineCreatorClass creator;
    s.set_up(creator);
    const auto at = [&](int row, int column) { return creator.coverageTable[row * 256 + column]; };
    // Along an axis an edge half a pixel before the centre covers nothing, through the centre half, beyond all.
    EXPECT_EQ(at(50, 0), 0.0f);
    EXPECT_EQ(at(100, 0), 0.5f);
    EXPECT_EQ(at(150, 0), 1.0f);
    EXPECT_EQ(at(199, 0), 1.0f);
    EXPECT_EQ(at(100, 255), 0.5f);
    // On the diagonal it takes longer both ways.
    EXPECT_GT(at(50, 127), 0.1f);
    EXPECT_LT(at(150, 127), 0.9f);
}

TEST(coverage_table, is_zero_past_the_first_200_rows)
{
    stage s(64, 64);
    LineCreatorClass creator;
    s.set_up(creator);
    for (int i = 200 * 256; i < 300 * 256; ++i)
        ASSERT_EQ(creator.coverageTable[i], 0.0f) << i;
}

TEST(coverage_table, takes_exactly_its_bytes_from_the_pool)
{
    stage s(64, 64, 0, kTableBytes);
    LineCreatorClass creator;
    creator.pool = &s.pool;
    creator.in_data = &s.in_data;
    EXPECT_EQ(creator.CreateTables(), 1);
    EXPECT_NE(creator.coverageTable, nullptr);
    EXPECT_EQ(s.pool.remaining, 0U);
}

TEST(coverage_table, is_null_where_the_pool_is_short)
{
    stage s(64, 64, 0, kTableBytes - 8);
    LineCreatorClass creator;
    creator.pool = &s.pool;
    creator.in_data = &s.in_data;
    EXPECT_EQ(creator.CreateTables(), 1);
    EXPECT_EQ(creator.coverageTable, nullptr);
    EXPECT_EQ(s.pool.remaining, kTableBytes - 8);
}
} // namespace
