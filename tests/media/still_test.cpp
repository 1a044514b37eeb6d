// Single pictures: what is written is what is read.
#include "temporary_folder.hpp"

using namespace media_test;
using still = temporary_folder;

TEST_F(still, png_is_lossless_at_every_small_size)
{
    for (int width : {1, 2, 3, 17, 64, 101})
        for (int height : {1, 2, 5, 33})
        {
            const media::picture made = noise(width, height, static_cast<unsigned>(100 * width + height));
            media::write_options options = sized(width, height);
            options.overwrite = true;
            write_all(at("a.png"), options, {made});
            media::reader in(at("a.png"));
            EXPECT_EQ(in.info().width, width);
            EXPECT_EQ(in.info().height, height);
            EXPECT_TRUE(in.info().alpha);
            EXPECT_EQ(in.info().kind, media::source_kind::still);
            EXPECT_EQ(read_one(in).bytes(), made.bytes()) << width << "x" << height;
        }
}

TEST_F(still, tiff_is_lossless_with_alpha)
{
    const media::picture made = noise(37, 21, 1);
    write_all(at("a.tif"), sized(37, 21), {made});
    media::reader in(at("a.tif"));
    EXPECT_EQ(read_one(in).bytes(), made.bytes());
}

TEST_F(still, webp_is_lossless_where_anything_is_seen)
{
    media::picture made = noise(37, 21, 1);
    for (int i = 0; i < 37 * 21; ++i)
        made.view().argb[4 * i] |= 1;
    write_all(at("a.webp"), sized(37, 21), {made});
    media::reader in(at("a.webp"));
    EXPECT_EQ(read_one(in).bytes(), made.bytes());
}

TEST_F(still, bmp_is_lossless_without_alpha)
{
    const media::picture made = make_opaque(noise(37, 21, 1));
    write_all(at("a.bmp"), sized(37, 21), {made});
    media::reader in(at("a.bmp"));
    EXPECT_FALSE(in.info().alpha);
    EXPECT_EQ(read_one(in).bytes(), made.bytes());
}

TEST_F(still, jpeg_keeps_plain_colours)
{
    // Large enough to pass for high definition: JPEG means BT.601 all the same.
    for (const auto& [width, height] : {std::pair(64, 48), std::pair(1280, 720)})
        for (const auto& [r, g, b] : {std::tuple(255, 0, 0), std::tuple(0, 200, 30), std::tuple(255, 255, 255)})
        {
            const media::picture made = plain(width, height, 255, static_cast<std::uint8_t>(r),
                                              static_cast<std::uint8_t>(g), static_cast<std::uint8_t>(b));
            media::write_options options = sized(width, height);
            options.overwrite = true;
            write_all(at("a.jpg"), options, {made});
            media::reader in(at("a.jpg"));
            const media::picture back = read_one(in);
            for (int channel = 0; channel < 4; ++channel)
                EXPECT_LE(worst(made, back, channel), 3) << r << " " << g << " " << b << " channel " << channel;
        }
}

TEST_F(still, every_frame_of_a_still_is_the_same)
{
    const media::picture made = noise(8, 8, 1);
    write_all(at("a.png"), sized(8, 8), {made});
    media::reader in(at("a.png"), media::rational{30000, 1001});
    EXPECT_EQ(in.info().rate, (media::rational{30000, 1001}));
    EXPECT_FALSE(in.info().frames);
    EXPECT_EQ(read_one(in, 0).bytes(), made.bytes());
    EXPECT_EQ(read_one(in, 1000).bytes(), made.bytes());
}

TEST_F(still, contents_count_and_not_the_ending)
{
    const media::picture made = noise(8, 8, 1);
    write_all(at("a.png"), sized(8, 8), {made});
    for (const char* name : {"100%d really.jpg", "a.mp4", "a.txt", "a"})
    {
        std::filesystem::copy_file(at("a.png"), at(name));
        media::reader in(at(name));
        EXPECT_EQ(in.info().kind, media::source_kind::still) << name;
        EXPECT_EQ(read_one(in).bytes(), made.bytes()) << name;
    }
}

TEST_F(still, padded_rows_are_read_and_written)
{
    const media::picture made = noise(5, 4, 3);
    std::vector<std::uint8_t> wide(4 * 32, 0xEE);
    for (int y = 0; y < 4; ++y)
        std::copy_n(made.view().row(y), 20, wide.data() + 32 * y);
    media::writer out(at("a.png"), sized(5, 4));
    out.write({wide.data(), 5, 4, 32});
    out.finish();

    std::vector<std::uint8_t> back(4 * 32, 0xEE);
    media::reader in(at("a.png"));
    ASSERT_TRUE(in.read(0, {back.data(), 5, 4, 32}));
    EXPECT_EQ(back, wide); // the padding too is as it was
}

TEST_F(still, several_frames_need_a_pattern)
{
    const std::string told = error_of([&] { media::writer(at("out.png"), sized(4, 4, 3)); });
    EXPECT_THAT(told, testing::HasSubstr("out_%04d.png"));
    EXPECT_TRUE(names().empty());
}

TEST_F(still, a_sequence_comes_back_frame_by_frame)
{
    std::vector<media::picture> frames;
    for (unsigned i = 0; i < 4; ++i)
        frames.push_back(noise(9, 7, i));
    media::write_options options = sized(9, 7, 4);
    options.first = 98;
    write_all(at("f_%03d.png"), options, frames);
    EXPECT_THAT(names(), testing::ElementsAre("f_098.png", "f_099.png", "f_100.png", "f_101.png"));

    media::reader in(at("f_###.png"));
    EXPECT_EQ(in.info().kind, media::source_kind::sequence);
    EXPECT_EQ(in.info().first, 98);
    EXPECT_EQ(in.info().frames, 4);
    for (int i : {0, 3, 1, 2})
        EXPECT_EQ(read_one(in, 98 + i).bytes(), frames[static_cast<std::size_t>(i)].bytes());
    media::picture past(9, 7);
    EXPECT_FALSE(in.read(102, past.view()));
}

TEST_F(still, a_gap_or_another_size_in_a_sequence_is_named)
{
    write_all(at("f_0.png"), sized(9, 7), {noise(9, 7, 0)});
    write_all(at("f_2.png"), sized(9, 8), {noise(9, 8, 0)});
    media::reader in(at("f_%d.png"));
    media::picture into(9, 7);
    EXPECT_EQ(error_of([&] { in.read(1, into.view()); }),
              at("f_1.png").string() + ": is missing from the sequence; add it, or give --frames without it");
    EXPECT_THAT(error_of([&] { in.read(2, into.view()); }),
                testing::AllOf(testing::HasSubstr("f_2.png"), testing::HasSubstr("9x8")));
}
