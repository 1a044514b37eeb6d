#pragma once
// A folder of the test's own, and pictures to put in it.

#include "media/image.hpp"
#include "media/reader.hpp"
#include "media/writer.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace media_test
{
class temporary_folder : public testing::Test
{
protected:
    temporary_folder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "filigrane-test-XXXXXX").string();
        folder_ = mkdtemp(name.data());
    }
    ~temporary_folder() override { std::filesystem::remove_all(folder_); }

    std::filesystem::path at(const std::string& name) const { return folder_ / name; }
    // Names of everything in the folder, hidden files included, sorted.
    std::vector<std::string> names() const
    {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder_))
            found.push_back(entry.path().filename().string());
        std::sort(found.begin(), found.end());
        return found;
    }

private:
    std::filesystem::path folder_;
};

// Every byte random, transparent pixels with colour included.
inline media::picture noise(int width, int height, unsigned seed)
{
    media::picture made(width, height);
    std::mt19937 random(seed);
    media::image_view pixels = made.view();
    for (int i = 0; i < 4 * width * height; ++i)
        pixels.argb[i] = static_cast<std::uint8_t>(random());
    return made;
}

inline media::picture plain(int width, int height, std::uint8_t a, std::uint8_t r, std::uint8_t g, std::uint8_t b)
{
    media::picture made(width, height);
    media::image_view pixels = made.view();
    for (int i = 0; i < width * height; ++i)
    {
        const std::uint8_t argb[4] = {a, r, g, b};
        std::copy(argb, argb + 4, pixels.argb + 4 * i);
    }
    return made;
}

inline media::picture make_opaque(media::picture picture)
{
    for (int i = 0; i < picture.width() * picture.height(); ++i)
        picture.view().argb[4 * i] = 255;
    return picture;
}

// Smooth in both directions and over time, so that lossy codecs keep it closely.
inline media::picture gradient(int width, int height, int frame)
{
    media::picture made(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
        {
            std::uint8_t* p = made.view().row(y) + 4 * x;
            p[0] = 255;
            p[1] = static_cast<std::uint8_t>(255 * x / width);
            p[2] = static_cast<std::uint8_t>(255 * y / height);
            p[3] = static_cast<std::uint8_t>(40 + 10 * frame);
        }
    return made;
}

inline void write_all(const std::filesystem::path& file, const media::write_options& options,
                      const std::vector<media::picture>& frames)
{
    media::writer out(file, options);
    for (const media::picture& frame : frames)
        out.write(frame.view());
    out.finish();
}

inline media::write_options sized(int width, int height, int count = 1)
{
    media::write_options options;
    options.width = width;
    options.height = height;
    options.count = count;
    return options;
}

inline media::picture read_one(media::reader& in, std::int32_t frame = 0)
{
    media::picture made(in.info().width, in.info().height);
    EXPECT_TRUE(in.read(frame, made.view())) << "frame " << frame;
    return made;
}

// The largest difference of any byte of one channel (0 alpha to 3 blue).
inline int worst(const media::picture& a, const media::picture& b, int channel)
{
    int most = 0;
    for (std::size_t i = static_cast<std::size_t>(channel); i < a.bytes().size(); i += 4)
        most = std::max(most, std::abs(a.bytes()[i] - b.bytes()[i]));
    return most;
}

inline std::string contents(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline void put(const std::filesystem::path& file, const std::string& bytes)
{
    std::ofstream(file, std::ios::binary) << bytes;
}

// The message of the media::error that `action` throws; empty where it throws none.
template <class F>
std::string error_of(F&& action);
} // namespace media_test

#include "media/error.hpp"

template <class F>
std::string media_test::error_of(F&& action)
{
    try
    {
        action();
    }
    catch (const media::error& failure)
    {
        return failure.what();
    }
    return {};
}
