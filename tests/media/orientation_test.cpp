// Pictures that are stored lying on their side or mirrored, and clips of them: read upright.
#include "clip_maker.hpp"
#include "temporary_folder.hpp"

using namespace media_test;
using orientation = temporary_folder;

namespace
{
// A JPEG with the tag that cameras write: Exif, little endian, one directory with one entry.
std::string with_orientation(const std::string& jpeg, int value)
{
    using namespace std::string_literals;
    const std::string tag = "\x12\x01\x03\0\x01\0\0\0"s + static_cast<char>(value) + "\0\0\0"s;
    const std::string exif = "Exif\0\0II*\0\x08\0\0\0\x01\0"s + tag + "\0\0\0\0"s;
    const std::string length = "\0"s + static_cast<char>(exif.size() + 2);
    return jpeg.substr(0, 2) + "\xFF\xE1" + length + exif + jpeg.substr(2);
}

// What the eight values of the tag mean, one by one: the stored pixel that is shown at x, y.
std::pair<int, int> stored_place(int value, int x, int y, int width, int height)
{
    const int right = width - 1;
    const int bottom = height - 1;
    const std::pair<int, int> places[] = {{x, y}, {right - x, y},  {right - x, bottom - y}, {x, bottom - y},
                                          {y, x}, {y, bottom - x}, {right - y, bottom - x}, {right - y, x}};
    return places[value - 1];
}

void expect_turned(const media::picture& stored, const media::picture& shown, int value)
{
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width(); ++x)
        {
            const auto [from_x, from_y] = stored_place(value, x, y, stored.width(), stored.height());
            const std::uint8_t* wanted = stored.view().row(from_y) + 4 * from_x;
            ASSERT_TRUE(std::equal(wanted, wanted + 4, shown.view().row(y) + 4 * x)) << x << ", " << y;
        }
}
} // namespace

TEST_F(orientation, a_photo_stands_upright)
{
    write_all(at("a.jpg"), sized(40, 24), {make_opaque(noise(40, 24, 1))});
    const std::string bytes = contents(at("a.jpg"));
    media::reader plain_reader(at("a.jpg"));
    const media::picture stored = read_one(plain_reader);
    for (int value = 1; value <= 8; ++value)
    {
        SCOPED_TRACE("orientation " + std::to_string(value));
        put(at("turned.jpg"), with_orientation(bytes, value));
        media::reader in(at("turned.jpg"));
        ASSERT_EQ(in.info().width, value <= 4 ? 40 : 24);
        ASSERT_EQ(in.info().height, value <= 4 ? 24 : 40);
        expect_turned(stored, read_one(in), value);
    }
}

TEST_F(orientation, a_sequence_of_photos_stands_upright)
{
    write_all(at("a.jpg"), sized(40, 24), {make_opaque(noise(40, 24, 1))});
    media::reader plain_reader(at("a.jpg"));
    const media::picture stored = read_one(plain_reader);
    for (const char* name : {"f_1.jpg", "f_2.jpg"})
        put(at(name), with_orientation(contents(at("a.jpg")), 6));
    media::reader in(at("f_%d.jpg"));
    ASSERT_EQ(in.info().width, 24);
    ASSERT_EQ(in.info().height, 40);
    expect_turned(stored, read_one(in, 2), 6);
}

TEST_F(orientation, a_clip_stands_upright)
{
    // In the order of the photos' tag.
    const std::array<int, 4> axes[] = {{1, 0, 0, 1}, {-1, 0, 0, 1}, {-1, 0, 0, -1}, {1, 0, 0, -1},
                                       {0, 1, 1, 0}, {0, 1, -1, 0}, {0, -1, -1, 0}, {0, -1, 1, 0}};
    const media::picture stored = noise(40, 24, 1);
    for (int value = 1; value <= 8; ++value)
    {
        SCOPED_TRACE("orientation " + std::to_string(value));
        clip_recipe recipe;
        recipe.frames = {{0, noise(40, 24, 2)}, {1, stored}};
        recipe.axes = axes[value - 1];
        make_clip(at("a.mov"), recipe);
        media::reader in(at("a.mov"));
        ASSERT_EQ(in.info().width, value <= 4 ? 40 : 24);
        ASSERT_EQ(in.info().height, value <= 4 ? 24 : 40);
        expect_turned(stored, read_one(in, 1), value);
    }
}
