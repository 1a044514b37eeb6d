#include "host/preset.hpp"

#include "host/error.hpp"
#include "param_samples.hpp"

#include <gtest/gtest.h>

#include <fstream>

namespace
{
using param_samples::labelled;

const std::vector<host::param_info> params = param_samples::all_kinds();

host::composition at_25_fps()
{
    host::composition frames;
    frames.width = 1920;
    frames.height = 1080;
    return frames;
}

// Tracks that differ from any default, so that an untouched one is told from a reset one.
host::param_tracks marked_tracks()
{
    host::param_tracks values(params);
    for (const host::param_info& info : params)
    {
        host::param_value value;
        value.x = -1000.0 - info.index;
        values.set(info.index, value);
    }
    return values;
}

void expect_untouched(const host::param_tracks& values)
{
    for (const host::param_info& info : params)
    {
        EXPECT_EQ(-1000.0 - info.index, values.of(info.index).constant.x) << info.label;
        EXPECT_TRUE(values.of(info.index).keys.empty()) << info.label;
    }
}

// The message of a refused preset; what it would have changed must be unchanged.
std::string refusal(std::string_view json)
{
    host::param_tracks values = marked_tracks();
    try
    {
        host::read_preset(json, "looks/try.json", params, at_25_fps(), values);
    }
    catch (const host::error& failure)
    {
        expect_untouched(values);
        return failure.what();
    }
    return "(nothing was thrown)";
}

class reading : public testing::Test
{
protected:
    host::preset read(std::string_view json)
    {
        return host::read_preset(json, "looks/try.json", params, frames, values);
    }
    const host::track& of(const std::string& label) const { return values.of(labelled(params, label).index); }

    host::composition frames = at_25_fps();
    host::param_tracks values = marked_tracks();
};

std::string nested(int depth)
{
    return std::string(static_cast<std::size_t>(depth), '[') + std::string(static_cast<std::size_t>(depth), ']');
}
} // namespace

TEST_F(reading, sets_what_it_names_and_nothing_else)
{
    const host::preset result = read(R"({
        "description": "Calm lines",
        "values": {
            "Rows": 12, "Blend Amount": "50%", "Normal Color": "#80ff8800", "Affect": "Horz Lines",
            "Line Wrapping": true, "Position": "50%,25%", "rotation": -90.5, "turbulance": "3.5", "3": 7 }})");
    EXPECT_EQ("try", result.name);
    EXPECT_EQ("Calm lines", result.description);
    EXPECT_EQ(12.0, of("Rows").constant.x);
    EXPECT_EQ(0.5, of("Blend Amount").constant.x);
    EXPECT_EQ(128, of("Normal Color").constant.color.alpha);
    EXPECT_EQ(255, of("Normal Color").constant.color.red);
    EXPECT_EQ(2.0, of("Affect").constant.x);
    EXPECT_EQ(1.0, of("Line Wrapping").constant.x);
    EXPECT_EQ(50.0, of("Position").constant.x);
    EXPECT_EQ(25.0, of("Position").constant.y);
    EXPECT_TRUE(of("Position").constant.percent);
    EXPECT_EQ(-90.5, of("Rotation").constant.x);
    EXPECT_EQ(3.5, of("Turbulance").constant.x);
    EXPECT_EQ(7.0, of("Random Seed").constant.x);
    const int untouched = labelled(params, "Vertical Offset").index;
    EXPECT_EQ(-1000.0 - untouched, of("Vertical Offset").constant.x);
}

TEST_F(reading, takes_a_bare_object_of_values)
{
    const host::preset result = read(R"({"Rows": 3, "description": "Bare", "Affect": 1, "Blend Amount": 0.25})");
    EXPECT_EQ("Bare", result.description);
    EXPECT_EQ(3.0, of("Rows").constant.x);
    EXPECT_EQ(1.0, of("Affect").constant.x);
    EXPECT_EQ(0.25, of("Blend Amount").constant.x);
}

TEST_F(reading, takes_an_empty_preset)
{
    EXPECT_EQ("", read("{}").description);
    read(R"({"values": {}})");
    expect_untouched(values);
}

TEST_F(reading, a_constant_replaces_keys)
{
    read(R"({"Rotation": {"keys": [[0, 1], [10, 2]]}})");
    ASSERT_EQ(2U, of("Rotation").keys.size());
    read(R"({"Rotation": 5})");
    EXPECT_TRUE(of("Rotation").keys.empty());
    EXPECT_EQ(5.0, of("Rotation").constant.x);
}

TEST_F(reading, key_times_are_frames_or_seconds)
{
    frames.time_step = 1001;
    frames.time_scale = 30000;
    read(R"({"Rotation": {"keys": [[-30, 10], [0, "20deg"], ["1.5s", 30], ["2 s", 40], [300, 50]]}})");
    const host::track& rotation = of("Rotation");
    ASSERT_EQ(5U, rotation.keys.size());
    EXPECT_DOUBLE_EQ(-1.001, rotation.keys[0].seconds);
    EXPECT_EQ(0.0, rotation.keys[1].seconds);
    EXPECT_EQ(1.5, rotation.keys[2].seconds);
    EXPECT_EQ(2.0, rotation.keys[3].seconds);
    EXPECT_DOUBLE_EQ(10.01, rotation.keys[4].seconds);
    EXPECT_EQ(10.0, rotation.keys[0].value.x);
    EXPECT_EQ(50.0, rotation.keys[4].value.x);
    EXPECT_EQ(host::interpolation::linear, rotation.between);
}

TEST_F(reading, interpolation_is_one_of_three)
{
    read(R"({"Rotation": {"keys": [[0, 1]], "interpolation": "hold"}})");
    EXPECT_EQ(host::interpolation::hold, of("Rotation").between);
    read(R"({"Rotation": {"keys": [[0, 1]], "interpolation": "smooth"}})");
    EXPECT_EQ(host::interpolation::smooth, of("Rotation").between);
    read(R"({"Rotation": {"interpolation": "linear", "keys": [[0, 1]]}})");
    EXPECT_EQ(host::interpolation::linear, of("Rotation").between);
}

TEST_F(reading, keys_hold_colors_and_points)
{
    read(
        R"({"Normal Color": {"keys": [[0, "#000"], [25, "#fff"]]}, "Position": {"keys": [[0, "1,2"], [1, "3,4"]]}})");
    EXPECT_EQ(255, of("Normal Color").keys[1].value.color.green);
    EXPECT_EQ(1.0, of("Normal Color").keys[1].seconds);
    EXPECT_EQ(4.0, of("Position").keys[1].value.y);
}

TEST(preset, refuses_malformed_json_with_its_line)
{
    EXPECT_EQ(0U, refusal("{\n\"Rows\": 3,\n}").find("looks/try.json: no valid JSON: parse error at line 3, "));
    for (const char* json : {"", " ", "{", R"({"Rows": })", R"({"Rows": 3} x)", R"({"Rows": NaN})",
                             R"({"Rows": Infinity})", R"({"Rows": nan})", R"({"Turbulance": 1e999})",
                             "{\"Rows\": 3}\xff", R"({'Rows': 3})", R"({"Rows": 3, /* no */ "Affect": 1})"})
    {
        EXPECT_EQ(0U, refusal(json).find("looks/try.json: no valid JSON: ")) << json;
    }
}

TEST(preset, refuses_a_root_of_another_type)
{
    EXPECT_EQ("looks/try.json: a preset is a JSON object such as {\"values\": {...}}, not a JSON array",
              refusal("[1]"));
    EXPECT_EQ("looks/try.json: \"values\" is an object of parameters, not a JSON number",
              refusal(R"({"values": 3})"));
    EXPECT_EQ("looks/try.json: unknown entry \"value\": there are \"description\" and \"values\"",
              refusal(R"({"values": {"Rows": 3}, "value": {}})"));
}

TEST(preset, refuses_a_description_that_is_no_line)
{
    EXPECT_EQ("looks/try.json: \"description\" is a text, not a JSON number",
              refusal(R"({"description": 3, "values": {"Rows": 3}})"));
    EXPECT_EQ("looks/try.json: \"description\" is one line of text without control characters",
              refusal(R"({"description": "a\nb", "values": {"Rows": 3}})"));
}

TEST(preset, refuses_unknown_names_with_a_suggestion)
{
    EXPECT_EQ("looks/try.json: unknown parameter \"Row\": did you mean \"Rows\"? 'filigrane params' lists all",
              refusal(R"({"values": {"Random Seed": 7, "Row": 3}})"));
    EXPECT_EQ(0U, refusal(R"({"values": {"Lines": 3}})").find("looks/try.json: \"Lines\" is a "));
}

TEST(preset, refuses_a_name_given_twice)
{
    EXPECT_EQ("looks/try.json: \"Rows\" is there twice: keep one", refusal(R"({"Rows": 3, "Rows": 3})"));
    EXPECT_EQ("looks/try.json: \"values\" is there twice: keep one",
              refusal(R"({"values": {"Rows": 3}, "values": {}})"));
    EXPECT_EQ("looks/try.json: \"keys\" is there twice: keep one",
              refusal(R"({"Rotation": {"keys": [[0, 1]], "keys": [[0, 1]]}})"));
    EXPECT_EQ("looks/try.json: \"Rows\" and \"rows\" are the same parameter: keep one",
              refusal(R"({"Rows": 3, "rows": 4})"));
    EXPECT_EQ("looks/try.json: \"2\" and \"Rows\" are the same parameter: keep one",
              refusal(R"({"Rows": 3, "2": 3})"));
}

TEST(preset, the_same_member_in_two_objects_is_no_duplicate)
{
    EXPECT_EQ("(nothing was thrown)",
              refusal(R"({"Rotation": {"keys": [[0, 1]]}, "Blend Amount": {"keys": [[0, 1]]}})"));
}

TEST(preset, refuses_wrong_types)
{
    const std::string rows = "looks/try.json: \"Rows\" takes a whole number, 0 to 100, not ";
    EXPECT_EQ(rows + "true", refusal(R"({"Rows": true})"));
    EXPECT_EQ(rows + "a JSON null", refusal(R"({"Rows": null})"));
    EXPECT_EQ(rows + "a JSON array", refusal(R"({"Rows": [3]})"));
    EXPECT_EQ(rows + "\"many\"", refusal(R"({"Rows": "many"})"));
    EXPECT_EQ("looks/try.json: \"Normal Color\" takes #rgb, #rrggbb or #aarrggbb (alpha first), not 255",
              refusal(R"({"Normal Color": 255})"));
    EXPECT_EQ(
        "looks/try.json: \"Position\" takes x,y in pixels or percent of the layer, such as 960,540 or 50%,50%, "
        "not a JSON array",
        refusal(R"({"Position": [1, 2]})"));
    EXPECT_EQ("looks/try.json: \"Line Wrapping\" takes on or off, not 2", refusal(R"({"Line Wrapping": 2})"));
    EXPECT_EQ("looks/try.json: \"Affect\" takes Vert Lines, Horz Lines or Both (or its number, 1 to 3), not false",
              refusal(R"({"Affect": false})"));
}

TEST(preset, refuses_values_out_of_range)
{
    EXPECT_EQ("looks/try.json: \"Rows\" takes a whole number, 0 to 100, not 101", refusal(R"({"Rows": 101})"));
    EXPECT_EQ("looks/try.json: \"Rows\" takes a whole number, 0 to 100, not 4.5", refusal(R"({"Rows": 4.5})"));
    EXPECT_EQ("looks/try.json: \"Rows\" takes a whole number, 0 to 100, not 18446744073709551615",
              refusal(R"({"Rows": 18446744073709551615})"));
    EXPECT_EQ("looks/try.json: \"Blend Amount\" takes a percentage or a number (0.5 is 50%), 0% to 100%, not 50",
              refusal(R"({"Blend Amount": 50})"));
    EXPECT_EQ("looks/try.json: \"Turbulance\" takes a number, 1 to 7, not \"nan\"",
              refusal(R"({"Turbulance": "nan"})"));
    EXPECT_EQ("looks/try.json: \"Affect\" takes Vert Lines, Horz Lines or Both (or its number, 1 to 3), not 4",
              refusal(R"({"Affect": 4})"));
}

TEST(preset, refuses_keys_where_nothing_animates)
{
    EXPECT_EQ("looks/try.json: \"Rows\": it cannot be animated: give it one value in place of keys",
              refusal(R"({"Rows": {"keys": [[0, 1], [10, 2]]}})"));
}

TEST(preset, refuses_keys_out_of_order)
{
    const std::string message = "looks/try.json: \"Rotation\": key 2: its time is not after the key before: "
                                "keys stand in ascending time";
    EXPECT_EQ(message, refusal(R"({"Rotation": {"keys": [[10, 1], [5, 2]]}})"));
    EXPECT_EQ(message, refusal(R"({"Rotation": {"keys": [[10, 1], [10, 2]]}})"));
    EXPECT_EQ(message, refusal(R"({"Rotation": {"keys": [["2s", 1], [50, 2]]}})"));
    EXPECT_EQ(message, refusal(R"({"Rotation": {"keys": [["0.28s", 1], [7, 2]]}})"));
    EXPECT_EQ("(nothing was thrown)", refusal(R"({"Rotation": {"keys": [["2s", 1], [51, 2]]}})"));
}

TEST(preset, refuses_malformed_keys)
{
    EXPECT_EQ("looks/try.json: \"Rotation\": \"keys\" is a list of at least one [time, value]",
              refusal(R"({"Rotation": {"keys": []}})"));
    EXPECT_EQ("looks/try.json: \"Rotation\": \"keys\" is a list of at least one [time, value]",
              refusal(R"({"Rotation": {}})"));
    EXPECT_EQ("looks/try.json: \"Rotation\": \"keys\" is a list of at least one [time, value]",
              refusal(R"({"Rotation": {"keys": {"0": 1}}})"));
    for (const char* key : {"5", "[0]", "[0, 1, 2]", "{}"})
    {
        EXPECT_EQ("looks/try.json: \"Rotation\": key 1: a key is written [time, value]",
                  refusal(R"({"Rotation": {"keys": [)" + std::string(key) + "]}}"));
    }
    EXPECT_EQ("looks/try.json: \"Rotation\": unknown entry \"key\": there are \"keys\" and \"interpolation\"",
              refusal(R"({"Rotation": {"key": [[0, 1]]}})"));
    EXPECT_EQ(
        "looks/try.json: \"Rotation\": key 2: \"Rotation\" takes degrees, such as 45 or -90deg, not \"left\"",
        refusal(R"({"Rotation": {"keys": [[0, 1], [1, "left"]]}})"));
    EXPECT_EQ("looks/try.json: \"Position\": key 2: keys of one parameter are all in pixels or all in percent",
              refusal(R"({"Position": {"keys": [[0, "1,1"], [1, "1%,1%"]]}})"));
}

TEST(preset, refuses_times_that_are_none)
{
    const std::string message = "looks/try.json: \"Rotation\": key 1: a time is a frame number such as 50, or "
                                "seconds such as \"2s\", not ";
    EXPECT_EQ(message + "\"soon\"", refusal(R"({"Rotation": {"keys": [["soon", 1]]}})"));
    EXPECT_EQ(message + "\"2\"", refusal(R"({"Rotation": {"keys": [["2", 1]]}})"));
    EXPECT_EQ(message + "\"s\"", refusal(R"({"Rotation": {"keys": [["s", 1]]}})"));
    EXPECT_EQ(message + "\"nans\"", refusal(R"({"Rotation": {"keys": [["nans", 1]]}})"));
    EXPECT_EQ(message + "\"infs\"", refusal(R"({"Rotation": {"keys": [["infs", 1]]}})"));
    EXPECT_EQ(message + "a JSON boolean", refusal(R"({"Rotation": {"keys": [[true, 1]]}})"));
    EXPECT_EQ(message + "a JSON null", refusal(R"({"Rotation": {"keys": [[null, 1]]}})"));
    EXPECT_EQ("looks/try.json: \"Rotation\": key 1: the time is more than 2147483647 seconds from 0",
              refusal(R"({"Rotation": {"keys": [[1e300, 1]]}})"));
    EXPECT_EQ("looks/try.json: \"Rotation\": key 1: the time is more than 2147483647 seconds from 0",
              refusal(R"({"Rotation": {"keys": [["-1e10s", 1]]}})"));
}

TEST(preset, refuses_unknown_interpolation)
{
    EXPECT_EQ(
        "looks/try.json: \"Rotation\": \"interpolation\" is \"hold\", \"linear\" or \"smooth\", not \"cubic\"",
        refusal(R"({"Rotation": {"keys": [[0, 1]], "interpolation": "cubic"}})"));
    EXPECT_EQ(
        "looks/try.json: \"Rotation\": \"interpolation\" is \"hold\", \"linear\" or \"smooth\", not a JSON number",
        refusal(R"({"Rotation": {"keys": [[0, 1]], "interpolation": 1}})"));
}

TEST(preset, refuses_deep_nesting)
{
    EXPECT_EQ("looks/try.json: nested more than 32 deep: a preset needs 5", refusal(nested(33)));
    EXPECT_EQ("looks/try.json: nested more than 32 deep: a preset needs 5", refusal(nested(500000)));
    EXPECT_EQ("looks/try.json: a preset is a JSON object such as {\"values\": {...}}, not a JSON array",
              refusal(nested(32)));
}

TEST(preset, refuses_more_entries_than_any_effect_has)
{
    std::string json = "{\"0\": 1";
    for (int i = 1; i < 4097; ++i)
    {
        json += ", \"" + std::to_string(i) + "\": 1";
    }
    EXPECT_EQ("looks/try.json: more than 4096 entries in one object: this is no preset", refusal(json + "}"));
}

TEST(preset, a_byte_order_mark_is_no_harm_and_other_encodings_are_told)
{
    EXPECT_EQ("(nothing was thrown)", refusal("\xEF\xBB\xBF{\"Rows\": 3}"));
    const std::string message = "looks/try.json: no valid JSON: the text is UTF-16; save it as UTF-8";
    EXPECT_EQ(message, refusal(std::string_view("\xFF\xFE{\0}\0", 6)));
    EXPECT_EQ(message, refusal(std::string_view("\xFE\xFF\0{\0}", 6)));
    for (const char* json : {"{\"Ro\xFFws\": 3}", "{\"Affect\": \"\xC3\"}", "{\"description\": \"\xED\xA0\x80\"}"})
    {
        const std::string told = refusal(json);
        EXPECT_EQ(0U, told.find("looks/try.json: no valid JSON: ")) << json;
        EXPECT_EQ(std::string::npos, told.find('\n')) << json;
    }
}

TEST(preset, refuses_files_past_one_mebibyte)
{
    std::string json = R"({"Rows": 3})";
    json.resize(1024 * 1024, ' ');
    EXPECT_EQ("(nothing was thrown)", refusal(json));
    EXPECT_EQ("looks/try.json: larger than 1 MiB: this is no preset", refusal(json + " "));
}

TEST(preset, needs_a_frame_rate)
{
    host::composition frames = at_25_fps();
    frames.time_scale = 0;
    host::param_tracks values = marked_tracks();
    EXPECT_THROW(host::read_preset("{}", "a.json", params, frames, values), host::error);
}

class preset_file : public testing::Test
{
protected:
    // Tests run at the same time in processes of their own: each has its own folder.
    void SetUp() override
    {
        folder = std::filesystem::path(testing::TempDir()) /
                 (std::string("filigrane_") + testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(folder);
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    std::string message_for(const std::filesystem::path& file)
    {
        try
        {
            host::load_preset(file, params, at_25_fps(), values);
        }
        catch (const host::error& failure)
        {
            return failure.what();
        }
        return "(nothing was thrown)";
    }

    std::filesystem::path folder;
    host::param_tracks values = marked_tracks();
};

TEST_F(preset_file, is_named_after_its_stem)
{
    std::ofstream(folder / "calm.sea.json") << R"({"Rows": 3})";
    EXPECT_EQ("calm.sea", host::load_preset(folder / "calm.sea.json", params, at_25_fps(), values).name);
    EXPECT_EQ(3.0, values.of(labelled(params, "Rows").index).constant.x);
}

TEST_F(preset_file, that_cannot_be_read_is_named)
{
    const std::string remedy = ": give the path of a preset file";
    EXPECT_EQ((folder / "none.json").string() + ": cannot be read (No such file or directory)" + remedy,
              message_for(folder / "none.json"));
    EXPECT_EQ(folder.string() + ": is a folder" + remedy, message_for(folder));
}

TEST_F(preset_file, that_says_nothing_is_told)
{
    const std::string remedy =
        ": no valid JSON: the file is empty; a preset is an object such as {\"values\": {...}}";
    for (const char* nothing : {"", " \n\t\r\n"})
    {
        std::ofstream(folder / "empty.json") << nothing;
        EXPECT_EQ((folder / "empty.json").string() + remedy, message_for(folder / "empty.json"));
    }
}

TEST_F(preset_file, is_outlined_in_its_own_order)
{
    std::ofstream(folder / "a.json") << R"({"values": {"Rows": 3, "Affect": "Both", "No\u001bne": "x\ny",
        "Any": {"keys": [[0, 1]]}}, "description": "One line."})";
    const host::preset_outline outline = host::outline_preset(folder / "a.json");
    EXPECT_EQ("One line.", outline.description);
    ASSERT_EQ(4U, outline.values.size());
    EXPECT_EQ("Rows", outline.values[0].name);
    EXPECT_EQ("3", outline.values[0].value);
    EXPECT_EQ("Both", outline.values[1].value);
    EXPECT_EQ("No?ne", outline.values[2].name);
    EXPECT_EQ("x?y", outline.values[2].value);
    EXPECT_EQ(R"({"keys":[[0,1]]})", outline.values[3].value);

    std::ofstream(folder / "bare.json") << R"({"description": "Bare.", "Rows": 3})";
    const host::preset_outline bare = host::outline_preset(folder / "bare.json");
    EXPECT_EQ("Bare.", bare.description);
    ASSERT_EQ(1U, bare.values.size());
    EXPECT_EQ("Rows", bare.values[0].name);
}

TEST_F(preset_file, is_outlined_only_where_it_is_a_preset)
{
    const auto outline_error = [this](const std::string& text)
    {
        std::ofstream(folder / "bad.json") << text;
        try
        {
            host::outline_preset(folder / "bad.json");
        }
        catch (const host::error& failure)
        {
            return std::string(failure.what()).substr((folder / "bad.json").string().size());
        }
        return std::string("(nothing was thrown)");
    };
    EXPECT_EQ(": nested more than 32 deep: a preset needs 5", outline_error(nested(100000)));
    EXPECT_EQ(": larger than 1 MiB: this is no preset", outline_error(nested(5000000)));
    EXPECT_EQ(": \"Rows\" is there twice: keep one", outline_error(R"({"Rows": 3, "Rows": 3})"));
    EXPECT_EQ(0U, outline_error("{").find(": no valid JSON: "));
    EXPECT_THROW(host::outline_preset(folder), host::error);
}

TEST_F(preset_file, that_is_too_large_is_not_read_whole)
{
    EXPECT_EQ("/dev/zero: larger than 1 MiB: this is no preset", message_for("/dev/zero"));
}

TEST_F(preset_file, errors_name_it)
{
    std::ofstream(folder / "bad.json") << R"({"Rows": 300})";
    EXPECT_EQ((folder / "bad.json").string() + ": \"Rows\" takes a whole number, 0 to 100, not 300",
              message_for(folder / "bad.json"));
    expect_untouched(values);
}
