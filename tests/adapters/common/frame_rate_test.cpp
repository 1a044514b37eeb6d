#include "adapters/common/frame_rate.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using adapter::frame_at;
using adapter::frame_rate;
using adapter::rate_of_number;
using adapter::rate_of_text;

TEST(frame_rate, reads_whole_decimal_and_fraction)
{
    EXPECT_EQ(rate_of_text("25"), (frame_rate{25, 1}));
    EXPECT_EQ(rate_of_text("12.5"), (frame_rate{25, 2}));
    EXPECT_EQ(rate_of_text("60000/2002"), (frame_rate{30000, 1001}));
    EXPECT_EQ(rate_of_text("29.97"), (frame_rate{30000, 1001}));
    EXPECT_EQ(rate_of_text("23.98"), (frame_rate{24000, 1001}));
    EXPECT_EQ(rate_of_number(60000.0 / 1001), (frame_rate{60000, 1001}));
    EXPECT_EQ(rate_of_number(30.0), (frame_rate{30, 1}));
}

TEST(frame_rate, refuses_what_is_none)
{
    for (const char* text :
         {"", "x", "0", "-25", "25 ", "1/0", "0/1", "5000", "1000000/1", "nan", "inf", "25/1/1"})
        EXPECT_FALSE(rate_of_text(text)) << text;
    EXPECT_FALSE(rate_of_number(std::nan("")));
}

TEST(frame_at, is_the_nearest_frame)
{
    EXPECT_EQ(frame_at(0.0, {25, 1}), 0);
    EXPECT_EQ(frame_at(0.04, {25, 1}), 1);
    EXPECT_EQ(frame_at(1.019, {25, 1}), 25);
    EXPECT_EQ(frame_at(-0.04, {25, 1}), -1);
    for (std::int32_t frame = 0; frame < 100000; frame += 7)
    {
        // As a host says it: to the microsecond.
        const double seconds = std::round(frame * 1001.0 / 30000 * 1e6) / 1e6;
        ASSERT_EQ(frame_at(seconds, {30000, 1001}), frame);
    }
}

TEST(frame_at, tells_what_cannot_be_a_time)
{
    using limits = std::numeric_limits<double>;
    for (const double seconds : {limits::quiet_NaN(), limits::infinity(), -limits::infinity(), -7.2e14, 1e300})
        EXPECT_FALSE(frame_at(seconds, {25, 1})) << seconds;
    EXPECT_FALSE(frame_at(40000.0, {60000, 1001})); // 2.4 thousand million units
    EXPECT_TRUE(frame_at(35000.0, {60000, 1001}));
}
