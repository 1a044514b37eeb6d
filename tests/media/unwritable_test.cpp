// Outputs that cannot be made: a clear line, and nothing left behind.
#include "child_process.hpp"
#include "temporary_folder.hpp"

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace media_test;
using unwritable = temporary_folder;

namespace
{
const char* const every_kind[] = {"a.png", "a.jpg", "f_%02d.png", "a.mp4", "a.mov", "a.gif"};

std::string opening_error(const std::filesystem::path& output, int count = 1)
{
    return error_of([&] { media::writer(output, sized(16, 16, count)); });
}

void write_noise(const std::filesystem::path& output, bool overwrite = false)
{
    media::write_options options = sized(200, 150, output.string().find('%') != std::string::npos ? 3 : 1);
    options.overwrite = overwrite;
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
    // The same over a file that is there: it stays.
    for (const char* name : {"a.png", "a.mov"})
    {
        put(at(name), "precious");
        EXPECT_THAT(error_in_child(little_room, [&] { write_noise(at(name), true); }),
                    testing::HasSubstr("File too large"));
        EXPECT_EQ(contents(at(name)), "precious");
        std::filesystem::remove(at(name));
        EXPECT_TRUE(names().empty());
    }
}
