#pragma once
// A file opened for libav to read. libav sees bytes, never the name: a '%' in it is no pattern, its ending says
// nothing about its contents, and a play list inside cannot reach other files or the network.

#include "av.hpp"

#include <filesystem>

namespace media
{
class input_file
{
public:
    // Opens the file and reads its headers. Throws media::error.
    explicit input_file(const std::filesystem::path& path);
    ~input_file();
    input_file(const input_file&) = delete;
    input_file& operator=(const input_file&) = delete;

    AVFormatContext* format() const { return format_; }
    const std::string& name() const { return name_; }
    // Whether the container holds one picture and nothing else.
    bool is_picture() const;
    // Whether the file ends before the container says; not every container tells.
    bool is_cut_off() const;

private:
    void open_bytes(const std::filesystem::path& path);
    void open_format();
    void close();

    std::string name_;
    int descriptor_ = -1;
    AVIOContext* bytes_ = nullptr;
    AVFormatContext* format_ = nullptr;
};
} // namespace media
