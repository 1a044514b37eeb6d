// Clips written and read again.
#include "clip_maker.hpp"
#include "temporary_folder.hpp"

using namespace media_test;
using clip = temporary_folder;

namespace
{
std::vector<media::picture> gradients(int width, int height, int count)
{
    std::vector<media::picture> frames;
    for (int i = 0; i < count; ++i)
        frames.push_back(gradient(width, height, i));
    return frames;
}

void expect_near(const media::picture& made, const media::picture& back, int tolerance)
{
    for (int channel = 0; channel < 4; ++channel)
        EXPECT_LE(worst(made, back, channel), tolerance) << "channel " << channel;
}
} // namespace

TEST_F(clip, animation_is_lossless_with_alpha)
{
    for (const auto& [width, height] : {std::pair(1, 1), std::pair(37, 21), std::pair(64, 48)})
    {
        std::vector<media::picture> frames;
        for (unsigned i = 0; i < 5; ++i)
            frames.push_back(noise(width, height, i));
        media::write_options options = sized(width, height, 5);
        options.codec = media::clip_codec::animation;
        options.rate = {30000, 1001};
        options.overwrite = true;
        write_all(at("a.mov"), options, frames);
        media::reader in(at("a.mov"));
        EXPECT_EQ(in.info().kind, media::source_kind::clip);
        EXPECT_TRUE(in.info().alpha);
        EXPECT_FALSE(in.info().audio);
        EXPECT_EQ(in.info().rate, (media::rational{30000, 1001}));
        EXPECT_EQ(in.info().frames, 5);
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(read_one(in, i).bytes(), frames[static_cast<std::size_t>(i)].bytes()) << "frame " << i;
        media::picture past(width, height);
        EXPECT_FALSE(in.read(5, past.view()));
    }
}

TEST_F(clip, prores_keeps_every_alpha_and_the_colours_closely)
{
    std::vector<media::picture> frames = gradients(65, 33, 3);
    for (media::picture& frame : frames)
        for (int i = 0; i < 65 * 33; ++i)
            frame.view().argb[4 * i] = static_cast<std::uint8_t>(i * 7);
    write_all(at("a.mov"), sized(65, 33, 3), frames);
    EXPECT_THAT(tags_of(at("a.mov")).pixel_format, testing::StartsWith("yuva444p1")); // 10 or 12 bits
    media::reader in(at("a.mov"));
    EXPECT_TRUE(in.info().alpha);
    EXPECT_EQ(in.info().frames, 3);
    for (int i = 0; i < 3; ++i)
    {
        const media::picture back = read_one(in, i);
        EXPECT_EQ(worst(frames[static_cast<std::size_t>(i)], back, 0), 0);
        expect_near(frames[static_cast<std::size_t>(i)], back, 6);
    }
}

TEST_F(clip, plain_colours_survive_yuv_in_both_definitions)
{
    for (const auto& [width, height] : {std::pair(64, 64), std::pair(1280, 720)})
        for (const char* name : {"a.mov", "a.mp4"})
            for (const auto& [r, g, b] : {std::tuple(255, 0, 0), std::tuple(0, 255, 0), std::tuple(0, 0, 255),
                                          std::tuple(0, 0, 0), std::tuple(255, 255, 255), std::tuple(90, 140, 40)})
            {
                const media::picture made = plain(width, height, 255, static_cast<std::uint8_t>(r),
                                                  static_cast<std::uint8_t>(g), static_cast<std::uint8_t>(b));
                media::write_options options = sized(width, height);
                options.overwrite = true;
                write_all(at(name), options, {made});
                EXPECT_EQ(tags_of(at(name)).matrix, width == 1280 ? "bt709" : "smpte170m");
                media::reader in(at(name));
                SCOPED_TRACE(std::string(name) + " " + std::to_string(r) + " " + std::to_string(g));
                expect_near(made, read_one(in), 3);
            }
}

TEST_F(clip, mp4_has_size_rate_and_count)
{
    const std::vector<media::picture> frames = gradients(96, 64, 12);
    media::write_options options = sized(96, 64, 12);
    options.rate = {24000, 1001};
    write_all(at("a.mp4"), options, frames);
    const clip_tags tags = tags_of(at("a.mp4"));
    EXPECT_EQ(tags.pixel_format, "yuv420p");
    EXPECT_EQ(tags.range, "tv");
    EXPECT_EQ(tags.frames, 12);
    media::reader in(at("a.mp4"));
    EXPECT_EQ(in.info().width, 96);
    EXPECT_EQ(in.info().height, 64);
    EXPECT_EQ(in.info().rate, (media::rational{24000, 1001}));
    EXPECT_EQ(in.info().frames, 12);
    EXPECT_FALSE(in.info().alpha);
    for (int i = 0; i < 12; ++i)
        expect_near(frames[static_cast<std::size_t>(i)], read_one(in, i), 12);
}

TEST_F(clip, frames_come_in_any_order)
{
    // Long enough that going far ahead and back starts anew at key frames.
    std::vector<media::picture> frames;
    for (int i = 0; i < 120; ++i)
        frames.push_back(plain(16, 16, 255, static_cast<std::uint8_t>(2 * i), 100, 100));
    for (const char* name : {"a.mp4", "a.mov", "a.gif"})
    {
        write_all(at(name), sized(16, 16, 120), frames);
        media::reader in(at(name));
        for (int i : {119, 0, 80, 79, 3, 110, 60})
            EXPECT_LE(worst(frames[static_cast<std::size_t>(i)], read_one(in, i), 1), 3) << name << " frame " << i;
        media::picture past(16, 16);
        EXPECT_FALSE(in.read(120, past.view()));
        EXPECT_FALSE(in.read(-1, past.view()));
    }
}

TEST_F(clip, odd_sizes_are_padded_for_h264_and_said_so)
{
    const media::picture made = plain(33, 17, 255, 200, 30, 60);
    media::writer out(at("a.mp4"), sized(33, 17));
    EXPECT_THAT(out.notes(), testing::ElementsAre(testing::HasSubstr("34x18")));
    out.write(made.view());
    out.finish();
    media::reader in(at("a.mp4"));
    EXPECT_EQ(in.info().width, 34);
    EXPECT_EQ(in.info().height, 18);
    expect_near(plain(34, 18, 255, 200, 30, 60), read_one(in), 3);
}

TEST_F(clip, tiny_clips_work_in_every_format)
{
    for (const char* name : {"a.mp4", "a.mov", "a.gif"})
    {
        write_all(at(name), sized(1, 1, 2), {plain(1, 1, 255, 10, 20, 30), plain(1, 1, 255, 250, 220, 230)});
        media::reader in(at(name));
        EXPECT_EQ(in.info().frames, 2) << name;
        EXPECT_NEAR(read_one(in, 0).bytes()[2], 20, 3) << name;
        EXPECT_NEAR(read_one(in, 1).bytes()[2], 220, 3) << name;
    }
}

TEST_F(clip, name_and_codec_decide_the_format)
{
    using media::clip_codec;
    EXPECT_EQ(media::format_of("a.mov").encoder, "prores_ks");
    EXPECT_EQ(media::format_of("a.MOV", clip_codec::animation).encoder, "qtrle");
    EXPECT_EQ(media::format_of("a.mov", clip_codec::h264).encoder, "libx264");
    EXPECT_FALSE(media::format_of("a.mov", clip_codec::h264).alpha);
    EXPECT_EQ(media::format_of("a_%d.PNG").kind, media::output_kind::sequence);
    EXPECT_EQ(media::format_of("a_%d.mp4").kind, media::output_kind::clip);
    EXPECT_THAT(error_of([] { media::format_of("a.mp4", clip_codec::prores4444); }), testing::HasSubstr(".mov"));
    EXPECT_NE(error_of([] { media::format_of("a.png", clip_codec::h264); }), "");
    EXPECT_THAT(error_of([] { media::format_of("a.avi"); }), testing::HasSubstr(".png"));
    EXPECT_NE(error_of([] { media::format_of("a"); }), "");
    EXPECT_THAT(error_of([] { media::codec_from_name("divx"); }), testing::HasSubstr("prores4444"));
}
