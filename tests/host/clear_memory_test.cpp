#include "clear_memory.hpp"

#include "memory_reserve.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace
{
using host::simd_level;

constexpr std::size_t mebibyte = std::size_t{1} << 20;

TEST(clear_memory, clears_exactly_the_bytes_every_way)
{
    std::mt19937 random(1);
    constexpr std::byte poison{0x5A};
    for (const simd_level level : {simd_level::scalar, simd_level::sse2, simd_level::avx2})
        for (int round = 0; round < 60; ++round)
        {
            if (!host::machine_has(level))
                continue;
            const bool past_caches = round % 4 != 0;
            // Small ones, and those around the size from which there are two ways, at any alignment.
            const std::size_t before = random() % 200;
            const std::size_t bytes = round % 5 == 0 ? random() % 300 : mebibyte / 2 - 100 + random() % 400;
            std::vector<std::byte> memory(before + bytes + 200, poison);
            host::clear_memory(memory.data() + before, bytes, past_caches, level);
            const auto first = memory.begin() + static_cast<std::ptrdiff_t>(before);
            const auto last = first + static_cast<std::ptrdiff_t>(bytes);
            ASSERT_EQ(std::count(memory.begin(), first, poison), first - memory.begin());
            ASSERT_EQ(std::count(first, last, std::byte{0}), last - first) << before << " " << bytes;
            ASSERT_EQ(std::count(last, memory.end(), poison), memory.end() - last);
        }
}

TEST(memory_reserve, knows_when_it_holds_more_than_caches)
{
    host::memory_reserve reserve;
    EXPECT_FALSE(reserve.exceeds_caches());
    {
        const host::memory_block one = host::memory_reserve::take(&reserve, 30 * mebibyte, true);
        EXPECT_FALSE(reserve.exceeds_caches());
        const host::memory_block other = host::memory_reserve::take(&reserve, 30 * mebibyte, true);
        EXPECT_TRUE(reserve.exceeds_caches());
    }
    EXPECT_TRUE(reserve.exceeds_caches());
    // Neither kept block fits: one goes for it.
    const host::memory_block small = host::memory_reserve::take(&reserve, 2 * mebibyte, true);
    EXPECT_FALSE(reserve.exceeds_caches());
}
} // namespace
