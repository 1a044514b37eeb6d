// What a row's cells say, against every place looked at for every pixel, in double precision.
#include "effect/raster/place_crowd.hpp"
#include "effect/raster/row_cells.hpp"
#include "stroke_comparison.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace
{
using raster_test::dice;

constexpr int kAcross = 400;

// Places of a stroke, with the arrays that own them.
struct row_of_places
{
    std::vector<float> main;
    std::vector<float> cross;
    std::vector<std::byte> room = std::vector<std::byte>(1U << 20U);
    stroke_candidates places;
    int size = 0;

    row_of_places(dice& d, int kind)
    {
        const int k = kind == 3 ? 8 : d.whole(1, 3);
        size = d.whole(40, 300);
        const float bend = std::exp(d.real(2.0f, 5.5f)); // radius of the sharpest, pixels
        const float frequency = 6.2831853f / d.real(30.0f, 200.0f);
        const float amplitude = std::min(1.0f / (bend * frequency * frequency), 60.0f);
        const float start = d.real(-3.0f, 3.0f);
        for (float at = start; at < static_cast<float>(size); at += 1.0f / static_cast<float>(k))
        {
            main.push_back(at);
            float c = 200.0f + amplitude * std::sin(frequency * at);
            if (kind == 1)
                c += d.real(-0.3f, 0.3f);
            if (kind == 2 && d.once_in(7))
                c = stroke_candidates::kFarAway;
            cross.push_back(c);
        }
        places.count = static_cast<int>(main.size());
        places.per_pixel = static_cast<float>(k);
        places.regular = kind != 3 && k < 3; // thirds are not exact
        for (int i = 0; i < stroke_candidates::kPadding; ++i)
        {
            main.push_back(stroke_candidates::kFarAway);
            cross.push_back(stroke_candidates::kFarAway);
        }
        places.main = main.data();
        places.cross = cross.data();
    }

    double squared(int j, double x, double y) const
    {
        const double dm = x - static_cast<double>(main[static_cast<std::size_t>(j)]);
        const double dc = y - static_cast<double>(cross[static_cast<std::size_t>(j)]);
        return dm * dm + dc * dc;
    }

    // The middle between where the bisectors on both sides of place j, none of the outer two, cross a row.
    double middle_of_cell(int j, double y) const
    {
        const auto crossing = [&](int a, int b)
        {
            const double along = static_cast<double>(main[static_cast<std::size_t>(b)]) -
                                 static_cast<double>(main[static_cast<std::size_t>(a)]);
            return (squared(b, 0.0, y) - squared(a, 0.0, y)) / (2.0 * along);
        };
        return 0.5 * (crossing(j - 1, j) + crossing(j, j + 1));
    }

    int nearest(double x, double y) const { return nearest_of(0, places.count - 1, x, y); }

    int nearest_of(int first, int last, double x, double y) const
    {
        int found = first;
        for (int j = first + 1; j <= last; ++j)
            if (squared(j, x, y) < squared(found, x, y))
                found = j;
        return found;
    }
};

std::string where(unsigned seed, int kind, int row)
{
    return "seed " + std::to_string(seed) + ", kind " + std::to_string(kind) + ", row " + std::to_string(row);
}

// The place that cells of some places have where a tile starts is the nearest one of them, or the one beside it,
// where its cell is sure. Answers 1 if it is.
int expect_nearest(const row_of_places& r, const row_cells& cells, span some, int tile, double y,
                   const std::string& place)
{
    const int found = cells.at_start(tile);
    EXPECT_TRUE(some.first <= found && found <= some.last) << place << ", tile " << tile;
    if (found < some.first || found > some.last || !cells.has(found))
        return 0;
    const double x = tile * kLanes;
    const int best = r.nearest_of(some.first, some.last, x, y);
    const double off = r.squared(found, x, y) - r.squared(best, x, y);
    // At 5e-4 pixels from a boundary, squared distances differ by 1e-3 of what their places are apart.
    const double apart = std::fabs(static_cast<double>(r.main[static_cast<std::size_t>(found)]) -
                                   static_cast<double>(r.main[static_cast<std::size_t>(best)]));
    EXPECT_LE(off, 1e-3 * apart) << place << ", tile " << tile;
    return 1;
}
} // namespace

class row_cells_of : public ::testing::TestWithParam<int>
{
};

TEST_P(row_cells_of, random_places_are_what_a_look_at_all_finds)
{
    int told = 0;
    int sure = 0;
    int lacking = 0;
    for (unsigned seed = 1; seed <= 30; ++seed)
    {
        dice d(seed);
        row_of_places r(d, GetParam());
        const int row = d.whole(0, kAcross - 1);
        const double y = row + 0.5;
        scratch_memory memory(r.room.data(), r.room.size());
        const float* const slopes = slopes_of(r.places, memory);
        row_cells cells;
        ASSERT_TRUE(cells.take(r.places, r.size, memory));
        cells.find(r.places, slopes, row);

        const int nearest_end = 20; // places
        std::vector<bool> seen(static_cast<std::size_t>(r.places.count));
        for (int i = -8 * 16; i < (r.size + 8) * 16; ++i)
            seen[static_cast<std::size_t>(r.nearest(i / 16.0 + 0.03125, y))] = true;
        for (int j = 0; j < r.places.count; ++j)
        {
            // Between others that are not, one that is far away has no cell.
            const bool far = r.cross[static_cast<std::size_t>(j)] == stroke_candidates::kFarAway;
            EXPECT_TRUE(!far || j < nearest_end || j > r.places.count - 1 - nearest_end || cells.lacks(j))
                << where(seed, GetParam(), row) << ", place " << j;
            sure += cells.has(j) ? 1 : 0;
            lacking += cells.lacks(j) ? 1 : 0;
            EXPECT_FALSE(cells.lacks(j) && seen[static_cast<std::size_t>(j)]) << where(seed, GetParam(), row);
            if (cells.has(j) && j > 0 && j < r.places.count - 1)
            {
                EXPECT_EQ(r.nearest(r.middle_of_cell(j, y), y), j) << where(seed, GetParam(), row);
            }
        }
        for (int tile = 0; tile <= (r.size + kLanes - 1) / kLanes + 1; ++tile)
            told += expect_nearest(r, cells, {0, r.places.count - 1}, tile, y, where(seed, GetParam(), row));
    }
    EXPECT_GT(told, 0);
    EXPECT_GT(sure, 0);
    if (GetParam() == 0)
    {
        EXPECT_GT(lacking, 0);
    }
}

TEST_P(row_cells_of, some_places_are_what_a_look_at_those_finds)
{
    int told = 0;
    int lacking = 0;
    for (unsigned seed = 100; seed <= 180; ++seed)
    {
        dice d(seed);
        row_of_places r(d, GetParam());
        const int row = d.whole(0, kAcross - 1);
        const double y = row + 0.5;
        const int first = d.whole(0, r.places.count - 2);
        const int last = std::min(first + d.whole(1, 150), r.places.count - 1);
        const int tiles = (r.size + kLanes - 1) / kLanes;
        const int from = d.whole(0, tiles - 1);
        const int to = std::min(from + d.whole(0, 3), tiles + 1);
        scratch_memory memory(r.room.data(), r.room.size());
        const float* const slopes = slopes_of(r.places, memory);
        row_cells cells;
        ASSERT_TRUE(cells.take(r.places, r.size, memory));
        // What another row has left must not be seen.
        cells.find(r.places, slopes, (row + kAcross / 2) % kAcross);
        cells.find(r.places, slopes, row, 0.0f, {first, last}, {from, to});

        std::vector<bool> seen(static_cast<std::size_t>(r.places.count));
        for (int i = -200 * 8; i < (r.size + 200) * 8; ++i)
            seen[static_cast<std::size_t>(r.nearest_of(first, last, i / 8.0 + 0.0625, y))] = true;
        for (int j = first; j <= last; ++j)
        {
            lacking += cells.lacks(j) ? 1 : 0;
            EXPECT_FALSE(cells.lacks(j) && seen[static_cast<std::size_t>(j)]) << where(seed, GetParam(), row);
        }
        for (int tile = from; tile <= to; ++tile)
            told += expect_nearest(r, cells, {first, last}, tile, y, where(seed, GetParam(), row));
    }
    EXPECT_GT(told, 0);
    if (GetParam() == 0)
    {
        EXPECT_GT(lacking, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(strokes, row_cells_of, ::testing::Values(0, 1, 2, 3));

TEST(row_cells, asks_for_all_of_a_range)
{
    // A corner: beyond it the places beside the middle have no cell.
    std::vector<float> main;
    std::vector<float> cross;
    for (int i = 0; i < 201 + stroke_candidates::kPadding; ++i)
    {
        main.push_back(i < 201 ? static_cast<float>(i) : stroke_candidates::kFarAway);
        cross.push_back(i < 201 ? 100.0f + std::fabs(static_cast<float>(i) - 100.0f)
                                : stroke_candidates::kFarAway);
    }
    stroke_candidates places;
    places.main = main.data();
    places.cross = cross.data();
    places.count = 201;
    places.regular = true;
    std::vector<std::byte> room(1U << 16U);
    scratch_memory memory(room.data(), room.size());
    const float* const slopes = slopes_of(places, memory);
    row_cells cells;
    ASSERT_TRUE(cells.take(places, 201, memory));
    cells.find(places, slopes, 150);
    EXPECT_FALSE(cells.has(100));
    EXPECT_TRUE(cells.lacks(100));
    EXPECT_TRUE(cells.has_all(0, 40));
    EXPECT_TRUE(cells.has_all(160, 200));
    EXPECT_FALSE(cells.has_all(40, 160));
    EXPECT_FALSE(cells.has_all(0, 100));
    EXPECT_FALSE(cells.has_all(100, 200));
    EXPECT_TRUE(cells.has_all(3, 3));
    // The foot of (24, 150.5) on the line from (0, 200) to (100, 100) is at 36.75.
    EXPECT_EQ(cells.at_start(3), 37);

    cells.find(places, slopes, 20);
    EXPECT_TRUE(cells.has_all(1, 199));
}

TEST(place_crowds, answer_the_first_of_the_nearest)
{
    dice d(3);
    for (int round = 0; round < 200; ++round)
    {
        const int count = round < 40 ? round + 1 : d.whole(1, 256);
        std::vector<float> main;
        std::vector<float> cross;
        for (int i = 0; i < count; ++i)
        {
            main.push_back(static_cast<float>(d.whole(0, 40)) * 0.5f); // ties
            cross.push_back(static_cast<float>(d.whole(0, 10)));
        }
        stroke_candidates places;
        places.main = main.data();
        places.cross = cross.data();
        places.count = count;
        place_crowd crowd(places);
        for (int i = 0; i < count; ++i)
            ASSERT_TRUE(crowd.add(i));
        lane_pixels t(d.whole(0, 2) * kLanes);
        const int row = d.whole(0, 10);
        const int_lanes found = crowd.nearest(t, row);
        const nearest_lanes each = crowd.nearest(t, row + kLaneNumbers);
        for (int lane = 0; lane < kLanes; ++lane)
            for (const bool own_row : {false, true})
            {
                const float x = t.centers[lane];
                const float y = static_cast<float>(own_row ? row + lane : row) + 0.5f;
                int best = 0;
                float least = 1e9f;
                for (int i = 0; i < count; ++i)
                {
                    const float q = squared_distance(x, y, main[static_cast<std::size_t>(i)],
                                                     cross[static_cast<std::size_t>(i)]);
                    best = q < least ? i : best;
                    least = std::min(q, least);
                }
                EXPECT_EQ(own_row ? each.place[lane] : found[lane], best) << count;
                if (own_row)
                {
                    EXPECT_EQ(each.squared[lane], least);
                }
            }
    }
    std::vector<float> none(300);
    stroke_candidates places;
    places.main = none.data();
    places.cross = none.data();
    place_crowd crowd(places);
    for (int i = 0; i < 256; ++i)
        EXPECT_TRUE(crowd.add(i));
    EXPECT_FALSE(crowd.add(256));
}
