#include "picture_diff.hpp"

#include "media/reader.hpp"
#include "media/writer.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace pictures
{
media::picture read_picture(const std::filesystem::path& file)
{
    media::reader reader(file);
    media::picture picture(reader.info().width, reader.info().height);
    reader.read(0, picture.view());
    return picture;
}

void write_picture(const std::filesystem::path& file, const media::picture& picture)
{
    std::filesystem::create_directories(file.parent_path());
    media::write_options options;
    options.width = picture.width();
    options.height = picture.height();
    options.overwrite = true;
    media::writer writer(file, options);
    writer.write(picture.view());
    writer.finish();
}

std::string difference(const std::string& name, const media::picture& actual, const media::picture& expected,
                       const std::filesystem::path& folder)
{
    if (actual.width() != expected.width() || actual.height() != expected.height())
    {
        write_picture(folder / (name + "_actual.png"), actual);
        return "the picture is " + std::to_string(actual.width()) + " x " + std::to_string(actual.height()) +
               ", not " + std::to_string(expected.width()) + " x " + std::to_string(expected.height()) +
               "; it is in " + folder.string();
    }
    media::picture distances(actual.width(), actual.height());
    int pixels = 0;
    int worst = 0;
    std::string first;
    for (int y = 0; y < actual.height(); ++y)
        for (int x = 0; x < actual.width(); ++x)
        {
            const auto at = 4 * static_cast<std::ptrdiff_t>(x);
            const std::uint8_t* const a = actual.view().row(y) + at;
            const std::uint8_t* const e = expected.view().row(y) + at;
            std::uint8_t* const d = distances.view().row(y) + at;
            d[0] = 255;
            std::fill(d + 1, d + 4, std::uint8_t{128});
            if (std::memcmp(a, e, 4) == 0)
                continue;
            ++pixels;
            if (first.empty())
                first = "(" + std::to_string(x) + ", " + std::to_string(y) + ")";
            for (int c = 0; c < 4; ++c)
            {
                const int distance = std::abs(a[c] - e[c]);
                worst = std::max(worst, distance);
                d[std::max(c, 1)] = static_cast<std::uint8_t>(std::min(255, 8 * distance));
            }
        }
    if (pixels == 0)
        return {};
    write_picture(folder / (name + "_actual.png"), actual);
    write_picture(folder / (name + "_difference.png"), distances);
    return std::to_string(pixels) + " of " + std::to_string(actual.width() * actual.height()) +
           " pixels differ, by up to " + std::to_string(worst) + ", the first at " + first + "; see " +
           (folder / (name + "_actual.png")).string() + " and " + name + "_difference.png";
}
} // namespace pictures
