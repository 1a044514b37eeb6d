// What hosts read about the effect before they load it is what the effect then answers, byte for byte in both
// platforms' forms.

#include "packaging/property_list/property_list.hpp"
#include "packaging/property_list/resource_file.hpp"
#include "tests/packaging/property_list_reader.hpp"

#include "host/plugin.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace
{
using packaging_test::bytes;
using packaging_test::property;
using packaging_test::property_list;
using testing::ElementsAre;
using testing::IsEmpty;

const property& find(const property_list& list, const std::string& key)
{
    for (const property& one : list.properties)
        if (one.key == key)
            return one;
    throw std::runtime_error("no property " + key);
}

std::vector<std::string> keys(const property_list& list)
{
    std::vector<std::string> all;
    for (const property& one : list.properties)
        all.push_back(one.key);
    return all;
}

bytes of_text(const std::string& text)
{
    return {text.begin(), text.end()};
}

bytes windows_bytes()
{
    return packaging::windows_property_list(packaging::filigrane());
}

bytes macos_bytes()
{
    return packaging::macos_property_list(packaging::filigrane());
}

bytes file_bytes(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void expect_well_formed(const property_list& list)
{
    EXPECT_EQ(list.version, 0U);
    EXPECT_EQ(list.left_over, 0U);
    for (const property& one : list.properties)
    {
        EXPECT_EQ(one.vendor, "8BIM") << one.key;
        EXPECT_EQ(one.id, 0U) << one.key;
        EXPECT_EQ(one.fill, bytes(one.fill.size(), 0)) << one.key;
    }
}

TEST(property_list, tells_what_global_set_up_answers)
{
    const host::plugin effect(FILIGRANE_BUILT_PLUGIN);
    const packaging::effect_description& told = packaging::filigrane();
    EXPECT_EQ(told.version, effect.version().word);
    EXPECT_EQ(told.out_flags, effect.version().out_flags);
    EXPECT_EQ(told.out_flags2, effect.version().out_flags2);
    EXPECT_EQ(told.version, 0x99600U);
    EXPECT_EQ(told.out_flags, 0x46);
    EXPECT_EQ(told.out_flags2, 0);
    EXPECT_TRUE(effect.about().starts_with(told.name + " "));
}

TEST(property_list, windows_form_begins_with_its_marker)
{
    const bytes all = windows_bytes();
    const bytes head(all.begin(), all.begin() + 30);
    EXPECT_EQ(head, (bytes{1,   0,   0,   0, 0, 0, 12, 0, 0, 0, 'M', 'I', 'B', '8', 'd',
                           'n', 'i', 'k', 0, 0, 0, 0,  4, 0, 0, 0,   'T', 'K', 'F', 'e'}));
}

TEST(property_list, windows_form_has_every_field)
{
    const property_list list = packaging_test::read_windows(windows_bytes());
    expect_well_formed(list);
    EXPECT_THAT(keys(list), ElementsAre("kind", "name", "catg", "8664", "ePVR", "eSVR", "eVER", "eINF", "eGLO",
                                        "eGL2", "eMNA", "aeFL"));
    EXPECT_EQ(find(list, "kind").data, of_text("TKFe"));
    EXPECT_EQ(find(list, "name").data, of_text(std::string("\x09"
                                                           "Filigrane\0\0",
                                                           12)));
    EXPECT_EQ(find(list, "catg").data, of_text(std::string("\x08"
                                                           "Generate\0\0\0",
                                                           12)));
    EXPECT_EQ(find(list, "8664").data, of_text(std::string("PluginEntry\0", 12)));
    EXPECT_EQ(find(list, "ePVR").data, (bytes{2, 0, 0, 0}));
    EXPECT_EQ(find(list, "eSVR").data, (bytes{13, 0, 0, 0}));
    EXPECT_EQ(find(list, "eVER").data, (bytes{0x00, 0x96, 0x09, 0x00}));
    EXPECT_EQ(find(list, "eINF").data, (bytes{0, 0, 0, 0}));
    EXPECT_EQ(find(list, "eGLO").data, (bytes{0x46, 0, 0, 0}));
    EXPECT_EQ(find(list, "eGL2").data, (bytes{0, 0, 0, 0}));
    EXPECT_EQ(find(list, "eMNA").data, find(list, "name").data);
    EXPECT_EQ(find(list, "aeFL").data, (bytes{0, 0, 0, 0}));
    for (const property& one : list.properties)
        EXPECT_THAT(one.fill, IsEmpty()) << one.key;
}

TEST(property_list, macos_form_has_every_field)
{
    const property_list list = packaging_test::read_macos(macos_bytes());
    expect_well_formed(list);
    EXPECT_THAT(keys(list), ElementsAre("kind", "name", "catg", "mi64", "ma64", "ePVR", "eSVR", "eVER", "eINF",
                                        "eGLO", "eGL2", "eMNA", "aeFL"));
    EXPECT_EQ(find(list, "kind").data, of_text("eFKT"));
    EXPECT_EQ(find(list, "name").data, of_text("\x09"
                                               "Filigrane"));
    EXPECT_EQ(find(list, "catg").data, of_text("\x08"
                                               "Generate"));
    EXPECT_EQ(find(list, "mi64").data, of_text("\x0BPluginEntry"));
    EXPECT_EQ(find(list, "ma64").data, of_text("\x0BPluginEntry"));
    EXPECT_EQ(find(list, "ePVR").data, (bytes{0, 2, 0, 0}));
    EXPECT_EQ(find(list, "eSVR").data, (bytes{0, 13, 0, 0}));
    EXPECT_EQ(find(list, "eVER").data, (bytes{0x00, 0x09, 0x96, 0x00}));
    EXPECT_EQ(find(list, "eINF").data, (bytes{0, 0}));
    EXPECT_EQ(find(list, "eGLO").data, (bytes{0, 0, 0, 0x46}));
    EXPECT_EQ(find(list, "eGL2").data, (bytes{0, 0, 0, 0}));
    EXPECT_EQ(find(list, "eMNA").data, find(list, "name").data);
    EXPECT_EQ(find(list, "aeFL").data, (bytes{0, 0, 0, 0}));
}

// Of every length from an empty one on: the fill-up is the part that is easily wrong by one.
TEST(property_list, strings_of_every_length_fill_up_to_four)
{
    for (std::size_t length = 0; length <= 255; ++length)
    {
        packaging::effect_description effect = packaging::filigrane();
        effect.name = std::string(length, 'n');
        effect.entry_point = std::string(length, 'e');
        const property_list windows = packaging_test::read_windows(packaging::windows_property_list(effect));
        const property_list macos = packaging_test::read_macos(packaging::macos_property_list(effect));
        expect_well_formed(windows);
        expect_well_formed(macos);

        const bytes& padded = find(windows, "name").data;
        EXPECT_EQ(padded.size(), (1 + length + 3) / 4 * 4);
        EXPECT_EQ(padded[0], length);
        EXPECT_EQ(bytes(padded.begin() + 1, padded.begin() + 1 + static_cast<std::ptrdiff_t>(length)),
                  of_text(effect.name));
        const bytes& symbol = find(windows, "8664").data;
        EXPECT_EQ(symbol.size(), (length + 1 + 3) / 4 * 4);
        EXPECT_EQ(std::string(symbol.begin(), symbol.end()).c_str(), effect.entry_point);
        EXPECT_EQ(find(macos, "name").length, 1 + length);
    }
    packaging::effect_description effect = packaging::filigrane();
    effect.name = std::string(256, 'n');
    EXPECT_THROW(packaging::windows_property_list(effect), std::length_error);
    EXPECT_THROW(packaging::macos_property_list(effect), std::length_error);
}

TEST(resource_file, holds_the_one_resource)
{
    const bytes file = packaging::resource_file("PiPL", 16000, macos_bytes());
    const std::vector<packaging_test::resource> all = packaging_test::read_resource_file(file);
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].type, "PiPL");
    EXPECT_EQ(all[0].id, 16000);
    EXPECT_EQ(all[0].name_offset, -1);
    EXPECT_EQ(all[0].attributes, 0);
    EXPECT_EQ(all[0].data, macos_bytes());
    EXPECT_EQ(file.size(), 256 + 4 + macos_bytes().size() + 50);
}

TEST(resource_file, holds_resources_of_every_size)
{
    for (std::size_t size = 0; size < 70; ++size)
    {
        const bytes data(size, static_cast<std::uint8_t>(size));
        const auto all = packaging_test::read_resource_file(packaging::resource_file("TeSt", -3, data));
        ASSERT_EQ(all.size(), 1U);
        EXPECT_EQ(all[0].id, -3);
        EXPECT_EQ(all[0].data, data);
    }
}

TEST(property_list_tool, writes_both_files)
{
    const std::string folder = testing::TempDir();
    const auto run = [](const std::string& words)
    { return std::system((PROPERTY_LIST_TOOL " " + words).c_str()); };
    ASSERT_EQ(run("windows '" + folder + "/filigrane.pipl'"), 0);
    ASSERT_EQ(run("macos '" + folder + "/filigrane.rsrc'"), 0);
    EXPECT_EQ(file_bytes(folder + "/filigrane.pipl"), windows_bytes());
    EXPECT_EQ(file_bytes(folder + "/filigrane.rsrc"), packaging::resource_file("PiPL", 16000, macos_bytes()));
    EXPECT_NE(run("macos 2>/dev/null"), 0);
    EXPECT_NE(run("windows /no/such/folder/file 2>/dev/null"), 0);
}
} // namespace
