#pragma once
// How long a file says it is, for containers whose demuxer takes a missing rest for a plain end.

#include <cstdint>
#include <optional>

namespace media
{
// Bytes from the beginning to the end of a Matroska or WebM file's contents; empty for other files, and where it
// was written without knowing (live recordings). Reads its own positions: the descriptor's stays as it is.
std::optional<std::uint64_t> stated_size(int descriptor);
} // namespace media
