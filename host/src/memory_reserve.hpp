#pragma once
// Memory for what is as large as a picture, kept from frame to frame: pages fresh from the system cost more than
// all that is drawn on them.

#include <atomic>
#include <cstddef>
#include <mutex>
#include <vector>

namespace host
{
class memory_reserve;

// Owns its bytes, aligned as the heap's. Goes back to the reserve that it came from, which must outlive it.
class memory_block
{
public:
    memory_block() = default;
    memory_block(memory_block&& other) noexcept { swap(other); }
    memory_block& operator=(memory_block&& other) noexcept
    {
        memory_block old;
        old.swap(*this);
        swap(other);
        return *this;
    }
    ~memory_block();

    std::byte* data() const { return data_; } // null where there was not enough memory
    std::size_t size() const { return size_; }
    // Whether every byte was 0 when the block was taken.
    bool zero() const { return zero_; }

private:
    friend class memory_reserve;
    void swap(memory_block& other) noexcept;

    std::byte* data_ = nullptr;
    std::size_t size_ = 0;
    std::size_t room_ = 0; // of a kept block: what the system gave
    bool zero_ = false;
    memory_reserve* home_ = nullptr;
};

// Any thread may take and give back. There are never more blocks, in use and kept, than were in use at once.
class memory_reserve
{
public:
    memory_reserve() = default;
    memory_reserve(const memory_reserve&) = delete;
    memory_reserve& operator=(const memory_reserve&) = delete;
    ~memory_reserve();

    // What is smaller or larger than worth keeping, and everything without a reserve (null), comes from the heap.
    // `cleared` asks for zero bytes where they cost nothing: see memory_block::zero.
    static memory_block take(memory_reserve* reserve, std::size_t size, bool cleared);

    // Bytes that nobody uses at present.
    std::size_t kept_bytes() const;

    // Whether the blocks, in use and kept, are more than caches hold: then what is cleared is gone from them
    // before it is drawn on.
    bool exceeds_caches() const noexcept;

private:
    friend class memory_block;
    struct pages
    {
        std::byte* data = nullptr;
        std::size_t room = 0;
    };

    pages kept_for(std::size_t size);
    pages mapped(std::size_t size) noexcept;
    void unmap(pages block) noexcept;
    void give_back(pages block) noexcept;

    std::atomic<std::size_t> mapped_bytes_ = 0;
    mutable std::mutex mutex_;
    std::vector<pages> kept_; // the one given back last at the end
};
} // namespace host
