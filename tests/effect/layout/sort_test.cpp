#include "effect/layout/sort.hpp"

#include "tests/support/effect_fixture.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <random>

namespace
{
using point_list = std::vector<curve_pt_t>;

point_list sorted(point_list points, point_comparator compare, std::size_t pool_bytes)
{
    pool_block memory(pool_bytes);
    const mem_pool before = memory.pool;
    sort_points(&memory.pool, points.data(), static_cast<int>(points.size()), compare);
    EXPECT_EQ(memory.pool.next, before.next);
    EXPECT_EQ(memory.pool.remaining, before.remaining);
    return points;
}

// Each point's angle is its place before the sort, so that equal points are told apart.
point_list numbered(const std::vector<double>& positions, bool along_y)
{
    point_list points;
    for (const double at : positions)
    {
        const auto place = static_cast<double>(points.size());
        points.push_back(along_y ? curve_pt_t{-at, at, place} : curve_pt_t{at, -at, place});
    }
    return points;
}

bool equal(const point_list& a, const point_list& b)
{
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof a[0]) == 0);
}

std::vector<int> order_of(const point_list& points)
{
    std::vector<int> order;
    for (const curve_pt_t& p : points)
        order.push_back(static_cast<int>(p.angle));
    return order;
}
} // namespace

TEST(comparators, truncate_the_difference)
{
    const auto by_x = [](double a, double b)
    {
        const fpoint_t p = {a, 50};
        const fpoint_t q = {b, 0};
        return cmp_pt_x(&p, &q);
    };
    EXPECT_EQ(by_x(10.2, 10.7), 0);
    EXPECT_EQ(by_x(10.7, 10.2), 0);
    EXPECT_EQ(by_x(11.5, 10.25), 1);
    EXPECT_EQ(by_x(10.25, 13.75), -3);
    EXPECT_EQ(by_x(1e12, 0), std::numeric_limits<int>::min());
    EXPECT_EQ(by_x(std::numeric_limits<double>::quiet_NaN(), 0), std::numeric_limits<int>::min());
    const curve_pt_t p = {0, 7.5, 1};
    const curve_pt_t q = {100, 5, 2};
    EXPECT_EQ(cmp_pt_y(&p, &q), 2);
}

TEST(sort_points, orders_what_lies_apart_like_qsort)
{
    std::mt19937 random(21);
    for (const bool along_y : {false, true})
    {
        for (int n = 1; n < 200; ++n)
        {
            std::vector<double> positions;
            for (int i = 0; i < n; ++i)
                positions.push_back(i * 1.5 - 40.0);
            std::shuffle(positions.begin(), positions.end(), random);
            const point_list points = numbered(positions, along_y);
            const point_comparator compare = along_y ? cmp_pt_y : cmp_pt_x;
            point_list expected = points;
            std::qsort(expected.data(), expected.size(), sizeof(curve_pt_t), compare);
            EXPECT_TRUE(equal(sorted(points, compare, 1 << 16), expected)) << n;
        }
    }
}

TEST(sort_points, keeps_the_order_of_what_compares_equal)
{
    EXPECT_EQ(order_of(sorted(numbered({10.7, 10.2, 10.5}, false), cmp_pt_x, 4096)), (std::vector<int>{0, 1, 2}));
}

// Points closer than 1 give no ordering; the result is that of the very steps. Worked on paper.
TEST(sort_points, truncated_differences_follow_the_steps_of_the_merge)
{
    // Left {3}, right {2.5, 1.9}: the right half stays. 3 and 2.5 compare equal, so the left element is taken and
    // the rest follows, although 1.9 belongs before 3.
    EXPECT_EQ(order_of(sorted(numbered({3.0, 2.5, 1.9}, false), cmp_pt_x, 4096)), (std::vector<int>{0, 1, 2}));
    // Left {3}, right {1.9, 2.5}: 3 - 1.9 is 1: 1.9 first; then 3 and 2.5 compare equal.
    EXPECT_EQ(order_of(sorted(numbered({3.0, 1.9, 2.5}, false), cmp_pt_x, 4096)), (std::vector<int>{1, 0, 2}));
    // Left {0.5, 0}, right {-0.6, 0.2}: 0.5 - -0.6 is 1: -0.6 first; then the left half, then 0.2.
    EXPECT_EQ(order_of(sorted(numbered({0.5, 0.0, -0.6, 0.2}, false), cmp_pt_x, 4096)),
              (std::vector<int>{2, 0, 1, 3}));
}

TEST(sort_points, needs_no_pool)
{
    std::mt19937 random(22);
    for (int n = 0; n < 300; ++n)
    {
        std::vector<double> positions;
        for (int i = 0; i < n % 60; ++i)
            positions.push_back(static_cast<double>(random() % 300) / 17.0);
        const point_list points = numbered(positions, n % 2 != 0);
        const point_comparator compare = n % 2 != 0 ? cmp_pt_y : cmp_pt_x;
        const point_list roomy = sorted(points, compare, 1 << 16);
        EXPECT_TRUE(equal(sorted(points, compare, 0), roomy)) << n;
        EXPECT_TRUE(equal(sorted(points, compare, points.size() / 2 * sizeof(curve_pt_t)), roomy)) << n;
    }
}

TEST(sort_points, survives_numbers_that_are_none)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const point_list points = numbered({nan, 3, inf, -inf, nan, 1, 2, -0.0, 1e300}, false);
    std::vector<int> order = order_of(sorted(points, cmp_pt_x, 4096));
    EXPECT_EQ(order, order_of(sorted(points, cmp_pt_x, 0)));
    std::sort(order.begin(), order.end());
    EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
}

// Through another function the comparator is called; by itself it is known.
TEST(sort_points, is_the_same_through_another_comparator)
{
    std::mt19937 random(23);
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const double odd[] = {kInfinity, -kInfinity, std::numeric_limits<double>::quiet_NaN(), 1e300, 3e9, -3e9, -0.0};
    const point_comparator by_x = [](const void* a, const void* b) { return cmp_pt_x(a, b); };
    const point_comparator by_y = [](const void* a, const void* b) { return cmp_pt_y(a, b); };
    for (int n = 0; n < 2000; ++n)
    {
        std::vector<double> positions;
        for (unsigned i = 0, count = random() % 200; i < count; ++i)
            positions.push_back(n % 3 == 0 && random() % 8 == 0 ? odd[random() % 7]
                                : n % 3 == 1                    ? i + static_cast<double>(random() % 64) / 16.0
                                                                : static_cast<double>(random() % 300) / 17.0);
        const bool along_y = n % 2 != 0;
        const point_list points = numbered(positions, along_y);
        const std::size_t room = n % 5 == 0 ? 0 : 1 << 16;
        EXPECT_TRUE(equal(sorted(points, along_y ? cmp_pt_y : cmp_pt_x, room),
                          sorted(points, along_y ? by_y : by_x, room)))
            << n;
    }
}
