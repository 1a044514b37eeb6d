// Frames through the adapter are the host library's frames, however the host keeps its pictures.

#include "tests/adapters/openfx/ofx_session.hpp"

#include <cfenv>
#include <cmath>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace
{
using namespace ofx;

TEST(openfx_render, draws_the_frames_of_the_host_library)
{
    const plain_picture source = sample_picture(61, 43);
    for (const std::string& context : {filter, general})
    {
        session s(context);
        s.show(source);
        draw_over_source(s);
        for (const double time : {0.0, 1.0, 17.0})
            EXPECT_EQ(
                difference(reference(composition(61, 43), drawn_over_source(), static_cast<int>(time), &source),
                           s.draw(61, 43, {}, {.time = time})->read()),
                "")
                << context << " frame " << time;
    }
}

TEST(openfx_render, draws_on_nothing_as_a_generator)
{
    session s(generator);
    EXPECT_EQ(difference(reference(composition(50, 40), defaults(), 3), s.draw(50, 40, {}, {.time = 3.0})->read()),
              "");
}

TEST(openfx_render, takes_rows_of_any_order_place_and_distance)
{
    const plain_picture source = sample_picture(37, 29);
    const plain_picture expected = reference(composition(37, 29), drawn_over_source(), 4, &source);
    for (const bool in_top_down : {false, true})
        for (const bool out_top_down : {false, true})
            for (const int padding : {0, 3, 64})
            {
                image_manner in, out;
                in.top_down = in_top_down;
                in.left = out.left = -11;
                in.bottom = out.bottom = 7;
                in.padding = 5;
                out.top_down = out_top_down;
                out.padding = padding;
                session s;
                s.show(source, in);
                draw_over_source(s);
                EXPECT_EQ(difference(expected, s.draw(37, 29, out, {.time = 4.0})->read()), "")
                    << in_top_down << out_top_down << padding;
            }
}

TEST(openfx_render, takes_blue_first_where_the_host_says_so)
{
    const plain_picture source = sample_picture(20, 20);
    image_manner blue_first;
    blue_first.blue_first = true;
    session s;
    s.show(source, blue_first);
    draw_over_source(s);
    EXPECT_EQ(difference(reference(composition(20, 20), drawn_over_source(), 0, &source),
                         s.draw(20, 20, blue_first)->read()),
              "");
}

TEST(openfx_render, writes_inside_the_window_alone)
{
    const plain_picture source = sample_picture(40, 30);
    const plain_picture expected = reference(composition(40, 30), drawn_over_source(), 2, &source);
    session s;
    s.show(source);
    draw_over_source(s);
    // From below the image to above its middle; y points up.
    const plain_picture got = s.draw(40, 30, {}, {.time = 2.0, .window = {5, -3, 31, 12}})->read();
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x)
        {
            const bool inside = x >= 5 && x < 31 && 29 - y < 12;
            for (int c = 0; c < 4; ++c)
                ASSERT_EQ(got.at(x, y)[c], inside ? expected.at(x, y)[c] : 0xCD) << x << "," << y;
        }
}

TEST(openfx_render, takes_what_the_source_lacks_for_transparent_black)
{
    const plain_picture small = sample_picture(21, 17);
    image_manner in;
    in.left = 6;
    in.bottom = -4; // sticks out at the bottom
    plain_picture seen(40, 30);
    for (int y = 0; y < 17; ++y)
        for (int x = 0; x < 21; ++x)
            if (const int row = 30 - 13 + y; row < 30)
                std::copy_n(small.at(x, y), 4, seen.at(6 + x, row));
    session s;
    s.show(small, in);
    draw_over_source(s);
    EXPECT_EQ(difference(reference(composition(40, 30), drawn_over_source(), 2, &seen),
                         s.draw(40, 30, {}, {.time = 2.0})->read()),
              "");
}

TEST(openfx_render, does_without_a_source)
{
    const plain_picture expected = reference(composition(40, 30), drawn_over_source(), 2);
    session s(general);
    draw_over_source(s);
    EXPECT_EQ(difference(expected, s.draw(40, 30, {}, {.time = 2.0})->read()), "") << "unconnected";
    s.show(plain_picture(0, 0));
    EXPECT_EQ(difference(expected, s.draw(40, 30, {}, {.time = 2.0})->read()), "") << "connected, no image";
}

TEST(openfx_render, looks_at_the_image_not_at_the_clip)
{
    const plain_picture source = sample_picture(20, 20);
    image_manner floats;
    floats.depth = "OfxBitDepthFloat";
    session s;
    s.show(source, {});
    draw_over_source(s);
    auto image = std::make_shared<host_image>(20, 20, floats);
    strict::connect(*s.instance, "Output", [image](double) { return image; }, {});
    EXPECT_EQ(s.host.render(s.plugin, *s.instance, {.window = {0, 0, 20, 20}}), kOfxStatOK);
    EXPECT_EQ(difference(reference(composition(20, 20), drawn_over_source(), 0, &source), image->read()), "");
}

TEST(openfx_render, refuses_pictures_that_it_cannot_draw)
{
    session s;
    image_manner alpha;
    alpha.components = "OfxImageComponentAlpha";
    s.draw(20, 20, alpha, {}, kOfxStatErrImageFormat);
    image_manner half;
    half.depth = "OfxBitDepthHalf";
    s.draw(20, 20, half, {}, kOfxStatErrImageFormat);
    strict::connect(*s.instance, "Output", [](double) { return nullptr; }, {});
    EXPECT_EQ(s.host.render(s.plugin, *s.instance, {.window = {0, 0, 20, 20}}), kOfxStatFailed);
}

TEST(openfx_render, finds_the_frame_of_a_time)
{
    const plain_picture ninth = reference(composition(30, 30), defaults(), 9);
    session s(generator);
    for (const double time : {9.0, 8.99999, 9.25, 9.5})
        EXPECT_EQ(difference(ninth, s.draw(30, 30, {}, {.time = time})->read()), "") << time;
    EXPECT_EQ(
        difference(reference(composition(30, 30), defaults(), -2), s.draw(30, 30, {}, {.time = -2.0})->read()),
        "");
    EXPECT_EQ(difference(reference(composition(30, 30), defaults(), 0),
                         s.draw(30, 30, {}, {.time = std::nan("")})->read()),
              "");
}

TEST(openfx_render, gives_up_what_the_host_no_longer_wants)
{
    for (int from = 1; from < 8; ++from)
    {
        session s;
        s.show(sample_picture(20, 200));
        strict::the_watch().abort_from = from;
        s.draw(20, 200);
        EXPECT_GE(strict::the_watch().aborts_asked, std::min(from, 4));
    }
}

TEST(openfx_render, is_not_misled_by_a_threads_rounding)
{
    const plain_picture expected = reference(composition(64, 48), drawn_over_source(), 6);
    session s(general);
    draw_over_source(s);
    const int before = std::fegetround();
    for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO})
    {
        std::fesetround(mode);
        const auto image = s.draw(64, 48, {}, {.time = 6.0});
        const int after = std::fegetround();
        std::fesetround(before);
        EXPECT_EQ(after, mode);
        EXPECT_EQ(difference(expected, image->read()), "");
    }
}

#if defined(__SSE2__)
// Threads of some hosts take numbers near 0 for 0.
TEST(openfx_render, is_not_misled_by_flushed_numbers)
{
    const plain_picture expected = reference(composition(64, 48), drawn_over_source(), 6);
    session s(general);
    draw_over_source(s);
    const unsigned before = _mm_getcsr();
    constexpr unsigned flush = 0x8040; // results and operands
    _mm_setcsr(before | flush);
    const auto image = s.draw(64, 48, {}, {.time = 6.0});
    const unsigned after = _mm_getcsr();
    _mm_setcsr(before);
    EXPECT_EQ(after & flush, flush);
    EXPECT_EQ(difference(expected, image->read()), "");
}
#endif
} // namespace
