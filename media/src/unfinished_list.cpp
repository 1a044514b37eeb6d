#include "unfinished_list.hpp"

#include "media/unfinished.hpp"

#include <atomic>
#include <climits>
#include <cstring>
#include <unistd.h>

namespace media
{
namespace
{
enum class state
{
    unused,
    changing, // somebody writes the name, or removes the file
    listed,
};
static_assert(std::atomic<state>::is_always_lock_free); // or a handler could not use it

struct entry
{
    std::atomic<state> now = state::unused;
    char name[PATH_MAX] = {};
};

// A writer has one file at a time.
entry entries[8];

bool move(entry& which, state from, state to) noexcept
{
    return which.now.compare_exchange_strong(from, to);
}
} // namespace

int unfinished::list(const char* file) noexcept
{
    const std::size_t length = std::strlen(file);
    if (length >= PATH_MAX)
        return -1;
    int place = 0;
    for (entry& candidate : entries)
    {
        if (move(candidate, state::unused, state::changing))
        {
            std::memcpy(candidate.name, file, length + 1);
            candidate.now = state::listed;
            return place;
        }
        ++place;
    }
    return -1;
}

void unfinished::strike(int place) noexcept
{
    // What is being removed stays as it is: the process is about to end.
    if (place >= 0)
        move(entries[place], state::listed, state::unused);
}

void remove_unfinished_files() noexcept
{
    for (entry& candidate : entries)
        if (move(candidate, state::listed, state::changing))
            ::unlink(candidate.name);
}
} // namespace media
