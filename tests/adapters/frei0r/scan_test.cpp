// What hosts do to find out about a file, and sizes that no film has.
#include "frei0r_file.hpp"

#include <gtest/gtest.h>
#include <set>

using namespace frei0r_test;

TEST(scan, filter_and_generator_tell_what_they_are)
{
    for (const auto& [path, name, type] : {std::tuple{FILTER, "Filigrane", F0R_PLUGIN_TYPE_FILTER},
                                           {GENERATOR, "Filigrane Generator", F0R_PLUGIN_TYPE_SOURCE}})
    {
        const frei0r_file file(path);
        EXPECT_EQ(file.init(), 1);
        f0r_plugin_info_t info{};
        file.get_plugin_info(&info);
        EXPECT_STREQ(info.name, name);
        EXPECT_EQ(info.plugin_type, type);
        EXPECT_EQ(info.color_model, F0R_COLOR_MODEL_RGBA8888);
        EXPECT_EQ(info.frei0r_version, FREI0R_MAJOR_VERSION);
        EXPECT_EQ(info.num_params, 3 + 53 + 4); // four points are two numbers each
        file.deinit();
    }
}

TEST(scan, parameters_have_names_of_their_own_and_are_explained)
{
    const frei0r_file file(FILTER);
    file.init();
    std::set<std::string> names;
    f0r_plugin_info_t about{};
    file.get_plugin_info(&about);
    for (int i = 0; i < about.num_params; ++i)
    {
        f0r_param_info_t info{};
        file.get_param_info(&info, i);
        EXPECT_TRUE(names.insert(info.name).second) << info.name;
        EXPECT_GT(std::string(info.explanation).size(), 20u) << info.name;
        EXPECT_NE(info.type, F0R_PARAM_POSITION) << "some hosts never set it";
    }
    f0r_param_info_t none{};
    file.get_param_info(&none, about.num_params);
    EXPECT_STREQ(none.name, "");
    file.get_param_info(&none, -1);
    file.deinit();
}

TEST(scan, again_and_again_at_odd_sizes)
{
    const std::pair<int, int> sizes[] = {{1, 1},    {1, 2},    {2, 1},    {3, 5},     {7, 1},      {1, 7},
                                         {17, 16},  {33, 31},  {64, 65},  {99, 3},    {255, 257},  {641, 8},
                                         {4096, 1}, {1, 4096}, {4095, 9}, {11, 4095}, {1023, 511}, {4096, 4096}};
    for (const auto& [width, height] : sizes)
    {
        const frei0r_file file(FILTER);
        ASSERT_EQ(file.init(), 1);
        f0r_instance_t instance = file.construct(static_cast<unsigned>(width), static_cast<unsigned>(height));
        ASSERT_NE(instance, nullptr) << width << "x" << height;
        file.set(instance, "Rows", 0.12);
        pixels from(drawn(file, instance, 0.2, width, height).size());
        pixels to = from;
        file.update(instance, 0.2, from.data(), to.data());
        file.update2(instance, 0.2, from.data(), nullptr, nullptr, from.data());
        EXPECT_EQ(from, to) << width << "x" << height;
        file.destruct(instance);
        file.deinit();
    }
}

TEST(scan, refuses_sizes_that_are_none)
{
    const frei0r_file file(FILTER);
    file.init();
    EXPECT_EQ(file.construct(0, 100), nullptr);
    EXPECT_EQ(file.construct(100, 0), nullptr);
    EXPECT_EQ(file.construct(100, 4000000000u), nullptr);
    file.set_param_value(nullptr, nullptr, 0);
    file.get_param_value(nullptr, nullptr, 0);
    file.update(nullptr, 0.0, nullptr, nullptr);
    file.destruct(nullptr);
    file.deinit();
}

TEST(scan, instances_outlive_the_last_deinit)
{
    const frei0r_file file(FILTER);
    file.init();
    file.init();
    f0r_instance_t first = file.construct(48, 40);
    f0r_instance_t second = file.construct(48, 40);
    const pixels before = drawn(file, first, 0.4, 48, 40);
    file.deinit();
    file.destruct(first);
    file.deinit();
    EXPECT_EQ(drawn(file, second, 0.4, 48, 40), before);
    file.init();
    f0r_instance_t third = file.construct(48, 40);
    EXPECT_EQ(drawn(file, third, 0.4, 48, 40), before);
    file.deinit();
    file.deinit();
    file.destruct(second);
    file.destruct(third);
}

TEST(scan, without_the_effect_pictures_pass_as_they_are)
{
    setenv("FILIGRANE_PLUGIN", "/nowhere", 1);
    const frei0r_file file(FILTER);
    EXPECT_EQ(file.init(), -1);
    f0r_plugin_info_t about{};
    file.get_plugin_info(&about);
    EXPECT_EQ(about.num_params, 3);
    f0r_instance_t instance = file.construct(33, 9);
    ASSERT_NE(instance, nullptr);
    file.set(instance, "Look", "neon-ripples");
    const pixels input = picture(33, 9);
    pixels output(input.size());
    file.update(instance, 0.0, input.data(), output.data());
    EXPECT_EQ(output, input);
    file.destruct(instance);
    file.deinit();
    unsetenv("FILIGRANE_PLUGIN");
}
