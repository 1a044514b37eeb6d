// Files that cannot be read, or only in part: one line that names them, never a crash or a silent half.
#include "child_process.hpp"
#include "clip_maker.hpp"

#include <sys/stat.h>

using namespace media_test;
using bad_input = temporary_folder;

namespace
{
// Opens the file and reads all its frames.
std::string reading_error(const std::filesystem::path& file)
{
    return error_of(
        [&]
        {
            media::reader in(file);
            media::picture into(in.info().width, in.info().height);
            const bool still = in.info().kind == media::source_kind::still;
            for (int i = 0; in.read(i, into.view()) && !still; ++i)
            {
            }
        });
}

void expect_named(const std::string& told, const std::filesystem::path& file)
{
    EXPECT_THAT(told, testing::HasSubstr(file.string()));
    EXPECT_THAT(told, testing::Not(testing::HasSubstr("\n")));
}
} // namespace

TEST_F(bad_input, missing_empty_and_folders_are_told_apart)
{
    EXPECT_THAT(reading_error(at("none.png")), testing::HasSubstr("No such file"));
    put(at("empty.png"), "");
    EXPECT_THAT(reading_error(at("empty.png")), testing::HasSubstr("empty"));
    std::filesystem::create_directory(at("folder"));
    EXPECT_THAT(reading_error(at("folder")), testing::HasSubstr("folder"));
    EXPECT_THAT(reading_error(at("none_%04d.png")), testing::HasSubstr("none_0000.png"));
    EXPECT_NE(reading_error(at("nowhere") / "f_%d.png"), "");
}

TEST_F(bad_input, pipes_and_devices_are_refused_without_waiting)
{
    ASSERT_EQ(mkfifo(at("pipe.png").c_str(), 0600), 0);
    const std::string remedy = ": is no regular file; name a picture or a clip";
    EXPECT_EQ(reading_error(at("pipe.png")), at("pipe.png").string() + remedy);
    EXPECT_EQ(reading_error("/dev/null"), "/dev/null" + remedy);
    EXPECT_EQ(reading_error("/dev/zero"), "/dev/zero" + remedy);
}

TEST_F(bad_input, files_without_leave_to_read_are_named)
{
    write_all(at("a.png"), sized(4, 4), {noise(4, 4, 1)});
    std::filesystem::permissions(at("a.png"), std::filesystem::perms::none);
    std::filesystem::permissions(at(""), std::filesystem::perms(0755));
    EXPECT_EQ(error_in_child(as_anyone, [&] { media::reader in(at("a.png")); }),
              at("a.png").string() + ": cannot be read (Permission denied)");
}

TEST_F(bad_input, a_damaged_clip_is_refused_or_read_and_nothing_else)
{
    std::vector<media::picture> frames;
    for (unsigned i = 0; i < 6; ++i)
        frames.push_back(make_opaque(noise(48, 32, i)));
    for (const char* name : {"a.mp4", "a.mov", "a.gif"})
    {
        write_all(at(name), sized(48, 32, 6), frames);
        const std::string whole = contents(at(name));
        std::mt19937 random(7);
        int refused = 0;
        for (int i = 0; i < 40; ++i)
        {
            std::string changed = whole;
            for (int k = 0; k < 1 + i; ++k)
                changed[random() % changed.size()] = static_cast<char>(random());
            put(at(name), changed);
            if (const std::string told = reading_error(at(name)); !told.empty())
            {
                expect_named(told, at(name));
                ++refused;
            }
        }
        EXPECT_GT(refused, 0) << name;
    }
}

TEST_F(bad_input, a_gif_without_its_beginning_is_refused)
{
    write_all(at("a.gif"), sized(48, 32, 6), std::vector<media::picture>(6, make_opaque(noise(48, 32, 1))));
    const std::string whole = contents(at("a.gif"));
    put(at("a.gif"), whole.substr(0, 10));
    expect_named(reading_error(at("a.gif")), at("a.gif"));
    put(at("a.gif"), whole.substr(whole.size() / 2));
    expect_named(reading_error(at("a.gif")), at("a.gif"));
}

TEST_F(bad_input, garbage_is_no_picture)
{
    std::string bytes;
    for (unsigned i = 0; i < 5000; ++i)
        bytes += static_cast<char>(i * i * 31 + i / 7);
    for (const char* name : {"a.png", "a.mp4", "a.txt"})
    {
        put(at(name), bytes);
        expect_named(reading_error(at(name)), at(name));
    }
    put(at("text.png"), "this is no picture\n");
    expect_named(reading_error(at("text.png")), at("text.png"));
}

TEST_F(bad_input, play_lists_reach_no_other_file)
{
    write_all(at("a.mov"), sized(16, 16), {plain(16, 16, 255, 1, 2, 3)});
    put(at("list.ffconcat"), "ffconcat version 1.0\nfile '" + at("a.mov").string() + "'\n");
    expect_named(reading_error(at("list.ffconcat")), at("list.ffconcat"));
    put(at("list.m3u8"),
        "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\n" + at("a.mov").string() + "\n#EXT-X-ENDLIST\n");
    expect_named(reading_error(at("list.m3u8")), at("list.m3u8"));
}

TEST_F(bad_input, a_cut_off_picture_is_refused_wherever_the_cut_is)
{
    const media::picture made = make_opaque(noise(61, 40, 5));
    for (const char* name : {"a.png", "a.jpg", "a.tif", "a.bmp", "a.webp"})
    {
        write_all(at(name), sized(61, 40), {made});
        const std::string whole = contents(at(name));
        for (int percent : {1, 10, 30, 50, 70, 90, 98})
        {
            put(at(name), whole.substr(0, whole.size() * static_cast<std::size_t>(percent) / 100));
            SCOPED_TRACE(std::string(name) + " cut at " + std::to_string(percent) + " %");
            expect_named(reading_error(at(name)), at(name));
        }
    }
}

TEST_F(bad_input, a_damaged_png_is_refused)
{
    write_all(at("a.png"), sized(61, 40), {noise(61, 40, 5)});
    const std::string whole = contents(at("a.png"));
    for (std::size_t place : {whole.size() / 3, whole.size() / 2, whole.size() - 20})
    {
        std::string changed = whole;
        changed[place] = static_cast<char>(changed[place] ^ 0x55);
        put(at("a.png"), changed);
        expect_named(reading_error(at("a.png")), at("a.png"));
    }
}

TEST_F(bad_input, a_cut_off_clip_is_refused)
{
    std::vector<media::picture> frames;
    for (unsigned i = 0; i < 20; ++i)
        frames.push_back(make_opaque(noise(64, 48, i)));
    for (const char* name : {"a.mp4", "a.mov"})
    {
        write_all(at(name), sized(64, 48, 20), frames);
        const std::string whole = contents(at(name));
        for (int percent : {1, 20, 50, 80, 95})
        {
            put(at(name), whole.substr(0, whole.size() * static_cast<std::size_t>(percent) / 100));
            SCOPED_TRACE(std::string(name) + " cut at " + std::to_string(percent) + " %");
            expect_named(reading_error(at(name)), at(name));
        }
    }
}

TEST_F(bad_input, a_cut_off_matroska_clip_is_refused_and_a_whole_one_read)
{
    clip_recipe recipe;
    recipe.muxer = "matroska";
    recipe.video_encoder = "png";
    recipe.audio_encoder = "pcm_s16le";
    recipe.audio_seconds = 9.0; // far longer than the pictures
    for (int i = 0; i < 20; ++i)
        recipe.frames.push_back({i, make_opaque(noise(64, 48, static_cast<unsigned>(i)))});
    recipe.frames.back().time = 40;
    make_clip(at("a.mkv"), recipe);
    EXPECT_EQ(reading_error(at("a.mkv")), "");
    const std::string whole = contents(at("a.mkv"));
    for (int percent : {1, 20, 50, 60, 80, 95})
    {
        put(at("a.mkv"), whole.substr(0, whole.size() * static_cast<std::size_t>(percent) / 100));
        SCOPED_TRACE("cut at " + std::to_string(percent) + " %");
        expect_named(reading_error(at("a.mkv")), at("a.mkv"));
    }
}

TEST_F(bad_input, a_clip_of_unstated_length_is_read_to_its_end)
{
    clip_recipe recipe;
    recipe.muxer = "matroska";
    recipe.video_encoder = "png";
    for (int i = 0; i < 20; ++i)
        recipe.frames.push_back({i, make_opaque(noise(64, 48, static_cast<unsigned>(i)))});
    make_clip(at("a.mkv"), recipe);
    std::string bytes = contents(at("a.mkv"));
    const std::size_t size_at = bytes.find("\x18\x53\x80\x67") + 4;
    bytes.replace(size_at, 8, "\x01\xFF\xFF\xFF\xFF\xFF\xFF\xFF");
    put(at("a.mkv"), bytes.substr(0, bytes.size() * 6 / 10));
    EXPECT_EQ(reading_error(at("a.mkv")), "");
}

TEST_F(bad_input, sound_alone_has_no_pictures)
{
    // A WAV file: header and one second of silence.
    const auto number = [](std::uint32_t value, int bytes)
    {
        std::string text;
        for (int i = 0; i < bytes; ++i)
            text += static_cast<char>(value >> (8 * i));
        return text;
    };
    put(at("a.wav"), "RIFF" + number(36 + 16000, 4) + "WAVEfmt " + number(16, 4) + number(1, 2) + number(1, 2) +
                         number(8000, 4) + number(16000, 4) + number(2, 2) + number(16, 2) + "data" +
                         number(16000, 4) + std::string(16000, '\0'));
    EXPECT_THAT(reading_error(at("a.wav")), testing::HasSubstr("no pictures"));
}
