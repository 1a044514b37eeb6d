// Whole strokes against brute force.

#include "raster_stage.hpp"
#include "tests/support/reference_stroke.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace
{
using raster_test::same;
using raster_test::stage;
using raster_test::text;

enum class shape
{
    smooth,
    steep,   // jumps of many pixels across
    zigzag,  // turns back at every sample
    resting, // all samples on one line
};

// One random stroke, as it is handed over, and the canvas it goes to.
struct scene
{
    unsigned seed = 0;
    int width = 0;
    int height = 0;
    int padding = 0;
    float inner_radius = 0.0f;
    float outer_radius = 0.0f;
    reference::stroke stroke;

    std::string text() const
    {
        return "seed " + std::to_string(seed) + ", " + std::to_string(width) + " x " + std::to_string(height) +
               ", axis " + std::to_string(stroke.axis) + ", " + std::to_string(stroke.samples.size()) +
               " samples, k " + std::to_string(stroke.samples_per_pixel) + ", outer radius " +
               std::to_string(outer_radius) + (stroke.monocolor ? ", one colour" : ", many colours");
    }
};

class dice
{
public:
    explicit dice(unsigned seed) : gen_(seed) {}
    int whole(int lo, int hi) { return lo + static_cast<int>(gen_() % static_cast<unsigned>(hi - lo + 1)); }
    float real(float lo, float hi) { return lo + (hi - lo) * static_cast<float>(gen_() % 65536U) / 65535.0f; }
    PF_Pixel color()
    {
        const auto byte = [this] { return static_cast<A_u_char>(whole(0, 3) == 0 ? 255 : whole(0, 255)); };
        const A_u_char a = byte();
        const A_u_char r = byte();
        const A_u_char g = byte();
        return {a, r, g, byte()};
    }

private:
    std::mt19937 gen_;
};

// Along the main axis samples are 1/k apart; across they go as the shape says. `inside`: far enough from the
// canvas' edges that no box meets them.
scene random_scene(unsigned seed, shape form, float max_radius, bool inside)
{
    dice d(seed);
    scene s;
    s.seed = seed;
    s.width = d.whole(33, 150);
    s.height = d.whole(33, 150);
    s.padding = 4 * d.whole(0, 3);
    s.stroke.axis = d.whole(0, 1);
    s.stroke.samples_per_pixel = d.whole(1, 2);
    s.stroke.monocolor = d.whole(0, 1) != 0;
    s.stroke.core_opacity = d.whole(0, 2) == 0 ? d.real(0.0f, 1.0f) : 1.0f;

    const float radius = d.real(0.0f, max_radius);
    const float stress = d.real(-1.0f, 1.0f);
    const float main_size = static_cast<float>(s.stroke.axis == 0 ? s.width : s.height);
    const float cross_size = static_cast<float>(s.stroke.axis == 0 ? s.height : s.width);
    const float border = inside ? 2.0f * radius + 4.0f : -20.0f;
    const float step = 1.0f / static_cast<float>(s.stroke.samples_per_pixel);
    float main = d.real(0.5f * main_size, main_size - border);
    const float end = std::max(border, main - static_cast<float>(d.whole(0, 100)));
    float cross = d.real(border, cross_size - border);
    float thinnest = 1e9f;
    float widest = 0.0f;
    for (int i = 0; i == 0 || main > end; ++i, main -= step)
    {
        StrokePoint p{};
        (s.stroke.axis == 0 ? p.x : p.y) = main;
        (s.stroke.axis == 0 ? p.y : p.x) = cross;
        p.halfWidth = std::max(0.0f, radius + radius * stress * d.real(0.0f, 1.0f));
        p.color = d.color();
        thinnest = std::min(thinnest, p.halfWidth);
        widest = std::max(widest, p.halfWidth);
        s.stroke.samples.push_back(p);
        if (form == shape::smooth)
            cross += d.real(-1.0f, 1.0f);
        else if (form == shape::steep)
            cross += d.whole(0, 3) == 0 ? d.real(-25.0f, 25.0f) : d.real(-2.0f, 2.0f);
        else if (form == shape::zigzag)
            cross += i % 2 == 0 ? d.real(0.0f, 6.0f) : d.real(-6.0f, 0.0f);
        if (inside)
            cross = std::min(std::max(cross, border), cross_size - border);
    }
    s.inner_radius = thinnest / 1.41421356f - 1.5f;
    s.outer_radius = widest + 1.5f;
    return s;
}

void draw(const scene& s, stage& st, LineCreatorClass& creator, bool every_pixel)
{
    st.set_up(creator);
    creator.samplesPerPixel = s.stroke.samples_per_pixel;
    creator.coreOpacity = s.stroke.core_opacity;
    creator.monocolor = s.stroke.monocolor;
    creator.axis = s.stroke.axis;
    creator.points = const_cast<StrokePoint*>(s.stroke.samples.data());
    creator.pointCount = static_cast<std::int32_t>(s.stroke.samples.size());
    creator.innerRadius = s.inner_radius;
    creator.outerRadius = s.outer_radius;
    if (s.stroke.monocolor)
    {
        creator.pixelFunction = &LineCreatorClass::CalculatePixelMonocolor;
        if (s.inner_radius >= 1.0f && s.stroke.core_opacity == 1.0f)
            creator.subRenderFunction = &LineCreatorClass::SubRenderMonocolor;
    }
    if (!every_pixel)
    {
        creator.Render();
        return;
    }
    for (int y = 0; y < s.height; ++y)
        for (int x = 0; x < s.width; ++x)
            (creator.*creator.pixelFunction)(x, y);
}

// The canvas against what `want` says of every pixel; stops at the first that differs. A pixel that is written is
// in a marked tile.
template <class Want>
void expect_picture(const scene& s, stage& st, Want want)
{
    for (int y = 0; y < s.height; ++y)
        for (int x = 0; x < s.width; ++x)
        {
            PF_Pixel expected = {0, 0, 0, 0};
            const bool written = want(x, y, &expected);
            ASSERT_TRUE(same(st.canvas.at(x, y), expected))
                << s.text() << ": pixel (" << x << ", " << y << ") is " << text(st.canvas.at(x, y)) << ", not "
                << text(expected);
            if (written)
            {
                const int tile_x = std::min(31, x / (s.width / 32));
                const int tile_y = std::min(31, y / (s.height / 32));
                ASSERT_EQ(st.context->tileDirty[tile_x * 32 + tile_y], 1) << s.text() << ": " << x << ", " << y;
            }
        }
    EXPECT_TRUE(st.canvas.padding_is_untouched()) << s.text();
}

// Brute force over everything, for strokes that stay clear of the canvas' edges. The rasteriser is given two
// pixels more room to look than it takes by itself: its boxes trail the samples by up to a pixel, and it does not
// see a bridge that begins outside its reach.
void expect_nearest_of_all(scene& s)
{
    s.outer_radius += 2.0f;
    if (s.stroke.samples_per_pixel == 1)
        s.inner_radius = 0.0f; // the core would close the gaps that a steep stroke has at low quality
    stage st(s.width, s.height, s.padding);
    LineCreatorClass creator;
    draw(s, st, creator, false);
    s.stroke.coverage = creator.coverageTable;
    const int last = static_cast<int>(s.stroke.samples.size()) - 1;
    const auto places = reference::places_of(s.stroke, last, 0, [](const StrokePoint&) { return true; });
    expect_picture(s, st,
                   [&](int x, int y, PF_Pixel* out) { return reference::shade(s.stroke, places, x, y, out); });
}

// The samples that a pixel may be nearest to, on any canvas: from `first` down to `last` along the main axis by
// index, and within the box across.
void expect_nearest_in_reach(scene& s)
{
    stage st(s.width, s.height, s.padding);
    LineCreatorClass creator;
    draw(s, st, creator, true);
    s.stroke.coverage = creator.coverageTable;
    const bool along_x = s.stroke.axis == 0;
    const auto reach_of = [&s](int pixel, int size)
    {
        const auto p = static_cast<float>(pixel + 1);
        return std::pair(std::fmax(0.0f, p - s.outer_radius),
                         std::fmin(static_cast<float>(size), p + s.outer_radius));
    };
    const auto index = [&s, along_x](float limit)
    {
        const StrokePoint& p = s.stroke.samples[0];
        const float at = ((along_x ? p.x : p.y) - limit) * static_cast<float>(s.stroke.samples_per_pixel);
        const float most = static_cast<float>(s.stroke.samples.size() - 1);
        return static_cast<int>(std::fmin(std::fmax(std::trunc(at), 0.0f), most));
    };
    expect_picture(s, st,
                   [&](int x, int y, PF_Pixel* out)
                   {
                       const auto main = along_x ? reach_of(x, s.width) : reach_of(y, s.height);
                       const auto cross = along_x ? reach_of(y, s.height) : reach_of(x, s.width);
                       const auto counts = [&](const StrokePoint& p)
                       {
                           const float c = along_x ? p.y : p.x;
                           return cross.first <= c && c <= cross.second;
                       };
                       const auto places =
                           reference::places_of(s.stroke, index(main.first), index(main.second), counts);
                       return reference::shade(s.stroke, places, x, y, out);
                   });
}

TEST(stroke, of_smooth_samples_is_what_brute_force_draws)
{
    for (unsigned seed = 1; seed <= 80 && !testing::Test::HasFatalFailure(); ++seed)
    {
        scene s = random_scene(seed, shape::smooth, 6.0f, true);
        expect_nearest_of_all(s);
    }
}

TEST(stroke, on_a_straight_line_is_what_brute_force_draws)
{
    for (unsigned seed = 1000; seed <= 1060 && !testing::Test::HasFatalFailure(); ++seed)
    {
        scene s = random_scene(seed, shape::resting, 6.0f, true);
        expect_nearest_of_all(s);
    }
}

TEST(stroke, with_jumps_is_what_brute_force_draws)
{
    for (unsigned seed = 2000; seed <= 2060 && !testing::Test::HasFatalFailure(); ++seed)
    {
        scene s = random_scene(seed, seed % 2 == 0 ? shape::steep : shape::zigzag, 6.0f, true);
        expect_nearest_of_all(s);
    }
}

// With the radii that a line gives it, the rasteriser's boxes may pass by a pixel on or beyond the rim; no other.
TEST(stroke, loses_no_pixel_within_the_rim)
{
    for (unsigned seed = 1; seed <= 150; ++seed)
    {
        scene s = random_scene(seed, seed % 5 == 0 ? shape::resting : shape::smooth, 8.0f, true);
        stage st(s.width, s.height, s.padding);
        LineCreatorClass creator;
        draw(s, st, creator, false);
        s.stroke.coverage = creator.coverageTable;
        const int last = static_cast<int>(s.stroke.samples.size()) - 1;
        const auto places = reference::places_of(s.stroke, last, 0, [](const StrokePoint&) { return true; });
        for (int y = 0; y < s.height; ++y)
            for (int x = 0; x < s.width; ++x)
            {
                PF_Pixel expected = {0, 0, 0, 0};
                float edge = 0.0f;
                reference::shade(s.stroke, places, x, y, &expected, &edge);
                const PF_Pixel& got = st.canvas.at(x, y);
                if (edge <= 1.0f && same(got, {0, 0, 0, 0}))
                    continue;
                ASSERT_TRUE(same(got, expected)) << s.text() << ": pixel (" << x << ", " << y << ") is "
                                                 << text(got) << ", not " << text(expected) << ", edge " << edge;
            }
    }
}

TEST(stroke, is_nearest_in_reach_at_every_pixel_of_any_canvas)
{
    for (unsigned seed = 3000; seed <= 3060 && !testing::Test::HasFatalFailure(); ++seed)
    {
        scene s = random_scene(seed, static_cast<shape>(seed % 4), seed % 10 == 0 ? 60.0f : 12.0f, false);
        expect_nearest_in_reach(s);
    }
}

TEST(stroke, leaves_out_radii_that_are_not_numbers)
{
    for (unsigned seed = 4000; seed <= 4030 && !testing::Test::HasFatalFailure(); ++seed)
    {
        scene s = random_scene(seed, shape::smooth, 6.0f, true);
        s.stroke.monocolor = false;
        for (std::size_t i = 0; i < s.stroke.samples.size(); i += 3)
            s.stroke.samples[i].halfWidth = std::numeric_limits<float>::quiet_NaN();
        expect_nearest_of_all(s);
    }
}

TEST(stroke, of_radii_that_are_not_numbers_draws_nothing)
{
    for (unsigned seed = 5000; seed <= 5010; ++seed)
    {
        scene s = random_scene(seed, shape::smooth, 6.0f, true);
        s.stroke.monocolor = false;
        for (StrokePoint& p : s.stroke.samples)
            p.halfWidth = std::numeric_limits<float>::quiet_NaN();
        stage st(s.width, s.height, s.padding);
        LineCreatorClass creator;
        draw(s, st, creator, false);
        expect_picture(s, st, [](int, int, PF_Pixel*) { return false; });
        for (const std::uint8_t dirty : st.context->tileDirty)
            ASSERT_EQ(dirty, 0) << s.text();
    }
}

TEST(stroke, of_huge_radius_fills_the_canvas)
{
    for (const int axis : {0, 1})
    {
        scene s = random_scene(6000, shape::smooth, 6.0f, false);
        s.stroke.axis = axis;
        s.stroke.monocolor = true;
        s.stroke.core_opacity = 1.0f;
        s.stroke.samples = {{20.0f, 20.0f, 5000.0f, {255, 1, 2, 3}}};
        s.inner_radius = 3500.0f;
        s.outer_radius = 5001.5f;
        stage st(s.width, s.height, s.padding);
        LineCreatorClass creator;
        draw(s, st, creator, false);
        expect_picture(s, st,
                       [](int, int, PF_Pixel* out)
                       {
                           *out = {255, 1, 2, 3};
                           return true;
                       });
    }
}

TEST(stroke, of_a_solid_core_is_the_same_without_the_core)
{
    int compared = 0;
    for (unsigned seed = 7000; seed <= 7060; ++seed)
    {
        scene s = random_scene(seed, shape::smooth, 9.0f, true);
        s.stroke.monocolor = true;
        s.stroke.core_opacity = 1.0f;
        if (s.inner_radius < 1.0f)
            continue;
        ++compared;
        stage with(s.width, s.height, s.padding);
        LineCreatorClass filled;
        draw(s, with, filled, false);
        ASSERT_TRUE(filled.subRenderFunction == &LineCreatorClass::SubRenderMonocolor);
        scene hollow = s;
        hollow.inner_radius = 0.0f;
        std::vector<PF_Pixel> pixels;
        for (int y = 0; y < s.height; ++y)
            for (int x = 0; x < s.width; ++x)
                pixels.push_back(with.canvas.at(x, y));
        stage without(s.width, s.height, s.padding);
        LineCreatorClass decided;
        draw(hollow, without, decided, false);
        for (int y = 0; y < s.height; ++y)
            for (int x = 0; x < s.width; ++x)
                ASSERT_TRUE(same(pixels[static_cast<std::size_t>(y * s.width + x)], without.canvas.at(x, y)))
                    << s.text() << ": " << x << ", " << y;
    }
    EXPECT_GE(compared, 10);
}
} // namespace
