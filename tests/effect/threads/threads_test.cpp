// The effect keeps nothing between calls: a frame does not depend on what was drawn before it or is drawn beside
// it, and leaves nothing behind.

#include "changing_frames.hpp"

#include "effect/shell/param_ids.hpp"
#include "host/frame_pool.hpp"
#include "tests/support/heap_count.hpp"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <barrier>
#include <set>
#include <thread>

namespace
{
constexpr std::uint32_t kRenders = changing::kSanitized ? 1'000 : 10'000;
constexpr int kThreads = 8;

const host::plugin& effect()
{
    static const host::plugin the_effect{std::filesystem::path(FILIGRANE_BUILT_PLUGIN)};
    return the_effect;
}

// One frame of every kind, so that what libraries keep for good from their first use is there.
void warm_up()
{
    for (std::uint32_t number = 0; number < 16 * changing::kKinds; ++number)
        changing::render(effect(), number);
}

struct count_of_kind
{
    int drawn = 0;
    int refused = 0;
};

TEST(threads, draw_on_eight_at_once_what_one_draws)
{
    warm_up();
    std::vector<std::uint64_t> alone(kRenders);
    std::vector<std::uint64_t> at_once(kRenders);
    std::array<count_of_kind, changing::kKinds> counts{};
    int without_memory = 0;

    for (std::uint32_t number = 0; number < kRenders; ++number)
    {
        const long before = heap_blocks_alive();
        {
            const changing::outcome o = changing::render(effect(), number);
            ASSERT_EQ(o.complaint, "") << "frame " << number;
            alone[number] = o.digest();
            count_of_kind& c = counts[static_cast<std::size_t>(changing::kind_of(number))];
            c.drawn += o.drawn ? 1 : 0;
            c.refused += o.refused ? 1 : 0;
            without_memory += o.result == PF_Err_OUT_OF_MEMORY ? 1 : 0;
        }
        ASSERT_EQ(heap_blocks_alive(), before) << "frame " << number << " left blocks on the heap";
    }
    for (const count_of_kind& c : counts)
    {
        EXPECT_GE(c.drawn, static_cast<int>(kRenders) / changing::kKinds / 3);
        EXPECT_GE(c.refused, static_cast<int>(kRenders) / changing::kKinds / 20);
    }
    EXPECT_GT(without_memory, 0);

    const long before = heap_blocks_alive();
    {
        // From the last to the first, so that each frame comes after others than it did alone.
        std::atomic<std::uint32_t> left{kRenders};
        std::barrier start(kThreads);
        std::vector<std::thread> threads;
        for (int i = 0; i < kThreads; ++i)
            threads.emplace_back(
                [&]
                {
                    start.arrive_and_wait();
                    for (std::uint32_t next = left.fetch_sub(1); next - 1 < kRenders; next = left.fetch_sub(1))
                        at_once[next - 1] = changing::render(effect(), next - 1).digest();
                });
        for (std::thread& thread : threads)
            thread.join();
    }
    EXPECT_EQ(heap_blocks_alive(), before);
    for (std::uint32_t number = 0; number < kRenders; ++number)
        ASSERT_EQ(at_once[number], alone[number]) << "frame " << number;
}

// The host's own pool of workers, which share one set of keyframed values.
TEST(threads, share_a_clip_among_eight_workers)
{
    host::composition comp;
    comp.width = 40;
    comp.height = 32;
    comp.total_frames = 30;
    host::param_tracks values(effect().params());
    host::track turning;
    turning.keys = {{0.0, {.x = 0.0}}, {1.0, {.x = 180.0}}};
    values.set(kRotation, turning);
    values.set(kAffect, {.x = 1.0});
    values.set(kSize, {.x = 6.0});

    const auto frames_by = [&](int jobs)
    {
        std::vector<std::vector<std::uint8_t>> frames;
        const auto source = [](std::int32_t frame, host::image_view into)
        {
            std::fill_n(into.argb, into.rowbytes * into.height, static_cast<std::uint8_t>(frame));
            return true;
        };
        const auto sink = [&](std::int32_t, host::const_image_view made)
        { frames.emplace_back(made.argb, made.argb + std::ptrdiff_t{made.rowbytes} * made.height); };
        EXPECT_EQ(host::render_frames(effect(), comp, values, {0, 29}, jobs, source, sink), 30);
        return frames;
    };
    const auto alone = frames_by(1);
    EXPECT_EQ(std::set(alone.begin(), alone.end()).size(), 30U);
    EXPECT_EQ(frames_by(kThreads), alone);
}
} // namespace
