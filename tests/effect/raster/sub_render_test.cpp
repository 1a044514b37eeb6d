#include "raster_stage.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <utility>

namespace
{
using raster_test::same;
using raster_test::stage;

constexpr PF_Pixel kColor = {255, 1, 2, 3};

using visits = std::map<std::pair<int, int>, int>; // (x, y): how often

// A rasteriser that notes which pixels it is asked about instead of deciding them.
class recorder : public LineCreatorClass
{
public:
    void note(int x, int y)
    {
        EXPECT_TRUE(x >= 0 && x < width && y >= 0 && y < height) << x << ", " << y;
        ++seen[{x, y}];
    }
    void install() { pixelFunction = static_cast<void (LineCreatorClass::*)(int, int)>(&recorder::note); }

    visits seen;
};

int pixel(float position, int size)
{
    if (!(position > -2e9f && position < 2e9f))
        return 0; // below every canvas
    const int whole = static_cast<int>(position);
    return whole < 0 ? 0 : whole >= size ? size - 1 : whole;
}

// The swept boxes written from their definition: a start box, then at each sample a run of columns and one of
// rows.
visits swept(const std::vector<StrokePoint>& samples, float r, int width, int height)
{
    visits seen;
    const auto block = [&](int x0, int x1, int y0, int y1)
    {
        for (int x = x0; x <= x1; ++x)
            for (int y = y0; y <= y1; ++y)
                if (x >= 0 && x < width && y >= 0 && y < height)
                    ++seen[{x, y}];
    };
    // Where a run of new pixels begins and ends when the box moves on by d.
    const auto run = [r](float from, float d, int size)
    {
        const float edge = d > 0 ? from + r : from - r;
        const int first = pixel(edge, size);
        const int last = pixel(d > 0 ? edge + d - 1 : edge + d + 1, size);
        const int more = std::abs(last - first);
        return d > 0 ? std::pair(first, first + more) : std::pair(first - more, first);
    };
    const auto whole = [](float v) { return v > -2e9f && v < 2e9f ? static_cast<int>(v) : -2147483647 - 1; };

    float px = samples[0].x;
    float py = samples[0].y;
    block(pixel(px - r, width), pixel(px + r, width), pixel(py - r, height), pixel(py + r, height));
    for (const StrokePoint& s : samples)
    {
        if (whole(s.x) != whole(px))
        {
            const auto [x0, x1] = run(px, s.x - px, width);
            block(x0, x1, pixel(s.y - r, height), pixel(s.y + r, height));
            px = s.x;
        }
        if (whole(s.y) != whole(py))
        {
            const auto [y0, y1] = run(py, s.y - py, height);
            block(pixel(s.x - r, width), pixel(s.x + r, width), y0, y1);
            py = s.y;
        }
    }
    return seen;
}

class swept_boxes : public testing::Test
{
protected:
    swept_boxes()
    {
        stage_.set_up(creator_);
        creator_.install();
    }

    visits outer(std::vector<StrokePoint> samples, float outer_radius)
    {
        give(samples, outer_radius, 0.0f);
        creator_.SubRenderMulticolor();
        return std::exchange(creator_.seen, {});
    }
    void give(std::vector<StrokePoint>& samples, float outer_radius, float inner_radius)
    {
        creator_.points = samples.data();
        creator_.pointCount = static_cast<std::int32_t>(samples.size());
        creator_.outerRadius = outer_radius;
        creator_.innerRadius = inner_radius;
    }

    stage stage_{67, 53, 8};
    recorder creator_;
};

visits block(int x0, int x1, int y0, int y1)
{
    visits seen;
    for (int x = x0; x <= x1; ++x)
        for (int y = y0; y <= y1; ++y)
            seen[{x, y}] = 1;
    return seen;
}

TEST_F(swept_boxes, of_a_single_sample_are_its_start_box)
{
    EXPECT_EQ(outer({{20.25f, 30.75f, 4.0f, kColor}}, 5.5f), block(14, 25, 25, 36));
}

TEST_F(swept_boxes, walk_the_new_columns_in_the_direction_of_the_step)
{
    // From 20.5 to 18.25: columns from 20.5 - 3 down to 17.5 - 2.25 + 1.
    visits want = block(17, 23, 27, 33);
    for (int x = 16; x <= 17; ++x)
        for (int y = 27; y <= 33; ++y)
            ++want[{x, y}];
    EXPECT_EQ(outer({{20.5f, 30.5f, 1.0f, kColor}, {18.25f, 30.5f, 1.0f, kColor}}, 3.0f), want);
}

TEST_F(swept_boxes, walk_the_new_rows_either_way)
{
    visits down = block(17, 23, 27, 33);
    for (int y = 33; y <= 36; ++y) // 33.5 to 33.5 + 4 - 1
        for (int x = 17; x <= 23; ++x)
            ++down[{x, y}];
    EXPECT_EQ(outer({{20.5f, 30.5f, 1.0f, kColor}, {20.5f, 34.5f, 1.0f, kColor}}, 3.0f), down);
    visits up = block(17, 23, 27, 33);
    for (int y = 24; y <= 27; ++y) // 27.5 to 27.5 - 4 + 1
        for (int x = 17; x <= 23; ++x)
            ++up[{x, y}];
    EXPECT_EQ(outer({{20.5f, 30.5f, 1.0f, kColor}, {20.5f, 26.5f, 1.0f, kColor}}, 3.0f), up);
}

TEST_F(swept_boxes, stand_still_within_a_pixel)
{
    EXPECT_EQ(outer({{20.9f, 30.9f, 1.0f, kColor}, {20.1f, 30.1f, 1.0f, kColor}}, 3.0f), block(17, 23, 27, 33));
}

TEST_F(swept_boxes, never_leave_the_canvas)
{
    EXPECT_EQ(outer({{-50.0f, 1000.0f, 1.0f, kColor}}, 3.0f), block(0, 0, 52, 52));
    EXPECT_EQ(outer({{0.5f, 52.5f, 1.0f, kColor}}, 3.0f), block(0, 3, 49, 52));
    EXPECT_EQ(outer({{30.0f, 30.0f, 1.0f, kColor}}, 4000.0f), block(0, 66, 0, 52));
}

TEST_F(swept_boxes, truncate_toward_zero_below_zero)
{
    EXPECT_EQ(outer({{2.5f, 20.5f, 1.0f, kColor}}, 3.4f), block(0, 5, 17, 23));
}

TEST_F(swept_boxes, are_those_of_a_second_version)
{
    std::srand(1);
    const auto number = [](float lo, float hi)
    { return lo + (hi - lo) * static_cast<float>(std::rand()) / static_cast<float>(RAND_MAX); };
    for (int round = 0; round < 400; ++round)
    {
        const float r = number(0.0f, 12.0f);
        const float steep = round % 4 == 0 ? 30.0f : 1.5f;
        std::vector<StrokePoint> samples;
        StrokePoint s = {number(-10.0f, 80.0f), number(-10.0f, 60.0f), 1.0f, kColor};
        for (int i = 0, n = 1 + round % 60; i < n; ++i)
        {
            samples.push_back(s);
            s.x += round % 3 == 0 ? number(-steep, steep) : -0.5f;
            s.y += round % 3 == 1 ? number(-steep, steep) : number(-1.0f, 1.0f);
        }
        ASSERT_EQ(outer(samples, r), swept(samples, r, 67, 53)) << "round " << round << ", radius " << r;
    }
}

TEST_F(swept_boxes, hold_the_solid_core_out_of_the_rim)
{
    std::vector<StrokePoint> samples = {{30.5f, 20.5f, 9.0f, kColor}, {27.5f, 24.5f, 9.0f, {9, 9, 9, 9}}};
    give(samples, 10.5f, 4.0f);
    creator_.SubRenderMonocolor();
    const visits core = swept(samples, 4.0f, 67, 53);
    const visits all = swept(samples, 10.5f, 67, 53);
    for (int y = 0; y < 53; ++y)
        for (int x = 0; x < 67; ++x)
        {
            const bool in_core = core.contains({x, y});
            ASSERT_EQ(creator_.coveredMask[x + y * 67], in_core ? 1 : 0) << x << ", " << y;
            ASSERT_TRUE(same(stage_.canvas.at(x, y), in_core ? kColor : PF_Pixel{0, 0, 0, 0})) << x << ", " << y;
            const auto rim = creator_.seen.find({x, y});
            const auto swept_over = all.find({x, y});
            const int want = in_core || swept_over == all.end() ? 0 : swept_over->second;
            ASSERT_EQ(rim != creator_.seen.end() ? rim->second : 0, want) << x << ", " << y;
            const bool tile_holds_core = [&]
            {
                for (int cx = x / 2 * 2; cx < x / 2 * 2 + 2; ++cx)
                    if (core.contains({cx, y}))
                        return true;
                return false;
            }();
            if (x < 64 && y < 32)
            {
                ASSERT_EQ(stage_.context->tileDirty[x / 2 * 32 + y] != 0, tile_holds_core) << x << ", " << y;
            }
        }
    EXPECT_TRUE(stage_.canvas.padding_is_untouched());
}

TEST_F(swept_boxes, forget_the_core_of_the_stroke_before)
{
    std::vector<StrokePoint> first = {{10.5f, 10.5f, 9.0f, kColor}};
    give(first, 10.5f, 4.0f);
    creator_.SubRenderMonocolor();
    creator_.seen.clear();
    std::vector<StrokePoint> second = {{50.5f, 40.5f, 2.0f, kColor}};
    give(second, 60.0f, 1.5f);
    creator_.SubRenderMonocolor();
    EXPECT_TRUE(creator_.seen.contains({10, 10}));
    EXPECT_EQ(creator_.coveredMask[10 + 10 * 67], 0);
}

TEST_F(swept_boxes, have_no_core_for_an_inner_radius_below_zero)
{
    std::vector<StrokePoint> samples = {{30.5f, 20.5f, 1.0f, kColor}, {30.0f, 20.5f, 1.0f, kColor}};
    give(samples, 2.5f, -0.75f);
    creator_.SubRenderMonocolor();
    EXPECT_TRUE(same(stage_.canvas.at(30, 20), {0, 0, 0, 0}));
    EXPECT_EQ(creator_.seen, swept(samples, 2.5f, 67, 53));
}

TEST(line_creator, renders_through_the_path_it_is_set_to)
{
    stage s(64, 64);
    recorder creator;
    s.set_up(creator);
    creator.install();
    std::vector<StrokePoint> samples = {{30.5f, 20.5f, 9.0f, kColor}};
    creator.points = samples.data();
    creator.pointCount = 1;
    creator.outerRadius = 10.5f;
    creator.innerRadius = 4.0f;
    creator.subRenderFunction = &LineCreatorClass::SubRenderMulticolor;
    EXPECT_EQ(creator.Render(), 1);
    EXPECT_TRUE(creator.seen.contains({30, 20}));
    creator.seen.clear();
    creator.subRenderFunction = &LineCreatorClass::SubRenderMonocolor;
    EXPECT_EQ(creator.Render(), 1);
    EXPECT_FALSE(creator.seen.contains({30, 20}));
    EXPECT_TRUE(creator.seen.contains({40, 20}));
}
} // namespace
