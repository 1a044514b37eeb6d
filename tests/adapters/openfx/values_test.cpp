// Parameters: every one of them over time, the frames before that growth reads, looks, and frames that are the
// source.

#include "tests/adapters/openfx/ofx_session.hpp"

#include "host/param_text.hpp"

#include "tests/support/bit_generator.hpp"

#include <cmath>
#include <gmock/gmock.h>

namespace
{
using namespace ofx;

// A value that both sides hold exactly: whole numbers, and fractions of powers of two.
host::param_value drawn_value(const host::param_info& info, bit_generator& dice)
{
    host::param_value value;
    const auto within = [&](double least, double most)
    { return least + std::floor(dice.fraction() * (most - least)); };
    switch (info.kind)
    {
    case host::param_kind::slider:
        value.x = within(info.minimum, std::min(info.maximum, 60.0));
        break;
    case host::param_kind::fixed_slider:
        value.x = dice.below(257) / 256.0;
        break;
    case host::param_kind::float_slider:
        value.x = within(info.minimum, std::min(info.maximum, 6.0)) + dice.below(4) / 4.0;
        break;
    case host::param_kind::angle:
        value.x = within(-400.0, 400.0) + 0.25;
        break;
    case host::param_kind::point:
        value = {dice.below(129) / 128.0 * 100.0, dice.below(129) / 128.0 * 100.0, true, {}};
        break;
    case host::param_kind::color:
        value.color = {255, static_cast<A_u_char>(dice.below(256)), static_cast<A_u_char>(dice.below(256)),
                       static_cast<A_u_char>(dice.below(256))};
        break;
    case host::param_kind::checkbox:
        value.x = dice.below(2);
        break;
    default:
        value.x = 1 + dice.below(static_cast<int>(info.choices.size()));
        break;
    }
    return value;
}

std::array<double, 4> in_the_hosts_manner(const host::param_info& info, const host::param_value& value)
{
    switch (info.kind)
    {
    case host::param_kind::angle:
        return {-value.x};
    case host::param_kind::point:
        return {value.x / 100.0, 1.0 - value.y / 100.0};
    case host::param_kind::color:
        return {value.color.red / 255.0, value.color.green / 255.0, value.color.blue / 255.0,
                value.color.alpha / 255.0};
    case host::param_kind::popup:
        return {value.x - 1.0};
    default:
        return {value.x};
    }
}

// The defined parameter of the same place in the order: names are the other tests' matter.
std::vector<OfxParamStruct*> with_values(session& s)
{
    std::vector<OfxParamStruct*> all;
    for (const auto& param : s.instance->params.params)
        if (param->type != "OfxParamTypeGroup" && param->name != "look")
            all.push_back(param.get());
    return all;
}

// Both sides get keys at the frames drawn, so that it does not matter how they go from one to the next.
TEST(openfx_values, draws_every_parameter_with_keyframes)
{
    bit_generator dice{7};
    const plain_picture source = sample_picture(48, 36);
    for (int round = 0; round < 12; ++round)
    {
        session s;
        s.show(source);
        const auto params = with_values(s);
        host::param_tracks values = defaults();
        std::size_t next = 0;
        for (const host::param_info& info : effect().params())
        {
            if (!info.has_value())
                continue;
            OfxParamStruct& param = *params.at(next++);
            host::track track;
            for (int frame = 0; frame < 4; ++frame)
            {
                const host::param_value value = drawn_value(info, dice);
                if (frame == 0)
                {
                    track.constant = value;
                    param.value = in_the_hosts_manner(info, value);
                }
                if (info.animatable)
                {
                    track.keys.push_back({static_cast<double>(frame), value});
                    param.keys[frame] = in_the_hosts_manner(info, value);
                }
            }
            values.set(info.index, track);
        }
        host::composition comp = composition(48, 36);
        comp.time_scale = 1;
        for (int frame = 0; frame < 4; ++frame)
            EXPECT_EQ(difference(reference(comp, values, frame, &source),
                                 s.draw(48, 36, {}, {.time = static_cast<double>(frame)})->read()),
                      "")
                << "round " << round << " frame " << frame;
    }
}

// Lines that grow by a parameter that changes on the way.
void grow(session& s)
{
    s.param("linesHaveEnds").value[0] = 1;
    s.param("verticalLength").value[0] = 20;
    s.param("verticalGrowth").keys = {{0.0, {0.0}}, {8.0, {16.0}}};
    s.param("growthRandomness").keys = {{0.0, {50.0}}, {8.0, {10.0}}};
}

TEST(openfx_values, reads_growth_at_the_frames_before)
{
    host::param_tracks values = defaults();
    set(values, "Lines Have Ends", "on");
    set(values, "Vertical Length", "20");
    for (const auto& [label, first, last] :
         {std::tuple("Vertical Growth", 0.0, 16.0), std::tuple("Growth Randomness", 50.0, 10.0)})
    {
        host::track track;
        track.keys = {{0.0, {first}}, {8.0, {last}}};
        values.set(host::find_param(effect().params(), label).index, track);
    }
    host::composition comp = composition(60, 80);
    comp.time_scale = 1;
    session s(generator);
    grow(s);
    EXPECT_EQ(difference(reference(comp, values, 8), s.draw(60, 80, {}, {.time = 8.0})->read()), "");
    for (int frame = 0; frame <= 8; ++frame)
        EXPECT_THAT(strict::the_watch().times_asked, testing::Contains(static_cast<double>(frame)));
    // Asked once for each parameter and frame, however many lines there are.
    EXPECT_LT(strict::the_watch().times_asked.size(), 55u + 3u * 9u);
}

TEST(openfx_values, draw_a_still_value_where_the_host_ignores_the_time)
{
    session s(generator);
    grow(s);
    s.param("verticalGrowth").keys = {{0.0, {5.0}}};
    s.param("growthRandomness").keys.clear();
    const plain_picture moving = s.draw(60, 80, {}, {.time = 8.0})->read();
    strict::the_watch().wants_time = false;
    EXPECT_EQ(difference(moving, s.draw(60, 80, {}, {.time = 8.0})->read()), "");
}

TEST(openfx_values, hold_what_lies_outside_their_limits)
{
    session s(generator);
    for (OfxParamStruct* param : with_values(s))
        for (double& each : param->value)
            each = param->whole() ? -2000000000.0 : std::nan("");
    s.param("rows").value[0] = 2;
    s.draw(40, 30);
    for (OfxParamStruct* param : with_values(s))
        for (double& each : param->value)
            each = param->whole() ? 1.0 : INFINITY;
    s.draw(40, 30);
}

// ---- frames that are the source

bool says_identity(session& s, double time = 3.0)
{
    std::string clip;
    double when = -1.0;
    const OfxStatus answer =
        s.host.is_identity(s.plugin, *s.instance, {.time = time, .window = {0, 0, 40, 30}}, &clip, &when);
    if (answer != kOfxStatOK)
    {
        EXPECT_EQ(answer, kOfxStatReplyDefault);
        return false;
    }
    EXPECT_EQ(clip, "Source");
    EXPECT_EQ(when, time);
    return true;
}

TEST(openfx_identity, is_where_the_frame_is_the_source)
{
    const plain_picture source = sample_picture(40, 30);
    const struct
    {
        const char* what;
        std::vector<std::pair<const char*, double>> values;
        bool same;
    } cases[] = {
        {"lines on nothing", {}, false},
        {"invisible lines on nothing", {{"opacity", 0.0}}, false},
        {"lines over the source", {{"compositeOnOriginal", 1.0}}, false},
        {"invisible lines over the source", {{"compositeOnOriginal", 1.0}, {"opacity", 0.0}}, true},
        {"invisible lines in a grid that shows",
         {{"compositeOnOriginal", 1.0}, {"opacity", 0.0}, {"showGrid", 1.0}},
         false},
        {"hardly visible lines", {{"compositeOnOriginal", 1.0}, {"opacity", 0.0099}}, true},
        {"barely visible lines", {{"compositeOnOriginal", 1.0}, {"opacity", 0.02}}, false},
        {"invisible random lines",
         {{"compositeOnOriginal", 1.0}, {"opacity", 0.0}, {"opacityRandomness", 1.0}},
         true},
        {"no lines over the source", {{"compositeOnOriginal", 1.0}, {"rows", 0.0}, {"columns", 0.0}}, true},
        {"an empty grid that shows",
         {{"compositeOnOriginal", 1.0},
          {"rows", 0.0},
          {"columns", 0.0},
          {"showGrid", 1.0},
          {"linesHaveEnds", 1.0}},
         true},
        {"no lines on nothing", {{"rows", 0.0}, {"columns", 0.0}}, false},
        {"columns alone over the source", {{"compositeOnOriginal", 1.0}, {"rows", 0.0}}, false},
        {"no lines to shift by", {{"useDisplacement", 1.0}, {"rows", 0.0}, {"columns", 0.0}}, false},
        {"a shift by nothing", {{"useDisplacement", 1.0}, {"amountOfDisplacement", 0.0}}, true},
        {"a shift", {{"useDisplacement", 1.0}, {"amountOfDisplacement", 3.0}}, false},
        {"a shift, invisible", {{"useDisplacement", 1.0}, {"compositeOnOriginal", 1.0}, {"opacity", 0.0}}, false},
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.what);
        session s;
        s.show(source);
        for (const auto& [name, value] : c.values)
            s.param(name).value[0] = value;
        EXPECT_EQ(says_identity(s), c.same);
        const std::string changed = difference(source, s.draw(40, 30, {}, {.time = 3.0})->read());
        if (c.same)
        {
            EXPECT_EQ(changed, "");
        }
    }
}

// Whatever the other parameters say.
TEST(openfx_identity, is_not_answered_where_a_pixel_differs)
{
    bit_generator dice{11};
    const plain_picture source = sample_picture(40, 30);
    const std::vector<std::vector<std::pair<const char*, double>>> fixed = {
        {{"useDisplacement", 1.0}, {"amountOfDisplacement", 0.0}},
        {{"useDisplacement", 0.0}, {"compositeOnOriginal", 1.0}, {"opacity", 0.0}, {"showGrid", 0.0}},
        {{"useDisplacement", 0.0}, {"compositeOnOriginal", 1.0}, {"rows", 0.0}, {"columns", 0.0}}};
    for (int round = 0; round < 30; ++round)
    {
        session s;
        s.show(source);
        const auto params = with_values(s);
        std::size_t next = 0;
        for (const host::param_info& info : effect().params())
            if (info.has_value())
                params.at(next++)->value = in_the_hosts_manner(info, drawn_value(info, dice));
        for (const auto& [name, value] : fixed[static_cast<std::size_t>(round % 3)])
            s.param(name).value[0] = value;
        EXPECT_TRUE(says_identity(s));
        EXPECT_EQ(difference(source, s.draw(40, 30, {}, {.time = 3.0})->read()), "") << "round " << round;
    }
}

TEST(openfx_identity, needs_a_source_and_looks_at_the_time)
{
    session s(general);
    s.param("compositeOnOriginal").value[0] = 1;
    s.param("opacity").keys = {{0.0, {0.0}}, {10.0, {0.0}}, {20.0, {1.0}}};
    EXPECT_FALSE(says_identity(s));
    s.show(sample_picture(40, 30));
    EXPECT_TRUE(says_identity(s, 10.0));
    EXPECT_FALSE(says_identity(s, 20.0));
    session alone(generator);
    alone.param("compositeOnOriginal").value[0] = 1;
    alone.param("opacity").value[0] = 0.0;
    EXPECT_FALSE(says_identity(alone));
}
} // namespace
