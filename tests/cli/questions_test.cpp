// params, presets, about, inspect.
#include "run_tool.hpp"

#include <csignal>
#include <nlohmann/json.hpp>
#include <set>
#include <unistd.h>

using namespace cli_test;
using namespace testing;
using questions = tool_test;

TEST_F(questions, params_of_the_effect_are_sixty_four)
{
    const outcome result = run_tool({"params", "--json"});
    ASSERT_EQ(result.status, 0) << result.err;
    const nlohmann::json all = nlohmann::json::parse(result.out);
    ASSERT_EQ(all.size(), 64u);
    std::set<std::string> keys;
    for (std::size_t i = 0; i < all.size(); ++i)
    {
        EXPECT_EQ(all[i]["index"], i);
        for (const char* field : {"name", "kind", "range", "default", "topic", "animatable"})
            EXPECT_TRUE(all[i].contains(field)) << i << " " << field;
        const bool has_value = all[i].contains("key");
        EXPECT_TRUE(!has_value || keys.insert(all[i]["key"].get<std::string>()).second) << i;
    }
    EXPECT_EQ(all[7]["name"], "Rows");
    EXPECT_EQ(all[7]["kind"], "integer slider");
    EXPECT_EQ(all[7]["topic"], "Grid");
    EXPECT_EQ(all[7]["default"], "4");
    EXPECT_EQ(all[7]["minimum"], 0);
    EXPECT_EQ(all[7]["maximum"], 100);
    EXPECT_EQ(all[7]["animatable"], false);
    EXPECT_EQ(all[6]["animatable"], true);
}

TEST_F(questions, params_as_a_table_have_a_line_each)
{
    const outcome result = run_tool({"params", "--plugin", TEST_EFFECT});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 1 + 8);
    EXPECT_THAT(result.out, AllOf(HasSubstr("Alpha (of all)"), HasSubstr("0 to 255"), HasSubstr("Show Size")));
}

TEST_F(questions, about_is_the_effects_own)
{
    const outcome result = run_tool({"about", "--plugin", TEST_EFFECT});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, AllOf(StartsWith("Test effect\npaints plain colours.\n"),
                                  HasSubstr("2.5.1, beta, build 7"), HasSubstr("0x00000004")));
    const outcome own = run_tool({"about"});
    EXPECT_EQ(own.status, 0);
    EXPECT_THAT(own.out, AllOf(StartsWith("Filigrane"), HasSubstr("1.3.2"), HasSubstr("0x00000046")));
}

TEST_F(questions, inspect_reads_any_effect)
{
    const outcome result = run_tool({"inspect", TEST_EFFECT});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, AllOf(HasSubstr("Test effect"), HasSubstr("Show Size")));
    EXPECT_EQ(run_tool({"inspect", path("none.so")}).status, 1);
    EXPECT_THAT(run_tool({"inspect", path("none.so")}).err, error_line("none.so"));
    media_test::put(at("text.so"), "no plug-in");
    std::filesystem::copy_file(TEST_EFFECT, at("cut.so"));
    std::filesystem::resize_file(at("cut.so"), std::filesystem::file_size(at("cut.so")) - 1);
    EXPECT_EQ(run_tool({"inspect", path("cut.so")}).status, 1);
    EXPECT_THAT(run_tool({"inspect", path("cut.so")}).err, error_line("cut off"));
    EXPECT_THAT(run_tool({"inspect", path("text.so")}).err, error_line("text.so"));
}

TEST_F(questions, presets_are_listed_and_shown)
{
    const auto own_folder = [] { setenv("FILIGRANE_PRESETS", TEST_PRESETS, 1); };
    const outcome list = run_tool({"presets"}, own_folder);
    EXPECT_EQ(list.status, 0);
    EXPECT_THAT(list.out, ContainsRegex("half-level +Half of the level\\."));
    const outcome show = run_tool({"presets", "show", "half-level"}, own_folder);
    EXPECT_EQ(show.status, 0);
    EXPECT_THAT(show.out, AllOf(HasSubstr("Half of the level."), HasSubstr("Level = 128")));
    EXPECT_EQ(run_tool({"presets", "show", "none"}, own_folder).status, 1);
    media_test::put(at("bad.json"), "{ not json");
    EXPECT_THAT(run_tool({"presets", "show", path("bad.json")}).err, error_line("bad.json"));
    std::filesystem::copy(TEST_PRESETS, at(""));
    const outcome mixed = run_tool({"presets"}, [this] { setenv("FILIGRANE_PRESETS", at("").c_str(), 1); });
    EXPECT_EQ(mixed.status, 0);
    EXPECT_THAT(mixed.out, HasSubstr("half-level")); // a broken file hides none of the others
    EXPECT_THAT(mixed.err, HasSubstr("bad.json"));
}

TEST_F(questions, presets_that_are_none_are_shown_as_little_as_loaded)
{
    const std::string nested = std::string(5000000, '[') + std::string(5000000, ']');
    media_test::put(at("deep.json"), "{\"values\": {\"Rows\": " + nested + "}}");
    media_test::put(at("deeper.json"), "{\"values\": {\"Rows\": " + nested.substr(4900000, 200000) + "}}");
    media_test::put(at("empty.json"), "");
    std::filesystem::create_directory(at("folder.json"));
    for (const auto& [name, part] : {std::pair{"deep", "larger than 1 MiB"},
                                     {"deeper", "nested more than 32 deep"},
                                     {"empty", "the file is empty"},
                                     {"folder", "is a folder"},
                                     {"none", "No such file"}})
    {
        const std::string file = path(std::string(name) + ".json");
        for (const std::vector<std::string>& line : {std::vector<std::string>{"presets", "show", file},
                                                     {"render", "-o", path("out.png"), "--preset", file}})
        {
            const outcome result = run_tool(line);
            EXPECT_EQ(result.status, 1) << name;
            EXPECT_THAT(result.err, error_line(file));
            EXPECT_THAT(result.err, HasSubstr(part));
            EXPECT_EQ(result.out, "");
        }
    }
    const outcome list = run_tool({"presets"}, [this] { setenv("FILIGRANE_PRESETS", at("").c_str(), 1); });
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(std::count(list.err.begin(), list.err.end(), '\n'), 3) << list.err; // folders are passed over
    EXPECT_THAT(list.out, HasSubstr("neon-ripples"));
}

TEST_F(questions, a_preset_that_is_nearly_named_is_suggested)
{
    const outcome shown = run_tool({"presets", "show", "Neon-Rippels"});
    EXPECT_EQ(shown.status, 1);
    EXPECT_THAT(shown.err,
                error_line("\"Neon-Rippels\": did you mean \"neon-ripples\"? 'filigrane presets' lists all"));
    EXPECT_THAT(run_tool({"presets", "show", "waterfall"}).err,
                error_line("\"waterfall\": there are angular-wires, "));
}

TEST_F(questions, a_reader_that_has_enough_ends_the_answer)
{
    const auto closed_pipe = [](void (*disposition)(int))
    {
        return [disposition]
        {
            int ends[2];
            ASSERT_EQ(pipe(ends), 0);
            dup2(ends[1], STDOUT_FILENO);
            close(ends[0]);
            std::signal(SIGPIPE, disposition);
        };
    };
    const outcome usual = run_tool({"params"}, closed_pipe(SIG_DFL));
    EXPECT_EQ(usual.status, 1000 + SIGPIPE);
    EXPECT_EQ(usual.err, "");
    const outcome ignored = run_tool({"params"}, closed_pipe(SIG_IGN));
    EXPECT_EQ(ignored.status, 1);
    EXPECT_THAT(ignored.err, error_line("standard output"));
}

TEST_F(questions, a_full_output_is_an_error)
{
    const outcome result = run_tool({"params"}, [] { ASSERT_NE(freopen("/dev/full", "w", stdout), nullptr); });
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, error_line("standard output"));
}
