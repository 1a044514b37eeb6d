// Every picture equals the one kept for it. FILIGRANE_RENEW_PICTURES=1 keeps the pictures as they come out now;
// FILIGRANE_DRAWN_PICTURES names a folder where another build's draw_pictures has put them.

#include "picture_diff.hpp"
#include "picture_render.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <set>

namespace pictures
{
// How gtest names a case's value.
void PrintTo(const picture_case& c, std::ostream* out)
{
    *out << c.why;
}
} // namespace pictures

namespace
{
using pictures::picture_case;

const std::filesystem::path kExpected = FILIGRANE_EXPECTED_PICTURES;
const std::filesystem::path kDifferences = FILIGRANE_PICTURE_DIFFERENCES;

bool renewing()
{
    const char* const renew = std::getenv("FILIGRANE_RENEW_PICTURES");
    return renew != nullptr && std::string(renew) == "1";
}

// Drawn here, or read as they were drawn elsewhere; empty where that is no such picture.
media::picture actual_picture(const picture_case& c)
{
    const char* const folder = std::getenv("FILIGRANE_DRAWN_PICTURES");
    if (folder == nullptr)
        return pictures::render(c);
    const host::composition comp = pictures::composition_of(c);
    media::picture drawn(comp.picture_width(), comp.picture_height());
    std::ifstream file(std::filesystem::path(folder) / (c.name + ".argb"), std::ios::binary);
    const auto size = static_cast<std::streamsize>(drawn.bytes().size());
    const bool whole = file.read(reinterpret_cast<char*>(drawn.view().argb), size) && file.peek() == EOF;
    return whole ? std::move(drawn) : media::picture();
}

class golden : public testing::TestWithParam<picture_case>
{
};

TEST_P(golden, picture)
{
    const picture_case& c = GetParam();
    const media::picture actual = actual_picture(c);
    ASSERT_GT(actual.width(), 0) << c.name << " was not drawn, or at another size";
    const std::filesystem::path file = kExpected / (c.name + ".png");
    if (renewing())
        pictures::write_picture(file, actual);
    ASSERT_TRUE(std::filesystem::exists(file))
        << file << " is missing; set FILIGRANE_RENEW_PICTURES=1 to make it, and look at it";
    const std::string different = pictures::difference(c.name, actual, pictures::read_picture(file), kDifferences);
    EXPECT_TRUE(different.empty()) << c.name << " (" << c.why << "): " << different;
}

INSTANTIATE_TEST_SUITE_P(pictures, golden, testing::ValuesIn(pictures::all_cases()),
                         [](const testing::TestParamInfo<picture_case>& one) { return one.param.name; });

TEST(golden_cases, keep_no_picture_without_a_case)
{
    std::set<std::string> names;
    for (const picture_case& c : pictures::all_cases())
        EXPECT_TRUE(names.insert(c.name).second) << c.name << " is there twice";
    if (!std::filesystem::exists(kExpected))
        return;
    for (const auto& entry : std::filesystem::directory_iterator(kExpected))
        EXPECT_TRUE(names.contains(entry.path().stem().string())) << entry.path();
}

TEST(golden_cases, are_different_pictures)
{
    std::set<std::vector<std::uint8_t>> seen;
    for (const picture_case& c : pictures::all_cases())
        EXPECT_TRUE(seen.insert(pictures::render(c).bytes()).second) << c.name << " looks like a case before it";
}

TEST(golden_cases, do_not_depend_on_what_was_rendered_before)
{
    for (const picture_case& c : pictures::all_cases())
        EXPECT_EQ(pictures::render(c).bytes(), pictures::render(c).bytes()) << c.name;
}

TEST(golden_cases, do_not_depend_on_row_padding)
{
    for (picture_case c : pictures::all_cases())
    {
        const media::picture before = pictures::render(c);
        c.row_padding = c.row_padding == 0 ? 28 : 0;
        EXPECT_EQ(pictures::render(c).bytes(), before.bytes()) << c.name;
    }
}

TEST(picture_difference, counts_pixels_and_keeps_the_pictures)
{
    const media::picture a = pictures::input_picture(8, 5);
    EXPECT_EQ(pictures::difference("same", a, a, kDifferences), "");
    media::picture b = a;
    b.view().row(3)[4 * 6 + 2] = static_cast<std::uint8_t>(b.view().row(3)[4 * 6 + 2] - 10);
    const std::string told = pictures::difference("counted", b, a, kDifferences);
    EXPECT_NE(told.find("1 of 40 pixels differ, by up to 10, the first at (6, 3)"), std::string::npos) << told;
    EXPECT_EQ(pictures::read_picture(kDifferences / "counted_actual.png").bytes(), b.bytes());
    EXPECT_EQ(pictures::read_picture(kDifferences / "counted_difference.png").view().row(3)[4 * 6 + 2], 80);
}
} // namespace
