// What the fast way to draw a stroke leaves to the plain one, and that it draws nothing then; whatever it does
// take, in however little memory, it draws as the plain one does.

#include "effect/raster/fast_stroke.hpp"
#include "effect/raster/stroke_candidates.hpp"
#include "raster_stage.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

namespace
{
using raster_test::stage;

constexpr int kWidth = 64;
constexpr int kHeight = 48;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

// Along x, from the right edge to the left; `steep` goes back and forth, so that what it sweeps has holes.
std::vector<StrokePoint> samples(bool steep)
{
    std::vector<StrokePoint> points;
    for (int i = 0; i < 2 * kWidth; ++i)
    {
        const float swing = steep ? (i % 8 < 4 ? 20.0f : -20.0f) : 12.0f * std::sin(static_cast<float>(i) / 9.0f);
        const float radius = 2.0f + static_cast<float>(i % 3) / 4.0f;
        points.push_back({static_cast<float>(kWidth) - 0.5f * static_cast<float>(i), 24.0f + swing, radius,
                          PF_Pixel{255, static_cast<A_u_char>(i), 20, 30}});
    }
    return points;
}

using change = std::function<void(stage&, LineCreatorClass&)>;

struct drawing
{
    drawing(bool steep, const change& changed, bool fast) : points(samples(steep)), at(kWidth, kHeight)
    {
        at.set_up(creator);
        creator.points = points.data();
        creator.pointCount = static_cast<std::int32_t>(points.size());
        creator.innerRadius = 1.2f;
        creator.outerRadius = 4.5f;
        changed(at, creator);
        if (fast)
            taken = draw_stroke_fast(creator);
        else
            (creator.*creator.subRenderFunction)();
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x)
            {
                pixels.push_back(raster_test::text(at.canvas.at(x, y)));
                blank = blank && at.canvas.at(x, y).alpha == 0;
            }
        for (const std::uint8_t dirty : at.context->tileDirty)
            tiles.push_back(dirty);
    }

    std::vector<StrokePoint> points;
    stage at;
    LineCreatorClass creator;
    bool taken = false;
    bool blank = true;
    std::vector<std::string> pixels;
    std::vector<std::uint8_t> tiles;
};

void expect_left_alone(const char* what, const change& changed)
{
    const drawing d(false, changed, true);
    EXPECT_FALSE(d.taken) << what;
    EXPECT_TRUE(d.blank) << what;
    EXPECT_EQ(d.tiles, std::vector<std::uint8_t>(d.tiles.size(), 0)) << what;
}

// The plain way's picture where it is drawn at all, else nothing. Answers whether it was.
bool expect_plain_or_nothing(const std::string& what, bool steep, const change& changed)
{
    const drawing fast(steep, changed, true);
    if (!fast.taken)
    {
        EXPECT_TRUE(fast.blank) << what;
        return false;
    }
    const drawing plain(steep, changed, false);
    EXPECT_EQ(fast.pixels, plain.pixels) << what;
    EXPECT_EQ(fast.tiles, plain.tiles) << what;
    return true;
}

void with_core(LineCreatorClass& c)
{
    c.subRenderFunction = &LineCreatorClass::SubRenderMonocolor;
    c.pixelFunction = &LineCreatorClass::CalculatePixelMonocolor;
}
} // namespace

TEST(fast_stroke, leaves_a_square_root_that_rounds_otherwise_to_its_host)
{
    expect_left_alone("a hair more", [](stage& s, LineCreatorClass&)
                      { s.utils.ansi.sqrt = [](double v) { return std::nextafter(std::sqrt(v), 1e9); }; });
}

TEST(fast_stroke, leaves_functions_of_somebody_elses_alone)
{
    expect_left_alone("pixel", [](stage&, LineCreatorClass& c) { c.pixelFunction = nullptr; });
    expect_left_alone("stroke", [](stage&, LineCreatorClass& c) { c.subRenderFunction = nullptr; });
}

// Pixels of the core take the first sample's colour there, all others their own.
TEST(fast_stroke, leaves_a_solid_core_of_many_colours_alone)
{
    expect_left_alone("core", [](stage&, LineCreatorClass& c)
                      { c.subRenderFunction = &LineCreatorClass::SubRenderMonocolor; });
}

TEST(fast_stroke, leaves_what_is_no_function_of_its_axis_alone)
{
    for (const int axis : {-1, 2})
        expect_left_alone("axis", [axis](stage&, LineCreatorClass& c) { c.axis = axis; });
    for (const int count : {0, -1})
        expect_left_alone("count", [count](stage&, LineCreatorClass& c) { c.pointCount = count; });
    for (const float start : {1e9f, -1e9f, kNan})
        expect_left_alone("start", [start](stage&, LineCreatorClass& c) { c.points[0].x = start; });
    expect_left_alone("pool", [](stage&, LineCreatorClass& c) { c.pool = nullptr; });
}

TEST(fast_stroke, draws_a_stroke_that_runs_back_for_a_while)
{
    EXPECT_TRUE(expect_plain_or_nothing("back", false,
                                        [](stage&, LineCreatorClass& c)
                                        {
                                            for (int i = 40; i < 60; ++i)
                                                c.points[i].x =
                                                    c.points[100 - i].x - 10.0f + static_cast<float>(i % 3);
                                        }));
}

TEST(fast_stroke, draws_nothing_else_where_a_radius_is_negative)
{
    for (const bool core : {false, true})
        for (const float inner : {-3.0f, 2.0f})
        {
            const bool taken = expect_plain_or_nothing("negative", false,
                                                       [core, inner](stage&, LineCreatorClass& c)
                                                       {
                                                           if (core)
                                                               with_core(c);
                                                           c.innerRadius = inner;
                                                           c.outerRadius = -3.0f;
                                                       });
            EXPECT_TRUE(taken || core);
        }
}

// Every size of the pool's rest, with the mask to work in and without.
TEST(fast_stroke, in_any_memory_draws_the_same_or_nothing)
{
    int left = 0;
    for (const bool steep : {false, true})
        for (const bool mask : {false, true})
            for (const bool core : {false, true})
            {
                int taken = 0;
                for (std::uint64_t bytes = 0; bytes < 100'000; bytes += bytes < 2'400    ? 40
                                                                        : bytes < 12'000 ? 400
                                                                                         : 11'000)
                {
                    const auto starve = [&](stage& s, LineCreatorClass& c)
                    {
                        if (core)
                            with_core(c);
                        if (!mask)
                            c.coveredMask = nullptr;
                        s.pool.remaining = bytes;
                    };
                    // The plain way needs the mask for its core.
                    if (core && !mask)
                    {
                        const drawing d(steep, starve, true);
                        EXPECT_TRUE(d.taken || d.blank) << bytes;
                        ++(d.taken ? taken : left);
                        continue;
                    }
                    ++(expect_plain_or_nothing(std::to_string(bytes), steep, starve) ? taken : left);
                }
                // Runs with holes, a narrow core's among them, are noted in the mask.
                EXPECT_EQ(taken > 0, mask || (!steep && !core)) << steep << mask << core;
            }
    EXPECT_GT(left, 0);
}

TEST(scratch_memory, hands_out_what_fits_aligned_and_nothing_else)
{
    alignas(32) std::byte block[128];
    scratch_memory memory(block + 1, 100);
    EXPECT_EQ(memory.take<float>(-1), nullptr);
    EXPECT_EQ(memory.take<float>(std::int64_t{1} << 62), nullptr);
    EXPECT_EQ(memory.left(), 100U);
    void* const first = memory.take<float>(8);
    EXPECT_EQ(first, block + 32);
    EXPECT_EQ(memory.left(), 37U);
    EXPECT_EQ(memory.take<float>(10), nullptr);
    EXPECT_EQ(static_cast<void*>(memory.take<std::uint8_t>(37)), block + 64);
    EXPECT_EQ(memory.left(), 0U);
    EXPECT_EQ(memory.take<float>(0), nullptr) << "the way to an aligned place does not fit";
}
