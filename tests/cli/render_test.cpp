// Pictures, sequences and clips, through the whole tool.
#include "run_tool.hpp"

using namespace cli_test;
using namespace media_test;
using namespace testing;
using render_command = tool_test;

TEST_F(render_command, a_picture_without_input_has_the_default_size)
{
    const outcome result = render({"-o", path("out.png")});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.err, HasSubstr("1 frame, 1920x1080, 25 fps"));
    media::reader in(at("out.png"));
    EXPECT_EQ(in.info().width, 1920);
    EXPECT_EQ(in.info().height, 1080);
    EXPECT_THAT(corner(at("out.png")), ElementsAre(255, 0, 200, 0));
    EXPECT_THAT(names(), ElementsAre("out.png"));
}

TEST_F(render_command, the_real_effect_draws)
{
    const outcome result = run_tool({"render", "-o", path("out.png"), "--size", "320x180"});
    ASSERT_EQ(result.status, 0) << result.err;
    media::reader in(at("out.png"));
    const media::picture drawn = read_one(in);
    int seen = 0;
    for (std::size_t i = 0; i < drawn.bytes().size(); i += 4)
        seen += drawn.bytes()[i] > 0 ? 1 : 0;
    EXPECT_GT(seen, 320);           // more than a line across
    EXPECT_LT(seen, 320 * 180 / 2); // and mostly not
}

TEST_F(render_command, every_pixel_of_the_input_arrives)
{
    const media::picture made = noise(33, 21, 4);
    write_all(at("in.png"), sized(33, 21), {made});
    ASSERT_EQ(render({path("in.png"), "-o", path("out.png"), "--frames", "7"}).status, 0);
    media::reader in(at("out.png"));
    const media::picture back = read_one(in);
    for (std::size_t i = 0; i < made.bytes().size(); i += 4)
    {
        ASSERT_EQ(back.bytes()[i + 3], made.bytes()[i + 3]) << i;
        ASSERT_EQ(back.bytes()[i + 1], 7) << i;
    }
}

TEST_F(render_command, a_sequence_keeps_its_numbers)
{
    for (int i = 3; i <= 6; ++i)
        write_all(at("in_" + std::to_string(i) + ".png"), sized(8, 8),
                  {plain(8, 8, 255, 0, 0, static_cast<std::uint8_t>(10 * i))});
    ASSERT_EQ(render({path("in_%d.png"), "-o", path("out_##.png"), "--jobs", "3"}).status, 0);
    for (int i = 3; i <= 6; ++i)
        EXPECT_THAT(corner(at("out_0" + std::to_string(i) + ".png")), ElementsAre(255, i, 200, 10 * i));
    EXPECT_EQ(names().size(), 8u);
    const outcome outside = render({path("in_%d.png"), "-o", path("x_##.png"), "--frames", "0-2"});
    EXPECT_EQ(outside.status, 1);
    EXPECT_THAT(outside.err, error_line("3 to 6"));
}

TEST_F(render_command, clips_have_a_hundred_frames_unless_told)
{
    EXPECT_EQ(render({"-o", path("out.gif"), "--size", "8x8"}).status, 0);
    EXPECT_EQ(media::reader(at("out.gif")).info().frames, 100);
    EXPECT_EQ(render({"-o", path("out.mov"), "--size", "8x8", "--frames", "10-12", "--codec", "animation"}).status,
              0);
    media::reader in(at("out.mov"));
    EXPECT_EQ(in.info().frames, 3);
    EXPECT_THAT(corner(at("out.mov"), 2), ElementsAre(255, 12, 200, 0));
}

TEST_F(render_command, a_clip_brings_size_rate_and_length)
{
    std::vector<media::picture> frames;
    for (int i = 0; i < 5; ++i)
        frames.push_back(plain(24, 16, 255, 0, 0, static_cast<std::uint8_t>(40 * i)));
    media::write_options options = sized(24, 16, 5);
    options.rate = {30000, 1001};
    options.codec = media::clip_codec::animation;
    write_all(at("in.mov"), options, frames);
    ASSERT_EQ(render({path("in.mov"), "-o", path("out.mov"), "--codec", "animation"}).status, 0);
    media::reader in(at("out.mov"));
    EXPECT_EQ(in.info().width, 24);
    EXPECT_EQ(in.info().rate, (media::rational{30000, 1001}));
    EXPECT_EQ(in.info().frames, 5);
    for (int i = 0; i < 5; ++i)
        EXPECT_THAT(corner(at("out.mov"), i), ElementsAre(255, i, 200, 40 * i));

    const outcome part = render({path("in.mov"), "-o", path("part_%d.png"), "--frames", "3-9"});
    EXPECT_EQ(part.status, 0);
    EXPECT_THAT(part.err, HasSubstr("0 to 4"));
    EXPECT_THAT(corner(at("part_4.png")), ElementsAre(255, 4, 200, 160));
    EXPECT_FALSE(std::filesystem::exists(at("part_5.png")));
    EXPECT_THAT(render({path("in.mov"), "-o", path("x.png"), "--frames", "5"}).err, error_line("0 to 4"));
    EXPECT_THAT(render({path("in.mov"), "-o", path("x.png")}).err, error_line("x_%04d.png"));
}

TEST_F(render_command, the_summary_names_the_size_that_is_written)
{
    for (const char* name : {"odd.mp4", "odd.mov"})
    {
        std::vector<std::string> line = {"-o", path(name), "--size", "33x21", "--frames", "0-1"};
        if (std::string(name) == "odd.mov")
            line.insert(line.end(), {"--codec", "h264"});
        const outcome result = render(line);
        EXPECT_EQ(result.status, 0);
        EXPECT_THAT(result.err, HasSubstr("2 frames, 34x22, 25 fps"));
        EXPECT_EQ(media::reader(at(name)).info().width, 34);
    }
    EXPECT_THAT(render({"-o", path("kept.mov"), "--size", "33x21", "--frames", "0"}).err, HasSubstr("33x21"));
}

TEST_F(render_command, any_number_of_jobs_makes_the_same_file)
{
    for (const char* jobs : {"1", "4"})
        ASSERT_EQ(run_tool({"render", "-o", path(std::string(jobs) + ".mov"), "--codec", "animation", "--size",
                            "160x90", "--frames", "0-9", "--jobs", jobs})
                      .status,
                  0);
    EXPECT_EQ(contents(at("1.mov")), contents(at("4.mov")));
}

TEST_F(render_command, downsampling_averages_the_input)
{
    media::picture made = plain(9, 5, 255, 0, 0, 40);
    made.view().argb[4 * 1 + 3] = 80; // one of the four pixels of the first block
    write_all(at("in.png"), sized(9, 5), {made});
    ASSERT_EQ(render({path("in.png"), "-o", path("out.png"), "--downsample", "2", "--set", "Show Size=on"}).status,
              0);
    media::reader in(at("out.png"));
    EXPECT_EQ(in.info().width, 5);
    EXPECT_EQ(in.info().height, 3);
    EXPECT_THAT(corner(at("out.png")), ElementsAre(255, 0, 9, 50)); // the effect is told the full width
}

TEST_F(render_command, backgrounds_lie_under_the_frame)
{
    const auto shown = [&](const std::string& output, std::vector<std::string> more)
    {
        more.insert(more.end(), {"-o", path(output), "--size", "16x16", "--force", "--set", "Alpha=51", "--set",
                                 "Level=100", "--frames", "0"});
        EXPECT_EQ(render(more).status, 0);
        return corner(at(output));
    };
    EXPECT_THAT(shown("a.png", {}), ElementsAre(51, 0, 100, 0));
    EXPECT_THAT(shown("a.png", {"--background", "transparent"}), ElementsAre(51, 0, 100, 0));
    // A fifth of (0, 100, 0) over four fifths of what lies under it.
    EXPECT_THAT(shown("a.png", {"--background", "#640032"}), ElementsAre(255, 80, 20, 40));
    EXPECT_THAT(shown("a.png", {"--background", "checker"}), ElementsAre(255, 163, 183, 163));
    EXPECT_THAT(shown("a.bmp", {}), ElementsAre(255, 0, 20, 0)); // black where nothing is kept
    const outcome unkept = render({"-o", path("b.bmp"), "--size", "4x4", "--background", "transparent"});
    EXPECT_EQ(unkept.status, 2);
    EXPECT_THAT(unkept.err, error_line("b.bmp"));
}

TEST_F(render_command, quiet_says_nothing_and_timing_prints_its_line)
{
    const outcome quiet = render({"-o", path("a.png"), "--size", "8x8", "--quiet"});
    EXPECT_EQ(quiet.err + quiet.out, "");
    const outcome timed = render({"-o", path("t_%d.png"), "--size", "8x8", "--frames", "2-4", "--timing"});
    EXPECT_EQ(timed.status, 0);
    EXPECT_THAT(timed.out,
                MatchesRegex("ms per frame: effect [0-9.]+, host [0-9.]+, input [0-9.]+, output [0-9.]+ "
                             "\\(3 frames\\)\n"));
    EXPECT_THAT(corner(at("t_4.png")), ElementsAre(255, 4, 200, 0));
}
