#include "host/param_text.hpp"

#include "host/error.hpp"
#include "param_samples.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <locale>
#include <random>

namespace
{
using host::param_kind;
using host::param_value;
using param_samples::labelled;

const std::vector<host::param_info> params = param_samples::all_kinds();

std::string message_of(const std::function<void()>& work)
{
    try
    {
        work();
    }
    catch (const host::error& failure)
    {
        return failure.what();
    }
    return "(nothing was thrown)";
}

param_value parsed(const std::string& label, std::string_view text)
{
    return host::parse_value(labelled(params, label), text);
}

std::string refusal(const std::string& label, std::string_view text)
{
    return message_of([&] { parsed(label, text); });
}

std::string refused_name(std::string_view name)
{
    return message_of([&] { host::find_param(params, name); });
}

void expect_color(std::string_view text, int alpha, int red, int green, int blue)
{
    const PF_Pixel color = parsed("Normal Color", text).color;
    EXPECT_EQ(alpha, color.alpha) << text;
    EXPECT_EQ(red, color.red) << text;
    EXPECT_EQ(green, color.green) << text;
    EXPECT_EQ(blue, color.blue) << text;
}

// Two numbers are the same when their bits are.
void expect_round_trip(const host::param_info& info, const param_value& value)
{
    const std::string text = host::format_value(info, value);
    const param_value again = host::parse_value(info, text);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(value.x), std::bit_cast<std::uint64_t>(again.x)) << text;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(value.y), std::bit_cast<std::uint64_t>(again.y)) << text;
    EXPECT_EQ(value.percent, again.percent) << text;
    EXPECT_EQ(std::bit_cast<std::uint32_t>(value.color), std::bit_cast<std::uint32_t>(again.color)) << text;
}

param_value number(double x)
{
    param_value value;
    value.x = x;
    return value;
}
} // namespace

TEST(kebab_name, drops_brackets_and_joins_with_hyphens)
{
    const auto kebab = [](const std::string& label)
    { return host::kebab_name(param_samples::make(param_kind::slider, label)); };
    EXPECT_EQ("normal-line-width", kebab("Normal Line Width (NLW)"));
    EXPECT_EQ("make-size-match-layer-size", kebab("Make Size Match Layer Size"));
    EXPECT_EQ("a-2-b", kebab("  A -- 2__B! "));
    EXPECT_EQ("left-right", kebab("Left (one (two) three) Right"));
    EXPECT_EQ("a-b", kebab("a)b"));
    EXPECT_EQ("open", kebab("Open (never closed"));
    EXPECT_EQ("", kebab("(all)"));
    EXPECT_EQ("", kebab(""));
}

TEST(find_param, takes_label_kebab_and_index)
{
    EXPECT_EQ(4, host::find_param(params, "Normal Line Width (NLW)").index);
    EXPECT_EQ(4, host::find_param(params, "normal line width (nlw)").index);
    EXPECT_EQ(4, host::find_param(params, "normal-line-width").index);
    EXPECT_EQ(4, host::find_param(params, "NORMAL-LINE-WIDTH").index);
    EXPECT_EQ(4, host::find_param(params, " 4 ").index);
}

TEST(find_param, prefers_the_parameter_to_a_group_of_the_same_name)
{
    EXPECT_EQ(16, host::find_param(params, "Columns").index);
    EXPECT_EQ(16, host::find_param(params, "columns").index);
}

TEST(find_param, suggests_the_nearest_names)
{
    EXPECT_EQ("unknown parameter \"Row\": did you mean \"Rows\"? 'filigrane params' lists all",
              refused_name("Row"));
    EXPECT_EQ("unknown parameter \"Rwos\": did you mean \"Rows\"? 'filigrane params' lists all",
              refused_name("Rwos"));
    EXPECT_EQ("unknown parameter \"offset\": did you mean \"Vertical Offset\" or \"Horizontal Offset\"? "
              "'filigrane params' lists all",
              refused_name("offset"));
    EXPECT_EQ("unknown parameter \"Turbulence\": did you mean \"Turbulance\"? 'filigrane params' lists all",
              refused_name("Turbulence"));
    EXPECT_EQ("unknown parameter \"Normal Line Width\": did you mean \"Normal Line Width (NLW)\"? "
              "'filigrane params' lists all",
              refused_name("Normal Line Width"));
}

TEST(find_param, suggests_three_at_most_beginnings_first)
{
    // "line" is in four labels: two begin with it.
    EXPECT_EQ("unknown parameter \"line\": did you mean \"Line Wrapping\", \"Line Compression\" or "
              "\"Normal Line Width (NLW)\"? 'filigrane params' lists all",
              refused_name("line"));
    std::vector<host::param_info> many;
    for (int i = 0; i < 5; ++i)
    {
        many.push_back(param_samples::make(param_kind::slider, "Size " + std::to_string(i)));
        many.back().index = i;
    }
    EXPECT_EQ("unknown parameter \"Size\": did you mean \"Size 0\", \"Size 1\" or \"Size 2\"? "
              "'filigrane params' lists all",
              message_of([&] { host::find_param(many, "Size"); }));
}

TEST(find_param, suggests_nothing_for_a_name_far_from_all)
{
    EXPECT_EQ("unknown parameter \"xyzzy\": 'filigrane params' lists all", refused_name("xyzzy"));
    EXPECT_EQ("unknown parameter \"\": 'filigrane params' lists all", refused_name(""));
    EXPECT_EQ("unknown parameter \"99\": 'filigrane params' lists all", refused_name("99"));
    EXPECT_EQ("unknown parameter \"-1\": 'filigrane params' lists all", refused_name("-1"));
    EXPECT_EQ("unknown parameter \"99999999999999999999\": 'filigrane params' lists all",
              refused_name("99999999999999999999"));
}

TEST(find_param, message_stays_one_short_line)
{
    EXPECT_EQ("unknown parameter \"a?b?c\": 'filigrane params' lists all", refused_name("a\nb\x7F"
                                                                                        "c"));
    EXPECT_EQ("unknown parameter \"" + std::string(80, 'q') + "...\": 'filigrane params' lists all",
              refused_name(std::string(100000, 'q')));
    // The 80th and 81st byte are one character: it is left out whole.
    EXPECT_EQ("unknown parameter \"" + std::string(79, 'q') + "...\": 'filigrane params' lists all",
              refused_name(std::string(79, 'q') + "\u00B0" + "q"));
}

TEST(find_param, says_so_for_group_and_layer)
{
    EXPECT_EQ(std::string("\"lines\" is a ") + host::kind_name(param_kind::group_start) +
                  ", not a parameter with a value: 'filigrane params' lists all",
              refused_name("lines"));
    EXPECT_EQ(std::string("\"0\" is a ") + host::kind_name(param_kind::layer) +
                  ", not a parameter with a value: 'filigrane params' lists all",
              refused_name("0"));
}

TEST(find_param, asks_for_the_index_of_a_name_used_twice)
{
    std::vector<host::param_info> twins = {param_samples::make(param_kind::slider, "Opacity"),
                                           param_samples::make(param_kind::slider, "opacity")};
    twins[0].index = 3;
    twins[1].index = 8;
    EXPECT_EQ(8, host::find_param(twins, "opacity").index);
    EXPECT_EQ("more than one parameter is called \"OPACITY\": say 3 or 8",
              message_of([&] { host::find_param(twins, "OPACITY"); }));
}

TEST(parse_value, slider_takes_whole_numbers_in_range)
{
    EXPECT_EQ(12.0, parsed("Rows", "12").x);
    EXPECT_EQ(12.0, parsed("Rows", " +12 ").x);
    EXPECT_EQ(12.0, parsed("Rows", "12.0").x);
    EXPECT_EQ(0.0, parsed("Rows", "0").x);
    EXPECT_EQ(100.0, parsed("Rows", "100").x);
    EXPECT_EQ(2147483647.0, parsed("Random Seed", "2147483647").x);
    EXPECT_EQ(-4000.0, parsed("Vertical Offset", "-4000").x);
    EXPECT_EQ("\"Rows\" takes a whole number, 0 to 100, not \"4.5\"", refusal("Rows", "4.5"));
    EXPECT_EQ("\"Rows\" takes a whole number, 0 to 100, not \"101\"", refusal("Rows", "101"));
    EXPECT_EQ("\"Rows\" takes a whole number, 0 to 100, not \"-1\"", refusal("Rows", "-1"));
    EXPECT_EQ("\"Random Seed\" takes a whole number, 1 to 2147483647, not \"2147483648\"",
              refusal("Random Seed", "2147483648"));
}

TEST(parse_value, refuses_what_is_no_number)
{
    for (const char* text :
         {"",      " ",    "abc", "12x", "x12", "1 2", "1,5", "nan", "-nan", "inf", "-inf", "infinity",
          "1e999", "0x10", "--1", "+-1", "++1", "+",   "-",   ".",   "1e",   "50%", "\n5",  "on"})
    {
        EXPECT_EQ(0U, refusal("Rows", text).find("\"Rows\" takes a whole number, 0 to 100, not \"")) << text;
        EXPECT_EQ(0U, refusal("Turbulance", text).find("\"Turbulance\" takes a number, 1 to 7, not \"")) << text;
        EXPECT_EQ(0U, refusal("Rotation", text).find("\"Rotation\" takes degrees, ")) << text;
    }
}

TEST(parse_value, a_percent_sign_on_a_plain_number_is_told)
{
    const std::string takes = "\"Rows\" takes a whole number, 0 to 100, not ";
    const auto refused = [](const char* text)
    { return message_of([&] { host::parse_value(labelled(params, "Rows"), text); }); };
    EXPECT_EQ(takes + "\"60%\": write 60 without the percent sign", refused("60%"));
    EXPECT_EQ(takes + "\"-6 %\": write -6 without the percent sign", refused("-6 %"));
    EXPECT_EQ(takes + "\"%\"", refused("%"));
    EXPECT_EQ(takes + "\"some%\"", refused("some%"));
}

TEST(parse_value, fixed_slider_takes_fraction_or_percentage)
{
    EXPECT_EQ(0.5, parsed("Blend Amount", "0.5").x);
    EXPECT_EQ(0.5, parsed("Blend Amount", "50%").x);
    EXPECT_EQ(0.5, parsed("Blend Amount", "50 %").x);
    EXPECT_EQ(1.0, parsed("Blend Amount", "100%").x);
    EXPECT_EQ(0.0, parsed("Blend Amount", "0%").x);
    EXPECT_EQ(0.125, parsed("Blend Amount", ".125").x);
    // Rounded once: 7 / 100 in double is 0.07, but 0.57 * 100 / 100 is not 0.57.
    EXPECT_EQ(0.57, parsed("Blend Amount", "57%").x);
    EXPECT_EQ("\"Blend Amount\" takes a percentage or a number (0.5 is 50%), 0% to 100%, not \"50\"",
              refusal("Blend Amount", "50"));
    for (const char* text : {"101%", "-1%", "1.01", "nan%", "inf%", "%", "5%%", "1e1%", "1e-1e%", "0.5x", "50%x"})
    {
        EXPECT_EQ("\"Blend Amount\" takes a percentage or a number (0.5 is 50%), 0% to 100%, not \"" +
                      std::string(text) + "\"",
                  refusal("Blend Amount", text));
    }
}

TEST(parse_value, float_slider_takes_numbers)
{
    EXPECT_EQ(1.0, parsed("Turbulance", "1").x);
    EXPECT_EQ(3.75, parsed("Turbulance", "3.75").x);
    EXPECT_EQ(7.0, parsed("Turbulance", "7e0").x);
    EXPECT_EQ("\"Turbulance\" takes a number, 1 to 7, not \"7.01\"", refusal("Turbulance", "7.01"));
    EXPECT_EQ("\"Turbulance\" takes a number, 1 to 7, not \"0.99\"", refusal("Turbulance", "0.99"));
}

TEST(parse_value, float_slider_limits_read_as_written_in_the_effect)
{
    const auto info = param_samples::ranged(param_kind::float_slider, "Gain", static_cast<double>(0.1F),
                                            static_cast<double>(0.7F));
    EXPECT_EQ("0.1 to 0.7", host::range_text(info));
    EXPECT_EQ(0.1, host::parse_value(info, "0.1").x);
    EXPECT_EQ(0.7, host::parse_value(info, "0.7").x);
    EXPECT_THROW(host::parse_value(info, "0.09999"), host::error);
    EXPECT_THROW(host::parse_value(info, "0.70001"), host::error);
}

TEST(parse_value, angle_takes_degrees)
{
    EXPECT_EQ(45.0, parsed("Rotation", "45").x);
    EXPECT_EQ(45.0, parsed("Rotation", "45deg").x);
    EXPECT_EQ(45.0, parsed("Rotation", "45 DEG").x);
    EXPECT_EQ(-90.5, parsed("Rotation", "-90.5\u00B0").x);
    EXPECT_EQ(-32768.0, parsed("Rotation", "-32768").x);
    EXPECT_EQ(32767.5, parsed("Rotation", "32767.5").x);
    for (const char* text : {"32768", "-32769", "45rad", "deg", "\u00B0", "45degdeg", "nandeg"})
    {
        EXPECT_EQ("\"Rotation\" takes degrees, such as 45 or -90deg, not \"" + std::string(text) + "\"",
                  refusal("Rotation", text));
    }
}

TEST(parse_value, point_takes_pixels_or_percent)
{
    const param_value pixels = parsed("Position", "960,-540.5");
    EXPECT_EQ(960.0, pixels.x);
    EXPECT_EQ(-540.5, pixels.y);
    EXPECT_FALSE(pixels.percent);
    const param_value percent = parsed("Position", " 50% , 12.5 % ");
    EXPECT_EQ(50.0, percent.x);
    EXPECT_EQ(12.5, percent.y);
    EXPECT_TRUE(percent.percent);
    const std::string takes =
        "\"Position\" takes x,y in pixels or percent of the layer, such as 960,540 or 50%,50%, not ";
    for (const char* text : {"960", "960,", ",540", "1,2,3", "a,b", "nan,1", "1,inf", "%,%", ""})
    {
        EXPECT_EQ(takes + "\"" + text + "\"", refusal("Position", text));
    }
    EXPECT_EQ(takes + "\"50%,540\": both in pixels or both in percent", refusal("Position", "50%,540"));
    EXPECT_EQ(takes + "\"0,32768\": each number is at least -32768 and below 32768",
              refusal("Position", "0,32768"));
    EXPECT_EQ(takes + "\"-32769%,0%\": each number is at least -32768 and below 32768",
              refusal("Position", "-32769%,0%"));
}

TEST(parse_value, color_takes_three_six_or_eight_digits)
{
    expect_color("#f80", 255, 255, 136, 0);
    expect_color("#ff8800", 255, 255, 136, 0);
    expect_color("#FF8800", 255, 255, 136, 0);
    expect_color("#80ff8801", 128, 255, 136, 1);
    for (const char* text :
         {"", "#", "ff8800", "#ff880", "#ff88", "#fff88000f", "#gg8800", "#ff 800", "##f8800", "red", "#-f8800"})
    {
        EXPECT_EQ("\"Normal Color\" takes #rgb, #rrggbb or #aarrggbb (alpha first), not \"" + std::string(text) +
                      "\"",
                  refusal("Normal Color", text));
    }
}

TEST(parse_value, checkbox_takes_words_and_bits)
{
    for (const char* text : {"on", "true", "yes", "1", "ON", "True"})
    {
        EXPECT_EQ(1.0, parsed("Line Wrapping", text).x) << text;
    }
    for (const char* text : {"off", "false", "no", "0", "Off", "NO"})
    {
        EXPECT_EQ(0.0, parsed("Line Wrapping", text).x) << text;
    }
    for (const char* text : {"", "2", "o", "onn", "1.0", "y"})
    {
        EXPECT_EQ("\"Line Wrapping\" takes on or off, not \"" + std::string(text) + "\"",
                  refusal("Line Wrapping", text));
    }
}

TEST(parse_value, popup_takes_choice_or_number)
{
    EXPECT_EQ(2.0, parsed("Affect", "Horz Lines").x);
    EXPECT_EQ(2.0, parsed("Affect", "horz lines").x);
    EXPECT_EQ(1.0, parsed("Affect", "1").x);
    EXPECT_EQ(3.0, parsed("Affect", "3").x);
    for (const char* text : {"", "0", "4", "1.5", "Neither", "Horz", "-1"})
    {
        EXPECT_EQ("\"Affect\" takes Vert Lines, Horz Lines or Both (or its number, 1 to 3), not \"" +
                      std::string(text) + "\"",
                  refusal("Affect", text));
    }
}

TEST(parse_value, refuses_groups_and_layers)
{
    EXPECT_EQ(std::string("\"Lines\" is a ") + host::kind_name(param_kind::group_start) +
                  " and has no value to set",
              refusal("Lines", "1"));
    EXPECT_EQ(std::string("\"Input\" is a ") + host::kind_name(param_kind::layer) + " and has no value to set",
              refusal("Input", "1"));
}

TEST(parse_value, reads_the_same_in_every_locale)
{
    struct comma_decimals : std::numpunct<char>
    {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new comma_decimals));
    EXPECT_EQ(3.75, parsed("Turbulance", "3.75").x);
    EXPECT_EQ("3.75", host::format_value(labelled(params, "Turbulance"), number(3.75)));
    EXPECT_EQ("1 to 2147483647", host::range_text(labelled(params, "Random Seed")));
    std::locale::global(before);
}

TEST(range_text, reads_for_people)
{
    EXPECT_EQ("0 to 100", host::range_text(labelled(params, "Rows")));
    EXPECT_EQ("-4000 to 4000", host::range_text(labelled(params, "Vertical Offset")));
    EXPECT_EQ("0% to 100%", host::range_text(labelled(params, "Blend Amount")));
    EXPECT_EQ("1 to 7", host::range_text(labelled(params, "Turbulance")));
    EXPECT_EQ("on or off", host::range_text(labelled(params, "Line Wrapping")));
    EXPECT_EQ("Vert Lines, Horz Lines or Both", host::range_text(labelled(params, "Affect")));
    EXPECT_EQ("", host::range_text(labelled(params, "Lines")));
}

TEST(format_value, writes_what_a_person_would)
{
    EXPECT_EQ("12", host::format_value(labelled(params, "Rows"), number(12)));
    EXPECT_EQ("-4000", host::format_value(labelled(params, "Vertical Offset"), number(-4000)));
    EXPECT_EQ("2147483647", host::format_value(labelled(params, "Random Seed"), number(2147483647)));
    EXPECT_EQ("50%", host::format_value(labelled(params, "Blend Amount"), number(0.5)));
    EXPECT_EQ("7%", host::format_value(labelled(params, "Blend Amount"), number(0.07)));
    EXPECT_EQ("0.1%", host::format_value(labelled(params, "Blend Amount"), number(0.001)));
    EXPECT_EQ("0%", host::format_value(labelled(params, "Blend Amount"), number(0)));
    EXPECT_EQ("100%", host::format_value(labelled(params, "Blend Amount"), number(1)));
    EXPECT_EQ("12.5%", host::format_value(labelled(params, "Blend Amount"), number(0.125)));
    EXPECT_EQ("45deg", host::format_value(labelled(params, "Rotation"), number(45)));
    EXPECT_EQ("on", host::format_value(labelled(params, "Line Wrapping"), number(1)));
    EXPECT_EQ("off", host::format_value(labelled(params, "Line Wrapping"), number(0)));
    EXPECT_EQ("Both", host::format_value(labelled(params, "Affect"), number(3)));
    EXPECT_EQ("", host::format_value(labelled(params, "Lines"), number(3)));
    param_value value;
    value.x = 960;
    value.y = -0.5;
    EXPECT_EQ("960,-0.5", host::format_value(labelled(params, "Position"), value));
    value.percent = true;
    EXPECT_EQ("960%,-0.5%", host::format_value(labelled(params, "Position"), value));
    value.color = {255, 1, 171, 255};
    EXPECT_EQ("#01abff", host::format_value(labelled(params, "Normal Color"), value));
    value.color.alpha = 0;
    EXPECT_EQ("#0001abff", host::format_value(labelled(params, "Normal Color"), value));
}

TEST(format_value, unnamed_or_equal_choices_are_written_as_numbers)
{
    host::param_info info = param_samples::make(param_kind::popup, "Mode");
    info.choices = {"", "Same", "same", " Padded "};
    EXPECT_EQ("1", host::format_value(info, number(1)));
    EXPECT_EQ("Same", host::format_value(info, number(2)));
    EXPECT_EQ("3", host::format_value(info, number(3)));
    EXPECT_EQ("Padded", host::format_value(info, number(4)));
    for (const double choice : {1.0, 2.0, 3.0, 4.0})
    {
        expect_round_trip(info, number(choice));
    }
}

TEST(format_value, every_value_reads_back_the_same)
{
    std::mt19937_64 random(20240229); // NOLINT(cert-msc51-cpp): the same values every time
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    const auto between = [&](double low, double high) { return low + (high - low) * unit(random); };
    for (int i = 0; i < 20000; ++i)
    {
        SCOPED_TRACE(i);
        expect_round_trip(labelled(params, "Random Seed"), number(std::floor(between(1, 2147483647))));
        expect_round_trip(labelled(params, "Vertical Offset"), number(std::floor(between(1, 4000))));
        expect_round_trip(labelled(params, "Blend Amount"), number(between(0, 1)));
        expect_round_trip(labelled(params, "Blend Amount"), number(std::floor(between(0, 65536)) / 65536.0));
        expect_round_trip(labelled(params, "Blend Amount"), number(std::pow(10.0, between(-320, 0))));
        expect_round_trip(labelled(params, "Turbulance"), number(between(1, 7)));
        expect_round_trip(labelled(params, "Rotation"), number(between(-32768, 32767)));
        expect_round_trip(labelled(params, "Line Wrapping"), number(std::floor(between(0, 1.99))));
        expect_round_trip(labelled(params, "Affect"), number(std::floor(between(1, 3.99))));
        param_value point;
        point.x = between(-32768, 32767);
        point.y = between(-1, 1);
        point.percent = i % 2 == 0;
        expect_round_trip(labelled(params, "Position"), point);
        param_value color;
        color.color = std::bit_cast<PF_Pixel>(static_cast<std::uint32_t>(random()));
        color.color.alpha = i % 3 == 0 ? 255 : color.color.alpha;
        expect_round_trip(labelled(params, "Normal Color"), color);
        if (HasFailure())
        {
            return;
        }
    }
    expect_round_trip(labelled(params, "Blend Amount"), number(std::numeric_limits<double>::denorm_min()));
    expect_round_trip(labelled(params, "Rotation"), number(-0.0));
}
