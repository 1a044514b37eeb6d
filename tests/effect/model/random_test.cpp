#include "effect/model/random.hpp"

#include "tests/support/effect_fixture.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

using Loom::RandomGenerator32;

namespace
{
// The definition of one step, in double precision.
std::uint32_t step_by_fmod(std::uint32_t state)
{
    const double next = std::fmod(static_cast<double>(state) * 16807.0, 2147483647.0);
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(next));
}

// What an integer slider reads as where a double is expected, with a zeroed text behind it.
double slider_as_double(std::int32_t value)
{
    const std::int32_t halves[2] = {value, 0};
    double read = 0.0;
    std::memcpy(&read, halves, sizeof read);
    return read;
}
} // namespace

TEST(random, seed_0_is_seed_1)
{
    for (const unsigned seed : {0u, 1u})
    {
        RandomGenerator32 gen(seed);
        EXPECT_EQ(gen.GetNextRandomInt(), 16807u);
        EXPECT_EQ(gen.GetNextRandomInt(), 282475249u);
        EXPECT_EQ(gen.GetNextRandomInt(), 1622650073u);
        gen.ReSeed(seed);
        EXPECT_EQ(gen.GetNextRandomInt(), 16807u);
    }
}

TEST(random, ten_thousandth_state_is_the_published_one)
{
    RandomGenerator32 gen(1);
    unsigned state = 0;
    for (int i = 0; i < 10000; ++i)
        state = gen.GetNextRandomInt();
    EXPECT_EQ(state, 1043618065u);
}

TEST(random, the_modulus_as_seed_is_stuck_at_0)
{
    RandomGenerator32 gen(2147483647);
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(gen.GetNextRandom(), 0.0f);
        EXPECT_EQ(gen.GetNextRandomInt(), 0u);
        EXPECT_EQ(rand_param(gen, 10.0f, 30.0f), 7.0f);
    }
}

TEST(random, integer_step_is_the_fmod_step)
{
    std::mt19937 random(11);
    std::vector<std::uint32_t> states = {0,          1,          2,          16807,      127773,     2836,
                                         2147483646, 2147483647, 2147483648, 4294967294, 4294967295, 0x80000001};
    for (int i = 0; i < 100000; ++i)
        states.push_back(static_cast<std::uint32_t>(random()));
    for (const std::uint32_t state : states)
    {
        RandomGenerator32 gen(state);
        EXPECT_EQ(gen.GetNextRandomInt(), step_by_fmod(state == 0 ? 1 : state)) << state;
    }
}

TEST(random, the_64_highest_states_give_exactly_1)
{
    // The inverse of 16807 finds the state before a wanted one.
    const auto before = [](std::uint64_t state)
    { return static_cast<unsigned>(state * 1407677000u % 2147483647u); };
    RandomGenerator32 gen(before(2147483583));
    EXPECT_EQ(gen.GetNextRandom(), 1.0f);
    gen.ReSeed(before(2147483646));
    EXPECT_EQ(gen.GetNextRandom(), 1.0f);
    gen.ReSeed(before(2147483582));
    EXPECT_LT(gen.GetNextRandom(), 1.0f);
    gen.ReSeed(before(1));
    EXPECT_EQ(gen.GetNextRandom(), static_cast<float>(1.0 / 2147483647.0));
}

TEST(random, ranges_are_formed_in_double)
{
    RandomGenerator32 gen(777);
    RandomGenerator32 same(777);
    const double lo = -0.1;
    const double hi = 123456.7;
    const double r = static_cast<double>(same.GetNextRandom());
    EXPECT_EQ(MATH_Rand_IMP(gen).random(lo, hi), lo + r * (hi - lo));
    EXPECT_EQ(MATH_Rand_IMP(gen).random(), static_cast<double>(same.GetNextRandom()));
    EXPECT_EQ(gen.GetNextRandomInt(), same.GetNextRandomInt());
}

TEST(rand_param, takes_one_step_whatever_the_randomness)
{
    for (const float randomness : {0.0f, 100.0f, 2000.0f, NAN})
    {
        RandomGenerator32 gen(12345);
        RandomGenerator32 same(12345);
        const float value = rand_param(gen, 10.0f, randomness);
        same.rand31pm_next();
        EXPECT_EQ(gen.GetNextRandomInt(), same.GetNextRandomInt());
        EXPECT_TRUE(randomness != 0.0f || value == 10.0f);
    }
}

TEST(rand_param, of_100_percent_spreads_over_0_to_twice_the_value)
{
    RandomGenerator32 gen(5);
    for (int i = 0; i < 10000; ++i)
    {
        const float value = rand_param(gen, 10.0f, 100.0f);
        ASSERT_GT(value, 0.0f);
        ASSERT_LE(value, 20.0f);
    }
}

TEST(rand_param, of_2000_percent_changes_sign)
{
    RandomGenerator32 gen(5);
    int negative = 0;
    for (int i = 0; i < 1000; ++i)
        negative += rand_param(gen, 10.0f, 2000.0f) < 0.0f ? 1 : 0;
    EXPECT_GT(negative, 400);
    EXPECT_LT(negative, 500);
}

TEST(rand_param, spread_is_single_precision_product_before_division)
{
    std::mt19937 random(4);
    int distinguishes = 0;
    for (int i = 0; i < 2000; ++i)
    {
        const float value = static_cast<float>(random() % 100000) / 7.0f;
        const float randomness = static_cast<float>(random() % 10000) / 13.0f;
        const unsigned seed = static_cast<unsigned>(random());
        RandomGenerator32 gen(seed);
        RandomGenerator32 same(seed);
        const double r = static_cast<double>(same.GetNextRandom());
        const float product = value * randomness;
        const float spread = product / 100.0f;
        const float lo = value - spread;
        const float hi = value + spread;
        const double wide = static_cast<double>(lo) + r * (static_cast<double>(hi) - static_cast<double>(lo));
        EXPECT_EQ(rand_param(gen, value, randomness), static_cast<float>(wide)) << value << ' ' << randomness;
        distinguishes += spread != value * (randomness / 100.0f) ? 1 : 0;
    }
    EXPECT_GT(distinguishes, 100); // the other order would have been noticed
}

class sum_param : public testing::Test
{
protected:
    sum_param() { host.log.clear(); }

    float sum(RandomGenerator32& gen, int frames) { return sum_param_rnd(gen, &host.in_data, 41, 43, frames); }

    effect_fixture host;
};

TEST_F(sum_param, over_frame_0_checks_each_parameter_out_once)
{
    host.in_data.time_step = 4;
    host.set_number(41, 2.5);
    RandomGenerator32 gen(9);
    EXPECT_EQ(sum(gen, 0), 2.5f);
    EXPECT_EQ(host.log, (std::vector<std::string>{"checkout 43 at 0 step 4 scale 25", "checkin",
                                                  "checkout 41 at 0 step 4 scale 25", "checkin"}));
}

TEST_F(sum_param, samples_every_frame_up_to_and_including_the_last)
{
    host.in_data.time_step = 3;
    host.on_checkout = [](PF_ParamIndex index, A_long time, PF_ParamDef& def)
    { def.u.fs_d.value = index == 41 ? 1.0 + time : 0.0; };
    RandomGenerator32 gen(9);
    EXPECT_EQ(sum(gen, 3), 1.0f + 4.0f + 7.0f + 10.0f);
    EXPECT_EQ(host.calls({"checkout"}),
              (std::vector<std::string>{"checkout 43 at 0 step 3 scale 25", "checkout 41 at 0 step 3 scale 25",
                                        "checkout 43 at 3 step 3 scale 25", "checkout 41 at 3 step 3 scale 25",
                                        "checkout 43 at 6 step 3 scale 25", "checkout 41 at 6 step 3 scale 25",
                                        "checkout 43 at 9 step 3 scale 25", "checkout 41 at 9 step 3 scale 25"}));
}

TEST_F(sum_param, advances_one_step_and_repeats_the_sums_first_draw)
{
    host.on_checkout = [](PF_ParamIndex index, A_long, PF_ParamDef& def)
    { def.u.fs_d.value = index == 41 ? 10.0 : 50.0; };
    for (const int frames : {-1, 0, 1, 7})
    {
        RandomGenerator32 gen(31);
        RandomGenerator32 same(31);
        const float total = sum(gen, frames);
        same.rand31pm_next();
        RandomGenerator32 inside = same;
        float expected = 0.0f;
        for (int i = 0; i <= frames; ++i)
            expected += rand_param(inside, 10.0f, 50.0f);
        EXPECT_EQ(total, expected) << frames;
        EXPECT_EQ(gen.GetNextRandomInt(), same.GetNextRandomInt()) << frames;
    }
}

TEST_F(sum_param, of_no_frames_is_0_and_one_step)
{
    RandomGenerator32 gen(31);
    EXPECT_EQ(sum(gen, -1), 0.0f);
    EXPECT_TRUE(host.log.empty());
}

TEST_F(sum_param, a_refused_checkout_ends_it_with_0_where_it_stood)
{
    for (int refused = 1; refused <= 6; ++refused)
    {
        int seen = 0;
        host.on_call = [&](std::string_view name)
        { return name == "checkout" && ++seen == refused ? PF_Err{77} : PF_Err_NONE; };
        host.log.clear();
        RandomGenerator32 gen(31);
        EXPECT_EQ(sum(gen, 2), 0.0f);
        EXPECT_EQ(seen, refused);
        EXPECT_EQ(host.calls({"checkin"}).size(), static_cast<std::size_t>(refused - 1));
        RandomGenerator32 same(31);
        for (int draw = 0; draw < 1 + (refused - 1) / 2; ++draw)
            same.rand31pm_next();
        EXPECT_EQ(gen.GetNextRandomInt(), same.GetNextRandomInt()) << refused;
    }
}

TEST_F(sum_param, an_error_from_a_checkin_is_not_looked_at)
{
    host.on_call = [](std::string_view name) { return name == "checkin" ? PF_Err{77} : PF_Err_NONE; };
    RandomGenerator32 gen(31);
    EXPECT_EQ(sum(gen, 1), 6.0f);
}

TEST_F(sum_param, an_integer_slider_is_read_as_a_double_as_it_stands)
{
    host.set(43, 2000); // "Growth Randomness": 0.0 and a little in double, nothing in single precision
    host.on_checkout = [](PF_ParamIndex index, A_long, PF_ParamDef& def)
    { EXPECT_EQ(def.u.fs_d.value, index == 43 ? slider_as_double(2000) : 3.0); };
    RandomGenerator32 gen(31);
    EXPECT_EQ(sum(gen, 1), 6.0f);

    // A text behind the value that makes the double 50: the randomness is then 50 percent.
    host.on_checkout = [](PF_ParamIndex index, A_long, PF_ParamDef& def)
    {
        const double fifty = 50.0;
        if (index == 43)
            std::memcpy(&def.u.sd, &fifty, sizeof fifty);
    };
    RandomGenerator32 same(31);
    same.rand31pm_next();
    RandomGenerator32 inside = same;
    const float expected = rand_param(inside, 3.0f, 50.0f) + rand_param(inside, 3.0f, 50.0f);
    RandomGenerator32 again(31);
    EXPECT_EQ(sum(again, 1), expected);
}

TEST_F(sum_param, the_record_is_clear_before_each_checkout)
{
    // A host that answers without writing: both values read as 0.
    host.in_data.inter.checkout_param = [](PF_ProgPtr, PF_ParamIndex, A_long, A_long, A_u_long, PF_ParamDef* def)
    {
        const PF_ParamDef zero{};
        EXPECT_EQ(std::memcmp(def, &zero, sizeof zero), 0);
        return PF_Err{PF_Err_NONE};
    };
    RandomGenerator32 gen(31);
    EXPECT_EQ(sum(gen, 3), 0.0f);
}

TEST_F(sum_param, times_wrap_around)
{
    host.in_data.time_step = 0x40000000;
    RandomGenerator32 gen(31);
    sum(gen, 4);
    EXPECT_EQ(host.calls({"checkout"})[4], "checkout 43 at -2147483648 step 1073741824 scale 25");
    EXPECT_EQ(host.calls({"checkout"})[8], "checkout 43 at 0 step 1073741824 scale 25");
}

TEST(random, fill_draws_what_single_draws_give)
{
    std::mt19937 seeds(21);
    for (int round = 0; round < 400; ++round)
    {
        // Seeds above the modulus, at it and around 0, too.
        const unsigned odd[] = {0u, 1u, 2147483646u, 2147483647u, 2147483648u, 4294967294u, 4294967295u};
        const unsigned seed = round < 7 ? odd[round] : static_cast<unsigned>(seeds());
        const std::int64_t count = round % 20 == 0 ? 0 : seeds() % 300;
        const double lo = round % 3 == 0 ? -15.0 : static_cast<double>(seeds() % 1000) / 7.0 - 40.0;
        const double hi = round % 3 == 0 ? 15.0 : lo + static_cast<double>(seeds() % 1000) / 11.0;
        RandomGenerator32 one(seed);
        RandomGenerator32 many(seed);
        std::vector<float> drawn(static_cast<std::size_t>(count) + 1, 77.0f);
        many.fill(lo, hi, drawn.data(), count);
        for (std::int64_t i = 0; i < count; ++i)
            ASSERT_EQ(drawn[static_cast<std::size_t>(i)], static_cast<float>(MATH_Rand_IMP(one).random(lo, hi)))
                << "seed " << seed << ", draw " << i;
        EXPECT_EQ(drawn.back(), 77.0f);
        EXPECT_EQ(one.GetNextRandomInt(), many.GetNextRandomInt()) << "seed " << seed << ", " << count << " draws";
    }
}
