#pragma once
// Pictures as files, and what is different between two of them.

#include "media/image.hpp"

#include <filesystem>
#include <string>

namespace pictures
{
media::picture read_picture(const std::filesystem::path& file);

// Makes the folder where it is missing and replaces the file.
void write_picture(const std::filesystem::path& file, const media::picture& picture);

// Empty where they are equal; else what differs, with the actual picture and the differences (grey where equal,
// the channels' distances times 8 elsewhere) written to `folder` under `name`.
std::string difference(const std::string& name, const media::picture& actual, const media::picture& expected,
                       const std::filesystem::path& folder);
} // namespace pictures
