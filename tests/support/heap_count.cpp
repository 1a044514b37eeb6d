#include "tests/support/heap_count.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{
std::atomic<long> alive{0};
std::atomic<long> made{0};

void* counted(void* block) noexcept
{
    if (block != nullptr)
    {
        ++alive;
        ++made;
    }
    return block;
}
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
    void* const block = counted(std::malloc(bytes != 0 ? bytes : 1));
    if (block == nullptr)
        throw std::bad_alloc();
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

// Aligned blocks. Their size is made a multiple of the alignment, as std::aligned_alloc asks. What no machine has
// is refused here: a sanitizer's allocator would end the process.
void* operator new(std::size_t bytes, std::align_val_t alignment, const std::nothrow_t&) noexcept
{
    const auto step = static_cast<std::size_t>(alignment);
    if (bytes > std::size_t{1} << 48)
        return nullptr;
    return counted(std::aligned_alloc(step, (bytes + step - 1) / step * step));
}

void* operator new(std::size_t bytes, std::align_val_t alignment)
{
    void* const block = operator new(bytes, alignment, std::nothrow);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

void operator delete(void* block, std::align_val_t) noexcept
{
    operator delete(block);
}

void operator delete(void* block, std::size_t, std::align_val_t) noexcept
{
    operator delete(block);
}
