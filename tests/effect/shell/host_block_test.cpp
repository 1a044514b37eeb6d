#include "effect/shell/host_block.hpp"

#include "tests/support/heap_count.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace
{
// A host that has no handle callbacks.
const PF_UtilCallbacks kNoCallbacks{};
} // namespace

TEST(host_block, of_our_own_is_aligned_and_given_back_once)
{
    const long before = heap_blocks_alive();
    host_block block(kNoCallbacks, 64);
    ASSERT_NE(block.data(), nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.data()) % 16, 0U);
    EXPECT_EQ(heap_blocks_alive(), before + 1);
    for (int i = 0; i < 2; ++i)
    {
        block.release();
        EXPECT_EQ(block.data(), nullptr);
        EXPECT_EQ(heap_blocks_alive(), before);
    }
}

TEST(host_block, that_no_machine_has_room_for_is_not_there)
{
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
    for (const std::uint64_t bytes : {kMost, kMost - 8, std::uint64_t{1} << 62})
    {
        const long before = heap_blocks_alive();
        host_block block(kNoCallbacks, bytes);
        EXPECT_EQ(block.data(), nullptr) << bytes;
        block.release();
        EXPECT_EQ(heap_blocks_alive(), before);
    }
}
