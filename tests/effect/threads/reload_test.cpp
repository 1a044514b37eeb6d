// The plug-in's file can be loaded and let go for ever: nothing of it stays behind.

#include "changing_frames.hpp"

#include "tests/support/heap_count.hpp"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

namespace
{
constexpr int kLoads = changing::kSanitized ? 200 : 1'000;
const std::filesystem::path kFile = FILIGRANE_BUILT_PLUGIN;

struct mappings
{
    int all = 0;
    int of_the_plugin = 0;
};

mappings mappings_now()
{
    mappings found;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line); ++found.all)
        if (line.ends_with("/" + kFile.filename().string()))
            ++found.of_the_plugin;
    return found;
}

// Loads the file, draws `frames` frames with it and lets it go.
void load(int frames)
{
    const host::plugin effect(kFile);
    for (int number = 0; number < frames; ++number)
        changing::render(effect, static_cast<std::uint32_t>(number));
}

TEST(reload, a_thousand_times_leaves_memory_and_mappings_as_they_were)
{
    for (int i = 0; i < 20; ++i)
        load(32);
    const mappings before = mappings_now();
    EXPECT_EQ(before.of_the_plugin, 0);
    {
        const host::plugin effect(kFile);
        EXPECT_GT(mappings_now().of_the_plugin, 0);
    }
    const long blocks = heap_blocks_alive();
    const auto bytes = static_cast<std::int64_t>(mallinfo2().uordblks);

    for (int i = 0; i < kLoads; ++i)
        load(i % 50 == 0 ? 8 : 0);

    EXPECT_EQ(heap_blocks_alive(), blocks);
    const mappings after = mappings_now();
    EXPECT_EQ(after.of_the_plugin, 0);
    if (changing::kSanitized)
        return; // a sanitizer's own memory and mappings come and go
    EXPECT_EQ(after.all, before.all);
    // What the loader itself keeps of a file, a kilobyte, would show a thousandfold.
    EXPECT_LT(static_cast<std::int64_t>(mallinfo2().uordblks) - bytes, 16 * kLoads);
}

TEST(reload, beside_a_render_does_not_disturb_it)
{
    const host::plugin effect(kFile);
    std::vector<std::uint64_t> alone;
    for (std::uint32_t number = 0; number < 200; ++number)
        alone.push_back(changing::render(effect, number).digest());
    std::thread loader(
        []
        {
            for (int i = 0; i < 100; ++i)
                load(1);
        });
    std::vector<std::uint64_t> beside;
    for (std::uint32_t number = 0; number < 200; ++number)
        beside.push_back(changing::render(effect, number).digest());
    loader.join();
    EXPECT_EQ(beside, alone);
}
} // namespace
