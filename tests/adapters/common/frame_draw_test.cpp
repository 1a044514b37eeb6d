#include "adapters/common/frame_draw.hpp"
#include "adapters/common/frame_rate.hpp"

#include "host/param_text.hpp"

#include <gtest/gtest.h>
#include <vector>

namespace
{
using bytes = std::vector<std::uint8_t>;

constexpr int width = 67;
constexpr int height = 41;
constexpr std::ptrdiff_t tight = 4 * width;

host::composition comp()
{
    return adapter::composition_at(width, height, {25, 1});
}

host::param_tracks values(const adapter::loaded_effect& effect)
{
    host::param_tracks tracks(effect.plugin.params());
    const host::param_info& over = host::find_param(effect.plugin.params(), "Composite On Original");
    tracks.set(over.index, host::parse_value(over, "on"));
    return tracks;
}

bytes picture()
{
    bytes all(static_cast<std::size_t>(tight) * height);
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i] = static_cast<std::uint8_t>(i * 37 + i / 251);
    return all;
}

// The same through the host library alone, its bytes put in order one by one.
bytes reference(const adapter::loaded_effect& effect, const bytes& rgba)
{
    bytes argb(rgba.size());
    bytes drawn(rgba.size());
    for (std::size_t i = 0; i < rgba.size(); ++i)
        argb[i / 4 * 4 + (i + 1) % 4] = rgba[i];
    host::render_frame(effect.plugin, comp(), values(effect), 3, {argb.data(), width, height, tight},
                       {drawn.data(), width, height, tight});
    for (std::size_t i = 0; i < rgba.size(); ++i)
        argb[i] = drawn[i / 4 * 4 + (i + 1) % 4];
    return argb;
}
} // namespace

TEST(frame_draw, is_what_the_host_library_draws)
{
    const auto effect = adapter::borrow_effect();
    const bytes input = picture();
    const bytes expected = reference(*effect, input);
    bytes output(input.size());
    adapter::draw_frame(*effect, comp(), values(*effect), 3, {input.data(), tight}, {output.data(), tight});
    EXPECT_EQ(output, expected);
    EXPECT_NE(output, input);
    EXPECT_EQ(input, picture());
}

TEST(frame_draw, draws_where_the_input_is)
{
    const auto effect = adapter::borrow_effect();
    bytes pixels = picture();
    const bytes expected = reference(*effect, pixels);
    adapter::draw_frame(*effect, comp(), values(*effect), 3, {pixels.data(), tight}, {pixels.data(), tight});
    EXPECT_EQ(pixels, expected);
}

TEST(frame_draw, takes_no_input_for_a_transparent_one)
{
    const auto effect = adapter::borrow_effect();
    const bytes expected = reference(*effect, bytes(picture().size(), 0));
    bytes output(expected.size(), 77);
    adapter::draw_frame(*effect, comp(), values(*effect), 3, {}, {output.data(), tight});
    EXPECT_EQ(output, expected);
}

TEST(frame_draw, draws_from_the_bottom_and_leaves_padding_alone)
{
    const auto effect = adapter::borrow_effect();
    const bytes input = picture();
    const bytes expected = reference(*effect, input);
    constexpr std::ptrdiff_t padded = tight + 13;
    for (const bool from_bottom : {false, true})
    {
        bytes output(static_cast<std::size_t>(padded) * height, 99);
        std::uint8_t* top = output.data() + (from_bottom ? padded * (height - 1) : 0);
        const std::ptrdiff_t step = from_bottom ? -padded : padded;
        adapter::draw_frame(*effect, comp(), values(*effect), 3, {input.data(), tight}, {top, step});
        for (int y = 0; y < height; ++y)
            for (std::ptrdiff_t x = 0; x < padded; ++x)
                ASSERT_EQ(top[step * y + x], x < tight ? expected[static_cast<std::size_t>(tight * y + x)] : 99)
                    << from_bottom << " " << x << "," << y;
    }
}
