// Compares hashes of frames, drawn by the plug-in's file through the host library, with those in a table; needs
// nothing else, so that it can be built for, and run on, any system. FILIGRANE_PLUGIN names another plug-in file,
// FILIGRANE_RENEW_PICTURES=1 writes the table anew. Exit status 1 where something differs.

#include "hash.hpp"
#include "hash_cases.hpp"
#include "maths_hashes.hpp"
#include "tests/effect/pictures/picture_render.hpp"

#include <algorithm>
#include <atomic>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <map>
#include <thread>

namespace
{
using pictures::hash_case;

struct table_line
{
    std::string name;
    std::string hash; // hexadecimal; of a frame behind its size
};

std::string hexadecimal(std::uint64_t value)
{
    char text[17];
    std::snprintf(text, sizeof text, "%016" PRIx64, value);
    return text;
}

std::string frame_hash(const hash_case& c)
{
    const int width = c.comp.picture_width();
    const int height = c.comp.picture_height();
    const media::picture input = pictures::input_picture(width, height);
    media::picture output(width, height);
    host::render_options options;
    options.checked = true;
    options.row_padding = c.row_padding;
    host::render_frame(pictures::effect(), c.comp, c.values, c.frame, pictures::as_host(input.view()),
                       pictures::as_host(output.view()), options);
    pictures::byte_hash hash;
    hash.add(output.bytes().data(), output.bytes().size());
    return std::to_string(width) + "x" + std::to_string(height) + " " + hexadecimal(hash.value());
}

// As many frames at once as the machine has processors.
std::vector<std::string> frame_hashes(const std::vector<hash_case>& cases)
{
    std::vector<std::string> hashes(cases.size());
    std::atomic<std::size_t> next{0};
    const auto work = [&]
    {
        for (std::size_t i = next++; i < cases.size(); i = next++)
        {
            try
            {
                hashes[i] = frame_hash(cases[i]);
            }
            catch (const std::exception& failure)
            {
                hashes[i] = std::string("failed: ") + failure.what();
            }
        }
    };
    std::vector<std::thread> workers(std::max(1U, std::thread::hardware_concurrency()));
    for (std::thread& worker : workers)
        worker = std::thread(work);
    for (std::thread& worker : workers)
        worker.join();
    return hashes;
}

std::vector<table_line> draw_all(const std::filesystem::path& looks)
{
    std::vector<table_line> lines;
    for (const auto& [name, hash] : pictures::maths_hashes())
        lines.push_back({"maths/" + name, hexadecimal(hash)});
    const std::vector<hash_case> cases = pictures::hash_cases(pictures::effect(), looks);
    const std::vector<std::string> hashes = frame_hashes(cases);
    for (std::size_t i = 0; i < cases.size(); ++i)
        lines.push_back({cases[i].name, hashes[i]});
    return lines;
}

std::map<std::string, std::string> read_table(const std::filesystem::path& file)
{
    std::map<std::string, std::string> table;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);)
    {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        const std::size_t space = line.find(' ');
        if (line.starts_with('#') || space == std::string::npos)
            continue;
        table[line.substr(0, space)] = line.substr(space + 1);
    }
    return table;
}

bool write_table(const std::filesystem::path& file, const std::vector<table_line>& lines)
{
    std::ofstream out(file, std::ios::binary);
    out << "# Hashes of frames and of the host's maths; equal on every system. Written by ./dev pictures.\n";
    for (const table_line& line : lines)
        out << line.name << ' ' << line.hash << '\n';
    return static_cast<bool>(out.flush());
}

// Prints what differs; how many lines do.
std::size_t compare(const std::vector<table_line>& lines, std::map<std::string, std::string> table)
{
    std::size_t differing = 0;
    for (const table_line& line : lines)
    {
        const auto expected = table.find(line.name);
        if (expected == table.end() || expected->second != line.hash)
        {
            ++differing;
            std::printf("%s: %s, expected %s\n", line.name.c_str(), line.hash.c_str(),
                        expected == table.end() ? "nothing: renew the table" : expected->second.c_str());
        }
        if (expected != table.end())
            table.erase(expected);
    }
    for (const auto& [name, hash] : table)
        std::printf("%s is in the table, and no case has that name: renew the table\n", name.c_str());
    return differing + table.size();
}

int run()
{
    const std::filesystem::path table = FILIGRANE_FRAME_HASHES;
    const std::vector<table_line> lines = draw_all(FILIGRANE_LOOKS);
    const char* const renew = std::getenv("FILIGRANE_RENEW_PICTURES");
    if (renew != nullptr && std::string(renew) == "1")
    {
        if (write_table(table, lines))
            return 0;
        std::fprintf(stderr, "frame_hashes: cannot write %s\n", table.string().c_str());
        return 1;
    }
    const std::size_t differing = compare(lines, read_table(table));
    std::printf("%zu of %zu hashes differ\n", differing, lines.size());
    return differing == 0 ? 0 : 1;
}
} // namespace

int main()
{
    try
    {
        return run();
    }
    catch (const std::exception& failure)
    {
        std::fprintf(stderr, "frame_hashes: %s\n", failure.what());
        return 1;
    }
}
