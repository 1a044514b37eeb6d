// Outputs that cannot be made: a clear line, and nothing left behind.
#include "temporary_folder.hpp"

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace media_test;
using unwritable = temporary_folder;

namespace
{
const char* const every_kind[] = {"a.png", "a.jpg", "f_%02d.png", "a.mp4", "a.mov", "a.gif"};

std::string opening_error(const std::filesystem::path& output, int count = 1)
{
    return error_of([&] { media::writer(output, sized(16, 16, count)); });
}

// Runs `action` in a process of its own, prepared by `prepare`, and answers what media::error said there.
template <class P, class A>
std::string error_in_child(P&& prepare, A&& action)
{
    int ends[2];
    if (pipe(ends) != 0)
        return "no pipe";
    const pid_t child = fork();
    if (child == 0)
    {
        prepare();
        const std::string told = error_of(action);
        const bool sent = ::write(ends[1], told.data(), told.size()) == static_cast<ssize_t>(told.size());
        _exit(sent ? 0 : 1);
    }
    close(ends[1]);
    std::string told;
    char buffer[512];
    for (ssize_t got = 0; (got = ::read(ends[0], buffer, sizeof buffer)) > 0;)
        told.append(buffer, static_cast<std::size_t>(got));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the child ended with status " << status;
    return told;
}

void write_noise(const std::filesystem::path& output)
{
    media::write_options options = sized(200, 150, output.string().find('%') != std::string::npos ? 3 : 1);
    media::writer out(output, options);
    for (int i = 0; i < options.count; ++i)
        out.write(make_opaque(noise(200, 150, static_cast<unsigned>(i))).view());
    out.finish();
}
} // namespace

TEST_F(unwritable, a_missing_folder_is_named)
{
    for (const char* name : every_kind)
        EXPECT_THAT(opening_error(at("nowhere") / name), testing::HasSubstr("nowhere does not exist")) << name;
    put(at("file"), "x");
    EXPECT_THAT(opening_error(at("file") / "a.png"), testing::HasSubstr("not a folder"));
    EXPECT_THAT(names(), testing::ElementsAre("file"));
}

TEST_F(unwritable, a_folder_of_that_name_is_left_alone)
{
    std::filesystem::create_directory(at("a.png"));
    std::filesystem::create_directory(at("a.mov"));
    media::write_options force = sized(16, 16);
    force.overwrite = true;
    for (const char* name : {"a.png", "a.mov"})
    {
        EXPECT_THAT(error_of([&] { media::writer(at(name), force); }), testing::HasSubstr("is a folder"));
        EXPECT_THAT(opening_error(at(name)), testing::HasSubstr("is a folder"));
    }
    EXPECT_EQ(names().size(), 2u);
}

TEST_F(unwritable, devices_are_never_replaced)
{
    ASSERT_EQ(mkfifo(at("pipe.png").c_str(), 0600), 0);
    media::write_options force = sized(16, 16);
    force.overwrite = true;
    EXPECT_THAT(error_of([&] { media::writer(at("pipe.png"), force); }), testing::HasSubstr("regular"));
    EXPECT_THAT(names(), testing::ElementsAre("pipe.png"));
}

TEST_F(unwritable, an_existing_file_is_kept_unless_overwriting)
{
    for (const char* name : {"a.png", "a.mp4", "a.mov", "a.gif"})
    {
        put(at(name), "precious");
        EXPECT_THAT(opening_error(at(name)), testing::HasSubstr("exists already"));
        EXPECT_EQ(contents(at(name)), "precious");
        media::write_options force = sized(16, 16);
        force.overwrite = true;
        write_all(at(name), force, {plain(16, 16, 255, 9, 9, 9)});
        EXPECT_EQ(media::reader(at(name)).info().width, 16);
    }
    put(at("f_02.png"), "precious"); // the third of a sequence: known before the first is written
    EXPECT_THAT(opening_error(at("f_%02d.png"), 4), testing::HasSubstr("f_02.png"));
    EXPECT_FALSE(std::filesystem::exists(at("f_00.png")));
}

TEST_F(unwritable, overwriting_keeps_a_link)
{
    put(at("real.png"), "old");
    std::filesystem::create_symlink("real.png", at("link.png"));
    media::write_options force = sized(8, 8);
    force.overwrite = true;
    write_all(at("link.png"), force, {plain(8, 8, 255, 9, 9, 9)});
    EXPECT_TRUE(std::filesystem::is_symlink(at("link.png")));
    EXPECT_EQ(media::reader(at("real.png")).info().width, 8);
}

TEST_F(unwritable, a_writer_given_up_leaves_what_was_there)
{
    put(at("a.mov"), "precious");
    put(at("a.png"), "precious");
    media::write_options force = sized(16, 16, 5);
    force.overwrite = true;
    for (const char* name : {"a.mov", "b.mp4", "b.gif", "f_%d.png"})
    {
        media::writer out(at(name), force);
        out.write(plain(16, 16, 255, 9, 9, 9).view());
    }
    EXPECT_EQ(contents(at("a.mov")), "precious");
    EXPECT_THAT(names(), testing::ElementsAre("a.mov", "a.png", "f_0.png")); // the frame that was whole
    EXPECT_EQ(media::reader(at("f_0.png")).info().width, 16);
}

TEST_F(unwritable, no_frames_make_no_file)
{
    for (const char* name : every_kind)
        EXPECT_NE(error_of(
                      [&]
                      {
                          media::writer out(at(name), sized(16, 16));
                          out.finish();
                      }),
                  "");
    EXPECT_TRUE(names().empty());
}

TEST_F(unwritable, another_size_than_announced_is_refused)
{
    for (const char* name : every_kind)
        EXPECT_THAT(error_of(
                        [&]
                        {
                            media::writer out(at(name), sized(16, 16));
                            out.write(plain(16, 17, 255, 1, 2, 3).view());
                        }),
                    testing::HasSubstr("size"));
    EXPECT_TRUE(names().empty());
}

TEST_F(unwritable, a_read_only_folder_is_refused)
{
    std::filesystem::create_directory(at("locked"));
    std::filesystem::permissions(at("locked"), std::filesystem::perms(0555));
    std::filesystem::permissions(at(""), std::filesystem::perms(0755));
    const auto as_anyone = []
    {
        if (geteuid() == 0 && seteuid(65534) != 0)
            _exit(2);
    };
    for (const char* name : every_kind)
        EXPECT_THAT(error_in_child(as_anyone, [&] { media::writer(at("locked") / name, sized(16, 16)); }),
                    testing::HasSubstr("Permission denied"))
            << name;
    EXPECT_TRUE(std::filesystem::is_empty(at("locked")));
}

TEST_F(unwritable, running_out_of_room_leaves_nothing)
{
    // A limit on a file's size stands in for a full disk: writing fails in the middle in the same way.
    const auto little_room = []
    {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{8192, 8192};
        setrlimit(RLIMIT_FSIZE, &limit);
    };
    for (const char* name : every_kind)
    {
        const std::string told = error_in_child(little_room, [&] { write_noise(at(name)); });
        EXPECT_THAT(told, testing::HasSubstr("File too large")) << name;
        EXPECT_TRUE(names().empty()) << name;
    }
}
