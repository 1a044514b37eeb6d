#pragma once
// The files that writers of this process have not completed, for when the process must end at once.

namespace media
{
// Removes them. Calls only what a signal handler may call, and may be called while writers are at work.
void remove_unfinished_files() noexcept;
} // namespace media
