// A frame is the same however it is asked for: alone, in a range, by one worker or by several.

#include "host/param_text.hpp"
#include "picture_render.hpp"

#include <gtest/gtest.h>

#include <cstring>

namespace
{
using pictures::picture_case;

constexpr host::frame_range kRange = {0, 11};

const picture_case& case_named(const std::string& name)
{
    for (const picture_case& c : pictures::all_cases())
        if (c.name == name)
            return c;
    throw std::runtime_error("no case " + name);
}

// A keyframed track, so that what a frame shows depends on its time in every way there is.
host::param_tracks moving_values(const picture_case& c)
{
    host::param_tracks values = pictures::values_of(c);
    host::track turning;
    turning.keys = {{0.0, {.x = 0.0}}, {0.4, {.x = 90.0}}};
    values.set(host::find_param(pictures::effect().params(), "Rotation").index, turning);
    return values;
}

std::vector<std::vector<std::uint8_t>> frames_by(const picture_case& c, int jobs)
{
    const host::composition comp = pictures::composition_of(c);
    const auto source = [](std::int32_t, host::image_view into)
    {
        const media::picture input = pictures::input_picture(into.width, into.height);
        for (int y = 0; y < into.height; ++y)
            std::memcpy(into.argb + static_cast<std::ptrdiff_t>(y) * into.rowbytes, input.view().row(y),
                        4 * static_cast<std::size_t>(into.width));
        return true;
    };
    std::vector<std::vector<std::uint8_t>> frames;
    const auto sink = [&frames](std::int32_t frame, host::const_image_view output)
    {
        EXPECT_EQ(frame, kRange.first + static_cast<std::int32_t>(frames.size()));
        media::picture kept(output.width, output.height);
        for (int y = 0; y < output.height; ++y)
            std::memcpy(kept.view().row(y), output.argb + static_cast<std::ptrdiff_t>(y) * output.rowbytes,
                        4 * static_cast<std::size_t>(output.width));
        frames.push_back(kept.bytes());
    };
    const std::int32_t done = host::render_frames(pictures::effect(), comp, moving_values(c), kRange, jobs, source,
                                                  sink, nullptr, pictures::options_of(c));
    EXPECT_EQ(done, kRange.last - kRange.first + 1);
    return frames;
}

std::vector<std::vector<std::uint8_t>> frames_alone(const picture_case& c)
{
    const host::composition comp = pictures::composition_of(c);
    const media::picture input = pictures::input_picture(comp.picture_width(), comp.picture_height());
    std::vector<std::vector<std::uint8_t>> frames;
    for (std::int32_t frame = kRange.first; frame <= kRange.last; ++frame)
    {
        media::picture output(comp.picture_width(), comp.picture_height());
        host::render_frame(pictures::effect(), comp, moving_values(c), frame, pictures::as_host(input.view()),
                           pictures::as_host(output.view()), pictures::options_of(c));
        frames.push_back(output.bytes());
    }
    return frames;
}

class frames_of : public testing::TestWithParam<const char*>
{
};

TEST_P(frames_of, any_number_of_jobs_are_those_rendered_alone)
{
    const picture_case& c = case_named(GetParam());
    const auto alone = frames_alone(c);
    EXPECT_NE(alone[0], alone[5]);
    for (const int jobs : {1, 2, 5})
        EXPECT_EQ(frames_by(c, jobs), alone) << jobs << " jobs";
}

INSTANTIATE_TEST_SUITE_P(pictures, frames_of,
                         testing::Values("horizontal_ripple", "ends_growth", "displaced_45", "wide_one_colour"),
                         [](const testing::TestParamInfo<const char*>& one) { return std::string(one.param); });
} // namespace
