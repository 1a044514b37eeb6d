// Numbered pictures that are drawn in several goes, one after the other or beside each other.
#include "run_tool.hpp"

#include <csignal>
#include <thread>

using namespace cli_test;
using namespace media_test;
using namespace testing;

namespace
{
class resume : public tool_test
{
protected:
    outcome draw(const std::string& frames, std::vector<std::string> more = {}) const
    {
        more.insert(more.end(), {"-o", path("out_%02d.png"), "--size", "8x8", "--frames", frames, "--resume"});
        return render(more);
    }
    std::string file(int frame) const
    {
        char name[16];
        std::snprintf(name, sizeof name, "out_%02d.png", frame);
        return name;
    }
    // Every frame of the range is a picture of itself, and nothing else is in the folder.
    void expect_whole(int first, int last) const
    {
        std::vector<std::string> expected;
        for (int frame = first; frame <= last; ++frame)
        {
            expected.push_back(file(frame));
            EXPECT_THAT(corner(at(file(frame))), ElementsAre(255, frame, 200, 0)) << frame;
        }
        EXPECT_EQ(names(), expected);
    }
};
} // namespace

TEST_F(resume, draws_what_is_not_there_and_nothing_else)
{
    for (const int there : {0, 3, 4, 9})
        put(at(file(there)), "kept");
    for (const char* jobs : {"1", "3"})
    {
        const outcome result = draw("0-9", {"--jobs", jobs});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_THAT(result.err, HasSubstr("10 frames (4 were there)"));
        for (const int there : {0, 3, 4, 9})
            EXPECT_EQ(contents(at(file(there))), "kept");
        for (const int drawn : {1, 2, 5, 6, 7, 8})
        {
            EXPECT_THAT(corner(at(file(drawn))), ElementsAre(255, drawn, 200, 0));
            std::filesystem::remove(at(file(drawn)));
        }
    }
    EXPECT_EQ(names().size(), 4u);
}

TEST_F(resume, can_be_repeated)
{
    ASSERT_EQ(draw("0-4").status, 0);
    const auto before = std::filesystem::last_write_time(at(file(2)));
    const outcome again = draw("0-4");
    EXPECT_EQ(again.status, 0);
    EXPECT_THAT(again.err, HasSubstr("5 frames (5 were there)"));
    EXPECT_EQ(draw("0-4", {"--timing"}).status, 0);
    EXPECT_EQ(std::filesystem::last_write_time(at(file(2))), before);
    expect_whole(0, 4);
}

TEST_F(resume, an_empty_file_is_no_picture)
{
    put(at(file(1)), "");
    EXPECT_EQ(draw("0-2").status, 0);
    expect_whole(0, 2);
}

TEST_F(resume, goes_on_where_an_error_a_stop_or_a_kill_ended)
{
    EXPECT_EQ(draw("0-19", {"--set", "Fail At=3"}).status, 1);
    EXPECT_EQ(draw("0-19", {"--set", "Stop At=7", "--jobs", "1"}).status, 130);
    EXPECT_EQ(draw("0-19", {"--set", "Stop At=12", "--set", "Signal=" + std::to_string(SIGKILL)}).status,
              1000 + SIGKILL);
    const outcome last = draw("0-19");
    EXPECT_EQ(last.status, 0);
    EXPECT_THAT(last.err, HasSubstr("were there"));
    expect_whole(0, 19);
}

TEST_F(resume, several_runs_share_the_work)
{
    std::vector<outcome> results(4);
    std::vector<std::thread> runs;
    for (outcome& result : results)
        runs.emplace_back([this, &result] { result = draw("0-59", {"--jobs", "2"}); });
    for (std::thread& run : runs)
        run.join();
    for (const outcome& result : results)
        EXPECT_EQ(result.status, 0) << result.err;
    expect_whole(0, 59);
}

TEST_F(resume, each_frame_gets_its_own_input)
{
    for (int i = 0; i < 6; ++i)
        write_all(at("in_" + std::to_string(i) + ".png"), sized(8, 8),
                  {plain(8, 8, 255, 0, 0, static_cast<std::uint8_t>(10 * i))});
    put(at(file(1)), "kept");
    put(at(file(2)), "kept");
    ASSERT_EQ(render({path("in_%d.png"), "-o", path("out_%02d.png"), "--resume", "--jobs", "2"}).status, 0);
    for (const int drawn : {0, 3, 4, 5})
        EXPECT_THAT(corner(at(file(drawn))), ElementsAre(255, drawn, 200, 10 * drawn));
}

TEST_F(resume, is_for_numbered_pictures_and_no_replacing)
{
    for (const char* name : {"out.png", "out.mov", "out.gif"})
        EXPECT_THAT(render({"-o", path(name), "--resume"}).err, error_line("--resume")) << name;
    EXPECT_EQ(render({"-o", path("out.mov"), "--resume"}).status, 2);
    EXPECT_EQ(draw("0-3", {"--force"}).status, 2);
    EXPECT_THAT(draw("0-3", {"--force"}).err, error_line("--force"));
    EXPECT_TRUE(names().empty());
}

TEST_F(resume, a_folder_in_a_frames_place_is_told)
{
    std::filesystem::create_directory(at(file(2)));
    const outcome result = draw("0-3");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, error_line(file(2)));
}
