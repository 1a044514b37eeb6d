#include "tests/support/heap_count.hpp"

#include <cstdlib>
#include <new>

namespace
{
long alive = 0;
long made = 0;
} // namespace

long heap_blocks_alive()
{
    return alive;
}

long heap_blocks_made()
{
    return made;
}

void* operator new(std::size_t bytes)
{
    void* const block = std::malloc(bytes != 0 ? bytes : 1);
    if (block == nullptr)
        throw std::bad_alloc();
    ++alive;
    ++made;
    return block;
}

void operator delete(void* block) noexcept
{
    alive -= block != nullptr ? 1 : 0;
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}
