// The same bytes as in the pictures that the command line tool writes.

#include "tests/adapters/openfx/ofx_session.hpp"
#include "tests/media/temporary_folder.hpp"

#include "media/reader.hpp"

#include <cstdlib>

namespace
{
using namespace ofx;

class openfx_command : public media_test::temporary_folder
{
};

plain_picture picture_of(const std::filesystem::path& file)
{
    media::reader reader(file);
    const int width = reader.info().width, height = reader.info().height;
    std::vector<std::uint8_t> argb(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    EXPECT_TRUE(reader.read(0, {argb.data(), width, height, 4 * width}));
    plain_picture picture(width, height);
    for (std::size_t i = 0; i < argb.size(); i += 4)
    {
        const std::uint8_t rgba[] = {argb[i + 1], argb[i + 2], argb[i + 3], argb[i]};
        std::copy_n(rgba, 4, picture.rgba.begin() + static_cast<std::ptrdiff_t>(i));
    }
    return picture;
}

TEST_F(openfx_command, writes_the_same_frames)
{
    const std::string command = std::string("'") + FILIGRANE_TOOL + "' render -o '" +
                                at("frame_####.png").string() +
                                "' --size 160x90 --frames 10-12 --set Rows=6 --set 'Rotation=15deg' "
                                "--set 'Vertical Starting Point=25%,12.5%' --set 'Lines Have Ends=on' "
                                "--set 'Normal Color=#3366ff' --set 'Vertical Growth=2.5' >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    session s(generator);
    s.param("rows").value[0] = 6;
    s.param("rotation").value[0] = -15.0;
    s.param("verticalStartingPoint").value = {0.25, 0.875};
    s.param("linesHaveEnds").value[0] = 1;
    s.param("normalColor").value = {0.2, 0.4, 1.0, 1.0};
    s.param("verticalGrowth").value[0] = 2.5;
    for (int frame = 10; frame <= 12; ++frame)
        EXPECT_EQ(difference(picture_of(at("frame_00" + std::to_string(frame) + ".png")),
                             s.draw(160, 90, {}, {.time = static_cast<double>(frame)})->read()),
                  "");
}
} // namespace
