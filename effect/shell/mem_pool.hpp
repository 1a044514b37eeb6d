#pragma once
// The memory of one frame: a bump allocator over one block that somebody else owns and frees as a whole. Nothing
// is freed piece by piece; temporary blocks go back by setting the cursor back to a mark, last in first out.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

struct mem_pool
{
    std::byte* next;         // the next free byte
    std::byte* base;         // the start of the block; never moves
    std::uint64_t remaining; // bytes still free after `next`; always a multiple of 8
};

// `bytes` bytes of which the first `used` are zero-filled, or null where they do not fit (then nothing changes). A
// request is rounded up to a multiple of 8, so that what is carved next stays aligned.
inline void* pool_alloc_used(mem_pool* pool, std::uint64_t bytes, std::uint64_t used) noexcept
{
    if (bytes > pool->remaining)
        return nullptr;
    const std::uint64_t rounded = (bytes + 7) & ~std::uint64_t{7}; // no wrap: remaining is a multiple of 8
    void* block = pool->next;
    pool->next += rounded;
    pool->remaining -= rounded;
    std::memset(block, 0, used < bytes ? used : rounded);
    return block;
}

// The same, all of it zero-filled.
inline void* pool_alloc(mem_pool* pool, std::uint64_t bytes) noexcept
{
    return pool_alloc_used(pool, bytes, bytes);
}

// Room for `count` records of type T of which the first `cleared` (none to all) are zero-filled, or null where the
// count is negative or does not fit. Constructs nothing: T is a plain record. Records that are not cleared are the
// caller's to write before they are read.
template <class T>
T* pool_array_used(mem_pool* pool, std::int64_t count, std::int64_t cleared) noexcept
{
    if (count < 0 || static_cast<std::uint64_t>(count) > std::numeric_limits<std::uint64_t>::max() / sizeof(T))
        return nullptr;
    return static_cast<T*>(pool_alloc_used(pool, static_cast<std::uint64_t>(count) * sizeof(T),
                                           static_cast<std::uint64_t>(cleared) * sizeof(T)));
}

// The same, all of them zero-filled: zero bytes are a value of T.
template <class T>
T* pool_array(mem_pool* pool, std::int64_t count) noexcept
{
    return pool_array_used<T>(pool, count, count);
}

// A T constructed in the pool, or null where there is no room. Its destructor never runs.
template <class T, class... Args>
T* pool_new(mem_pool* pool, Args&&... args)
{
    void* const room = pool_alloc(pool, sizeof(T));
    return room != nullptr ? new (room) T(std::forward<Args>(args)...) : nullptr;
}

// Gives back everything carved since the cursor stood at `mark`.
inline void pool_release(mem_pool* pool, void* mark) noexcept
{
    auto* const cursor = static_cast<std::byte*>(mark);
    pool->remaining += static_cast<std::uint64_t>(pool->next - cursor);
    pool->next = cursor;
}
