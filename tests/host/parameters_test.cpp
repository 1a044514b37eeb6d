#include "host/parameters.hpp"

#include "numbers.hpp"
#include "scripted_effect.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace
{
using host::interpolation;
using host::param_kind;
using host::track;
using scripted::call;

struct parameters : testing::Test
{
    scripted::scripts none{{}};
    host::plugin effect{scripted::entry, "scripted"};
    const std::vector<host::param_info>& params = effect.params();
};

TEST_F(parameters, are_kept_as_registered)
{
    ASSERT_EQ(params.size(), static_cast<std::size_t>(scripted::count));
    const param_kind kinds[] = {param_kind::layer,        param_kind::group_start,  param_kind::slider,
                                param_kind::fixed_slider, param_kind::float_slider, param_kind::angle,
                                param_kind::checkbox,     param_kind::color,        param_kind::point,
                                param_kind::popup,        param_kind::group_end};
    for (std::size_t i = 0; i < params.size(); ++i)
    {
        EXPECT_EQ(params[i].index, static_cast<int>(i));
        EXPECT_EQ(params[i].kind, kinds[i]) << i;
        EXPECT_EQ(params[i].topic, i >= 2 ? "Topic" : "") << i;
    }
    EXPECT_EQ(params[scripted::whole].minimum, -10);
    EXPECT_EQ(params[scripted::whole].maximum, 2000);
    EXPECT_EQ(params[scripted::share].maximum, 1.0);
    EXPECT_TRUE(params[scripted::share].percent);
    EXPECT_EQ(params[scripted::real].minimum, 1.0);
    EXPECT_FALSE(params[scripted::real].percent);
    EXPECT_EQ(params[scripted::choice].maximum, 3);
    EXPECT_TRUE(params[scripted::whole].animatable);
    EXPECT_FALSE(params[scripted::tick].animatable);
    EXPECT_FALSE(params[scripted::topic].animatable);
    EXPECT_FALSE(params[scripted::topic_end].has_value());
}

TEST_F(parameters, labels_are_the_hosts_own_copies)
{
    EXPECT_EQ(params[scripted::tick].name, "");
    EXPECT_EQ(params[scripted::tick].label, "Tick Here");
    EXPECT_STREQ(params[scripted::tick].definition.u.bd.u.nameptr, "Tick Here");
    EXPECT_STREQ(params[scripted::choice].definition.u.pd.u.namesptr, "First|Second|Third");
    EXPECT_EQ(params[scripted::choice].choices, (std::vector<std::string>{"First", "Second", "Third"}));
}

TEST_F(parameters, defaults_are_in_natural_units)
{
    const auto x = [&](int index) { return host::default_value(params[static_cast<std::size_t>(index)]).x; };
    EXPECT_EQ(x(scripted::whole), 5.0);
    EXPECT_EQ(x(scripted::share), 0.5);
    EXPECT_EQ(x(scripted::real), 3.0);
    EXPECT_EQ(x(scripted::turn), 90.0);
    EXPECT_EQ(x(scripted::tick), 1.0);
    EXPECT_EQ(x(scripted::choice), 3.0);
    const auto place = host::default_value(params[scripted::place]);
    EXPECT_EQ(place.x, 50.0);
    EXPECT_EQ(place.y, 10.0);
    EXPECT_TRUE(place.percent);
    EXPECT_EQ(host::default_value(params[scripted::tint]).color.blue, 3);
}

track keyed(interpolation between)
{
    track t;
    t.between = between;
    t.keys = {{1.0, {10.0, 100.0, false, {0, 0, 255, 10}}}, {3.0, {20.0, 200.0, false, {255, 1, 0, 13}}}};
    return t;
}

TEST(track, holds_its_ends_in_every_manner)
{
    for (const auto between : {interpolation::hold, interpolation::linear, interpolation::smooth})
    {
        const track t = keyed(between);
        EXPECT_EQ(t.at(-5.0).x, 10.0);
        EXPECT_EQ(t.at(1.0).x, 10.0);
        EXPECT_EQ(t.at(3.0).x, 20.0);
        EXPECT_EQ(t.at(99.0).y, 200.0);
    }
}

TEST(track, hold_lasts_until_the_next_key)
{
    EXPECT_EQ(keyed(interpolation::hold).at(2.999).x, 10.0);
}

TEST(track, linear_is_straight_and_rounds_colours)
{
    const auto half = keyed(interpolation::linear).at(2.0);
    EXPECT_EQ(half.x, 15.0);
    EXPECT_EQ(half.y, 150.0);
    EXPECT_EQ(half.color.alpha, 128); // 127.5
    EXPECT_EQ(half.color.red, 1);     // 0.5
    EXPECT_EQ(half.color.green, 128);
    EXPECT_EQ(half.color.blue, 12); // 11.5
    EXPECT_EQ(keyed(interpolation::linear).at(1.5).x, 12.5);
}

TEST(track, smooth_leaves_and_arrives_level)
{
    const track t = keyed(interpolation::smooth);
    EXPECT_EQ(t.at(1.5).x, 10.0 + 10.0 * (0.25 * 0.25 * 2.5));
    EXPECT_EQ(t.at(2.0).x, 15.0);
    EXPECT_EQ(t.at(2.5).x, 10.0 + 10.0 * (0.75 * 0.75 * 1.5));
}

TEST(nearest_int, rounds_halves_upwards_and_stays_in_range)
{
    EXPECT_EQ(host::nearest_int(2.5), 3);
    EXPECT_EQ(host::nearest_int(-2.5), -2);
    EXPECT_EQ(host::nearest_int(0.49999999999999994), 0);
    EXPECT_EQ(host::nearest_int(-0.2), 0);
    EXPECT_EQ(host::nearest_int(1e30), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(host::nearest_int(-1e30), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(host::nearest_int(std::nan("")), 0);
    EXPECT_EQ(host::nearest_fixed(0.1), 6554);
}

// Checks a parameter out at a time and hands the record on.
PF_Err at_time(const call& now, int index, A_long time, A_u_long scale,
               const std::function<void(const PF_ParamDef&)>& look)
{
    PF_ParamDef record{};
    const PF_Err answer = now.in->inter.checkout_param(now.ref(), index, time, 1, scale, &record);
    if (answer != PF_Err_NONE)
        return answer;
    look(record);
    return now.in->inter.checkin_param(now.ref(), &record);
}

TEST(checkout_param, gives_the_value_at_any_time_of_any_scale)
{
    host::render_options checked;
    checked.checked = true;
    scripted::render(
        [](const call& now)
        {
            const auto x = [&](A_long time, A_u_long scale)
            {
                int value = 0;
                at_time(now, scripted::whole, time, scale, [&](const PF_ParamDef& p) { value = p.u.sd.value; });
                return value;
            };
            EXPECT_EQ(x(0, 25), 0);
            EXPECT_EQ(x(25, 25), 10);
            EXPECT_EQ(x(1, 4), 3); // 2.5 rounds up
            EXPECT_EQ(x(-7, 4), 0);
            EXPECT_EQ(x(9000, 1000), 20);
            EXPECT_EQ(now.params[scripted::whole]->u.sd.value, 12); // frame 30 of 25 in a second
            return PF_Err_NONE;
        },
        checked, scripted::small_comp(),
        [](host::param_tracks& values)
        {
            track t;
            t.keys = {{0.0, {0.0}}, {2.0, {20.0}}};
            values.set(scripted::whole, t);
        },
        30);
}

TEST(checkout_param, record_is_as_registered_with_empty_texts)
{
    scripted::render(
        [](const call& now)
        {
            at_time(now, scripted::whole, 0, 25,
                    [](const PF_ParamDef& p)
                    {
                        EXPECT_STREQ(p.name, "Whole");
                        EXPECT_EQ(p.param_type, PF_Param_SLIDER);
                        EXPECT_EQ(p.u.sd.valid_max, 2000);
                        EXPECT_EQ(p.u.sd.value, 5);
                        EXPECT_STREQ(p.u.sd.value_str, "");
                        EXPECT_STREQ(p.u.sd.value_desc, "");
                    });
            at_time(now, scripted::share, 0, 25,
                    [](const PF_ParamDef& p)
                    {
                        EXPECT_EQ(p.u.fd.value, 32768);
                        EXPECT_STREQ(p.u.fd.value_str, "");
                    });
            at_time(now, scripted::real, 0, 25, [](const PF_ParamDef& p) { EXPECT_EQ(p.u.fs_d.value, 3.0); });
            at_time(now, scripted::turn, 0, 25, [](const PF_ParamDef& p) { EXPECT_EQ(p.u.ad.value, 90 * 65536); });
            at_time(now, scripted::tick, 0, 25, [](const PF_ParamDef& p) { EXPECT_EQ(p.u.bd.value, 1); });
            at_time(now, scripted::tint, 0, 25, [](const PF_ParamDef& p) { EXPECT_EQ(p.u.cd.value.green, 2); });
            at_time(now, scripted::choice, 0, 25, [](const PF_ParamDef& p) { EXPECT_EQ(p.u.pd.value, 3); });
            at_time(now, 0, 0, 25, [&](const PF_ParamDef& p) { EXPECT_EQ(p.u.ld.data, now.input().data); });
            return PF_Err_NONE;
        });
}

TEST(checkout_param, refuses_what_it_cannot_serve)
{
    scripted::render(
        [](const call& now)
        {
            const auto nothing = [](const PF_ParamDef&) {};
            EXPECT_EQ(at_time(now, scripted::count, 0, 25, nothing), PF_Err_INVALID_INDEX);
            EXPECT_EQ(at_time(now, -1, 0, 25, nothing), PF_Err_INVALID_INDEX);
            EXPECT_EQ(at_time(now, 2, 0, 0, nothing), PF_Err_BAD_CALLBACK_PARAM);
            EXPECT_EQ(now.in->inter.checkout_param(now.ref(), 2, 0, 1, 25, nullptr), PF_Err_BAD_CALLBACK_PARAM);
            EXPECT_EQ(now.in->inter.checkout_param(nullptr, 2, 0, 1, 25, nullptr), PF_Err_BAD_CALLBACK_PARAM);
            return PF_Err_NONE;
        });
}

TEST(points, come_in_pixels_of_the_downsampled_layer)
{
    const auto place_at = [](int downsample, const host::param_value& value)
    {
        PF_FixedPoint point{};
        auto comp = scripted::small_comp(101, 50);
        comp.downsample = downsample;
        scripted::render(
            [&](const call& now)
            {
                const auto& td = now.params[scripted::place]->u.td;
                point = {td.x_value, td.y_value};
                return PF_Err_NONE;
            },
            {}, comp, [&](host::param_tracks& values) { values.set(scripted::place, value); });
        return point;
    };
    const auto half = place_at(1, {50.0, 10.0, true});
    EXPECT_EQ(half.x, 101 * 32768);
    EXPECT_EQ(half.y, 5 * 65536);
    const auto reduced = place_at(2, {50.0, 10.0, true});
    EXPECT_EQ(reduced.x, 101 * 16384);
    EXPECT_EQ(reduced.y, 5 * 32768);
    const auto pixels = place_at(3, {100.0, -4.0, false});
    EXPECT_EQ(pixels.x, 2184533); // 100/3
    EXPECT_EQ(pixels.y, -87381);  // -4/3
}

TEST(track, that_is_known_elsewhere_is_asked_at_every_time)
{
    auto comp = scripted::small_comp(100, 100);
    comp.time_scale = 4;
    scripted::render(
        [](const call& now)
        {
            PF_ParamDef at_nine{};
            EXPECT_EQ(now.params[scripted::place]->u.td.x_value, 20 * 65536);
            EXPECT_EQ(now.params[scripted::place]->u.td.y_value, 16384); // frame 1 of 4 a second
            EXPECT_EQ(now.in->inter.checkout_param(now.ref(), scripted::place, 9, 1, 1, &at_nine), PF_Err_NONE);
            EXPECT_EQ(at_nine.u.td.y_value, 9 * 65536);
            EXPECT_EQ(now.in->inter.checkin_param(now.ref(), &at_nine), PF_Err_NONE);
            return PF_Err_NONE;
        },
        {}, comp,
        [](host::param_tracks& values)
        {
            track t;
            t.keys = {{0.0, {1.0, 1.0, true}}};
            t.elsewhere = [](double seconds) { return host::param_value{20.0, seconds, true}; };
            values.set(scripted::place, t);
        },
        1);
}

TEST(points, keys_in_percent_and_pixels_meet_in_pixels)
{
    scripted::render(
        [](const call& now)
        {
            EXPECT_EQ(now.params[scripted::place]->u.td.x_value, (10 + 50) / 2 * 65536);
            return PF_Err_NONE;
        },
        {}, scripted::small_comp(100, 50),
        [](host::param_tracks& values)
        {
            track t;
            t.keys = {{0.0, {10.0, 0.0, false}}, {2.0, {50.0, 0.0, true}}};
            values.set(scripted::place, t);
        },
        25);
}

TEST(params, extreme_values_reach_the_effect_at_the_limits_of_their_kind)
{
    const double nan = std::nan("");
    scripted::render(
        [](const call& now)
        {
            EXPECT_EQ(now.params[scripted::whole]->u.sd.value, std::numeric_limits<std::int32_t>::max());
            EXPECT_EQ(now.params[scripted::share]->u.fd.value, 0);
            EXPECT_EQ(now.params[scripted::tick]->u.bd.value, 1);
            EXPECT_EQ(now.params[scripted::turn]->u.ad.value, std::numeric_limits<std::int32_t>::min());
            EXPECT_TRUE(std::isinf(now.params[scripted::real]->u.fs_d.value));
            return PF_Err_NONE;
        },
        {}, scripted::small_comp(),
        [&](host::param_tracks& values)
        {
            values.set(scripted::whole, host::param_value{1e12});
            values.set(scripted::share, host::param_value{nan});
            values.set(scripted::tick, host::param_value{7.0});
            values.set(scripted::turn, host::param_value{-1e9});
            values.set(scripted::real, host::param_value{std::numeric_limits<double>::infinity()});
        });
}
} // namespace
