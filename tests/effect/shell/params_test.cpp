// The registered records against a table typed out by hand: every byte of each, with the published offsets.
#include "tests/support/effect_fixture.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>

namespace
{
constexpr int kPlain = 0x20;  // may be keyframed
constexpr int kNoKeys = 0x22; // may not
constexpr std::size_t kUnion = 56;
constexpr std::size_t kLabel = 64; // the pointer to a checkbox's label or a popup's choices

// One record as bytes, zero but for what is put.
struct expected_record
{
    std::array<unsigned char, 176> bytes{};
    const char* label = nullptr;

    template <class T>
    expected_record& put(std::size_t offset, T value)
    {
        std::memcpy(bytes.data() + offset, &value, sizeof value);
        return *this;
    }
};

expected_record record(std::int32_t id, std::int32_t type, const char* name, std::int32_t flags)
{
    expected_record r;
    r.put<std::int32_t>(0, id).put<std::int32_t>(12, type).put<std::int32_t>(48, flags);
    std::memcpy(r.bytes.data() + 16, name, std::strlen(name));
    return r;
}

expected_record topic(int id, const char* name)
{
    return record(id, 13, name, kPlain);
}

expected_record topic_end(int id)
{
    return record(id, 14, "", 0);
}

expected_record slider(int id, const char* name, int value, int low, int high, int flags = kPlain)
{
    return record(id, 1, name, flags)
        .put<std::int32_t>(kUnion, value)
        .put<std::int32_t>(kUnion + 68, low)
        .put<std::int32_t>(kUnion + 72, high)
        .put<std::int32_t>(kUnion + 76, low)
        .put<std::int32_t>(kUnion + 80, high)
        .put<std::int32_t>(kUnion + 84, value);
}

expected_record percent(int id, const char* name, int value_fixed)
{
    return record(id, 2, name, kPlain)
        .put<std::int32_t>(kUnion, value_fixed)
        .put<std::int32_t>(kUnion + 68, 0)
        .put<std::int32_t>(kUnion + 72, 65536)
        .put<std::int32_t>(kUnion + 76, 0)
        .put<std::int32_t>(kUnion + 80, 65536)
        .put<std::int32_t>(kUnion + 84, value_fixed)
        .put<std::int16_t>(kUnion + 88, 1)
        .put<std::int16_t>(kUnion + 90, 1);
}

expected_record number(int id, const char* name, float value, float low, float high)
{
    return record(id, 10, name, kPlain)
        .put<double>(kUnion, static_cast<double>(value))
        .put<float>(kUnion + 48, low)
        .put<float>(kUnion + 52, high)
        .put<float>(kUnion + 56, low)
        .put<float>(kUnion + 60, high)
        .put<float>(kUnion + 64, value)
        .put<std::int16_t>(kUnion + 68, 1)
        .put<std::int16_t>(kUnion + 70, 0x20)
        .put<float>(kUnion + 76, 0.05f);
}

expected_record angle(int id, const char* name)
{
    return record(id, 3, name, kPlain);
}

expected_record point(int id, const char* name, int x, int y)
{
    return record(id, 6, name, kPlain)
        .put<std::int32_t>(kUnion, x * 65536)
        .put<std::int32_t>(kUnion + 4, y * 65536)
        .put<std::int32_t>(kUnion + 12, x * 65536)
        .put<std::int32_t>(kUnion + 16, y * 65536);
}

expected_record color(int id, const char* name, std::array<unsigned char, 4> argb)
{
    return record(id, 5, name, kPlain).put(kUnion, argb).put(kUnion + 4, argb);
}

expected_record checkbox(int id, const char* label, int on)
{
    expected_record r = record(id, 4, "", kNoKeys);
    r.put<std::int32_t>(kUnion, on).put<unsigned char>(kUnion + 4, static_cast<unsigned char>(on));
    r.label = label;
    return r;
}

expected_record popup(int id, const char* name, int value, int count, const char* choices)
{
    expected_record r = record(id, 7, name, kNoKeys);
    r.put<std::int32_t>(kUnion, value)
        .put<std::int16_t>(kUnion + 4, static_cast<std::int16_t>(count))
        .put<std::int16_t>(kUnion + 6, static_cast<std::int16_t>(value));
    r.label = choices;
    return r;
}

std::vector<expected_record> expected_records()
{
    return {
        topic(1, "Grid"),
        slider(2, "Height", 200, 2, 2000, kNoKeys),
        slider(3, "Width", 200, 2, 2000, kNoKeys),
        checkbox(4, "Make Size Match Layer Size", 1),
        point(5, "Position", 50, 50),
        angle(6, "Rotation"),
        slider(7, "Rows", 4, 0, 100, kNoKeys),
        slider(8, "Columns", 4, 0, 100, kNoKeys),
        checkbox(9, "Show Grid", 0),
        point(10, "Compression Center", 50, 50),
        slider(11, "Line Compression", 0, -100, 100),
        percent(12, "Line Spacing Randomness", 0),
        topic_end(13),
        topic(14, "Lines"),
        slider(15, "Normal Line Width (NLW)", 2, 1, 200),
        slider(16, "NLW Randomness", 0, 0, 2000),
        slider(17, "Stressed Line Width", 100, -100, 100),
        slider(18, "Distortion", 35, 0, 100),
        percent(19, "Distortion Randomness", 0),
        color(20, "Normal Color", {255, 0, 0, 255}),
        color(21, "Stressed Color", {255, 255, 0, 0}),
        percent(22, "Blend Amount", 32768),
        percent(23, "Opacity", 65536),
        percent(24, "Opacity Randomness", 0),
        checkbox(25, "Angular Lines", 0),
        slider(26, "Tolerance", 1, 1, 20),
        checkbox(27, "Composite On Original", 0),
        checkbox(28, "Fast Draw", 0),
        topic_end(29),
        topic(30, "Lines With Ends"),
        checkbox(31, "Lines Have Ends", 0),
        checkbox(32, "Lock Horizontal To Vertical", 0),
        slider(33, "Vertical Length", 200, 0, 4000),
        slider(34, "Horizontal Length", 200, 0, 4000),
        slider(35, "Length Randomness", 0, 0, 2000),
        point(36, "Vertical Starting Point", 50, 10),
        point(37, "Horizontal Starting Point", 10, 50),
        percent(38, "Starting Point Randomness", 0),
        slider(39, "Vertical Offset", 0, -4000, 4000),
        slider(40, "Horizontal Offset", 0, -4000, 4000),
        number(41, "Vertical Growth", 3.0f, 0.0f, 100.0f),
        number(42, "Horizontal Growth", 3.0f, 0.0f, 100.0f),
        slider(43, "Growth Randomness", 0, 0, 2000),
        checkbox(44, "Line Wrapping", 0),
        topic_end(45),
        topic(46, "Ripples"),
        percent(47, "Frequency", 49152),
        percent(48, "Frequency Randomness", 0),
        slider(49, "Size", 15, 1, 100),
        slider(50, "Size Randomness", 0, 0, 2000),
        slider(51, "Speed", 5, 0, 100),
        slider(52, "Speed Randomness", 0, 0, 2000),
        number(53, "Turbulance", 3.0f, 1.0f, 7.0f),
        percent(54, "Turbulance Randomness", 0),
        popup(55, "Affect", 3, 3, "Vert Lines|Horz Lines|Both"),
        slider(56, "Random Seed", 12345, 1, 2147483647),
        topic_end(57),
        topic(58, "Displacement"),
        checkbox(59, "Use Displacement", 0),
        angle(60, "Angle of Displacement"),
        slider(61, "Amount of Displacement", 3, 0, 100),
        percent(62, "Soften", 32768),
        topic_end(63),
    };
}
} // namespace

TEST(params, every_byte_of_every_record_is_as_listed)
{
    effect_fixture host;
    const std::vector<expected_record> expected = expected_records();
    ASSERT_EQ(host.added.size(), 63u);
    ASSERT_EQ(expected.size(), 63u);
    for (std::size_t i = 0; i < 63; ++i)
    {
        const int id = static_cast<int>(i) + 1;
        std::array<unsigned char, 176> actual;
        static_assert(sizeof(PF_ParamDef) == actual.size());
        std::memcpy(actual.data(), &host.added[i], actual.size());
        if (expected[i].label != nullptr)
        {
            const char* label = nullptr;
            std::memcpy(&label, actual.data() + kLabel, sizeof label);
            EXPECT_STREQ(label, expected[i].label) << "parameter " << id;
            std::memset(actual.data() + kLabel, 0, sizeof label);
        }
        for (std::size_t byte = 0; byte < actual.size(); ++byte)
            ASSERT_EQ(int{actual[byte]}, int{expected[i].bytes[byte]}) << "parameter " << id << ", byte " << byte;
    }
}

TEST(params, counts_of_each_kind)
{
    effect_fixture host;
    std::map<int, int> counts;
    int without_keys = 0;
    for (const PF_ParamDef& def : host.added)
    {
        ++counts[def.param_type];
        without_keys += def.flags == kNoKeys ? 1 : 0;
        EXPECT_EQ(def.flags & PF_ParamFlag_SUPERVISE, 0);
    }
    EXPECT_EQ(counts, (std::map<int, int>{
                          {1, 22}, {2, 10}, {3, 2}, {4, 9}, {5, 2}, {6, 4}, {7, 1}, {10, 3}, {13, 5}, {14, 5}}));
    EXPECT_EQ(without_keys, 14);
}

TEST(params, topic_and_checkbox_of_line_ends_are_two_records)
{
    effect_fixture host;
    EXPECT_STREQ(host.added[29].name, "Lines With Ends");
    EXPECT_EQ(host.added[29].param_type, PF_Param_GROUP_START);
    EXPECT_STREQ(host.added[30].name, "");
    EXPECT_STREQ(host.added[30].u.bd.u.nameptr, "Lines Have Ends");
}

TEST(params, set_up_appends_63_and_answers_64)
{
    effect_fixture host;
    host.log.clear();
    host.out_data.num_params = 7;
    EXPECT_EQ(host.command(PF_Cmd_PARAMS_SETUP), PF_Err_NONE);
    EXPECT_EQ(host.out_data.num_params, 64);
    EXPECT_EQ(host.calls({"add_param"}), std::vector<std::string>(63, "add_param -1"));
}

TEST(params, names_go_through_the_hosts_strcpy)
{
    effect_fixture host;
    host.log.clear();
    host.command(PF_Cmd_PARAMS_SETUP);
    // Once for each record but the five topic ends; the nine checkboxes get the empty name.
    const std::vector<std::string> copies = host.calls({"strcpy"});
    EXPECT_EQ(copies.size(), 58u);
    EXPECT_EQ(std::count(copies.begin(), copies.end(), "strcpy "), 9);
    EXPECT_EQ(host.log[0], "strcpy Grid");
    EXPECT_EQ(host.log[1], "add_param -1");
}

TEST(params, an_error_from_the_nth_add_param_ends_it)
{
    for (int n = 1; n <= 63; ++n)
    {
        effect_fixture host;
        host.added.clear();
        host.out_data.num_params = 7;
        int seen = 0;
        host.on_call = [&](std::string_view name)
        { return name == "add_param" && ++seen == n ? PF_Err{1000 + n} : PF_Err_NONE; };
        EXPECT_EQ(host.command(PF_Cmd_PARAMS_SETUP), 1000 + n);
        EXPECT_EQ(seen, n);
        EXPECT_EQ(host.added.size(), static_cast<std::size_t>(n - 1));
        EXPECT_EQ(host.out_data.num_params, 7);
    }
}
