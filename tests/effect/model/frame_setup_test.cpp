#include "tests/support/frame_bench.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace
{
constexpr A_long kMinimum = std::numeric_limits<A_long>::min();

bool is(const PF_Pixel& p, int alpha, int red, int green, int blue)
{
    return p.alpha == alpha && p.red == red && p.green == green && p.blue == blue;
}
} // namespace

TEST(frame_setup, square_encloses_the_grid_in_a_multiple_of_32)
{
    frame_bench b(200, 200);
    EXPECT_EQ(b.frame.squareSize, 288);
    EXPECT_EQ(b.frame.marginX, 44);
    EXPECT_EQ(b.frame.marginY, 44);
    EXPECT_EQ(b.frame.squareLeft, -44);
    EXPECT_EQ(b.frame.squareTop, -44);
    EXPECT_EQ(b.frame.compressionCenterX, 144.0f);
    EXPECT_EQ(b.frame.compressionCenterY, 144.0f);
}

TEST(frame_setup, a_diagonal_of_whole_tiles_gains_another_tile)
{
    frame_bench b(96, 128); // diagonal 160
    EXPECT_EQ(b.frame.squareSize, 192);
    EXPECT_EQ(b.frame.marginX, 48);
    EXPECT_EQ(b.frame.marginY, 32);
}

TEST(frame_setup, an_odd_grid_keeps_its_width)
{
    for (const A_long width : {61, 62, 63})
    {
        frame_bench b(width, 47);
        b.host.set_point(5, 20.75, 10.25);
        b.set_up();
        EXPECT_EQ(b.frame.gridRight - b.frame.gridLeft, width);
        EXPECT_EQ(b.frame.gridBottom - b.frame.gridTop, 47);
        EXPECT_EQ(b.frame.gridLeft, static_cast<int>(20.75f - static_cast<float>(width / 2)));
        EXPECT_EQ(b.frame.gridTop, -12); // 10.25 - 23 = -12.75, toward zero
        EXPECT_EQ(b.frame.marginX, (96 - width) / 2);
    }
}

TEST(frame_setup, size_comes_from_the_layer_or_the_sliders)
{
    frame_bench b(64, 48);
    b.host.set(2, 300);
    b.host.set(3, 500);
    b.set_up();
    EXPECT_EQ(b.frame.matchLayerSize, 1);
    EXPECT_EQ(b.frame.width, 64);
    EXPECT_EQ(b.frame.height, 48);
    b.host.set(4, 0);
    b.set_up();
    EXPECT_EQ(b.frame.matchLayerSize, 0);
    EXPECT_EQ(b.frame.width, 500);
    EXPECT_EQ(b.frame.height, 300);
    b.host.set(4, -5); // on is whatever is not 0
    b.set_up();
    EXPECT_EQ(b.frame.width, 64);
}

TEST(frame_setup, a_count_of_0_makes_one_cell_of_the_whole_side)
{
    frame_bench b(203, 101);
    EXPECT_EQ(b.frame.columnSpacing, 50);
    EXPECT_EQ(b.frame.rowSpacing, 25);
    b.host.set(7, 0);
    b.host.set(8, 0);
    b.set_up();
    EXPECT_EQ(b.frame.columnSpacing, 203);
    EXPECT_EQ(b.frame.rowSpacing, 101);
}

TEST(frame_setup, wavelength_runs_from_the_average_side_to_10)
{
    frame_bench b(200, 200);
    EXPECT_EQ(b.frame.rippleWavelength, 50.0f); // 0.75
    b.host.set_percent(47, 100);
    b.set_up();
    EXPECT_EQ(b.frame.rippleWavelength, 10.0f);
    b.host.set_percent(47, 0);
    b.set_up();
    EXPECT_EQ(b.frame.rippleWavelength, 200.0f);
    b.host.set(47, -65536);
    b.set_up();
    EXPECT_EQ(b.frame.rippleWavelength, 200.0f);
}

TEST(frame_setup, a_grid_narrower_than_10_has_one_wavelength)
{
    for (const double frequency : {0.0, 30.0, 75.0, 100.0})
    {
        frame_bench b(6, 6);
        b.host.set_percent(47, frequency);
        b.set_up();
        EXPECT_EQ(b.frame.rippleWavelength, 6.0f) << frequency;
    }
}

TEST(frame_setup, fast_draw_is_the_normal_colour_and_width)
{
    for (const bool displaces : {false, true})
    {
        frame_bench b;
        b.host.set(28, 1);
        b.host.set(59, displaces ? 1 : 0);
        b.host.set_percent(22, 25);
        b.host.set(17, -40);
        b.set_up();
        EXPECT_EQ(b.frame.normalShare, displaces ? 75 : 100);
        EXPECT_EQ(b.frame.stressedWidth, displaces ? -40 : 0);
    }
}

TEST(frame_setup, whole_percentages_are_truncated)
{
    frame_bench b;
    for (const int id : {12, 19, 23, 24, 38, 54, 62})
        b.host.set(id, 65535); // 99.998...
    b.host.set(22, 655);       // 0.99945 of a percent
    b.host.set(48, 655);
    b.set_up();
    EXPECT_EQ(b.frame.spacingRandomness, 99);
    EXPECT_EQ(b.frame.distortionRandomness, 99);
    EXPECT_EQ(b.frame.opacity, 99);
    EXPECT_EQ(b.frame.opacityRandomness, 99);
    EXPECT_EQ(b.frame.startRandomness, 99);
    EXPECT_EQ(b.frame.turbulenceRandomness, 99);
    EXPECT_EQ(b.frame.soften, 99);
    EXPECT_EQ(b.frame.normalShare, 99);
    EXPECT_EQ(b.frame.frequencyRandomness, static_cast<float>(655 / 655.36)); // not truncated
}

TEST(frame_setup, displacement_offsets_lose_a_pixel_at_quarter_turns)
{
    struct
    {
        double degrees;
        A_long amount;
        A_long x;
        A_long y;
    } const cases[] = {{0, 3, 0, 3},    {90, 3, 2, 0}, {90, 10, 9, 0}, {90, 100, 99, 0},
                       {180, 3, 0, -2}, {45, 3, 2, 2}, {30, 10, 5, 8}, {77, 0, 0, 0}};
    for (const auto& c : cases)
    {
        frame_bench b;
        b.host.set_angle(60, c.degrees);
        b.host.set(61, c.amount);
        b.set_up();
        EXPECT_EQ(b.frame.displaceX, c.x * 65536) << c.degrees << ' ' << c.amount;
        EXPECT_EQ(b.frame.displaceY, c.y * 65536) << c.degrees << ' ' << c.amount;
    }
}

TEST(frame_setup, random_seed_loses_its_low_bits)
{
    frame_bench b;
    for (const auto& [seed, stored] :
         {std::pair{16777217, 16777216.0f}, {16777216, 16777216.0f}, {1, 1.0f}, {2147483647, 2147483648.0f}})
    {
        b.host.set(56, seed);
        b.set_up();
        EXPECT_EQ(b.frame.randomSeed, stored);
    }
}

TEST(frame_setup, points_of_a_half_resolution_render_are_scaled_up)
{
    frame_bench b(400, 200);
    b.host.in_data.downsample_x = {1, 2};
    b.host.in_data.downsample_y = {1, 2};
    b.host.set_point(5, 100, 50);
    b.host.set_point(36, 30.25, 20.75);
    b.set_up();
    EXPECT_EQ(b.frame.positionX, 200.0f);
    EXPECT_EQ(b.frame.positionY, 100.0f);
    EXPECT_EQ(b.frame.width, 400);
    EXPECT_EQ(b.frame.height, 200);
    EXPECT_EQ(b.frame.verticalStartX, 60 - b.frame.squareLeft);
    EXPECT_EQ(b.frame.verticalStartY, 41 - b.frame.squareTop);
}

TEST(frame_setup, the_two_downsample_factors_are_kept_apart)
{
    frame_bench b(400, 200);
    b.host.in_data.downsample_x = {2, 3};
    b.host.in_data.downsample_y = {1, 4};
    b.host.set_point(5, 10, 10);
    b.set_up();
    EXPECT_EQ(b.frame.positionX, 15.0f);
    EXPECT_EQ(b.frame.positionY, 40.0f);
}

TEST(frame_setup, every_plain_field_has_its_own_parameter)
{
    frame_bench b(200, 200);
    effect_fixture& h = b.host;
    h.set_angle(6, 33.5);
    h.set(7, 3);
    h.set(8, 5);
    h.set(9, 2);
    h.set_point(10, 70.5, 20.25);
    h.set(11, -17);
    h.set(15, 21);
    h.set(16, 22);
    h.set(17, 23);
    h.set(18, 24);
    h.set_color(20, {1, 2, 3, 4});
    h.set_color(21, {5, 6, 7, 8});
    h.set(25, 256); // on: not 0, though its low byte is
    h.set(26, 25);
    h.set(27, 3);
    h.set(31, 4);
    h.set(32, 5);
    h.set(33, 33);
    h.set(34, 34);
    h.set(35, 35);
    h.set_point(37, 7.75, 9.5);
    h.set(39, -39);
    h.set(40, -40);
    h.set(44, 6);
    h.set(49, 49);
    h.set(50, 50);
    h.set(51, 51);
    h.set(52, 52);
    h.set_number(53, 3.3);
    h.set(55, 2);
    h.set(59, 7);
    b.set_up();
    const frame_data& f = b.frame;
    EXPECT_EQ(f.rotation, 33.5f);
    EXPECT_EQ(f.rows, 3);
    EXPECT_EQ(f.columns, 5);
    EXPECT_EQ(f.showGrid, 1);
    EXPECT_EQ(f.compressionCenterX, 114.5f);
    EXPECT_EQ(f.compressionCenterY, 64.25f);
    EXPECT_EQ(f.lineCompression, -17);
    EXPECT_EQ(f.normalWidth, 21);
    EXPECT_EQ(f.normalWidthRandomness, 22);
    EXPECT_EQ(f.stressedWidth, 23);
    EXPECT_EQ(f.distortion, 24);
    EXPECT_TRUE(is(f.normalColor, 1, 2, 3, 4));
    EXPECT_TRUE(is(f.stressedColor, 5, 6, 7, 8));
    EXPECT_EQ(f.angularLines, 1);
    EXPECT_EQ(f.tolerance, 25);
    EXPECT_EQ(f.compositeOnOriginal, 1);
    EXPECT_EQ(f.linesHaveEnds, 1);
    EXPECT_EQ(f.lockHorizontalToVertical, 1);
    EXPECT_EQ(f.verticalLength, 33);
    EXPECT_EQ(f.horizontalLength, 34);
    EXPECT_EQ(f.lengthRandomness, 35);
    EXPECT_EQ(f.horizontalStartX, 51);
    EXPECT_EQ(f.horizontalStartY, 53);
    EXPECT_EQ(f.verticalOffset, -39);
    EXPECT_EQ(f.horizontalOffset, -40);
    EXPECT_EQ(f.lineWrapping, 1);
    EXPECT_EQ(f.rippleSize, 49.0f);
    EXPECT_EQ(f.sizeRandomness, 50.0f);
    EXPECT_EQ(f.speed, 51.0f);
    EXPECT_EQ(f.speedRandomness, 52.0f);
    EXPECT_EQ(f.turbulence, 3.3f);
    EXPECT_EQ(f.affect, 2);
    EXPECT_EQ(f.useDisplacement, 1);
    EXPECT_EQ(f.input, &h.input());
    EXPECT_EQ(f.output, &h.output);
    EXPECT_EQ(f.params, h.params());
    EXPECT_EQ(f.pool, &b.memory.pool);
}

TEST(frame_setup, frame_number_never_traps)
{
    frame_bench b;
    const auto frame_at = [&](A_long time, A_long step)
    {
        b.host.in_data.current_time = time;
        b.host.in_data.time_step = step;
        b.set_up();
        return b.frame.frameNumber;
    };
    EXPECT_EQ(frame_at(7, 2), 3);
    EXPECT_EQ(frame_at(-7, 2), -3);
    EXPECT_EQ(frame_at(7, 0), 0);
    EXPECT_EQ(frame_at(kMinimum, -1), kMinimum);
}

TEST(frame_setup, quality_is_the_sampling_step)
{
    frame_bench b;
    EXPECT_EQ(b.frame.qualityStep, 0.5f);
    EXPECT_EQ(b.frame.lineCreator.samplesPerPixel, 2);
    b.host.in_data.quality = 0;
    b.set_up();
    EXPECT_EQ(b.frame.qualityStep, 1.0f);
    EXPECT_EQ(b.frame.lineCreator.samplesPerPixel, 1);
    b.host.in_data.quality = 2;
    b.set_up();
    EXPECT_EQ(b.frame.qualityStep, static_cast<float>(1.0 / 3.0));
    b.host.in_data.quality = -1;
    b.set_up();
    EXPECT_TRUE(std::isinf(b.frame.qualityStep));
    EXPECT_EQ(b.frame.lineCreator.samplesPerPixel, 0);
    b.host.in_data.quality = std::numeric_limits<A_long>::max();
    b.set_up();
    EXPECT_EQ(b.frame.lineCreator.samplesPerPixel, 8); // no host asks for more than 2
    EXPECT_EQ(b.frame.qualityStep, 1.0f / 8.0f);
}

TEST(frame_setup, rasteriser_has_three_set_ups)
{
    struct
    {
        A_long displaces;
        double blend;
        double soften;
        float core;
        bool one_colour;
        bool solid;
    } const cases[] = {{0, 0, 50, 1.0f, true, true},    {0, 100, 50, 1.0f, true, true},
                       {0, 50, 50, 1.0f, false, false}, {0, 1, 50, 1.0f, false, false},
                       {1, 50, 50, 0.5f, true, false},  {1, 0, 30, 30.0f / -100.0f + 1.0f, true, false},
                       {1, 0, 100, 0.0f, true, false}};
    for (const auto& c : cases)
    {
        frame_bench b;
        b.host.set(59, c.displaces);
        b.host.set_percent(22, c.blend);
        b.host.set_percent(62, c.soften);
        b.set_up();
        const LineCreatorClass& creator = b.frame.lineCreator;
        EXPECT_EQ(creator.coreOpacity, c.core);
        EXPECT_EQ(creator.monocolor, c.one_colour);
        EXPECT_EQ(creator.pixelFunction, c.one_colour ? &LineCreatorClass::CalculatePixelMonocolor
                                                      : &LineCreatorClass::CalculatePixelMulticolor);
        EXPECT_EQ(creator.subRenderFunction,
                  c.solid ? &LineCreatorClass::SubRenderMonocolor : &LineCreatorClass::SubRenderMulticolor);
        EXPECT_EQ(creator.pool, &b.memory.pool);
        EXPECT_EQ(creator.in_data, &b.host.in_data);
    }
}

TEST(frame_setup, bad_numbers_from_the_host_are_defined)
{
    frame_bench b(64, 48);
    b.host.in_data.downsample_x = {0, 1};
    b.host.in_data.downsample_y = {0, 0};
    b.host.set(7, -1);
    b.host.in_data.height = kMinimum;
    b.host.set_number(53, 1e300);
    b.set_up();
    EXPECT_EQ(b.frame.rowSpacing, kMinimum);
    EXPECT_EQ(b.frame.squareLeft, kMinimum);
    EXPECT_EQ(b.frame.squareTop, kMinimum);
    EXPECT_EQ(b.frame.squareSize, kMinimum + 32); // its diagonal does not fit
    EXPECT_TRUE(std::isinf(b.frame.turbulence));
}
