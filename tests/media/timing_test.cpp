// Which picture of a clip is shown at which output frame.
#include "clip_maker.hpp"
#include "temporary_folder.hpp"

using namespace media_test;
using timing = temporary_folder;

namespace
{
// A picture that says its number in the red byte.
media::picture numbered(int number)
{
    return plain(16, 16, 255, static_cast<std::uint8_t>(number), 50, 50);
}

std::vector<int> shown_numbers(media::reader& in, int count)
{
    std::vector<int> numbers;
    for (int i = 0; i < count; ++i)
        numbers.push_back(read_one(in, i).bytes()[1]);
    return numbers;
}
} // namespace

TEST_F(timing, unequal_frames_last_until_the_next_one)
{
    clip_recipe recipe; // tenths of a second: 0.0, 0.1, 0.4, 0.5, 0.9
    int number = 10;
    for (int time : {0, 1, 4, 5, 9})
        recipe.frames.push_back({time, numbered(number++)});
    make_clip(at("a.mov"), recipe);
    media::reader in(at("a.mov"), media::rational{10, 1});
    EXPECT_THAT(shown_numbers(in, 10), testing::ElementsAre(10, 11, 11, 11, 12, 13, 13, 13, 13, 14));
}

TEST_F(timing, an_output_rate_repeats_and_drops)
{
    clip_recipe recipe;
    for (int i = 0; i < 6; ++i)
        recipe.frames.push_back({i, numbered(i)});
    make_clip(at("a.mov"), recipe);
    media::reader own(at("a.mov"));
    EXPECT_EQ(own.info().rate, (media::rational{10, 1}));
    EXPECT_EQ(own.info().frames, 6);
    media::reader fast(at("a.mov"), media::rational{25, 1});
    EXPECT_EQ(fast.info().frames, 15);
    // Frame k is at k/25 s and shows picture floor(10 k / 25).
    EXPECT_THAT(shown_numbers(fast, 15), testing::ElementsAre(0, 0, 0, 1, 1, 2, 2, 2, 3, 3, 4, 4, 4, 5, 5));
    media::reader slow(at("a.mov"), media::rational{5, 1});
    EXPECT_EQ(slow.info().frames, 3);
    EXPECT_THAT(shown_numbers(slow, 3), testing::ElementsAre(0, 2, 4));
    media::picture past(16, 16);
    EXPECT_FALSE(slow.read(3, past.view()));
}

TEST_F(timing, times_rounded_to_milliseconds_do_not_stutter)
{
    // 30000/1001 in a container that counts milliseconds: 0, 33, 67, 100, 133, 167 ...
    clip_recipe recipe;
    recipe.time_base_den = 1000;
    for (int i = 0; i < 60; ++i)
        recipe.frames.push_back({std::llround(i * 1001000.0 / 30000.0), numbered(i)});
    make_clip(at("a.mov"), recipe);
    media::reader in(at("a.mov"), media::rational{30000, 1001});
    const std::vector<int> numbers = shown_numbers(in, 60);
    for (int i = 0; i < 60; ++i)
        EXPECT_EQ(numbers[static_cast<std::size_t>(i)], i);
}

TEST_F(timing, a_late_first_picture_is_frame_zero)
{
    clip_recipe recipe;
    recipe.frames = {{30, numbered(1)}, {31, numbered(2)}, {32, numbered(3)}};
    make_clip(at("a.mov"), recipe);
    media::reader in(at("a.mov"), media::rational{10, 1});
    EXPECT_THAT(shown_numbers(in, 3), testing::ElementsAre(1, 2, 3));
}
