// The least and the most that files hold: one frame, one pixel, very wide pictures.
#include "clip_maker.hpp"
#include "temporary_folder.hpp"

using namespace media_test;
using extremes = temporary_folder;

TEST_F(extremes, sixteen_thousand_pixels_wide_and_high_come_back)
{
    for (const bool high : {false, true})
    {
        const int width = high ? 2 : 16384;
        const int height = high ? 16384 : 2;
        for (const char* name : {"a.png", "a.jpg", "a.tif", "a.bmp", "a.gif", "a.mp4", "a.mov"})
        {
            SCOPED_TRACE(name);
            const media::picture made = plain(width, height, 255, 30, 200, 90);
            media::write_options options = sized(width, height);
            options.overwrite = true;
            write_all(at(name), options, {made});
            media::reader in(at(name));
            ASSERT_EQ(in.info().width, width);
            ASSERT_EQ(in.info().height, height);
            const media::picture back = read_one(in);
            for (int channel = 0; channel < 4; ++channel)
                EXPECT_LE(worst(made, back, channel), 4) << channel;
        }
    }
}

TEST_F(extremes, sizes_past_a_formats_own_limit_are_told_beforehand)
{
    const std::string remedy = " a side; name a .png or .mov, or draw smaller";
    EXPECT_EQ(error_of([&] { media::writer(at("a.webp"), sized(16384, 3)); }),
              at("a.webp").string() + ": is 16384x3 pixels, and this format holds at most 16383" + remedy);
    EXPECT_THAT(error_of([&] { media::writer(at("a.mp4"), sized(2, 16385)); }),
                testing::HasSubstr("16384" + remedy));
    EXPECT_THAT(error_of([&] { media::writer(at("a.jpg"), sized(65501, 1)); }),
                testing::HasSubstr("65500" + remedy));
    EXPECT_THAT(error_of([&] { media::writer(at("a.gif"), sized(65536, 1)); }),
                testing::HasSubstr("65535" + remedy));
    EXPECT_TRUE(names().empty());
    write_all(at("a.webp"), sized(16383, 1), {plain(16383, 1, 255, 1, 2, 3)});
    EXPECT_EQ(media::reader(at("a.webp")).info().width, 16383);
}

TEST_F(extremes, clips_of_one_frame_have_one_frame)
{
    for (const char* name : {"a.mp4", "a.mov", "a.gif"})
    {
        write_all(at(name), sized(16, 16), {plain(16, 16, 255, 9, 200, 9)});
        media::reader in(at(name));
        EXPECT_EQ(in.info().frames.value_or(1), 1) << name;
        EXPECT_NEAR(read_one(in).bytes()[2], 200, 4) << name;
        media::picture past(16, 16);
        EXPECT_FALSE(in.read(1, past.view())) << name;
    }
    clip_recipe recipe;
    recipe.frames.push_back({0, plain(16, 16, 255, 9, 200, 9)});
    recipe.audio_encoder = "pcm_s16le";
    recipe.audio_seconds = 0.1;
    make_clip(at("b.mov"), recipe);
    media::reader in(at("b.mov"));
    EXPECT_TRUE(in.info().audio);
    EXPECT_EQ(in.info().frames, 1);
}

TEST_F(extremes, a_clip_says_the_size_that_is_written)
{
    const media::writer padded(at("a.mp4"), sized(33, 17));
    EXPECT_EQ(padded.width(), 34);
    EXPECT_EQ(padded.height(), 18);
    const media::writer kept(at("a.mov"), sized(33, 17));
    EXPECT_EQ(kept.width(), 33);
    const media::writer picture(at("a.png"), sized(33, 17));
    EXPECT_EQ(picture.height(), 17);
}
