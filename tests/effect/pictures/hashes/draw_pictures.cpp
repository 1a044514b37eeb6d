// draw_pictures FOLDER: every golden case, drawn by this build, as <name>.argb in the folder: the bytes of the
// picture's rows and nothing else. golden_test compares them where FILIGRANE_DRAWN_PICTURES names the folder, so
// that a system without the media libraries is held to the same pictures.

#include "tests/effect/pictures/picture_render.hpp"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace
{
void write_bytes(const std::filesystem::path& name, const std::vector<std::uint8_t>& bytes)
{
    std::ofstream file(name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush())
        throw std::runtime_error(name.string() + ": cannot be written");
}
} // namespace

int main(int count, char** words)
{
    if (count != 2)
    {
        std::fputs("draw_pictures: give the folder to draw into\n", stderr);
        return 2;
    }
    try
    {
        const std::filesystem::path folder = words[1];
        std::filesystem::create_directories(folder);
        for (const pictures::picture_case& c : pictures::all_cases())
            write_bytes(folder / (c.name + ".argb"), pictures::render(c).bytes());
        std::printf("%zu pictures drawn\n", pictures::all_cases().size());
        return 0;
    }
    catch (const std::exception& failure)
    {
        std::fprintf(stderr, "draw_pictures: %s\n", failure.what());
        return 1;
    }
}
