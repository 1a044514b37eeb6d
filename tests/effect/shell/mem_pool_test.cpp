#include "effect/shell/mem_pool.hpp"

#include "tests/support/effect_fixture.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>

namespace
{
struct carved_block
{
    std::byte* start;
    std::uint64_t size;
};

bool all_zero(const carved_block& block)
{
    return std::all_of(block.start, block.start + block.size, [](std::byte b) { return b == std::byte{0}; });
}

struct probe
{
    explicit probe(int v) : value(v) {}
    int value;
    int rest = 7;
};
} // namespace

TEST(mem_pool, blocks_are_disjoint_aligned_and_zero)
{
    for (unsigned seed = 1; seed <= 20; ++seed)
    {
        pool_block memory(4096);
        std::byte* const end = memory.pool.base + 4096;
        std::mt19937 random(seed);
        std::vector<carved_block> blocks;
        for (int i = 0; i < 200; ++i)
        {
            const std::uint64_t size = random() % 96;
            const std::uint64_t left = memory.pool.remaining;
            auto* const start = static_cast<std::byte*>(pool_alloc(&memory.pool, size));
            ASSERT_EQ(start == nullptr, size > left) << "seed " << seed;
            if (start == nullptr)
                continue;
            blocks.push_back({start, size});
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(start) % 8, 0u);
            ASSERT_GE(start, memory.pool.base);
            ASSERT_LE(start + size, end);
            ASSERT_TRUE(all_zero(blocks.back()));
            std::fill_n(start, size, std::byte{0xFF}); // so that an overlap is no longer zero
        }
        for (const carved_block& a : blocks)
            for (const carved_block& b : blocks)
                ASSERT_TRUE(&a == &b || a.start + a.size <= b.start || b.start + b.size <= a.start)
                    << "seed " << seed;
    }
}

TEST(mem_pool, a_request_that_does_not_fit_changes_nothing)
{
    pool_block memory(64);
    ASSERT_NE(pool_alloc(&memory.pool, 40), nullptr);
    const mem_pool before = memory.pool;
    for (volatile std::uint64_t size : {std::uint64_t{25}, UINT64_MAX, UINT64_MAX - 7}) // nothing folded away
        EXPECT_EQ(pool_alloc(&memory.pool, size), nullptr);
    EXPECT_EQ(memory.pool.next, before.next);
    EXPECT_EQ(memory.pool.base, before.base);
    EXPECT_EQ(memory.pool.remaining, before.remaining);
    EXPECT_NE(pool_alloc(&memory.pool, 24), nullptr);
    EXPECT_EQ(memory.pool.remaining, 0u);
    EXPECT_NE(pool_alloc(&memory.pool, 0), nullptr);
    EXPECT_EQ(pool_alloc(&memory.pool, 1), nullptr);
}

TEST(mem_pool, requests_are_rounded_up_to_eight)
{
    pool_block memory(64);
    for (const std::uint64_t size : {1u, 7u, 8u, 9u, 4u})
    {
        const std::uint64_t before = memory.pool.remaining;
        pool_alloc(&memory.pool, size);
        EXPECT_EQ(before - memory.pool.remaining, (size + 7) / 8 * 8);
    }
}

TEST(mem_pool, counts_that_wrap_do_not_fit)
{
    pool_block memory(1024);
    const mem_pool before = memory.pool;
    for (const std::int64_t count : {INT64_MIN, std::int64_t{-1}, INT64_MAX, std::int64_t{1} << 61,
                                     (std::int64_t{1} << 61) + 1, (std::int64_t{1} << 32) * 3})
    {
        EXPECT_EQ(pool_array<double>(&memory.pool, count), nullptr) << count;
        EXPECT_EQ(memory.pool.remaining, before.remaining);
    }
    EXPECT_NE(pool_array<double>(&memory.pool, 128), nullptr);
    EXPECT_EQ(memory.pool.remaining, 0u);
}

TEST(mem_pool, release_goes_back_to_a_mark)
{
    pool_block memory(1024);
    pool_alloc(&memory.pool, 16);
    void* const mark = memory.pool.next;
    auto* const dirty = static_cast<std::byte*>(pool_alloc(&memory.pool, 100));
    std::fill_n(dirty, 100, std::byte{0xFF});
    pool_alloc(&memory.pool, 300);
    pool_release(&memory.pool, mark);
    EXPECT_EQ(memory.pool.next, mark);
    EXPECT_EQ(memory.pool.remaining, 1008u);
    auto* const again = static_cast<std::byte*>(pool_alloc(&memory.pool, 100));
    EXPECT_EQ(again, dirty);
    EXPECT_TRUE(all_zero({again, 100}));
}

TEST(mem_pool, an_object_is_built_in_zeroed_memory_or_not_at_all)
{
    pool_block memory(sizeof(probe));
    const probe* const first = pool_new<probe>(&memory.pool, 5);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->value, 5);
    EXPECT_EQ(first->rest, 7);
    EXPECT_EQ(pool_new<probe>(&memory.pool, 6), nullptr);
}
