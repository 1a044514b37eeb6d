// What goes wrong in the middle, and what is left then.
#include "run_tool.hpp"

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

using namespace cli_test;
using namespace media_test;
using namespace testing;
using failure = tool_test;

TEST_F(failure, a_failing_frame_leaves_no_clip_and_whole_pictures)
{
    for (const char* name : {"out.mov", "out.mp4", "out.gif", "out_%d.png"})
    {
        const outcome result =
            render({"-o", path(name), "--size", "16x16", "--frames", "0-9", "--set", "Fail At=3"});
        EXPECT_EQ(result.status, 1) << name;
        EXPECT_THAT(result.err, error_line("")) << name;
    }
    EXPECT_THAT(names(), ElementsAre("out_0.png", "out_1.png", "out_2.png"));
}

TEST_F(failure, an_interrupt_leaves_nothing_half_written)
{
    for (const char* name : {"out.mov", "out.mp4", "out.gif"})
    {
        const outcome result =
            render({"-o", path(name), "--size", "16x16", "--frames", "0-5000", "--set", "Stop At=3"});
        EXPECT_EQ(result.status, 130) << name;
        EXPECT_THAT(result.err, HasSubstr("was not written")) << name;
        EXPECT_TRUE(names().empty()) << name;
    }
    const outcome result = render(
        {"-o", path("out_%d.png"), "--size", "16x16", "--frames", "0-5000", "--set", "Stop At=3", "--jobs", "2"});
    EXPECT_EQ(result.status, 130);
    const std::vector<std::string> left = names();
    EXPECT_LT(left.size(), 100u);
    for (const std::string& name : left)
        EXPECT_EQ(media::reader(at(name)).info().width, 16) << name;
    EXPECT_EQ(render({"-o", path("t.mov"), "--size", "16x16", "--set", "Stop At=3", "--timing"}).status, 130);
    EXPECT_FALSE(std::filesystem::exists(at("t.mov")));
}

TEST_F(failure, the_status_tells_which_signal_stopped_it)
{
    for (const auto& [number, status] : {std::pair{SIGINT, 130}, {SIGTERM, 143}, {SIGHUP, 129}})
    {
        const outcome result = render({"-o", path("out.mov"), "--size", "16x16", "--frames", "0-5000", "--set",
                                       "Stop At=3", "--set", "Signal=" + std::to_string(number)});
        EXPECT_EQ(result.status, status);
        EXPECT_THAT(result.err, HasSubstr("stopped; " + path("out.mov") + " was not written"));
        EXPECT_TRUE(names().empty());
    }
}

TEST_F(failure, a_signal_that_is_ignored_stays_so)
{
    const outcome result = render({"-o", path("out.gif"), "--size", "16x16", "--frames", "0-5", "--set",
                                   "Stop At=3", "--set", "Signal=" + std::to_string(SIGHUP)},
                                  [] { std::signal(SIGHUP, SIG_IGN); });
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(names(), ElementsAre("out.gif"));
}

TEST_F(failure, a_second_signal_ends_an_effect_that_hangs_and_leaves_nothing)
{
    for (const int number : {SIGINT, SIGTERM})
        for (const char* name : {"out.mov", "out_%d.png"})
        {
            put(at("out.mov"), "precious");
            const outcome result = render({"-o", path(name), "--force", "--size", "16x16", "--set", "Stop At=0",
                                           "--set", "Twice=on", "--set", "Signal=" + std::to_string(number)});
            EXPECT_EQ(result.status, 1000 + number) << result.err;
            EXPECT_THAT(names(), ElementsAre("out.mov")) << name;
            EXPECT_EQ(contents(at("out.mov")), "precious");
        }
}

TEST_F(failure, a_crash_while_drawing_is_told_and_leaves_nothing)
{
    for (const auto& [number, name] : {std::pair{SIGSEGV, "SIGSEGV"}, {SIGABRT, "SIGABRT"}, {SIGFPE, "SIGFPE"}})
    {
        put(at("out.mov"), "precious");
        const outcome result = render({"-o", path("out.mov"), "--force", "--size", "16x16", "--set", "Stop At=2",
                                       "--set", "Signal=" + std::to_string(number)});
        EXPECT_EQ(result.status, 1000 + number);
        EXPECT_THAT(result.err, error_line(std::string(name) + ": " TEST_EFFECT " crashed while it drew"));
        EXPECT_THAT(names(), ElementsAre("out.mov"));
        EXPECT_EQ(contents(at("out.mov")), "precious");
    }
}

TEST_F(failure, what_a_killed_run_leaves_is_hidden_and_goes_with_the_next)
{
    for (const char* name : {"out.mov", "out.mp4", "out.gif"})
    {
        const outcome killed = render({"-o", path(name), "--size", "16x16", "--set", "Stop At=3", "--set",
                                       "Signal=" + std::to_string(SIGKILL)});
        EXPECT_EQ(killed.status, 1000 + SIGKILL);
        EXPECT_THAT(names(), ElementsAre(AllOf(StartsWith(".filigrane-"), EndsWith(".part")))) << name;
        EXPECT_EQ(render({"-o", path(name), "--size", "16x16", "--frames", "0-1"}).status, 0);
        EXPECT_THAT(names(), ElementsAre(name));
        std::filesystem::remove(at(name));
    }
    render({"-o", path("out_%d.png"), "--size", "16x16", "--set", "Stop At=3", "--jobs", "1", "--set",
            "Signal=" + std::to_string(SIGKILL)});
    EXPECT_THAT(names(), ElementsAre("out_0.png", "out_1.png", "out_2.png"));
}

TEST_F(failure, a_reader_of_messages_that_goes_stops_no_render)
{
    const outcome result = render({"-o", path("out.png"), "--size", "8x8", "--timing"},
                                  []
                                  {
                                      int ends[2];
                                      ASSERT_EQ(pipe(ends), 0);
                                      dup2(ends[1], STDERR_FILENO);
                                      close(ends[0]);
                                  });
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(names(), ElementsAre("out.png"));
}

TEST_F(failure, no_room_is_an_error_and_leaves_nothing)
{
    // A limit on a file's size stands in for a full disk.
    const auto little_room = []
    {
        const rlimit limit{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
    };
    write_all(at("in.png"), sized(200, 150), {noise(200, 150, 1)});
    for (const char* name : {"out.png", "out.mov", "out.gif"})
    {
        const outcome result = render({path("in.png"), "-o", path(name), "--frames", "0"}, little_room);
        EXPECT_EQ(result.status, 1) << name;
        EXPECT_THAT(result.err, error_line(name)) << name;
        EXPECT_THAT(names(), ElementsAre("in.png")) << name;
    }
    for (const char* name : {"old.png", "old.mov"})
    {
        put(at(name), "precious");
        const outcome result = render({path("in.png"), "-o", path(name), "--frames", "0", "--force"}, little_room);
        EXPECT_EQ(result.status, 1) << name;
        EXPECT_THAT(result.err, error_line(name)) << name;
        EXPECT_EQ(contents(at(name)), "precious") << name;
    }
    EXPECT_THAT(names(), ElementsAre("in.png", "old.mov", "old.png"));
}

TEST_F(failure, places_that_cannot_be_written_to_are_told)
{
    put(at("file"), "x");
    std::filesystem::create_directory(at("folder.png"));
    const auto told = [&](const std::string& output)
    {
        const outcome result = render({"-o", output, "--size", "8x8", "--force"});
        EXPECT_EQ(result.status, 1) << output;
        EXPECT_THAT(result.err, error_line(output));
        return result.err;
    };
    EXPECT_THAT(told(path("file/out.png")), HasSubstr("is not a folder"));
    EXPECT_THAT(told(path("folder.png")), HasSubstr("is a folder; add a file name"));
    EXPECT_THAT(told("/proc/out.mov"), HasSubstr("cannot be written"));
    std::filesystem::create_symlink("/dev/full", at("full.png"));
    EXPECT_THAT(told(path("full.png")), HasSubstr("is no regular file"));
    EXPECT_THAT(names(), ElementsAre("file", "folder.png", "full.png"));
}

TEST_F(failure, what_is_there_stays_unless_forced)
{
    put(at("out.png"), "precious");
    const outcome refused = render({"-o", path("out.png"), "--size", "8x8"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.err, error_line("--force"));
    EXPECT_EQ(contents(at("out.png")), "precious");
    EXPECT_EQ(render({"-o", path("out.png"), "--size", "8x8", "--force"}).status, 0);
    EXPECT_THAT(corner(at("out.png")), ElementsAre(255, 0, 200, 0));
}

TEST_F(failure, a_clip_can_be_replaced_by_its_own_rendering)
{
    media::write_options options = sized(8, 8, 3);
    options.codec = media::clip_codec::animation;
    write_all(at("a.mov"), options, std::vector<media::picture>(3, plain(8, 8, 255, 9, 9, 99)));
    ASSERT_EQ(render({path("a.mov"), "-o", path("a.mov"), "--force", "--codec", "animation"}).status, 0);
    EXPECT_THAT(corner(at("a.mov"), 2), ElementsAre(255, 2, 200, 99));
}

TEST_F(failure, files_that_do_not_work_are_named)
{
    const std::string out = path("out.png");
    EXPECT_THAT(run_tool({"render", "-o", out, "--plugin", path("none.so")}).err, error_line("none.so"));
    EXPECT_THAT(render({path("none.png"), "-o", out}).err, error_line("none.png"));
    EXPECT_THAT(render({"-o", path("nowhere/out.png")}).err, error_line("nowhere"));
    EXPECT_THAT(render({"-o", path("out.avi")}).err, error_line("out.avi"));
    EXPECT_THAT(render({"-o", out, "--frames", "0-3"}).err, error_line("out_%04d.png"));
    EXPECT_THAT(render({"-o", path("out.mp4"), "--codec", "prores4444"}).err, error_line(".mov"));
    EXPECT_THAT(render({"-o", path("out.mov"), "--codec", "divx"}).err, error_line("prores4444"));
    EXPECT_TRUE(names().empty());
}

TEST_F(failure, a_missing_plugin_beside_the_tool_is_told)
{
    std::filesystem::copy_file(TOOL, at("filigrane"));
    const outcome result =
        run_tool({}, [this] { execl(path("filigrane").c_str(), "filigrane", "about", nullptr); });
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, error_line("Filigrane.so"));
}

TEST_F(failure, a_tool_that_was_installed_finds_what_was_installed_with_it)
{
    for (const char* folder : {"bin", "lib/filigrane", "share/filigrane/presets"})
        std::filesystem::create_directories(at(folder));
    std::filesystem::copy_file(TOOL, at("bin/filigrane"));
    std::filesystem::copy_file(TEST_EFFECT, at("lib/filigrane/Filigrane.so"));
    std::filesystem::copy_file(TEST_PRESETS "/half-level.json",
                               at("share/filigrane/presets/installed-level.json"));
    const auto installed = [this](std::vector<const char*> words)
    {
        words.insert(words.begin(), "filigrane");
        words.push_back(nullptr);
        return run_tool({}, [&] { execv(path("bin/filigrane").c_str(), const_cast<char* const*>(words.data())); });
    };
    const std::string out = path("out.png");
    const outcome drawn = installed({"render", "-o", out.c_str(), "--size", "4x4", "--preset", "installed-level"});
    EXPECT_EQ(drawn.status, 0) << drawn.err;
    EXPECT_EQ(corner(at("out.png"))[2], 128);
}
