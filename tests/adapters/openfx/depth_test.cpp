// Every depth and kind of alpha, in and out.

#include "tests/adapters/openfx/ofx_session.hpp"

#include <cmath>

namespace
{
using namespace ofx;

// What the effect is given of a stored channel, and what is stored of the effect's: worked out in double
// precision.
double white_of(const image_manner& m)
{
    return m.depth == "OfxBitDepthByte" ? 255.0 : m.depth == "OfxBitDepthShort" ? 65535.0 : 1.0;
}

plain_picture as_the_effect_sees(const host_image& image)
{
    plain_picture seen = image.read();
    if (image.manner().premultiplication == "OfxImageOpaque" || image.channels() == 3)
        for (std::size_t i = 3; i < seen.rgba.size(); i += 4)
            seen.rgba[i] = 255;
    return seen;
}

void expect_stored(const plain_picture& drawn, const host_image& image)
{
    const image_manner& m = image.manner();
    const double white = white_of(m);
    const bool opaque = m.premultiplication == "OfxImageOpaque" || image.channels() == 3;
    const bool multiplied = opaque || m.premultiplication == "OfxImageAlphaPremultiplied";
    for (int y = 0; y < drawn.height; ++y)
        for (int x = 0; x < drawn.width; ++x)
            for (int c = 0; c < image.channels(); ++c)
            {
                const std::uint8_t* p = drawn.at(x, y);
                // One division, so that it is rounded once.
                const int of_255 = c == 3 ? (opaque ? 255 : p[3]) * 255 : p[c] * (multiplied ? p[3] : 255);
                const double expected =
                    of_255 * (white > 1.0 ? white / 255.0 : 1.0) / (white > 1.0 ? 255.0 : 65025.0);
                if (white > 1.0)
                    ASSERT_EQ(image.stored(x, y, c), std::round(expected)) << x << "," << y << " channel " << c;
                else
                    ASSERT_FLOAT_EQ(static_cast<float>(image.stored(x, y, c)), static_cast<float>(expected));
            }
}

TEST(openfx_depth, takes_every_depth_and_kind_of_alpha)
{
    const plain_picture source = sample_picture(31, 23);
    for (const char* depth : {"OfxBitDepthByte", "OfxBitDepthShort", "OfxBitDepthFloat"})
        for (const char* components : {"OfxImageComponentRGBA", "OfxImageComponentRGB"})
            for (const char* alpha :
                 {"OfxImageAlphaUnPremultiplied", "OfxImageAlphaPremultiplied", "OfxImageOpaque"})
            {
                SCOPED_TRACE(std::string(depth) + " " + components + " " + alpha);
                image_manner manner;
                manner.depth = depth;
                manner.components = components;
                manner.premultiplication = components[17] == 'G' && components[18] == 'B' && components[19] == 0
                                               ? "OfxImageOpaque"
                                               : alpha;
                host_image lent(31, 23, manner);
                lent.fill(source);
                const plain_picture seen = as_the_effect_sees(lent);
                for (const char* over : {"on", "off"})
                {
                    session s;
                    s.show(source, manner);
                    draw_over_source(s);
                    s.param("compositeOnOriginal").value[0] = std::string(over) == "on" ? 1 : 0;
                    host::param_tracks values = drawn_over_source();
                    set(values, "Composite On Original", over);
                    expect_stored(reference(composition(31, 23), values, 5, &seen),
                                  *s.draw(31, 23, manner, {.time = 5.0}));
                }
            }
}

// Shown as they are, by a shift of nothing.
TEST(openfx_depth, rounds_deep_values_to_the_nearest_of_eight_bits)
{
    const auto through = [](const image_manner& manner, const std::vector<float>& floats)
    {
        const int count = static_cast<int>(floats.size());
        session s;
        s.param("useDisplacement").value[0] = 1;
        s.param("amountOfDisplacement").value[0] = 0;
        auto source = std::make_shared<host_image>(count, 1, manner);
        for (int i = 0; i < count; ++i)
            for (int c = 0; c < 3; ++c)
                source->put(i, 0, c, floats[static_cast<std::size_t>(i)]);
        strict::connect(
            *s.instance, "Source", [source](double) { return source; }, manner);
        const auto drawn = s.draw(count, 1, manner);
        std::vector<double> bytes;
        for (int i = 0; i < count; ++i)
            bytes.push_back(drawn->stored(i, 0, 1));
        return bytes;
    };
    image_manner manner;
    manner.components = "OfxImageComponentRGB";
    manner.depth = "OfxBitDepthFloat";
    std::vector<float> floats = {-1.0f, -0.0f, NAN, INFINITY, -INFINITY, 7.0f, 1e-30f, 0.0019607841f};
    std::vector<double> expected = {0, 0, 0, 255, 0, 255, 0, 0};
    for (int k = 0; k < 255; ++k)
    {
        const auto half = static_cast<float>((k + 0.5) / 255.0);
        for (const float v : {std::nextafter(half, 0.0f), half, std::nextafter(half, 1.0f)})
        {
            floats.push_back(v);
            expected.push_back(std::floor(static_cast<double>(v) * 255.0 + 0.5));
        }
    }
    std::vector<double> drawn = through(manner, floats);
    for (std::size_t i = 0; i < floats.size(); ++i)
        EXPECT_FLOAT_EQ(static_cast<float>(drawn[i]), static_cast<float>(expected[i] / 255.0)) << floats[i];

    manner.depth = "OfxBitDepthShort";
    std::vector<float> words;
    for (int v = 0; v < 65536; v += 127)
        words.push_back(static_cast<float>(v));
    drawn = through(manner, words);
    for (std::size_t i = 0; i < words.size(); ++i)
        EXPECT_EQ(drawn[i], std::round(static_cast<double>(words[i]) / 257.0) * 257.0) << words[i];
}
} // namespace
