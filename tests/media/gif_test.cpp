#include "temporary_folder.hpp"

#include <set>

using namespace media_test;
using gif = temporary_folder;

TEST_F(gif, few_colours_and_holes_are_exact)
{
    // 200 colours that change from frame to frame, and holes that move.
    std::vector<media::picture> frames;
    for (int f = 0; f < 4; ++f)
    {
        media::picture made(40, 20);
        for (int i = 0; i < 800; ++i)
        {
            std::uint8_t* p = made.view().argb + 4 * i;
            const int color = (i + 31 * f) % 200;
            const bool hole = i % 7 == f;
            p[0] = hole ? 0 : 255;
            p[1] = hole ? 0 : static_cast<std::uint8_t>(color + f);
            p[2] = hole ? 0 : static_cast<std::uint8_t>(255 - color);
            p[3] = hole ? 0 : static_cast<std::uint8_t>(3 * color);
        }
        frames.push_back(made);
    }
    write_all(at("a.gif"), sized(40, 20, 4), frames);
    media::reader in(at("a.gif"));
    EXPECT_EQ(in.info().rate, (media::rational{25, 1}));
    EXPECT_EQ(in.info().frames, 4);
    EXPECT_TRUE(in.info().alpha);
    for (int f = 0; f < 4; ++f)
    {
        const media::picture back = read_one(in, f);
        const media::picture& made = frames[static_cast<std::size_t>(f)];
        for (std::size_t i = 0; i < made.bytes().size(); i += 4)
        {
            ASSERT_EQ(back.bytes()[i], made.bytes()[i]) << "alpha, frame " << f << " pixel " << i / 4;
            for (std::size_t c = 1; c < 4 && made.bytes()[i] != 0; ++c)
                ASSERT_EQ(back.bytes()[i + c], made.bytes()[i + c]) << "frame " << f << " pixel " << i / 4;
        }
    }
}

TEST_F(gif, alpha_is_there_from_half_on)
{
    media::picture made(256, 1);
    for (int i = 0; i < 256; ++i)
        made.view().argb[4 * i] = static_cast<std::uint8_t>(i);
    write_all(at("a.gif"), sized(256, 1), {made});
    media::reader in(at("a.gif"));
    const media::picture back = read_one(in);
    for (int i = 0; i < 256; ++i)
        EXPECT_EQ(back.bytes()[4 * static_cast<std::size_t>(i)], i < 128 ? 0 : 255) << i;
}

TEST_F(gif, many_colours_come_close)
{
    const media::picture made = gradient(160, 120, 3);
    write_all(at("a.gif"), sized(160, 120), {made});
    media::reader in(at("a.gif"));
    const media::picture back = read_one(in);
    std::set<std::uint32_t> used;
    for (std::size_t i = 0; i < back.bytes().size(); i += 4)
        used.insert(static_cast<std::uint32_t>(back.bytes()[i + 1] << 16 | back.bytes()[i + 2] << 8 |
                                               back.bytes()[i + 3]));
    EXPECT_GT(used.size(), 200u);
    EXPECT_LE(used.size(), 256u);
    // 256 colours over a square of 256 x 256: cells of 16 x 16 at best, some twice as long.
    for (int channel = 0; channel < 4; ++channel)
        EXPECT_LE(worst(made, back, channel), 32);
}

TEST_F(gif, high_rates_are_warned_of)
{
    media::write_options options = sized(4, 4, 2);
    options.rate = {60, 1};
    media::writer out(at("a.gif"), options);
    EXPECT_EQ(out.notes().size(), 1u);
}
