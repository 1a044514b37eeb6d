#include "effect/layout/crossing.hpp"

#include "effect/layout/sp_line.hpp"
#include "effect/model/curve.hpp"
#include "effect/model/random.hpp"
#include "tests/support/frame_bench.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace
{
constexpr float kReach = 10.0f;

// A vertical straight line in the middle of a grid, crossed by one ripple.
struct crossed_line
{
    explicit crossed_line(frame_bench& b, float turbulence = 3.0f)
        : bench(b), ripple(&b.frame, 7, 0, 0, turbulence),
          straight(&b.frame, 1, fpoint_t{100.0, 0.0}, fpoint_t{100.0, 200.0})
    {
        bench.frame.distortion = static_cast<std::int32_t>(kReach);
        bench.frame.distortionRandomness = 0;
    }

    // How many points the crossing at `along` appends.
    int bend(float along = 100.0f)
    {
        const int before = straight.num_points;
        distort_crossing(bench.frame, rng, ripple, along, straight);
        return straight.num_points - before;
    }

    // Whether the crossing has taken its draw.
    bool drew() const
    {
        Loom::RandomGenerator32 now = rng;
        Loom::RandomGenerator32 untouched(1);
        return now.GetNextRandomInt() != untouched.GetNextRandomInt();
    }

    frame_bench& bench;
    Loom::RandomGenerator32 rng{1};
    curve ripple;
    sp_line straight;
};
} // namespace

TEST(crossing, bends_the_line_at_every_pixel_within_reach)
{
    frame_bench b;
    crossed_line c(b);
    ASSERT_EQ(c.bend(), 20);
    for (int m = 0; m < 20; ++m)
        EXPECT_EQ(c.straight.points[2 + m].y, 90.0 + m);
}

TEST(crossing, gives_a_full_line_no_more_corners)
{
    frame_bench b;
    b.frame.angularLines = 1;
    b.frame.tolerance = 5;
    crossed_line all(b);
    EXPECT_EQ(all.bend(), 7);
    crossed_line full(b);
    full.straight.max_points = 5;
    EXPECT_EQ(full.bend(), 3);
    EXPECT_EQ(full.bend(), 0);
}

TEST(crossing, of_a_ripple_without_harmonics_takes_its_draw_and_bends_nothing)
{
    frame_bench b;
    crossed_line c(b, std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(c.bend(), 0);
    EXPECT_TRUE(c.drew());
}

TEST(crossing, passes_a_line_without_points_over)
{
    frame_bench b;
    crossed_line c(b);
    c.straight.num_points = 0;
    EXPECT_EQ(c.bend(), 0);
    EXPECT_FALSE(c.drew());
    float v = 0.0f;
    EXPECT_FALSE(c.straight.value(50.0f, &v));
}

// So far out that the ends of the bend are one number. Angular lines keep the corner where it ends.
TEST(crossing, bends_nothing_where_its_reach_is_lost_to_rounding)
{
    frame_bench b;
    for (const std::uint8_t angular : {0, 1})
    {
        b.frame.angularLines = angular;
        crossed_line c(b);
        EXPECT_EQ(c.bend(1e9f), angular);
    }
}

// Along a ripple, past its last sample and on: a bend is there whole or not at all.
TEST(crossing, bends_as_far_across_as_the_ripple_has_values)
{
    frame_bench b;
    b.frame.rippleWavelength = 10.0f;
    int bent = 0;
    int straight = 0;
    for (int p = 0; p < 4000; ++p)
    {
        void* const mark = b.memory.pool.next;
        crossed_line c(b);
        c.straight.base_x = static_cast<float>(p);
        const int appended = c.bend();
        ASSERT_TRUE(appended == 0 || appended == 20) << p;
        bent += appended != 0 ? 1 : 0;
        straight += appended == 0 ? 1 : 0;
        pool_release(&b.memory.pool, mark);
    }
    EXPECT_GT(bent, 500);
    EXPECT_GT(straight, 500);
}

// Where positions have no neighbours a pixel away, the ripple is level.
TEST(crossing, is_level_far_out)
{
    frame_bench b;
    b.frame.rippleSize = 0.0f;
    b.frame.rippleWavelength = 50.0f;
    crossed_line c(b);
    c.straight.base_x = 34406800.0f; // sample 16 modulo 2^16 of the first octave
    ASSERT_EQ(c.bend(), 20);
    for (int m = 0; m < 20; ++m)
        EXPECT_EQ(c.straight.points[2 + m].x, 34406800.0);
}

TEST(crossing, anywhere_stays_within_room_and_keeps_no_memory)
{
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    frame_bench b;
    for (const std::uint8_t angular : {0, 1})
        for (const float across : {100.0f, 4e7f, -4e7f, 1e30f, kInfinity, -kInfinity, kNan})
            for (const float along : {100.0f, 1e9f, -1e30f, kInfinity, kNan})
            {
                b.frame.angularLines = angular;
                void* const mark = b.memory.pool.next;
                crossed_line c(b);
                c.straight.base_x = across;
                const mem_pool before = b.memory.pool;
                c.bend(along);
                EXPECT_EQ(b.memory.pool.next, before.next) << across << ", " << along;
                EXPECT_EQ(b.memory.pool.remaining, before.remaining);
                EXPECT_LE(c.straight.num_points, c.straight.room);
                pool_release(&b.memory.pool, mark);
            }
}
