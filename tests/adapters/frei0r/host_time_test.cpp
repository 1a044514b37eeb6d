#include "adapters/frei0r/host_time.hpp"

#include <gtest/gtest.h>
#include <limits>

using namespace frei0r;

TEST(host_time, is_milliseconds_in_ffmpeg_alone)
{
    for (const char* name : {"libavfilter.so.8", "libavfilter.so.10.4.100", "avfilter-9.dll", "ffmpeg", "ffplay"})
        EXPECT_EQ(unit_of_caller(name), time_unit::milliseconds) << name;
    for (const char* name : {"libmltfrei0r.so", "libgstfrei0r.so", "melt", "", "frei0r_test"})
        EXPECT_EQ(unit_of_caller(name), time_unit::seconds) << name;
}

TEST(host_time, is_what_the_user_says)
{
    for (const time_unit host : {time_unit::seconds, time_unit::milliseconds})
    {
        EXPECT_EQ(unit_of_text("", host), host);
        EXPECT_EQ(unit_of_text("auto", host), host);
        EXPECT_EQ(unit_of_text("ms", host), time_unit::milliseconds);
        EXPECT_EQ(unit_of_text("milliseconds", host), time_unit::milliseconds);
        EXPECT_EQ(unit_of_text("s", host), time_unit::seconds);
        EXPECT_EQ(unit_of_text("seconds", host), time_unit::seconds);
        EXPECT_FALSE(unit_of_text("hours", host));
    }
}

TEST(host_time, becomes_the_frame)
{
    std::atomic<std::int32_t> untimed{0};
    EXPECT_EQ(frame_of(2.0, time_unit::seconds, {25, 1}, untimed), 50);
    EXPECT_EQ(frame_of(2000.0, time_unit::milliseconds, {25, 1}, untimed), 50);
    EXPECT_EQ(frame_of(33.0, time_unit::milliseconds, {30000, 1001}, untimed),
              1); // as FFmpeg rounds it for a source
    EXPECT_EQ(untimed, 0);
}

TEST(host_time, counts_where_there_is_none)
{
    std::atomic<std::int32_t> untimed{0};
    constexpr double lost = -9223372036854775808.0 / 25 * 1000; // of a frame without a time stamp
    EXPECT_EQ(frame_of(lost, time_unit::milliseconds, {25, 1}, untimed), 0);
    EXPECT_EQ(frame_of(lost, time_unit::milliseconds, {25, 1}, untimed), 1);
    EXPECT_EQ(frame_of(400.0, time_unit::milliseconds, {25, 1}, untimed), 10);
    EXPECT_EQ(frame_of(std::numeric_limits<double>::quiet_NaN(), time_unit::seconds, {25, 1}, untimed), 2);
}
