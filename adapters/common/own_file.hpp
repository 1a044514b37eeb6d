#pragma once
// Which file this code was loaded from.

#include <filesystem>
#include <string>

namespace adapter
{
// The adapter's own file: the shared object that this function is linked into, links resolved, or the program
// where it is part of one. Empty where the system does not tell.
std::filesystem::path own_file();

// The name without folders of the file that `code` belongs to, as in "libavfilter.so.8" or "ffmpeg"; empty where
// the system does not tell. With a return address it says who called.
std::string file_name_of(const void* code);
} // namespace adapter
