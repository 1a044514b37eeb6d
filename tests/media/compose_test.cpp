#include "media/compose.hpp"
#include "temporary_folder.hpp"

using namespace media_test;

TEST(compose, colour_shows_through_by_alpha_exactly)
{
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int over : {0, 1, 100, 255})
        {
            media::picture p =
                plain(1, 1, static_cast<std::uint8_t>(alpha), static_cast<std::uint8_t>(over), 0, 255);
            media::lay_over({media::background::pattern::color, 200, 50, 255}, p.view());
            const double exact = (over * alpha + 200.0 * (255 - alpha)) / 255.0;
            EXPECT_EQ(p.bytes()[0], 255);
            EXPECT_EQ(p.bytes()[1], static_cast<int>(exact + 0.5)) << alpha << " " << over;
            EXPECT_EQ(p.bytes()[2], static_cast<int>(50.0 * (255 - alpha) / 255.0 + 0.5));
            EXPECT_EQ(p.bytes()[3], 255);
        }
}

TEST(compose, checker_has_squares_of_eight)
{
    media::picture p(20, 20);
    media::lay_over({media::background::pattern::checker}, p.view());
    const auto grey = [&](int x, int y) { return static_cast<int>(p.view().row(y)[4 * x + 2]); };
    EXPECT_EQ(grey(0, 0), 204);
    EXPECT_EQ(grey(7, 7), 204);
    EXPECT_EQ(grey(8, 7), 153);
    EXPECT_EQ(grey(7, 8), 153);
    EXPECT_EQ(grey(8, 8), 204);
    EXPECT_EQ(grey(16, 0), 204);
}

TEST(compose, transparent_changes_nothing)
{
    media::picture p = noise(7, 5, 1);
    const std::vector<std::uint8_t> before = p.bytes();
    media::lay_over({}, p.view());
    EXPECT_EQ(p.bytes(), before);
}

TEST(compose, box_average_weighs_colours_by_alpha)
{
    const media::picture in = noise(7, 5, 9);
    for (int factor = 1; factor <= 4; ++factor)
    {
        media::picture out((7 + factor - 1) / factor, (5 + factor - 1) / factor);
        media::box_average(in.view(), factor, out.view());
        for (int y = 0; y < out.height(); ++y)
            for (int x = 0; x < out.width(); ++x)
                for (int c = 0; c < 4; ++c)
                {
                    double alpha = 0, color = 0, count = 0;
                    for (int v = factor * y; v < std::min(5, factor * (y + 1)); ++v)
                        for (int u = factor * x; u < std::min(7, factor * (x + 1)); ++u)
                        {
                            const std::uint8_t* p = in.view().row(v) + 4 * u;
                            alpha += p[0];
                            color += c == 0 ? 0.0 : double(p[0]) * p[c];
                            ++count;
                        }
                    const double exact = c == 0 ? alpha / count : color / alpha;
                    const int shown = out.view().row(y)[4 * x + c];
                    if (factor == 1)
                        EXPECT_EQ(shown, in.view().row(y)[4 * x + c]);
                    else
                        EXPECT_EQ(shown, static_cast<int>(exact + 0.5))
                            << factor << " " << x << " " << y << " " << c;
                }
    }
}

TEST(compose, box_average_of_nothing_visible_is_transparent_black)
{
    media::picture out(1, 1);
    media::box_average(plain(2, 2, 0, 9, 9, 9).view(), 2, out.view());
    EXPECT_EQ(out.bytes(), std::vector<std::uint8_t>(4, 0));
}
