// What a render asks of its host, call by call.
#include "effect/model/grid.hpp"

#include "effect/model/frame_data.hpp"
#include "tests/support/effect_fixture.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace
{
using call_list = std::vector<std::string>;

// 64 x 48: a square of 96, margins 16 and 24, pool of two mebibytes.
class grid_draw : public testing::Test
{
protected:
    grid_draw()
    {
        host.set(7, 0); // no lines unless a test asks for them
        host.set(8, 0);
    }

    void render() { ASSERT_EQ(host.render(), PF_Err_NONE); }

    static call_list between(call_list first, const call_list& middle, const call_list& last)
    {
        first.insert(first.end(), middle.begin(), middle.end());
        first.insert(first.end(), last.begin(), last.end());
        return first;
    }

    const call_list opening = {"new_handle 2097152", "lock_handle", "fill 0 0 0 0 all output",
                               "new_world 96 96 flags 1", "new_world 96 96 flags 1"};
    const call_list closing = {"transform quality 1 flags 0 field 0 world1 mode(2 456321 255 0) 1 matrix"
                               " 1 0 0 0 1 0 -16 -24 1 src2dst 1 [0 0 64 48] output",
                               "dispose_world world1", "dispose_world world2", "unlock_handle", "dispose_handle"};
    effect_fixture host;
};
} // namespace

TEST_F(grid_draw, of_no_lines_asks_for_worlds_and_one_transform)
{
    render();
    EXPECT_EQ(host.log, between(opening, {}, closing));
    EXPECT_EQ(effect_fixture::pixel(host.output, 3, 4)->blue, 0);
}

TEST_F(grid_draw, composite_copies_the_input_instead_of_clearing)
{
    host.set(27, 1);
    render();
    call_list expected = between(opening, {}, closing);
    expected[2] = "copy input output all all";
    EXPECT_EQ(host.log, expected);
    EXPECT_EQ(effect_fixture::pixel(host.output, 3, 4)->blue, 0x40);
}

TEST_F(grid_draw, show_grid_fills_the_inner_borders_columns_first)
{
    host.set(9, 1);
    host.set(55, 0); // an "Affect" that makes no lines
    host.set(8, 3);  // cells of 21
    host.set(7, 2);  // cells of 24
    render();
    EXPECT_EQ(host.log, between(opening,
                                {"fill 127 255 0 0 [37 24 38 72] world1", "fill 127 255 0 0 [58 24 59 72] world1",
                                 "fill 127 255 0 0 [16 48 80 49] world1"},
                                closing));
}

TEST_F(grid_draw, show_grid_of_one_cell_fills_nothing)
{
    host.set(9, 1);
    host.set(55, 0);
    for (const A_long count : {0, 1})
    {
        host.set(7, count);
        host.set(8, count);
        host.log.clear();
        render();
        EXPECT_EQ(host.calls({"fill"}), call_list{"fill 0 0 0 0 all output"});
    }
}

TEST_F(grid_draw, displacement_draws_into_a_scratch_world_and_iterates_over_it)
{
    host.set(59, 1);
    host.set(9, 1);
    host.set(55, 0);
    host.set(8, 2);
    host.output.extent_hint = {1, 2, 60, 44};
    render();
    const call_list around =
        host.calls({"new_handle", "lock_handle", "unlock_handle", "dispose_handle", "new_world", "dispose_world",
                    "copy", "fill", "transfer", "transform", "iterate"});
    EXPECT_EQ(around,
              (call_list{"new_handle 2097152", "lock_handle", "new_world 64 48 flags 1", "new_world 96 96 flags 1",
                         "new_world 96 96 flags 1", "fill 127 0 0 0 [48 24 49 72] world2",
                         "transform quality 1 flags 0 field 0 world2 mode(2 456321 255 0) 1 matrix"
                         " 1 0 0 0 1 0 -16 -24 1 src2dst 1 [0 0 64 48] world1",
                         "dispose_world world2", "dispose_world world3", "iterate 0 42 world1 [0 0 64 48] output",
                         "dispose_world world1", "unlock_handle", "dispose_handle"}));
    // Two samples for each pixel that the offset (0, 3) does not exclude: rows 3 to 45.
    EXPECT_EQ(host.calls({"sample"}).size(), 2u * 64 * 43);
}

TEST_F(grid_draw, progress_range_is_the_height_cut_to_16_bits)
{
    host.set(59, 1);
    host.output.extent_hint = {0, -5, 64, 40000};
    render();
    EXPECT_EQ(host.calls({"iterate"}), call_list{"iterate 0 -25531 world1 [0 0 64 48] output"});
}

TEST_F(grid_draw, without_a_scratch_world_draws_nothing)
{
    host.set(59, 1);
    host.on_call = [](std::string_view name) { return name == "new_world" ? PF_Err{31} : PF_Err_NONE; };
    render();
    EXPECT_EQ(host.log, (call_list{"new_handle 2097152", "lock_handle", "new_world 64 48 flags 1", "unlock_handle",
                                   "dispose_handle"}));
}

TEST_F(grid_draw, answers_the_worlds_errors_alone)
{
    struct
    {
        A_long displaces;
        const char* failing;
        PF_Err answer;
    } const cases[] = {{0, "fill", 0},          {0, "new_world", 0},  {0, "transform", 0},
                       {0, "dispose_world", 0}, {1, "iterate", 0},    {1, "sample", 0},
                       {1, "transform", 0},     {1, "new_world", 31}, {1, "dispose_world", 31}};
    for (const auto& c : cases)
    {
        host.set(59, c.displaces);
        host.on_call = [&](std::string_view name) { return name == c.failing ? PF_Err{31} : PF_Err_NONE; };
        pool_block memory(1 << 20);
        grid g(&memory.pool);
        EXPECT_EQ(g.draw(&host.in_data, &host.out_data, host.params(), &host.output), c.answer) << c.failing;
        EXPECT_EQ(host.worlds_alive, 0) << c.failing;
    }
}

TEST_F(grid_draw, a_failed_second_canvas_gives_back_the_first)
{
    int made = 0;
    host.on_call = [&](std::string_view name)
    { return name == "new_world" && ++made == 2 ? PF_Err{31} : PF_Err_NONE; };
    render();
    EXPECT_EQ(host.log,
              (call_list{"new_handle 2097152", "lock_handle", "fill 0 0 0 0 all output", "new_world 96 96 flags 1",
                         "new_world 96 96 flags 1", "dispose_world world1", "unlock_handle", "dispose_handle"}));
}

TEST_F(grid_draw, matrix_turns_scales_and_moves_in_that_order)
{
    host.set_angle(6, 30.0);
    host.in_data.downsample_x = {2, 7};
    host.in_data.downsample_y = {1, 3};
    host.set_point(5, 31.3, 91.3); // pixels of the downsampled layer
    pool_block memory(1 << 20);
    grid g(&memory.pool);
    g.draw(&host.in_data, &host.out_data, host.params(), &host.output);
    const double a = 30.0 * 0.017453292519943295;
    const double s = std::sin(a);
    const double c = std::cos(a);
    const double third = 1.0 / 3.0;
    const double sevenths = 2.0 / 7.0;
    const double turn_x = 48 * (1 - c) + 48 * s;
    const double turn_y = 48 * (1 - c) - 48 * s;
    const float move_x = g.frame->positionX * static_cast<float>(sevenths) - 48.0f;
    const float move_y = g.frame->positionY * static_cast<float>(third) - 48.0f;
    // The factors are narrowed before they meet the position: that shows here.
    EXPECT_NE(move_x, static_cast<float>(static_cast<double>(g.frame->positionX) * sevenths - 48.0));
    EXPECT_NE(move_y, static_cast<float>(static_cast<double>(g.frame->positionY) * third - 48.0));
    const double x = turn_x * sevenths + (1 - sevenths) * 48 + static_cast<double>(move_x);
    const double y = turn_y * third + (1 - third) * 48 + static_cast<double>(move_y);
    char expected[400];
    std::snprintf(expected, sizeof expected,
                  "transform quality 1 flags 0 field 0 world1 mode(2 456321 255 0) 1 matrix"
                  " %.17g %.17g 0 %.17g %.17g 0 %.17g %.17g 1 src2dst 1 [0 0 64 48] output",
                  c * sevenths, s * third, -s * sevenths, c * third, x, y);
    EXPECT_EQ(host.calls({"transform"}), call_list{expected});
}

TEST_F(grid_draw, rotation_and_layout_matrices_turn_about_the_squares_middle)
{
    host.set_angle(6, 30.0);
    pool_block memory(1 << 20);
    grid g(&memory.pool);
    g.draw(&host.in_data, &host.out_data, host.params(), &host.output);
    const double s = std::sin(180.0 * 0.017453292519943295);
    const double c = std::cos(180.0 * 0.017453292519943295);
    EXPECT_EQ(g.frame->layoutMatrix.mat[0][0], c);
    EXPECT_EQ(g.frame->layoutMatrix.mat[0][1], s);
    EXPECT_EQ(g.frame->layoutMatrix.mat[2][0], 48 * (1 - c) + 48 * s);
    EXPECT_EQ(g.frame->layoutMatrix.mat[2][1], 48 * (1 - c) - 48 * s);
    EXPECT_EQ(g.frame->rotationMatrix.mat[0][1], std::sin(30.0 * 0.017453292519943295));
}

TEST_F(grid_draw, a_displacement_matte_is_white)
{
    host.set_color(20, {9, 1, 2, 3});
    for (const A_long displaces : {0, 1})
    {
        host.set(59, displaces);
        pool_block memory(1 << 20);
        grid g(&memory.pool);
        g.draw(&host.in_data, &host.out_data, host.params(), &host.output);
        EXPECT_EQ(g.frame->normalColor.red, displaces ? 255 : 1);
        EXPECT_EQ(g.frame->normalColor.green, displaces ? 255 : 2);
        EXPECT_EQ(g.frame->normalColor.blue, displaces ? 255 : 3);
        EXPECT_EQ(g.frame->normalColor.alpha, 9);
    }
}

// One line: each of its dirty tiles is laid over the line canvas, then cleared, rows of tiles from the top.
TEST_F(grid_draw, a_stroke_is_laid_over_the_line_canvas_tile_by_tile)
{
    host.set(8, 1);
    render();
    const call_list flushed = host.calls({"transfer", "fill"});
    ASSERT_GT(flushed.size(), 21u);
    ASSERT_EQ(flushed.size() % 2, 1u); // the output's clearing, then pairs
    int last_top = -1;
    int last_left = -1;
    for (std::size_t i = 1; i < flushed.size(); i += 2)
    {
        int left = 0;
        int top = 0;
        ASSERT_EQ(std::sscanf(flushed[i].c_str(), "transfer quality 1 flags 0 field 0 [%d %d", &left, &top), 2);
        const std::string rect = "[" + std::to_string(left) + " " + std::to_string(top) + " " +
                                 std::to_string(left + 3) + " " + std::to_string(top + 3) + "]";
        EXPECT_EQ(flushed[i], "transfer quality 1 flags 0 field 0 " + rect + " world2 mode(2 3256874 255 0) at " +
                                  std::to_string(left) + " " + std::to_string(top) + " world1");
        EXPECT_EQ(flushed[i + 1], "fill 0 0 0 0 " + rect + " world2");
        EXPECT_EQ(left % 3, 0);
        EXPECT_EQ(top % 3, 0);
        EXPECT_TRUE(top > last_top || (top == last_top && left > last_left));
        last_top = top;
        last_left = left;
    }
}

TEST_F(grid_draw, growth_is_checked_out_for_every_line_from_the_start)
{
    host.set(31, 1);
    host.set(7, 1);
    host.set(8, 1);
    host.in_data.current_time = 21;
    host.in_data.time_step = 10;
    host.in_data.time_scale = 250;
    render();
    call_list expected;
    for (const char* index : {"41", "42"})
        for (const char* time : {"0", "10", "20"})
            for (const char* parameter : {"43", index})
            {
                expected.push_back(std::string("checkout ") + parameter + " at " + time + " step 10 scale 250");
                expected.push_back("checkin");
            }
    EXPECT_EQ(host.calls({"checkout", "checkin"}), expected);
}

TEST_F(grid_draw, without_room_for_the_record_leaves_the_output_alone)
{
    pool_block memory(sizeof(frame_data) - 8);
    grid g(&memory.pool);
    EXPECT_EQ(g.draw(&host.in_data, &host.out_data, host.params(), &host.output), PF_Err_NONE);
    EXPECT_TRUE(host.log.empty());
    EXPECT_EQ(g.frame, nullptr);
    EXPECT_EQ(g.in_data, &host.in_data);
}

TEST_F(grid_draw, a_frame_record_is_all_zero_before_it_is_written)
{
    pool_block memory(sizeof(frame_data));
    const frame_data* const record = pool_new<frame_data>(&memory.pool);
    ASSERT_NE(record, nullptr);
    const auto* const bytes = reinterpret_cast<const unsigned char*>(record);
    for (std::size_t i = sizeof(void*); i < sizeof(frame_data); ++i) // after the table of virtual functions
        ASSERT_EQ(int{bytes[i]}, 0) << i;
}
