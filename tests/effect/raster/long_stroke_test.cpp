// The fast way to draw a stroke against the plain one, where it draws block by block and tells nearest places from
// those of a few rows: long strokes whose bends are within reach of what they draw.

#include "stroke_comparison.hpp"

#include <cmath>

namespace
{
using raster_test::compare;
using raster_test::dice;
using raster_test::kWholePool;
using raster_test::scene;
using raster_test::tally;
using raster_test::visits;

enum class course
{
    gentle,  // waves of two lengths, bent so that the centres of their bends lie in reach
    tight,   // short waves, as steep as goes without bridges, and wide
    arc,     // of a circle: all cells narrow toward one point
    corners, // straight pieces, and ties along the lines between them
    hook,    // an arc's steep end, straight away from there: the arc's middle lies beyond the stroke's end
    cliffs,  // waves as steep as samples go: without end where nothing bridges them
    grid,    // along, or across by simple fractions of a pixel: centres on boundaries
    leaving, // out of the canvas and in again
    brief,   // a few samples
    narrow,  // the canvas is one row or one column, or hardly more
};

enum class radii
{
    one,
    tapering,
    swelling,
    halves, // on half pixels
    rough,  // another one at each sample
};

enum class paint
{
    any,
    plain, // one colour, mostly covering in full
    runs,  // of a colour, and few colours: many neighbours share one
};

struct plan
{
    course way;
    int longest; // canvas, pixels
    float widest;
    paint with = paint::any;
};

float any_cross(dice& d, float across)
{
    return d.once_in(4) ? d.real(-0.3f * across, 1.3f * across) : d.real(0.0f, across);
}

// Fills in canvas, sampling and what is drawn of them.
scene any_frame(dice& d, const plan& p)
{
    scene s;
    s.axis = d.whole(0, 1);
    int along = d.whole(p.longest / 2, p.longest);
    int across = d.whole(30, 30 + p.longest / 7);
    if (p.way == course::narrow)
    {
        if (d.once_in(2))
            across = d.whole(1, 3);
        else
            along = d.whole(1, 3);
    }
    s.width = s.axis == 0 ? along : across;
    s.height = s.axis == 0 ? across : along;
    s.k = d.once_in(3) ? 1 : d.once_in(4) ? 4 * d.whole(1, 2) : 2;
    s.one_color = d.once_in(3);
    s.core_opacity = d.once_in(3) ? d.real(0.0f, 1.0f) : 1.0f;
    if (p.with == paint::plain)
    {
        s.one_color = true;
        s.core_opacity = d.once_in(12) ? s.core_opacity : 1.0f;
    }
    if (p.with == paint::runs)
    {
        s.one_color = false;
        s.core_opacity = d.once_in(6) ? s.core_opacity : 1.0f;
    }
    return s;
}

// The stroke across at main coordinates, from a course's own few numbers.
class path
{
public:
    path(dice& d, const plan& p, const scene& s, float radius, float first, float last)
        : way_(p.way), first_(first), last_(last), base_(any_cross(d, across(s))), phase_(d.real(0.0f, 6.2831853f))
    {
        const float steepest = s.k == 1 ? 4.0f : 1.1f * static_cast<float>(s.k);
        const bool tight = way_ == course::tight;
        for (int i = 0; i < 2; ++i)
        {
            const float length = tight ? d.real(12.0f, 120.0f) : d.real(60.0f, 1200.0f);
            frequency_[i] = 6.2831853f / length;
            // The bend's radius is between a third of the stroke's and three times it.
            const float bend = radius * std::exp(d.real(-1.1f, 1.1f));
            amplitude_[i] =
                std::min(1.0f / (bend * frequency_[i] * frequency_[i]), 0.45f * steepest / frequency_[i]);
            if (i == 1 && d.once_in(2))
                amplitude_[i] = 0.0f;
        }
        if (way_ == course::leaving)
            amplitude_[0] = std::min(across(s) * d.real(0.5f, 2.0f), 0.5f * steepest / frequency_[0]);
        if (way_ == course::cliffs)
        {
            const float slope = s.k == 1 ? std::exp(d.real(1.0f, 5.0f)) : 1.19f * static_cast<float>(s.k);
            for (int i = 0; i < 2; ++i)
                amplitude_[i] = 0.5f * slope / frequency_[i];
            base_ = 0.5f * across(s);
            amplitude_[0] = std::min(amplitude_[0], 0.48f * across(s));
            frequency_[0] = 0.5f * slope / amplitude_[0];
            amplitude_[1] = 0.0f;
        }
        bend_ = radius * (way_ == course::hook ? d.real(0.7f, 1.0f) : std::exp(d.real(-1.5f, 1.5f)));
        steepest_ = way_ == course::hook && s.k == 1 ? d.real(1.0f, 8.0f) : steepest;
        ending_ = d.real(0.7f, 0.99f);
        bent_up_ = d.once_in(2);
        middle_ = d.real(0.0f, along(s));
        slope_ = static_cast<float>(d.whole(-8, 8)) / static_cast<float>(1 << d.whole(0, 5));
        slope_ = std::clamp(slope_, -steepest, steepest);
        piece_ = d.real(20.0f, 300.0f);
        whole_ = d.once_in(2);
    }

    float cross(float main) const
    {
        switch (way_)
        {
        case course::arc:
        {
            const float off = std::clamp(main - middle_, -0.72f * bend_, 0.72f * bend_);
            const float rise = bend_ - std::sqrt(bend_ * bend_ - off * off);
            return base_ + (bent_up_ ? rise : -rise);
        }
        case course::hook:
        {
            // The arc ends where the stroke does; its middle lies behind, and level with the straight part.
            const float steep = bend_ * steepest_ / std::sqrt(1.0f + steepest_ * steepest_);
            const float off = first_ - main + ending_ * steep;
            const float held = std::clamp(off, 0.0f, steep);
            const float rise = std::sqrt(bend_ * bend_ - held * held) - steepest_ * (off - held);
            return base_ + (bent_up_ ? rise : -rise);
        }
        case course::corners:
        {
            const float turn = std::fmod(std::fabs(main - middle_), 2.0f * piece_);
            return base_ + slope_ * (turn < piece_ ? turn : 2.0f * piece_ - turn);
        }
        case course::grid:
            return 0.5f * std::floor(2.0f * base_) + slope_ * (whole_ ? std::floor(main) : main - last_);
        default:
            return base_ + amplitude_[0] * std::sin(frequency_[0] * main + phase_) +
                   amplitude_[1] * std::sin(frequency_[1] * main);
        }
    }

    float swell(float main) const { return std::fabs(std::sin(frequency_[0] * main + phase_)); }

private:
    static float across(const scene& s) { return static_cast<float>(s.axis == 0 ? s.height : s.width); }
    static float along(const scene& s) { return static_cast<float>(s.axis == 0 ? s.width : s.height); }

    course way_;
    float first_; // main coordinates of the stroke's ends
    float last_;
    float base_;
    float phase_;
    float frequency_[2];
    float amplitude_[2];
    float bend_ = 0.0f;     // an arc's radius
    float steepest_ = 0.0f; // of a hook
    float ending_ = 0.0f;   // share of its arc that is left out
    bool bent_up_ = false;
    float middle_ = 0.0f;
    float slope_ = 0.0f;
    float piece_ = 0.0f; // along, of a straight piece
    bool whole_ = false; // steps of whole positions
};

scene long_scene(unsigned seed, const plan& p)
{
    dice d(seed);
    scene s = any_frame(d, p);
    const auto along = static_cast<float>(s.axis == 0 ? s.width : s.height);
    const auto across = static_cast<float>(s.axis == 0 ? s.height : s.width);
    float radius = std::max(0.6f, p.widest * d.real(0.03f, 1.0f));
    auto kind = static_cast<radii>(d.whole(0, 4));
    if (p.with == paint::plain && !d.once_in(6))
        kind = d.once_in(2) ? radii::one : radii::halves;
    if (kind == radii::halves)
        radius = std::floor(radius) + 0.5f;
    const bool constant = kind == radii::one || kind == radii::halves;
    const float less = constant ? 0.0f : d.real(0.0f, 0.95f * radius);
    s.inner = (radius - less) / 1.4142135f - 1.5f;
    s.outer = radius + 1.5f;
    s.core = s.one_color && s.core_opacity == 1.0f && s.inner >= 1.0f;

    const float step = 1.0f / static_cast<float>(s.k);
    float main = along + (d.once_in(3) ? d.real(-0.5f * along, 0.0f) : d.real(0.0f, 1.5f * radius + 2.0f));
    if (d.once_in(2))
        main = std::floor(main) + 0.5f * static_cast<float>(d.whole(0, 1));
    float last = d.once_in(3) ? d.real(0.0f, 0.5f * along) : -d.real(0.0f, 1.5f * radius);
    if (p.way == course::hook)
        main = along - d.real(0.2f, 1.2f) * radius;
    if (p.way == course::brief)
        last = main - step * static_cast<float>(d.whole(1, 24));
    const path way(d, p, s, radius, main, last);
    const auto alpha = static_cast<A_u_char>(d.whole(128, 255));
    const int run = p.with == paint::runs ? d.whole(2, 30) : 1;
    const float first = main;
    int i = 0;
    for (; main > last || i == 0; main -= step, ++i)
    {
        const float cross = way.cross(main);
        if (p.way == course::hook && i > 0 && !(cross >= 0.0f && cross <= across))
            break;
        StrokePoint point{};
        (s.axis == 0 ? point.x : point.y) = main;
        (s.axis == 0 ? point.y : point.x) = cross;
        float share = 0.0f;
        if (kind == radii::tapering)
            share = (first - main) / (first - last + 1.0f);
        else if (kind == radii::swelling)
            share = way.swell(main);
        else if (kind == radii::rough)
            share = d.real(0.0f, 1.0f);
        point.halfWidth = radius - less * share;
        if (p.with != paint::runs)
            point.color = {alpha, static_cast<A_u_char>(i % 256), static_cast<A_u_char>(i / 256), 77};
        else if (i == 0 || d.once_in(run))
            point.color = {alpha, static_cast<A_u_char>(80 * d.whole(0, 2)), 255,
                           static_cast<A_u_char>(d.whole(0, 1))};
        else
            point.color = s.points.back().color;
        s.points.push_back(point);
    }
    return s;
}

struct family
{
    const char* name;
    plan of;
    unsigned scenes;
};

class long_stroke : public ::testing::TestWithParam<family>
{
};

TEST_P(long_stroke, is_what_the_plain_way_draws)
{
    const family& f = GetParam();
    tally count;
    for (unsigned seed = 1; seed <= f.scenes && !HasFailure(); ++seed)
        compare(long_scene(seed, f.of), "seed " + std::to_string(seed), count, kWholePool, visits::first);
    EXPECT_EQ(count.left, 0);
    EXPECT_GT(count.pixels, 0);
}

// Many cells end in the same few rows: the order of boundaries is lost over more of them than two neighbours.
TEST(long_stroke_of, bends_about_one_point_is_what_the_plain_way_draws)
{
    tally count;
    for (const unsigned seed : {209001U, 219005U, 288005U})
        compare(long_scene(seed, {course::arc, 900, 240.0f}), "arc " + std::to_string(seed), count, kWholePool,
                visits::first);
    for (const unsigned seed : {210001U, 217001U, 252005U})
        compare(long_scene(seed, {course::tight, 700, 200.0f}), "tight " + std::to_string(seed), count, kWholePool,
                visits::first);
}

// What they are nearest to is far away though samples lie close to their row.
TEST(long_stroke_of, pixels_beyond_a_steep_end_is_what_the_plain_way_draws)
{
    tally count;
    for (const unsigned seed : {420003U, 469008U, 1084005U})
        compare(long_scene(seed, {course::hook, 900, 160.0f}), "hook " + std::to_string(seed), count, kWholePool,
                visits::first);
}

// Boxes of samples beyond the canvas's end lie on its last row, and their cores with them, far from the rims
// there.
TEST(long_stroke_of, a_core_moved_onto_the_canvas_is_what_the_plain_way_draws)
{
    scene s;
    s.width = 120;
    s.height = 60;
    s.axis = 1;
    s.one_color = true;
    s.core = true;
    s.inner = 5.5f / 1.4142135f - 1.5f;
    s.outer = 7.0f;
    for (int i = 0; i < 180; ++i)
        s.points.push_back({10.0f + 0.46f * static_cast<float>(i), 62.0f - 0.5f * static_cast<float>(i), 5.5f,
                            PF_Pixel{255, 1, 2, 3}});
    tally count;
    compare(s, "moved core", count, kWholePool, visits::first);
    EXPECT_EQ(count.left, 0);
}

// A pixel in the last row that boxes sweep looks half a pixel less far than they reach.
TEST(long_stroke_of, what_reaches_farther_than_its_windows_is_what_the_plain_way_draws)
{
    scene s;
    s.width = 40;
    s.height = 100;
    s.one_color = true;
    s.outer = 10.0f;
    for (int i = 0; i < 120; ++i)
        s.points.push_back({50.0f - 0.5f * static_cast<float>(i), 50.0f, 20.0f, PF_Pixel{255, 1, 2, 3}});
    tally count;
    compare(s, "narrow windows", count);
    EXPECT_EQ(count.left, 0);
}

// Wherever the pool ends.
void compare_in_any_memory(const scene& s, std::uint64_t most, std::uint64_t step)
{
    const raster_test::picture plain = raster_test::drawn_plainly(s, visits::first);
    tally count;
    for (std::uint64_t bytes = 0; bytes < most && !::testing::Test::HasFailure(); bytes += step)
        for (const simd_level level : raster_test::levels())
            raster_test::compare_at(level, s, plain, std::to_string(bytes) + " bytes", count, bytes);
    EXPECT_EQ(count.left, 0) << "the mask has room for the runs";
}

TEST(long_stroke_of, many_colors_and_any_memory_is_what_the_plain_way_draws)
{
    scene s;
    s.width = 400;
    s.height = 24;
    s.k = 8;
    s.outer = 101.5f;
    for (int i = 0; i < 3200; ++i)
        s.points.push_back({400.0f - 0.125f * static_cast<float>(i), 12.0f + static_cast<float>(i % 9) / 64.0f,
                            100.0f, PF_Pixel{255, static_cast<A_u_char>(i % 256), 9, 9}});
    compare_in_any_memory(s, 260'000, 5'000);
}

// Bends whose middles are in reach, so that rows need their cells.
TEST(long_stroke_of, one_color_and_any_memory_is_what_the_plain_way_draws)
{
    scene s;
    s.width = 200;
    s.height = 120;
    s.one_color = true;
    s.outer = 31.5f;
    for (int i = 0; i < 400; ++i)
        s.points.push_back({200.0f - 0.5f * static_cast<float>(i),
                            60.0f + 20.0f * std::sin(0.04f * static_cast<float>(i)), 30.0f,
                            PF_Pixel{255, 1, 9, 9}});
    compare_in_any_memory(s, 80'000, 500);
}

INSTANTIATE_TEST_SUITE_P(
    strokes, long_stroke,
    ::testing::Values(
        family{"gentle", {course::gentle, 1600, 200.0f}, 6}, family{"tight", {course::tight, 700, 120.0f}, 8},
        family{"arcs", {course::arc, 900, 160.0f}, 8}, family{"corners", {course::corners, 900, 120.0f}, 8},
        family{"hooks", {course::hook, 900, 160.0f}, 20}, family{"cliffs", {course::cliffs, 700, 160.0f}, 8},
        family{"thin_cliffs", {course::cliffs, 700, 14.0f}, 8},
        family{"thin_and_gentle", {course::gentle, 2200, 24.0f}, 4},
        family{"on_the_grid", {course::grid, 700, 100.0f}, 8},
        family{"leaving", {course::leaving, 1200, 90.0f}, 8}, family{"brief", {course::brief, 300, 120.0f}, 16},
        family{"narrow", {course::narrow, 900, 150.0f}, 30}, family{"thin", {course::gentle, 1200, 6.5f}, 12},
        family{"thin_and_tight", {course::tight, 700, 6.5f}, 12},
        family{"runs", {course::gentle, 1600, 200.0f, paint::runs}, 8},
        family{"tight_runs", {course::tight, 700, 120.0f, paint::runs}, 8},
        family{"runs_on_the_grid", {course::grid, 700, 100.0f, paint::runs}, 8},
        family{"plain_gentle", {course::gentle, 1600, 200.0f, paint::plain}, 10},
        family{"plain_tight", {course::tight, 700, 120.0f, paint::plain}, 12},
        family{"plain_arcs", {course::arc, 900, 160.0f, paint::plain}, 12},
        family{"plain_corners", {course::corners, 900, 120.0f, paint::plain}, 12},
        family{"plain_hooks", {course::hook, 900, 160.0f, paint::plain}, 12},
        family{"plain_grid", {course::grid, 700, 100.0f, paint::plain}, 12},
        family{"plain_leaving", {course::leaving, 1200, 90.0f, paint::plain}, 12},
        family{"plain_and_thin", {course::gentle, 2200, 24.0f, paint::plain}, 12}),
    [](const auto& of) { return std::string(of.param.name); });
} // namespace
