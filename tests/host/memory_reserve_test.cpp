#include "memory_reserve.hpp"

#include "pixel_block.hpp"
#include "plugin_access.hpp"
#include "scripted_effect.hpp"

#include "host/frame_pool.hpp"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <thread>

namespace
{
using host::memory_block;
using host::memory_reserve;

constexpr std::size_t mebibyte = std::size_t{1} << 20;

bool all_zero(const std::byte* bytes, std::size_t count)
{
    return std::all_of(bytes, bytes + count, [](std::byte byte) { return byte == std::byte{0}; });
}

TEST(memory_reserve, keeps_what_is_given_back_for_the_next_of_its_size)
{
    memory_reserve reserve;
    const std::byte* first = nullptr;
    {
        const memory_block block = memory_reserve::take(&reserve, 3 * mebibyte, true);
        ASSERT_NE(block.data(), nullptr);
        EXPECT_TRUE(block.zero());
        EXPECT_TRUE(all_zero(block.data(), block.size()));
        std::memset(block.data(), 1, block.size());
        first = block.data();
        EXPECT_EQ(reserve.kept_bytes(), 0u);
    }
    EXPECT_GE(reserve.kept_bytes(), 3 * mebibyte);
    const memory_block again = memory_reserve::take(&reserve, 3 * mebibyte - 17, true);
    EXPECT_EQ(again.data(), first);
    EXPECT_FALSE(again.zero());
    EXPECT_EQ(reserve.kept_bytes(), 0u);
}

TEST(memory_reserve, leaves_small_and_huge_blocks_to_the_heap)
{
    memory_reserve reserve;
    for (const std::size_t size : {std::size_t{1}, std::size_t{5000}, 500 * mebibyte})
    {
        const memory_block block = memory_reserve::take(&reserve, size, true);
        ASSERT_NE(block.data(), nullptr);
        EXPECT_TRUE(block.zero());
    }
    EXPECT_EQ(reserve.kept_bytes(), 0u);
    EXPECT_NE(memory_reserve::take(nullptr, 3 * mebibyte, false).data(), nullptr);
}

TEST(memory_reserve, holds_no_more_blocks_than_were_in_use_at_once)
{
    std::mt19937 random(1);
    memory_reserve reserve;
    for (int round = 0; round < 200; ++round)
    {
        // Two at a time of any size up to 20 MiB, as an effect whose size is animated asks for them.
        const memory_block one = memory_reserve::take(&reserve, mebibyte + random() % (19 * mebibyte), false);
        const memory_block other = memory_reserve::take(&reserve, mebibyte + random() % (19 * mebibyte), false);
        one.data()[one.size() - 1] = other.data()[other.size() - 1] = std::byte{1};
        EXPECT_EQ(reserve.kept_bytes(), 0u);
    }
    EXPECT_LE(reserve.kept_bytes(), 2 * 20 * mebibyte);
}

TEST(memory_reserve, serves_threads_at_once)
{
    memory_reserve reserve;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(
            [&reserve, i]
            {
                for (int round = 0; round < 50; ++round)
                {
                    const memory_block block = memory_reserve::take(&reserve, 2 * mebibyte, false);
                    std::memset(block.data(), i, 4096);
                    std::this_thread::yield();
                    EXPECT_TRUE(std::all_of(block.data(), block.data() + 4096,
                                            [i](std::byte byte) { return byte == std::byte(i); }));
                }
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_LE(reserve.kept_bytes(), 4 * 2 * mebibyte);
}

TEST(pixel_block, is_clear_in_memory_that_was_used_before)
{
    for (const int padding : {0, 12})
    {
        memory_reserve reserve;
        for (int round = 0; round < 2; ++round)
        {
            const host::pixel_block block(700, 600, padding, true, &reserve);
            for (int y = 0; y < 600; ++y)
            {
                auto* row = reinterpret_cast<std::byte*>(block.data()) + std::ptrdiff_t{block.rowbytes()} * y;
                EXPECT_TRUE(all_zero(row, 2800));
                std::memset(row, 0x77, 2800);
            }
            EXPECT_EQ(block.damage(), nullptr);
        }
    }
}

// What every frame of the scripted effect takes: two worlds of its picture's size and a handle.
PF_Err take_memory(const scripted::call& now)
{
    const auto& utils = now.utils();
    PF_EffectWorld worlds[2] = {};
    for (PF_EffectWorld& world : worlds)
        if (utils.new_world(now.ref(), 600, 500, PF_NewWorldFlag_CLEAR_PIXELS, &world) != PF_Err_NONE)
            return PF_Err_OUT_OF_MEMORY;
    PF_Handle handle = utils.host_new_handle(2 * mebibyte - 4096);
    std::memset(utils.host_lock_handle(handle), 3, 100);
    utils.host_unlock_handle(handle);
    utils.host_dispose_handle(handle);
    utils.fill(now.ref(), nullptr, nullptr, now.output);
    utils.dispose_world(now.ref(), &worlds[0]);
    return utils.dispose_world(now.ref(), &worlds[1]);
}

TEST(render_frames, hold_memory_for_their_jobs_however_many_they_are)
{
    const scripted::scripts use(take_memory);
    for (const int jobs : {1, 3})
        for (const std::int32_t frames : {5, 200})
        {
            const host::plugin effect(scripted::entry, "scripted");
            const host::param_tracks values(effect.params());
            const auto shown = [](std::int32_t, host::const_image_view) {};
            host::render_frames(
                effect, scripted::small_comp(600, 500), values, {0, frames - 1}, jobs,
                [](std::int32_t, host::image_view) { return true; }, shown);
            // Each of these takes 2 MiB: three blocks in a render, two for each frame in flight.
            const auto most = static_cast<std::size_t>(3 * jobs + 2 * (jobs + 2)) * 2 * mebibyte;
            const std::size_t kept = host::plugin_access::memory(effect).kept_bytes();
            EXPECT_LE(kept, most) << jobs << " jobs, " << frames << " frames";
            EXPECT_GE(kept, 2 * mebibyte);
        }
}
} // namespace
