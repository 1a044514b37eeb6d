#pragma once
// Strokes drawn both ways, the fast one at every level of instructions that the processor has, and compared byte
// for byte, dirty tiles too.

#include "effect/raster/fast_stroke.hpp"
#include "raster_stage.hpp"
#include "tests/support/plain_once.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace raster_test
{
class dice
{
public:
    explicit dice(unsigned seed) : gen_(seed) {}
    int whole(int lo, int hi) { return lo + static_cast<int>(gen_() % static_cast<unsigned>(hi - lo + 1)); }
    float real(float lo, float hi) { return lo + (hi - lo) * static_cast<float>(gen_() % 65536U) / 65535.0f; }
    bool once_in(int n) { return gen_() % static_cast<unsigned>(n) == 0; }

private:
    std::mt19937 gen_;
};

struct scene
{
    int width = 0;
    int height = 0;
    int axis = 0;
    int k = 2;
    bool one_color = false;
    bool core = false;
    float core_opacity = 1.0f;
    float inner = 0.0f;
    float outer = 0.0f;
    std::vector<StrokePoint> points;
};

// How the plain way visits pixels.
enum class visits
{
    every, // as often as boxes name them
    first,
};

struct tally
{
    int drawn = 0; // the fast way did it
    int left = 0;  // it left it to the plain one
    std::int64_t pixels = 0;
};

inline void set_up(const scene& s, stage& st, LineCreatorClass& creator, std::vector<StrokePoint>& points)
{
    st.set_up(creator);
    points = s.points;
    creator.points = points.data();
    creator.pointCount = static_cast<std::int32_t>(points.size());
    creator.axis = s.axis;
    creator.samplesPerPixel = s.k;
    creator.coreOpacity = s.core_opacity;
    creator.monocolor = s.one_color;
    creator.innerRadius = s.inner;
    creator.outerRadius = s.outer;
    if (s.one_color)
        creator.pixelFunction = &LineCreatorClass::CalculatePixelMonocolor;
    if (s.core)
        creator.subRenderFunction = &LineCreatorClass::SubRenderMonocolor;
}

// The levels of instructions that this processor has.
inline std::vector<simd_level> levels()
{
    std::vector<simd_level> all = {simd_level::baseline};
    if (chosen_simd_level() == simd_level::avx2)
        all.push_back(simd_level::avx2);
    return all;
}

inline std::size_t pool_bytes(const scene& s)
{
    const auto pixels = static_cast<std::size_t>(s.width) * static_cast<std::size_t>(s.height);
    return (std::size_t{1} << 22) + pixels + s.points.size() * 64;
}

constexpr auto kWholePool = std::numeric_limits<std::uint64_t>::max();

// Of a pool: room for the runs, but for no list of places.
inline std::uint64_t room_for_runs(const scene& s)
{
    return 20 * 32 + 16 * static_cast<std::uint64_t>(s.width + s.height);
}

struct picture
{
    std::vector<PF_Pixel> pixels; // row by row
    std::vector<std::uint8_t> dirty;
};

inline picture taken_from(const scene& s, stage& st)
{
    picture p;
    for (int y = 0; y < s.height; ++y)
        for (int x = 0; x < s.width; ++x)
            p.pixels.push_back(st.canvas.at(x, y));
    p.dirty.assign(std::begin(st.context->tileDirty), std::end(st.context->tileDirty));
    return p;
}

inline picture drawn_plainly(const scene& s, visits which)
{
    std::vector<StrokePoint> points;
    stage st(s.width, s.height, 8, pool_bytes(s));
    plain_once slow;
    set_up(s, st, slow, points);
    if (which == visits::first)
        slow.draw();
    else
        (slow.*slow.subRenderFunction)();
    return taken_from(s, st);
}

// Draws the scene the fast way at one level of instructions, and compares every byte with what the plain way drew.
inline void compare_at(simd_level level, const scene& s, const picture& plain, const std::string& what,
                       tally& count, std::uint64_t pool_rest)
{
    std::vector<StrokePoint> points;
    stage st(s.width, s.height, 8, pool_bytes(s));
    LineCreatorClass quick;
    set_up(s, st, quick, points);
    quick.level = level;
    st.pool.remaining = std::min(st.pool.remaining, pool_rest);
    if (!draw_stroke_fast(quick))
    {
        ++count.left;
        return;
    }
    ++count.drawn;
    EXPECT_TRUE(st.canvas.padding_is_untouched()) << what;
    const picture fast = taken_from(s, st);
    int wrong = 0;
    for (std::size_t i = 0; i < plain.pixels.size(); ++i)
    {
        const PF_Pixel& want = plain.pixels[i];
        count.pixels += want.alpha != 0;
        if (!same(fast.pixels[i], want) && ++wrong < 4)
            ADD_FAILURE() << what << ", axis " << s.axis << ", k " << s.k << ", " << s.width << " x " << s.height
                          << ", pixel " << i % static_cast<std::size_t>(s.width) << ", "
                          << i / static_cast<std::size_t>(s.width) << ": " << text(fast.pixels[i]) << " for "
                          << text(want);
    }
    ASSERT_EQ(wrong, 0) << what;
    for (std::size_t t = 0; t < plain.dirty.size(); ++t)
        ASSERT_EQ(fast.dirty[t], plain.dirty[t]) << what << ", tile " << t;
}

// With so many bytes of the pool left at most.
inline void compare(const scene& s, const std::string& what, tally& count, std::uint64_t pool_rest = kWholePool,
                    visits which = visits::every)
{
    const picture plain = drawn_plainly(s, which);
    for (const simd_level level : levels())
        compare_at(level, s, plain, what + (level == simd_level::avx2 ? ", AVX2" : ", baseline"), count,
                   pool_rest);
}
} // namespace raster_test
