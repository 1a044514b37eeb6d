// Files in the making whose process has gone, and those whose process has not.
#include "child_process.hpp"
#include "media/unfinished.hpp"

#include <csignal>
#include <sys/stat.h>

using namespace media_test;
using abandoned = temporary_folder;

namespace
{
// A process that begins to write a clip there and is killed in the middle.
void write_and_be_killed(const std::filesystem::path& output)
{
    const pid_t child = fork();
    if (child == 0)
    {
        media::write_options options = sized(16, 16, 5);
        options.overwrite = true;
        media::writer out(output, options);
        out.write(plain(16, 16, 255, 9, 9, 9).view());
        kill(getpid(), SIGKILL);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
}
} // namespace

TEST_F(abandoned, a_killed_writer_leaves_the_old_file_and_a_hidden_one_that_the_next_removes)
{
    for (const char* name : {"a.mov", "a.mp4", "a.gif"})
    {
        put(at(name), "precious");
        write_and_be_killed(at(name));
        EXPECT_EQ(contents(at(name)), "precious") << name;
        ASSERT_EQ(names().size(), 2u) << name;
        EXPECT_THAT(names()[0], testing::AllOf(testing::StartsWith("."), testing::EndsWith(".part")));

        media::write_options force = sized(16, 16);
        force.overwrite = true;
        write_all(at(name), force, {plain(16, 16, 255, 9, 9, 9)});
        EXPECT_THAT(names(), testing::ElementsAre(name));
        EXPECT_EQ(media::reader(at(name)).info().width, 16);
        std::filesystem::remove(at(name));
    }
}

TEST_F(abandoned, the_next_picture_in_the_folder_removes_it_too)
{
    write_and_be_killed(at("a.mov"));
    write_all(at("b.png"), sized(4, 4), {noise(4, 4, 1)});
    EXPECT_THAT(names(), testing::ElementsAre("b.png"));
}

TEST_F(abandoned, what_another_writer_is_making_stays)
{
    media::writer first(at("a.mov"), sized(16, 16));
    first.write(plain(16, 16, 255, 9, 9, 9).view());
    // Another process: locks are a process's own business on some systems.
    EXPECT_EQ(error_in_child([] {}, [&] { write_all(at("b.png"), sized(4, 4), {noise(4, 4, 1)}); }), "");
    write_all(at("c.png"), sized(4, 4), {noise(4, 4, 1)});
    EXPECT_EQ(names().size(), 3u);
    first.finish();
    EXPECT_THAT(names(), testing::ElementsAre("a.mov", "b.png", "c.png"));
    EXPECT_EQ(media::reader(at("a.mov")).info().frames, 1);
}

TEST_F(abandoned, only_our_own_hidden_files_go)
{
    put(at(".filigrane-notes"), "precious");
    put(at("x.part"), "precious");
    std::filesystem::create_directory(at(".filigrane-1-1.part"));
    ASSERT_EQ(mkfifo(at(".filigrane-2-2.part").c_str(), 0600), 0);
    put(at("elsewhere"), "precious");
    std::filesystem::create_symlink(at("elsewhere"), at(".filigrane-3-3.part"));
    write_all(at("b.png"), sized(4, 4), {noise(4, 4, 1)});
    EXPECT_EQ(names().size(), 7u);
    EXPECT_EQ(contents(at("elsewhere")), "precious");
}

TEST_F(abandoned, a_hidden_name_that_is_taken_is_not_used)
{
    // Whatever the next names of this process are, in the folder of somebody who had its number before.
    for (int i = 0; i < 500; ++i)
        std::filesystem::create_directory(
            at(".filigrane-" + std::to_string(getpid()) + "-" + std::to_string(i) + ".part"));
    write_all(at("a.mov"), sized(4, 4), {make_opaque(noise(4, 4, 1))});
    EXPECT_EQ(names().size(), 501u);
}

TEST_F(abandoned, a_process_that_ends_at_once_can_remove_what_it_makes)
{
    {
        media::writer clip(at("a.mov"), sized(16, 16));
        media::writer other(at("b.gif"), sized(16, 16));
        write_all(at("c.png"), sized(4, 4), {noise(4, 4, 1)});
        EXPECT_EQ(names().size(), 3u);
        media::remove_unfinished_files();
        EXPECT_THAT(names(), testing::ElementsAre("c.png"));
    }
    EXPECT_THAT(names(), testing::ElementsAre("c.png"));
}
