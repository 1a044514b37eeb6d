#pragma once
// The list behind remove_unfinished_files().

namespace media::unfinished
{
// Adds a file's name, which is copied. Answers its place; -1 where the list is full or the name too long, and then
// the file stays when the process ends at once.
int list(const char* file) noexcept;
void strike(int place) noexcept;
} // namespace media::unfinished
