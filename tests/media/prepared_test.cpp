// Frames made ready by several threads in any order: the files are those of frames written one after the other.
#include "temporary_folder.hpp"

#include <thread>

using namespace media_test;
using prepared = temporary_folder;

namespace
{
constexpr int frames = 12;
constexpr int first = 7;

std::vector<media::picture> moving_pictures()
{
    std::vector<media::picture> made;
    for (int i = 0; i < frames; ++i)
        made.push_back(gradient(33, 22, i));
    return made;
}

media::write_options numbered()
{
    media::write_options options = sized(33, 22, frames);
    options.first = first;
    return options;
}

// Two threads, the later frames first.
void write_prepared(const std::filesystem::path& file, const std::vector<media::picture>& pictures)
{
    media::writer out(file, numbered());
    std::vector<std::optional<media::prepared_frame>> made(frames);
    const auto prepare = [&](int from)
    {
        for (int i = from; i >= 0; i -= 2)
            made[static_cast<std::size_t>(i)].emplace(
                out.prepare(first + i, pictures[static_cast<std::size_t>(i)].view()));
    };
    std::thread other(prepare, frames - 2);
    prepare(frames - 1);
    other.join();
    for (auto& frame : made)
        out.write(std::move(*frame));
    out.finish();
}
} // namespace

TEST_F(prepared, frames_make_the_same_files_as_written_ones)
{
    const std::vector<media::picture> pictures = moving_pictures();
    std::filesystem::create_directory(at("one"));
    std::filesystem::create_directory(at("two"));
    for (const char* name : {"a.mov", "a.gif", "a_%d.png", "a_%d.jpg", "a_%d.tif", "a_%d.webp", "a_%d.bmp"})
    {
        write_all(at("one") / name, numbered(), pictures);
        write_prepared(at("two") / name, pictures);
    }
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(at("one")))
    {
        EXPECT_EQ(contents(entry.path()), contents(at("two") / entry.path().filename())) << entry.path();
        ++files;
    }
    EXPECT_EQ(files, 2 + 5 * frames);
}

// The H.264 encoder does not always make the same bytes of the same frames, of so small ones at least: one
// encoding in some hundreds differs from the others by a level or two of a few pixels. The frames differ by ten of
// blue.
TEST_F(prepared, frames_make_the_same_clip_as_written_ones)
{
    const std::vector<media::picture> pictures = moving_pictures();
    write_all(at("one.mp4"), numbered(), pictures);
    write_prepared(at("two.mp4"), pictures);
    media::reader one(at("one.mp4"));
    media::reader two(at("two.mp4"));
    for (int i = 0; i < frames; ++i)
    {
        const media::picture written = read_one(one, i);
        const media::picture made = read_one(two, i);
        for (int channel = 0; channel < 4; ++channel)
            EXPECT_LE(worst(written, made, channel), 4) << i << ", channel " << channel;
    }
    EXPECT_GT(worst(read_one(one, 3), read_one(two, 4), 3), 4);
}

TEST_F(prepared, frames_of_another_size_are_told_with_their_files_name)
{
    media::writer out(at("a_%d.png"), numbered());
    EXPECT_THAT(error_of([&] { out.prepare(9, plain(5, 5, 255, 1, 2, 3).view()); }),
                testing::HasSubstr("a_9.png"));
}
