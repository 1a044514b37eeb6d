#include "memory_reserve.hpp"

#include <cstdlib>
#include <new>
#include <utility>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(start, size) (static_cast<void>(start), static_cast<void>(size))
#define ASAN_UNPOISON_MEMORY_REGION(start, size) (static_cast<void>(start), static_cast<void>(size))
#endif

namespace host
{
namespace
{
// Blocks of nearly one size can stand in for each other.
constexpr std::size_t step = std::size_t{1} << 20;
// Smaller blocks the heap keeps by itself. Of larger ones often a small part is touched, and the rest would be
// made real by clearing it.
constexpr std::size_t smallest_kept = std::size_t{1} << 20;
constexpr std::size_t largest_kept = std::size_t{1} << 27;
// What processors share for last cache, about.
constexpr std::size_t cache_bytes = std::size_t{1} << 25;

// Cleared; null where there are none.
#ifdef _WIN32
std::byte* map_pages(std::size_t room)
{
    return static_cast<std::byte*>(VirtualAlloc(nullptr, room, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
}

void unmap_pages(std::byte* data, std::size_t /*room*/)
{
    VirtualFree(data, 0, MEM_RELEASE);
}
#else
std::byte* map_pages(std::size_t room)
{
    void* const mapped = mmap(nullptr, room, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED)
        return nullptr;
#ifdef MADV_HUGEPAGE
    // Pictures are walked through by tiles, whose rows lie on a page each: with small pages, some of the time goes
    // into finding these. Where there are no large ones, nothing is lost.
    madvise(mapped, room, MADV_HUGEPAGE);
#endif
    return static_cast<std::byte*>(mapped);
}

void unmap_pages(std::byte* data, std::size_t room)
{
    ASAN_UNPOISON_MEMORY_REGION(data, room); // whoever is given these addresses next
    munmap(data, room);
}
#endif
} // namespace

memory_block::~memory_block()
{
    if (home_ != nullptr)
        home_->give_back({data_, room_});
    else
        std::free(data_);
}

void memory_block::swap(memory_block& other) noexcept
{
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    std::swap(room_, other.room_);
    std::swap(zero_, other.zero_);
    std::swap(home_, other.home_);
}

memory_reserve::~memory_reserve()
{
    for (const pages& block : kept_)
        unmap(block);
}

memory_block memory_reserve::take(memory_reserve* reserve, std::size_t size, bool cleared)
{
    memory_block block;
    block.size_ = size;
    if (reserve == nullptr || size < smallest_kept || size > largest_kept)
    {
        // The heap hands out cleared pages without touching them, which clearing by hand would.
        block.data_ = static_cast<std::byte*>(cleared ? std::calloc(size, 1) : std::malloc(size));
        block.zero_ = cleared;
        return block;
    }
    pages found = reserve->kept_for(size);
    if (found.data == nullptr)
    {
        found = reserve->mapped(size);
        block.zero_ = true;
    }
    if (found.data == nullptr)
        return block;
    block.data_ = found.data;
    block.room_ = found.room;
    block.home_ = reserve;
    ASAN_UNPOISON_MEMORY_REGION(found.data, size);
    ASAN_POISON_MEMORY_REGION(found.data + size, found.room - size);
    return block;
}

std::size_t memory_reserve::kept_bytes() const
{
    const std::lock_guard hold(mutex_);
    std::size_t sum = 0;
    for (const pages& block : kept_)
        sum += block.room;
    return sum;
}

// The smallest kept block that fits, if it does not waste more than it gives. Where none does, the one kept
// longest goes: the caller maps another in its place.
memory_reserve::pages memory_reserve::kept_for(std::size_t size)
{
    const std::lock_guard hold(mutex_);
    auto best = kept_.end();
    for (auto block = kept_.begin(); block != kept_.end(); ++block)
    {
        const bool fits = block->room >= size && block->room / 2 <= size;
        if (fits && (best == kept_.end() || block->room <= best->room))
            best = block;
    }
    if (best != kept_.end())
    {
        const pages found = *best;
        kept_.erase(best);
        return found;
    }
    if (!kept_.empty())
    {
        unmap(kept_.front());
        kept_.erase(kept_.begin());
    }
    return {};
}

void memory_reserve::give_back(pages block) noexcept
{
    try
    {
        const std::lock_guard hold(mutex_);
        kept_.push_back(block);
        ASAN_POISON_MEMORY_REGION(block.data, block.room);
    }
    catch (const std::bad_alloc&)
    {
        unmap(block);
    }
}

memory_reserve::pages memory_reserve::mapped(std::size_t size) noexcept
{
    const std::size_t room = (size + step - 1) / step * step;
    std::byte* const data = map_pages(room);
    if (data == nullptr)
        return {};
    mapped_bytes_ += room;
    return {data, room};
}

void memory_reserve::unmap(pages block) noexcept
{
    unmap_pages(block.data, block.room);
    mapped_bytes_ -= block.room;
}

bool memory_reserve::exceeds_caches() const noexcept
{
    return mapped_bytes_ > cache_bytes;
}
} // namespace host
