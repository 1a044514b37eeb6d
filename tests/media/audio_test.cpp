// Sound carried from one clip into another.
#include "clip_maker.hpp"
#include "temporary_folder.hpp"

#include <algorithm>

using namespace media_test;
using audio = temporary_folder;

namespace
{
// Two seconds at 10 frames a second, with sound.
clip_recipe two_seconds(const std::string& encoder)
{
    clip_recipe recipe;
    for (int i = 0; i < 20; ++i)
        recipe.frames.push_back({i, plain(16, 16, 255, static_cast<std::uint8_t>(i), 0, 0)});
    recipe.audio_encoder = encoder;
    recipe.audio_seconds = 2.0;
    return recipe;
}

std::vector<std::string> render(const std::filesystem::path& from, const std::filesystem::path& to, int first,
                                int count)
{
    media::write_options options = sized(16, 16, count);
    options.rate = {10, 1};
    options.first = first;
    options.audio_from = from;
    media::writer out(to, options);
    for (int i = 0; i < count; ++i)
        out.write(plain(16, 16, 255, static_cast<std::uint8_t>(i), 0, 0).view());
    out.finish();
    return out.notes();
}

std::size_t place_of(const std::vector<audio_packet>& all, const audio_packet& wanted)
{
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const audio_packet& packet) { return packet.bytes == wanted.bytes; });
    return static_cast<std::size_t>(found - all.begin());
}
} // namespace

TEST_F(audio, whole_clip_carries_every_packet)
{
    make_clip(at("in.mov"), two_seconds("aac"));
    const std::vector<audio_packet> before = audio_packets(at("in.mov"));
    ASSERT_GT(before.size(), 90u);
    for (const char* name : {"out.mp4", "out.mov"})
    {
        EXPECT_TRUE(render(at("in.mov"), at(name), 0, 20).empty());
        const std::vector<audio_packet> after = audio_packets(at(name));
        ASSERT_LE(after.size(), before.size()) << name;
        ASSERT_GE(after.size() + 2, before.size()) << name; // what sounds past the last picture is cut
        const std::size_t shift = place_of(before, after.front());
        EXPECT_LE(shift, 1u);
        for (std::size_t i = 0; i < after.size(); ++i)
        {
            EXPECT_EQ(after[i].bytes, before[i + shift].bytes);
            EXPECT_NEAR(after[i].seconds, before[i + shift].seconds, 0.001) << name << " packet " << i;
        }
        EXPECT_TRUE(media::reader(at(name)).info().audio);
        EXPECT_EQ(media::reader(at(name)).info().frames, 20);
    }
}

TEST_F(audio, a_range_carries_its_own_stretch)
{
    for (const char* encoder : {"aac", "pcm_s16le"})
    {
        make_clip(at("in.mov"), two_seconds(encoder));
        const std::vector<audio_packet> before = audio_packets(at("in.mov"));
        render(at("in.mov"), at("out.mov"), 5, 10);
        const std::vector<audio_packet> after = audio_packets(at("out.mov"));
        ASSERT_FALSE(after.empty()) << encoder;
        // Frames 5 to 14 are 0.5 s to 1.5 s: sound at 0.5 s there is at 0 s here.
        const std::size_t shift = place_of(before, after.back()) + 1 - after.size();
        for (std::size_t i = 0; i < after.size(); ++i)
        {
            ASSERT_EQ(after[i].bytes, before[shift + i].bytes) << encoder << " packet " << i;
            EXPECT_NEAR(after[i].seconds, before[shift + i].seconds - 0.5, 0.001) << encoder << " packet " << i;
        }
        EXPECT_LE(after.front().seconds, 0.0);
        EXPECT_GT(after.front().seconds, -0.06);
        EXPECT_GE(after.back().seconds + after.back().duration, 1.0 - 0.001);
        EXPECT_LT(after.back().seconds, 1.0);
        EXPECT_EQ(media::reader(at("out.mov")).info().frames, 10) << encoder;
        std::filesystem::remove(at("out.mov"));
    }
}

TEST_F(audio, what_cannot_be_held_stays_behind_and_is_told)
{
    make_clip(at("in.mov"), two_seconds("pcm_s16le"));
    EXPECT_THAT(render(at("in.mov"), at("out.gif"), 0, 3), testing::ElementsAre(testing::HasSubstr("audio")));
    EXPECT_THAT(render(at("in.mov"), at("out.mp4"), 0, 3), testing::ElementsAre(testing::HasSubstr("pcm_s16le")));
    EXPECT_TRUE(audio_packets(at("out.mp4")).empty());
}

TEST_F(audio, a_silent_clip_needs_no_note)
{
    clip_recipe recipe = two_seconds("");
    make_clip(at("in.mov"), recipe);
    EXPECT_TRUE(render(at("in.mov"), at("out.mp4"), 0, 3).empty());
}

TEST_F(audio, a_writer_given_up_with_sound_waiting_leaves_nothing)
{
    make_clip(at("in.mov"), two_seconds("aac"));
    for (const char* name : {"out.mp4", "out.mov", "out.gif"})
    {
        media::write_options options = sized(16, 16, 20);
        options.rate = {10, 1};
        options.audio_from = at("in.mov");
        media::writer out(at(name), options);
        for (int i = 0; i < 3; ++i)
            out.write(plain(16, 16, 255, 1, 2, 3).view());
    }
    EXPECT_THAT(names(), testing::ElementsAre("in.mov"));
}
