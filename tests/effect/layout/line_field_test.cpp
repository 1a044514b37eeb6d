// The strokes that reach the rasteriser against a second, plainly written way from the parameters to the strokes.
// A draw too many, too few or out of order changes every stroke after it.
#include "effect/layout/sp_line.hpp"
#include "effect/model/frame_data.hpp"
#include "effect/model/grid.hpp"
#include "effect/raster/aeg.hpp"
#include "tests/support/effect_fixture.hpp"
#include "tests/support/reference_field.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace
{
using reference::stroke;

// One render through a grid of the test's own, so that each stroke can be read off the rasteriser while it is laid
// over the line canvas.
class watched_render
{
public:
    explicit watched_render(effect_fixture& host, std::size_t pool_bytes = 4 << 20)
        : host_(host), memory_(pool_bytes), grid_(&memory_.pool)
    {
        host_.recording = false;
        host_.on_transfer = [this](const PF_Rect&) { tile(); };
        result = grid_.draw(&host.in_data, &host.out_data, host.params(), &host.output);
        host_.on_transfer = nullptr;
        host_.recording = true;
        EXPECT_TRUE(grid_.lines.empty());
    }

    std::vector<stroke> strokes;
    PF_Err result = 0;

private:
    // Called for each dirty tile, whose flag is still up: the last of a flush is the one that stands alone.
    void tile()
    {
        if (!flushing_)
            strokes.push_back(current());
        const auto& flags = grid_.context->tileDirty;
        flushing_ = std::count(std::begin(flags), std::end(flags), 1) > 1;
    }

    stroke current() const
    {
        const LineCreatorClass& creator = grid_.frame->lineCreator;
        stroke s;
        s.axis = creator.axis;
        s.alpha = grid_.frame->normalColor.alpha;
        s.inner_radius = creator.innerRadius;
        s.outer_radius = creator.outerRadius;
        for (int i = 0; i < creator.pointCount; ++i)
            s.samples.push_back({creator.points[i].x, creator.points[i].y, creator.points[i].halfWidth});
        return s;
    }

    effect_fixture& host_;
    pool_block memory_;
    grid grid_;
    bool flushing_ = false;
};

void expect_reference(effect_fixture& host, const std::string& what)
{
    std::vector<stroke> expected = reference::strokes_of(host);
    // A line whose points all lie on its base has no radius that is a number, and leaves no mark.
    std::erase_if(expected,
                  [](const stroke& s)
                  {
                      return std::all_of(s.samples.begin(), s.samples.end(),
                                         [](const reference::sample& p) { return std::isnan(p.half_width); });
                  });
    const watched_render render(host);
    ASSERT_EQ(render.strokes.size(), expected.size()) << what;
    for (std::size_t i = 0; i < expected.size(); ++i)
    {
        const stroke& a = render.strokes[i];
        const stroke& e = expected[i];
        ASSERT_EQ(a.axis, e.axis) << what << ", stroke " << i;
        ASSERT_EQ(a.alpha, e.alpha) << what << ", stroke " << i;
        ASSERT_EQ(a.samples.size(), e.samples.size()) << what << ", stroke " << i;
        for (std::size_t k = 0; k < e.samples.size(); ++k)
        {
            ASSERT_EQ(a.samples[k].x, e.samples[k].x) << what << ", stroke " << i << ", sample " << k;
            ASSERT_EQ(a.samples[k].y, e.samples[k].y) << what << ", stroke " << i << ", sample " << k;
        }
        ASSERT_TRUE(reference::same(a, e)) << what << ", stroke " << i;
    }
}

// Everything that chance can spread, spread, but so that every line stays on the canvas and shows.
void spread_all(effect_fixture& host)
{
    host.set_percent(12, 80); // spacing
    host.set(16, 90);         // width
    host.set_percent(19, 50); // distortion
    host.set_percent(24, 70); // opacity
    host.set_percent(48, 40); // frequency
    host.set(49, 6);
    host.set(50, 60);         // size
    host.set(52, 80);         // speed
    host.set_percent(54, 60); // turbulence
    host.set(18, 9);
    host.in_data.current_time = 5;
}

void with_ends(effect_fixture& host)
{
    spread_all(host);
    host.set(31, 1);
    host.set(33, 30);
    host.set(34, 40);
    host.set(35, 50);
    host.set_percent(38, 30);
    host.set(39, 3);
    host.set(40, -2);
    host.set_number(41, 4.0);
    host.set_number(42, 5.5);
}

std::vector<stroke> on_axis(const std::vector<stroke>& strokes, int axis)
{
    std::vector<stroke> found;
    std::copy_if(strokes.begin(), strokes.end(), std::back_inserter(found),
                 [axis](const stroke& s) { return s.axis == axis; });
    return found;
}

bool all_same(const std::vector<stroke>& a, const std::vector<stroke>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), reference::same);
}
} // namespace

// The draws of the first two columns, written out one by one from the generator's own numbers.
TEST(line_field, first_lines_draw_in_the_stated_order)
{
    effect_fixture host(64, 48);
    spread_all(host);
    const watched_render render(host);
    ASSERT_EQ(render.strokes.size(), 8u);

    std::uint64_t state = 12345;
    const auto unit = [&]
    {
        state = state * 16807 % 2147483647;
        return static_cast<double>(static_cast<float>(static_cast<double>(state) / 2147483647.0));
    };
    const auto spread = [&](double value, double percent)
    { return value * (1 + (2 * unit() - 1) * percent / 100); };
    for (int line = 0; line < 8; ++line)
    {
        const double width = spread(2, 90) * 0.5;
        unit();                       // ripple seed
        unit();                       // turbulence
        spread(line < 4 ? 8 : 6, 80); // place in its cell
        const double opacity = spread(100, 70);
        const stroke& s = render.strokes[static_cast<std::size_t>(line)];
        EXPECT_EQ(s.axis, line < 4 ? 1 : 0);
        EXPECT_NEAR(s.outer_radius, std::max(0.6, width) * 2 + 1.5, 1e-4) << line;
        EXPECT_NEAR(s.alpha, std::clamp(std::floor(opacity * 2.55 + 1e-3), 0.0, 255.0), 1) << line;
    }
}

TEST(line_field, without_ends_is_the_reference_for_every_affect)
{
    for (const A_long affect : {1, 2, 3})
    {
        for (const A_long seed : {1, 2, 12345, 16777217, 2147483646})
        {
            effect_fixture host(64, 48);
            spread_all(host);
            host.set(55, affect);
            host.set(56, seed);
            expect_reference(host, "affect " + std::to_string(affect) + " seed " + std::to_string(seed));
        }
    }
}

TEST(line_field, bends_shorter_than_a_pixel_are_none)
{
    for (A_long seed = 1; seed < 20; ++seed)
    {
        effect_fixture host(64, 48);
        spread_all(host);
        host.set(18, 1); // half lengths of 0 to 2
        host.set_percent(19, 100);
        host.set(55, 1);
        host.set(56, seed * 104729);
        expect_reference(host, "seed " + std::to_string(seed));
    }
}

TEST(line_field, an_affect_of_no_kind_draws_nothing)
{
    for (const A_long affect : {0, 4, -1})
    {
        effect_fixture host;
        host.set(55, affect);
        EXPECT_TRUE(watched_render(host).strokes.empty());
    }
}

TEST(line_field, with_ends_is_the_reference)
{
    for (const A_long locked : {0, 1})
    {
        for (const A_long affect : {1, 2, 3})
        {
            effect_fixture host(64, 48);
            with_ends(host);
            host.set(32, locked);
            host.set(55, affect); // says nothing here
            expect_reference(host, "locked " + std::to_string(locked));
        }
    }
}

TEST(line_field, growth_that_changes_over_time_is_the_reference)
{
    effect_fixture host(64, 48);
    with_ends(host);
    host.on_checkout = [](PF_ParamIndex index, A_long time, PF_ParamDef& def)
    { def.u.fs_d.value = index == 43 ? 40.0 : 1.25 * time; };
    expect_reference(host, "growth");
}

TEST(line_field, wrapped_lines_are_the_reference)
{
    effect_fixture host(64, 48);
    with_ends(host);
    host.set(44, 1);
    host.set(33, 150);
    host.set(34, 170);
    host.set_number(41, 30.0);
    host.set_number(42, 30.0);
    const std::vector<stroke> expected = reference::strokes_of(host);
    EXPECT_GT(expected.size(), 12u); // pieces
    expect_reference(host, "wrapped");
}

TEST(line_field, random_parameters_are_the_reference)
{
    std::mt19937 random(5);
    const auto below = [&](unsigned n) { return static_cast<A_long>(random() % n); };
    int strokes = 0;
    for (int n = 0; n < 150; ++n)
    {
        effect_fixture host(40 + below(60), 40 + below(60));
        spread_all(host);
        host.set(55, 1 + below(3));
        host.set(56, 1 + below(2147483646));
        host.set(7, below(5));
        host.set(8, below(5));
        host.set(11, below(60) - 40);
        host.set(15, 1 + below(6));
        host.set(17, below(201) - 100);
        host.set(18, 5 + below(10));
        host.set_percent(22, below(101));
        host.set(25, below(2));
        host.set(26, 1 + below(8));
        host.set(28, below(3) == 0);
        host.set_percent(47, 20 + below(70));
        host.set_number(53, 1.0 + below(600) / 100.0);
        host.set_angle(6, below(360));
        host.set_point(5, below(60), below(60) + 0.25);
        host.set_point(10, below(60) + 0.5, below(60));
        host.in_data.quality = below(2);
        host.in_data.current_time = below(12);
        host.in_data.time_step = 1 + below(3);
        strokes += static_cast<int>(reference::strokes_of(host).size());
        expect_reference(host, "case " + std::to_string(n));
        if (testing::Test::HasFatalFailure())
            return;
    }
    EXPECT_GT(strokes, 500);
}

TEST(line_field, points_of_a_half_resolution_render_are_the_reference)
{
    effect_fixture host(100, 80);
    with_ends(host);
    host.in_data.downsample_x = {1, 2};
    host.in_data.downsample_y = {1, 2};
    for (const int id : {5, 10, 36, 37})
        host.set_point(id, host.defs[static_cast<std::size_t>(id)].u.td.x_value / 131072.0,
                       host.defs[static_cast<std::size_t>(id)].u.td.y_value / 131072.0);
    expect_reference(host, "half resolution");
}

TEST(line_field, no_rows_or_columns_draw_nothing_that_way)
{
    effect_fixture host;
    host.set(8, 0);
    EXPECT_EQ(on_axis(watched_render(host).strokes, 1).size(), 0u);
    EXPECT_EQ(on_axis(watched_render(host).strokes, 0).size(), 4u);
    host.set(7, 0);
    EXPECT_TRUE(watched_render(host).strokes.empty());
}

TEST(line_field, without_spacing_randomness_lines_lie_in_the_middle_of_their_cells)
{
    effect_fixture host(64, 48);
    host.set(55, 1); // rows are straight
    host.set(18, 9);
    host.set(49, 1); // a ripple that stays within the bend
    host.set(8, 1);
    const std::vector<stroke> rows = on_axis(watched_render(host).strokes, 0);
    ASSERT_EQ(rows.size(), 4u);
    // Built mirrored and turned by 180 degrees: the first row is the lowest. 96 - (24 + 12 * (i + 0.5)).
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(rows[i].samples.front().y, 96 - (24 + 12 * (static_cast<double>(i) + 0.5)), 1e-4);
}

TEST(line_field, growth_of_0_draws_nothing)
{
    effect_fixture host;
    with_ends(host);
    host.set_number(41, 0.0);
    const std::vector<stroke> strokes = watched_render(host).strokes;
    EXPECT_TRUE(on_axis(strokes, 1).empty());
    EXPECT_FALSE(on_axis(strokes, 0).empty());
    host.set_number(42, 0.0);
    EXPECT_TRUE(watched_render(host).strokes.empty());
}

TEST(line_field, the_same_parameters_make_the_same_lines)
{
    effect_fixture host;
    with_ends(host);
    EXPECT_TRUE(all_same(watched_render(host).strokes, watched_render(host).strokes));
}

TEST(line_field, rows_with_ends_do_not_depend_on_the_columns)
{
    effect_fixture host;
    with_ends(host);
    const std::vector<stroke> rows = on_axis(watched_render(host).strokes, 0);
    EXPECT_EQ(rows.size(), 4u);
    for (const A_long columns : {0, 1, 7})
    {
        host.set(8, columns);
        EXPECT_TRUE(all_same(on_axis(watched_render(host).strokes, 0), rows)) << columns;
    }
}

TEST(line_field, seeds_that_single_precision_cannot_tell_apart_make_one_picture)
{
    effect_fixture host;
    spread_all(host);
    host.set(56, 16777216);
    const std::vector<stroke> even = watched_render(host).strokes;
    host.set(56, 16777217);
    EXPECT_TRUE(all_same(watched_render(host).strokes, even));
    host.set(56, 16777218);
    EXPECT_FALSE(all_same(watched_render(host).strokes, even));
}

TEST(line_field, the_largest_seed_is_rounded_up_and_acts_as_1)
{
    // As a float it is 2^31, which truncates to the 32-bit minimum: 2^31 unsigned, 1 more than the modulus.
    effect_fixture host;
    spread_all(host);
    host.set(56, 2147483647);
    const std::vector<stroke> largest = watched_render(host).strokes;
    host.set(56, 1);
    EXPECT_TRUE(all_same(watched_render(host).strokes, largest));
}

TEST(line_field, a_refused_checkout_is_a_growth_of_0)
{
    effect_fixture host;
    with_ends(host);
    host.on_call = [](std::string_view name) { return name == "checkout" ? PF_Err{5} : PF_Err_NONE; };
    EXPECT_TRUE(watched_render(host).strokes.empty());
}
