// Parameters and pictures of instances, through the file as a host has it.
#include "frei0r_file.hpp"

#include <cfenv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <thread>
#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

using namespace frei0r_test;

namespace
{
constexpr int width = 80;
constexpr int height = 56;

class instance_test : public testing::Test
{
protected:
    instance_test() { file.init(); }
    ~instance_test() override
    {
        for (f0r_instance_t made : made_)
            file.destruct(made);
        file.deinit();
    }

    f0r_instance_t instance()
    {
        made_.push_back(file.construct(width, height));
        return made_.back();
    }
    pixels draw(f0r_instance_t made, double time) const { return drawn(file, made, time, width, height); }

    const frei0r_file file{FILTER};

private:
    std::vector<f0r_instance_t> made_;
};

// A preset's file of the test's own.
class preset_file
{
public:
    explicit preset_file(const std::string& json)
        : path_(std::filesystem::temp_directory_path() / ("filigrane-" + std::to_string(getpid()) + ".json"))
    {
        std::ofstream(path_) << json;
    }
    ~preset_file() { std::filesystem::remove(path_); }
    std::string name() const { return path_.string(); }

private:
    std::filesystem::path path_;
};
} // namespace

TEST_F(instance_test, answers_what_was_set)
{
    f0r_instance_t made = instance();
    f0r_plugin_info_t about{};
    file.get_plugin_info(&about);
    for (int i = 0; i < about.num_params; ++i)
    {
        f0r_param_info_t info{};
        file.get_param_info(&info, i);
        if (info.type != F0R_PARAM_DOUBLE && info.type != F0R_PARAM_BOOL)
            continue;
        double value = -1.0;
        file.get_param_value(made, &value, i);
        EXPECT_TRUE(value >= 0.0 && value <= 1.0) << info.name << " " << value;
        double other = 0.625;
        file.set_param_value(made, &other, i);
        file.get_param_value(made, &value, i);
        EXPECT_EQ(value, 0.625) << info.name;
    }
    f0r_param_color_t color{0.25f, 0.5f, 1.0f};
    file.set_param_value(made, &color, file.index_of("Normal Color"));
    f0r_param_color_t kept{};
    file.get_param_value(made, &kept, file.index_of("Normal Color"));
    EXPECT_EQ(kept.g, 0.5f);
    char* text = nullptr;
    file.get_param_value(made, &text, file.index_of("Frame Rate"));
    EXPECT_STREQ(text, "25");
    file.set(made, "Frame Rate", "30000/1001");
    file.get_param_value(made, &text, file.index_of("Frame Rate"));
    EXPECT_STREQ(text, "30000/1001");
}

TEST_F(instance_test, passes_over_what_is_no_value)
{
    f0r_instance_t made = instance();
    const pixels before = draw(made, 0.2);
    file.set(made, "Rows", std::nan(""));
    file.set(made, "Look", "no such look");
    file.set(made, "Frame Rate", "often");
    file.set(made, "Time Unit", "hours");
    f0r_param_color_t color{std::nanf(""), 0.5f, 0.5f};
    file.set_param_value(made, &color, file.index_of("Normal Color"));
    double value = 0.5;
    file.set_param_value(made, &value, -1);
    file.set_param_value(made, &value, 1000);
    file.get_param_value(made, &value, 1000);
    file.set_param_value(made, nullptr, 5);
    char* none = nullptr;
    file.set_param_value(made, &none, file.index_of("Look"));
    EXPECT_EQ(draw(made, 0.2), before);
    file.set(made, "Rows", 7.0);
    file.get_param_value(made, &value, file.index_of("Rows"));
    EXPECT_EQ(value, 1.0);
}

TEST_F(instance_test, leaves_the_input_alone_and_draws_over_it)
{
    f0r_instance_t made = instance();
    file.set(made, "Composite On Original", 1.0);
    const pixels input = picture(width, height);
    pixels from = input;
    pixels over(input.size());
    file.update(made, 0.2, from.data(), over.data());
    EXPECT_EQ(from, input);
    EXPECT_NE(over, input);
    file.update(made, 0.2, from.data(), from.data());
    EXPECT_EQ(from, over);
}

TEST_F(instance_test, draws_frames_in_any_order_and_beside_others)
{
    f0r_instance_t first = instance();
    f0r_instance_t second = instance();
    file.set(second, "Rows", 0.2);
    std::vector<pixels> forward;
    for (int frame = 0; frame < 8; ++frame)
        forward.push_back(draw(first, frame / 25.0));
    for (int frame = 7; frame >= 0; --frame)
    {
        draw(second, frame / 25.0);
        EXPECT_EQ(draw(first, frame / 25.0), forward[static_cast<std::size_t>(frame)]) << frame;
    }
    EXPECT_NE(draw(second, 0.0), forward[0]);
}

TEST_F(instance_test, draws_on_several_threads)
{
    std::vector<f0r_instance_t> made = {instance(), instance(), instance(), instance()};
    const pixels expected = draw(made[0], 0.12);
    std::vector<std::thread> threads;
    for (f0r_instance_t each : made)
        threads.emplace_back(
            [this, each, &expected]
            {
                for (int i = 0; i < 10; ++i)
                    EXPECT_EQ(draw(each, 0.12), expected);
            });
    for (std::thread& thread : threads)
        thread.join();
}

// Threads of some hosts round otherwise.
TEST_F(instance_test, is_not_misled_by_a_threads_rounding)
{
    f0r_instance_t made = instance();
    file.set(made, "Rotation", 0.5123);
    const pixels expected = draw(made, 0.12);
    const int before = std::fegetround();
    for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO})
    {
        f0r_instance_t other = instance();
        std::fesetround(mode);
        file.set(other, "Rotation", 0.5123);
        const pixels drawn = draw(other, 0.12);
        const int after = std::fegetround();
        std::fesetround(before);
        EXPECT_EQ(after, mode);
        EXPECT_EQ(drawn, expected) << mode;
    }
}

#if defined(__SSE2__)
// Or take numbers near 0 for 0.
TEST_F(instance_test, is_not_misled_by_flushed_numbers)
{
    f0r_instance_t made = instance();
    const pixels expected = draw(made, 0.12);
    const unsigned before = _mm_getcsr();
    constexpr unsigned flush = 0x8040; // results and operands
    _mm_setcsr(before | flush);
    const pixels drawn = draw(made, 0.12);
    const unsigned after = _mm_getcsr();
    _mm_setcsr(before);
    EXPECT_EQ(after & flush, flush);
    EXPECT_EQ(drawn, expected);
}
#endif

TEST_F(instance_test, takes_time_as_the_unit_and_rate_say)
{
    f0r_instance_t made = instance();
    const pixels tenth = draw(made, 0.4);
    EXPECT_NE(draw(made, 0.2), tenth);
    file.set(made, "Time Unit", "milliseconds");
    EXPECT_EQ(draw(made, 400.0), tenth);
    file.set(made, "Time Unit", "seconds");
    file.set(made, "Frame Rate", "50");
    EXPECT_EQ(draw(made, 0.2), tenth);
}

TEST_F(instance_test, begins_with_a_look)
{
    f0r_instance_t made = instance();
    f0r_instance_t other = instance();
    file.set(made, "Look", "pencil-grid");
    const pixels look = draw(made, 0.0);
    EXPECT_NE(look, draw(other, 0.0));
    // Defaults that a host sets one and all do not count, nor do they with the six digits of a project.
    file.set(made, "Rows", 0.04);
    file.set(made, "Turbulance", 0.428571);
    EXPECT_EQ(draw(made, 0.0), look);
    file.set(made, "Rows", 0.3);
    EXPECT_NE(draw(made, 0.0), look);
    // What is next to the default is the default's value, and stronger than the look.
    file.set(made, "Rows", 0.041);
    const pixels few = draw(made, 0.0);
    EXPECT_NE(few, look);
    file.set(made, "Rows", 0.04);
    EXPECT_EQ(draw(made, 0.0), look);
    for (const char* none : {"none", "pencil-grid", ""})
    {
        file.set(made, "Look", none);
        EXPECT_EQ(draw(made, 0.0), *none == 'p' ? look : draw(other, 0.0)) << none;
    }
}

TEST_F(instance_test, keys_of_a_look_stand_at_its_rate)
{
    const preset_file keyed(R"({"Rotation": {"keys": [[0, 0], [50, 100]]}, "Columns": 0})");
    f0r_instance_t made = instance();
    f0r_instance_t still = instance();
    file.set(made, "Look", keyed.name());
    file.set(still, "Columns", 0.0);
    file.set(still, "Rotation", 0.55); // 100 degrees
    EXPECT_EQ(draw(made, 2.0), draw(still, 2.0));
    file.set(made, "Frame Rate", "50");
    file.set(still, "Frame Rate", "50");
    EXPECT_EQ(draw(made, 1.0), draw(still, 1.0));
}

TEST_F(instance_test, sets_points_in_two_parts)
{
    const preset_file moved(R"({"Position": "30%,42%"})");
    f0r_instance_t made = instance();
    f0r_instance_t look = instance();
    file.set(made, "Position X", 0.46);
    file.set(made, "Position Y", 0.484);
    file.set(look, "Look", moved.name());
    EXPECT_EQ(draw(made, 0.0), draw(look, 0.0));
}

TEST_F(instance_test, generator_draws_on_nothing)
{
    const frei0r_file generator(GENERATOR);
    generator.init();
    f0r_instance_t made = generator.construct(width, height);
    pixels output = picture(width, height);
    generator.update(made, 0.2, nullptr, output.data());
    EXPECT_EQ(output, draw(instance(), 0.2));
    generator.destruct(made);
    generator.deinit();
}
