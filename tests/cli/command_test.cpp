// What is typed: statuses and messages.
#include "run_tool.hpp"

using namespace cli_test;
using namespace testing;
using command = tool_test;

TEST_F(command, help_and_version_are_answers)
{
    const outcome help = run_tool({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.out, AllOf(HasSubstr("render"), HasSubstr("Examples"), HasSubstr("--preset")));
    EXPECT_EQ(help.err, "");
    const outcome render_help = run_tool({"render", "--help"});
    EXPECT_EQ(render_help.status, 0);
    EXPECT_THAT(render_help.out,
                AllOf(HasSubstr("--downsample"), HasSubstr("frame_####.png"), HasSubstr("degrees")));
    const outcome version = run_tool({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_THAT(version.out, MatchesRegex("filigrane [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST_F(command, nonsense_is_status_two_and_one_line)
{
    const std::vector<std::vector<std::string>> lines = {
        {},
        {"paint"},
        {"render"},
        {"render", "-o"},
        {"render", "-o", "a.png", "--bogus"},
        {"render", "-o", "a.png", "--downsample", "5"},
        {"render", "-o", "a.png", "--jobs", "0"},
        {"render", "-o", "a.png", "--jobs", "many"},
        {"render", "-o", "a.png", "--quality", "best"},
        {"render", "-o", "a.png", "--frames", "9-3"},
        {"render", "-o", "a.png", "--size", "big"},
        {"render", "-o", "a.png", "--fps", "0"},
        {"render", "-o", "a.png", "--background", "plaid"},
        {"render", "-o", "a.png", "--set", "Level"},
        {"render", "a.png", "b.png", "-o", "c.png"},
        {"presets", "show"},
        {"inspect"},
    };
    for (const std::vector<std::string>& line : lines)
    {
        SCOPED_TRACE(PrintToString(line));
        const outcome result = run_tool(line, [this] { ASSERT_EQ(chdir(at("").c_str()), 0); });
        EXPECT_EQ(result.status, 2);
        EXPECT_THAT(result.err, error_line(""));
        EXPECT_EQ(result.out, "");
    }
    EXPECT_TRUE(names().empty());
}

TEST_F(command, numbers_beyond_all_reach_are_told)
{
    const auto told = [&](const std::vector<std::string>& arguments)
    {
        std::vector<std::string> line = {"-o", path("out.png")};
        line.insert(line.end(), arguments.begin(), arguments.end());
        const outcome result = render(line);
        EXPECT_EQ(result.status, 2) << PrintToString(arguments);
        EXPECT_THAT(result.err, error_line(arguments.front()));
        return result.err;
    };
    EXPECT_THAT(told({"--frames", "0-99999999999"}), HasSubstr("up to 2147483646"));
    EXPECT_THAT(told({"--size", "999999x999999"}), HasSubstr("up to 30000"));
    EXPECT_THAT(told({"--jobs", "100000"}), HasSubstr("1 to 256"));
    EXPECT_THAT(told({"--fps", "1e99"}), HasSubstr("up to 1000"));
    EXPECT_THAT(told({"--downsample", "99999999999999999999"}), HasSubstr("--downsample"));
    EXPECT_TRUE(names().empty());
}

TEST_F(command, frames_that_take_all_memory_are_named)
{
    const outcome result =
        run_tool({"render", "-o", path("out.png"), "--size", "64x64", "--frames", "2000000000"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, error_line("frame 2000000000 takes more memory than there is"));
    EXPECT_THAT(result.err, HasSubstr("lower frame number"));
    EXPECT_TRUE(names().empty());
}

TEST_F(command, negative_values_are_taken_and_percent_signs_told)
{
    const auto set = [&](const std::vector<std::string>& setting)
    {
        std::vector<std::string> line = {"render", "-o", path("out.png"), "--size", "16x16", "--force", "--set"};
        line.insert(line.end(), setting.begin(), setting.end());
        return run_tool(line);
    };
    EXPECT_EQ(set({"Line Compression=-60"}).status, 0);
    EXPECT_EQ(set({"Line Compression=-60%"}).status, 2);
    EXPECT_THAT(set({"Line Compression=-60%"}).err, error_line("-100 to 100, not \"-60%\": write -60 without"));
    EXPECT_EQ(set({"Blend Amount=60%"}).status, 0);
    EXPECT_THAT(set({"Blend Amount=-60%"}).err, error_line("0% to 100%"));
    EXPECT_EQ(set({"Line Compression", "-60"}).status, 2);
    EXPECT_THAT(set({"Line Compression", "-60"}).err, error_line("give NAME=VALUE"));
}

TEST_F(command, unknown_commands_are_named)
{
    const outcome result = run_tool({"rendr"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, error_line("\"rendr\""));
}

TEST_F(command, size_and_an_input_exclude_each_other)
{
    media_test::write_all(at("in.png"), media_test::sized(4, 4), {media_test::noise(4, 4, 1)});
    const outcome result = render({path("in.png"), "-o", path("out.png"), "--size", "8x8"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, error_line("--size"));
}

TEST_F(command, set_takes_one_value_and_leaves_the_input)
{
    media_test::write_all(at("in.png"), media_test::sized(4, 4), {media_test::plain(4, 4, 255, 1, 2, 77)});
    const outcome result = render({"-o", path("out.png"), "--set", "Level=5", path("in.png")});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(corner(at("out.png")), ElementsAre(255, 0, 5, 77));
}

TEST_F(command, parameters_go_by_name_label_key_and_number)
{
    for (const char* setting : {"Level=7", "level=7", "LEVEL=7", "1=7"})
    {
        const outcome result = render({"-o", path("out.png"), "--size", "4x4", "--force", "--set", setting});
        EXPECT_EQ(result.status, 0) << setting << ": " << result.err;
        EXPECT_THAT(corner(at("out.png")), ElementsAre(255, 0, 7, 0)) << setting;
    }
    for (const char* setting : {"Alpha (of all)=9", "alpha=9", "2=9"})
    {
        render({"-o", path("out.png"), "--size", "4x4", "--force", "--set", setting});
        EXPECT_EQ(corner(at("out.png"))[0], 9) << setting;
    }
    for (const char* setting : {"Show Size=on", "show size=true", "show-size=1", "5=yes"})
    {
        render({"-o", path("out.png"), "--size", "44x4", "--force", "--set", setting});
        EXPECT_EQ(corner(at("out.png"))[2], 44) << setting;
    }
}

TEST_F(command, unknown_names_and_bad_values_are_answered_with_what_would_do)
{
    const auto set = [&](const char* setting) {
        return render({"-o", path("out.png"), "--size", "4x4", "--set", setting});
    };
    EXPECT_EQ(set("Levle=7").status, 2);
    EXPECT_THAT(set("Levle=7").err, error_line("\"Level\""));
    EXPECT_EQ(set("Level=256").status, 2);
    EXPECT_THAT(set("Level=256").err, error_line("255"));
    EXPECT_THAT(set("Level=7x").err, error_line("Level"));
    EXPECT_THAT(set("0=7").err, error_line("")); // the layer has no value
    EXPECT_THAT(set("99=7").err, error_line("99"));
    EXPECT_TRUE(names().empty());
}

TEST_F(command, input_that_will_not_show_is_noted)
{
    ASSERT_EQ(render({"-o", path("photo.png"), "--size", "16x16"}).status, 0);
    const auto drawn_over = [&](const char* setting) {
        return run_tool({"render", path("photo.png"), "-o", path("out.png"), "--force", "--set", setting}).err;
    };
    EXPECT_THAT(drawn_over("Rows=2"), testing::HasSubstr("Composite On Original=on"));
    EXPECT_THAT(drawn_over("Composite On Original=on"), testing::Not(testing::HasSubstr("note")));
    EXPECT_THAT(drawn_over("Use Displacement=on"), testing::Not(testing::HasSubstr("note")));
}

TEST_F(command, preset_comes_first_and_settings_follow_in_order)
{
    const auto level_of = [&](std::vector<std::string> arguments)
    {
        arguments.insert(arguments.end(), {"-o", path("out.png"), "--size", "4x4", "--force"});
        const outcome result = render(arguments, [] { setenv("FILIGRANE_PRESETS", TEST_PRESETS, 1); });
        EXPECT_EQ(result.status, 0) << result.err;
        return corner(at("out.png"))[2];
    };
    EXPECT_EQ(level_of({}), 200);
    EXPECT_EQ(level_of({"--preset", "half-level"}), 128);
    EXPECT_EQ(level_of({"--preset", TEST_PRESETS "/half-level.json"}), 128);
    EXPECT_EQ(level_of({"--set", "Level=1", "--preset", "half-level"}), 1);
    EXPECT_EQ(level_of({"--set", "Level=1", "--set", "Level=2"}), 2);
}

TEST_F(command, unknown_preset_lists_those_there_are)
{
    const outcome result =
        render({"-o", path("out.png"), "--preset", "half"}, [] { setenv("FILIGRANE_PRESETS", TEST_PRESETS, 1); });
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, error_line("half-level"));
    EXPECT_THAT(render({"-o", path("out.png"), "--preset", path("none.json")}).err, error_line("none.json"));
}
