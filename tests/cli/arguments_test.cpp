#include "apps/cli/arguments.hpp"
#include "apps/cli/usage_error.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace cli;

TEST(arguments, rates_are_exact)
{
    EXPECT_EQ(parse_rate("25"), (media::rational{25, 1}));
    EXPECT_EQ(parse_rate("25.0"), (media::rational{25, 1}));
    EXPECT_EQ(parse_rate("12.5"), (media::rational{25, 2}));
    EXPECT_EQ(parse_rate("0.5"), (media::rational{1, 2}));
    EXPECT_EQ(parse_rate("50/2"), (media::rational{25, 1}));
    EXPECT_EQ(parse_rate("30000/1001"), (media::rational{30000, 1001}));
    for (const char* text : {"23.976", "23.98"})
        EXPECT_EQ(parse_rate(text), (media::rational{24000, 1001})) << text;
    EXPECT_EQ(parse_rate("29.97"), (media::rational{30000, 1001}));
    EXPECT_EQ(parse_rate("59.94"), (media::rational{60000, 1001}));
    EXPECT_EQ(parse_rate("119.88"), (media::rational{120000, 1001}));
    for (const char* text :
         {"", "0", "-25", "25fps", "nan", "inf", "1e3", "1/0", "0/1", "2000", "3/", "/3", "1001/1"})
        EXPECT_THROW(parse_rate(text), usage_error) << text;
}

TEST(arguments, rates_are_in_lowest_terms)
{
    EXPECT_EQ(parse_rate("98.901"), (media::rational{9000, 91})); // 99000/1001
    EXPECT_EQ(parse_rate("76.923"), (media::rational{1000, 13})); // 77000/1001
    EXPECT_EQ(parse_rate("60000/2002"), (media::rational{30000, 1001}));
}

TEST(arguments, rates_are_shown_short)
{
    EXPECT_EQ(rate_text({25, 1}), "25");
    EXPECT_EQ(rate_text({30000, 1001}), "29.97");
    EXPECT_EQ(rate_text({24000, 1001}), "23.976");
    EXPECT_EQ(rate_text({100, 1}), "100");
}

TEST(arguments, sizes_are_two_numbers)
{
    EXPECT_EQ(parse_size("1920x1080").width, 1920);
    EXPECT_EQ(parse_size("1920x1080").height, 1080);
    EXPECT_EQ(parse_size("1x30000").height, 30000);
    for (const char* text : {"", "x", "4x", "x4", "0x4", "4x-1", "4x4x4", "30001x1", "4 x 4", "99999999999x4"})
        EXPECT_THROW(parse_size(text), usage_error) << text;
}

TEST(arguments, frames_are_one_or_a_range)
{
    EXPECT_EQ(parse_frames("12").first, 12);
    EXPECT_EQ(parse_frames("12").last, 12);
    EXPECT_EQ(parse_frames("3-40").first, 3);
    EXPECT_EQ(parse_frames("3-40").last, 40);
    for (const char* text : {"", "-", "-4", "4-", "4-3", "a", "1-2-3", "1..2", "2147483647", "99999999999"})
        EXPECT_THROW(parse_frames(text), usage_error) << text;
}

TEST(arguments, backgrounds_are_named_or_coloured)
{
    using pattern = media::background::pattern;
    EXPECT_EQ(parse_background("transparent").fill, pattern::transparent);
    EXPECT_EQ(parse_background("checker").fill, pattern::checker);
    EXPECT_EQ(parse_background("#0f8").green, 255);
    const media::background color = parse_background("#0a80FF");
    EXPECT_EQ(color.fill, pattern::color);
    EXPECT_EQ(color.red, 0x0a);
    EXPECT_EQ(color.green, 0x80);
    EXPECT_EQ(color.blue, 0xff);
    for (const char* text : {"", "black", "#ffff", "0a80ff", "#0a80fg", "#-a80ff", "#0a80ff00"})
        EXPECT_THROW(parse_background(text), usage_error) << text;
}
