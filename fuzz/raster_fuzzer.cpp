// Strokes of any samples and radii on canvases of any size; small ordinary ones against brute force, others drawn
// the fast way against the plain one.

#include "effect/model/work_limits.hpp"
#include "effect/raster/aeg.hpp"
#include "effect/raster/line_creator.hpp"
#include "fuzz/byte_reader.hpp"
#include "fuzz/fuzz_host.hpp"
#include "fuzz/require.hpp"
#include "fuzz/small_canvas.hpp"
#include "tests/support/plain_once.hpp"
#include "tests/support/reference_stroke.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <utility>
#include <vector>

namespace
{
constexpr std::size_t kPoolBytes = std::size_t{512} << 10;
constexpr std::size_t kMostSamples = 400;
constexpr std::size_t kMostSmooth = 3000; // of a long stroke, which few bytes make
constexpr std::size_t kMostLooks = std::size_t{20} << 20;

bool same(const PF_Pixel& a, const PF_Pixel& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

struct scene
{
    int width = 0;
    int height = 0;
    int padding = 0;
    int tables = 0; // 0: of one colour, with a solid core; 1: of one colour; 2: of many
    simd_level level = simd_level::baseline;
    float inner_radius = 0.0f;
    float outer_radius = 0.0f;
    bool smooth = false; // samples follow each other in steps that nothing bridges
    reference::stroke stroke;
};

// A coordinate within a million pixels of the canvas, or no number. Farther off single precision puts thousands of
// the positions between two samples on the same spot, and all of them are looked at where samples are out of
// order, as a line's never are.
float any_coordinate(fuzz::byte_reader& bytes)
{
    const float v = bytes.any_f32();
    return std::isfinite(v) ? std::fmod(v, 1e6f) : v;
}

// Where samples come from: each anywhere, or one after the other as a line is sampled.
std::vector<StrokePoint> read_samples(fuzz::byte_reader& bytes, const reference::stroke& s)
{
    std::vector<StrokePoint> samples;
    const bool anywhere = bytes.byte() % 2 == 1;
    const float step = s.samples_per_pixel > 0 ? 1.0f / static_cast<float>(s.samples_per_pixel) : 1.0f;
    const float radius = bytes.any_f32();
    float main = bytes.any_f32();
    float cross = bytes.any_f32();
    do
    {
        StrokePoint p{};
        if (anywhere)
        {
            p.x = any_coordinate(bytes);
            p.y = any_coordinate(bytes);
            p.halfWidth = bytes.any_f32();
        }
        else
        {
            cross += static_cast<float>(static_cast<std::int8_t>(bytes.byte())) / 16.0f;
            p.x = s.axis == 0 ? main : cross;
            p.y = s.axis == 0 ? cross : main;
            p.halfWidth = radius + static_cast<float>(static_cast<std::int8_t>(bytes.byte())) / 32.0f;
            main -= step;
        }
        p.color = {bytes.byte(), 10, 100, static_cast<A_u_char>(samples.size())};
        samples.push_back(p);
    } while (bytes.more() && samples.size() < kMostSamples);
    return samples;
}

// A long stroke on a long canvas: each three bytes are a stretch of one curvature, in which the radius grows or
// shrinks. As steep as goes without bridges at most.
void read_smooth(fuzz::byte_reader& bytes, scene& s)
{
    reference::stroke& stroke = s.stroke;
    const int k = 1 << bytes.whole(0, 3);
    stroke.samples_per_pixel = k;
    const int along = std::min(600, 5 * (stroke.axis == 0 ? s.width : s.height));
    const int across = 1 + (stroke.axis == 0 ? s.height : s.width) % 64;
    s.width = stroke.axis == 0 ? along : across;
    s.height = stroke.axis == 0 ? across : along;

    const float step = 1.0f / static_cast<float>(k);
    const float steepest = k == 1 ? 8.0f : 1.15f * static_cast<float>(k);
    float main = static_cast<float>(along) + static_cast<float>(static_cast<std::int8_t>(bytes.byte())) / 4.0f;
    float cross = static_cast<float>(bytes.byte()) / 255.0f * static_cast<float>(across);
    float radius = static_cast<float>(1 + bytes.byte()) / 2.0f;
    float slope = static_cast<float>(static_cast<std::int8_t>(bytes.byte())) / 64.0f;
    float widest = radius;
    float thinnest = radius;
    do
    {
        const auto bend = static_cast<float>(static_cast<std::int8_t>(bytes.byte()));
        const int length = 4 * (1 + bytes.byte());
        const float grows = static_cast<float>(static_cast<std::int8_t>(bytes.byte())) / 1024.0f;
        for (int i = 0; i < length && stroke.samples.size() < kMostSmooth; ++i)
        {
            StrokePoint p{};
            p.x = stroke.axis == 0 ? main : cross;
            p.y = stroke.axis == 0 ? cross : main;
            p.halfWidth = radius;
            const auto number = static_cast<unsigned>(stroke.samples.size());
            p.color = {200, static_cast<A_u_char>(number % 256), static_cast<A_u_char>(number / 256), 9};
            stroke.samples.push_back(p);
            widest = std::max(widest, radius);
            thinnest = std::min(thinnest, radius);
            radius = std::max(0.5f, radius + grows * step);
            slope = std::clamp(slope + bend * step / 2048.0f, -steepest, steepest);
            cross += slope * step;
            main -= step;
        }
    } while (bytes.more() && stroke.samples.size() < kMostSmooth);
    s.outer_radius = widest + 1.5f;
    s.inner_radius = thinnest / 1.4142135f - 1.5f;
    s.smooth = true;
}

scene read_scene(fuzz::byte_reader& bytes)
{
    scene s;
    s.width = 1 + bytes.byte() % 128;
    s.height = 1 + bytes.byte() % 128;
    s.padding = 4 * (bytes.byte() % 4);
    const auto tables = bytes.byte();
    s.tables = tables % 3;
    s.level = tables >= 128 ? simd_level::baseline : chosen_simd_level();
    s.stroke.monocolor = s.tables < 2;
    s.stroke.axis = bytes.byte() % 2;
    const auto quality = bytes.byte();
    // A render never samples more finely.
    s.stroke.samples_per_pixel = quality % 4 == 3 ? std::min(bytes.any_i32(), kMostQuality + 1) : 2 - quality % 2;
    const auto core = bytes.byte();
    s.stroke.core_opacity = core % 2 == 0 ? 1.0f : bytes.any_f32();
    if (core >= 128)
    {
        read_smooth(bytes, s);
        return s;
    }
    s.inner_radius = bytes.any_f32();
    s.outer_radius = bytes.any_f32();
    s.stroke.samples = read_samples(bytes, s.stroke);
    return s;
}

// Brute force converts to integers as it likes: nothing may be far from the canvas.
bool ordinary(const scene& s)
{
    const auto near = [](float v) { return std::fabs(v) <= 2000.0f; };
    const int k = s.stroke.samples_per_pixel;
    const float core = s.stroke.core_opacity;
    if ((k != 1 && k != 2) || !near(s.outer_radius) || !(core >= 0.0f && core <= 1.0f))
        return false;
    for (const StrokePoint& p : s.stroke.samples)
        if (!near(p.x) || !near(p.y) || std::signbit(p.halfWidth) || !(p.halfWidth <= 2000.0f))
            return false;
    return s.width * s.height <= 48 * 48 && s.stroke.samples.size() <= 64;
}

// Whatever is drawn at (x, y) is the solid core's colour or that of the nearest sample in reach.
void compare_pixel(const scene& s, int x, int y, const PF_Pixel& drawn)
{
    const bool along_x = s.stroke.axis == 0;
    const auto reach_of = [&s](int pixel, int size)
    {
        const auto p = static_cast<float>(pixel + 1);
        return std::pair(std::fmax(0.0f, p - s.outer_radius),
                         std::fmin(static_cast<float>(size), p + s.outer_radius));
    };
    const auto index = [&s, along_x](float limit)
    {
        const StrokePoint& p = s.stroke.samples[0];
        const float at = ((along_x ? p.x : p.y) - limit) * static_cast<float>(s.stroke.samples_per_pixel);
        const auto most = static_cast<float>(s.stroke.samples.size() - 1);
        return static_cast<int>(std::fmin(std::fmax(std::trunc(at), 0.0f), most));
    };
    const auto main = along_x ? reach_of(x, s.width) : reach_of(y, s.height);
    const auto cross = along_x ? reach_of(y, s.height) : reach_of(x, s.width);
    const auto counts = [&](const StrokePoint& p)
    {
        const float c = along_x ? p.y : p.x;
        return cross.first <= c && c <= cross.second;
    };
    const auto places = reference::places_of(s.stroke, index(main.first), index(main.second), counts);
    PF_Pixel expected = {0, 0, 0, 0};
    reference::shade(s.stroke, places, x, y, &expected);
    const bool core = s.tables == 0 && same(drawn, s.stroke.samples[0].color);
    fuzz::require(same(drawn, expected) || core, "a pixel has the colour of its nearest sample");
}

// Where a stroke is drawn, and what draws it.
template <class Creator>
struct drawing
{
    drawing(scene& s, PF_InData* in_data)
        : memory(kPoolBytes / sizeof(std::max_align_t)), pool{base(), base(), kPoolBytes},
          canvas(s.width, s.height, s.padding), destination(s.width, s.height, 0),
          context(&pool, in_data, destination.layer(), canvas.layer(), 0, 0, 0)
    {
        creator.pool = &pool;
        creator.in_data = in_data;
        creator.context = &context;
        creator.pixels = canvas.layer()->data;
        creator.width = s.width;
        creator.height = s.height;
        creator.rowBytes = canvas.layer()->rowbytes;
        creator.coveredMask = pool_array<std::uint8_t>(&pool, std::int64_t{s.width} * s.height);
        creator.CreateTables();
        creator.points = s.stroke.samples.data();
        creator.pointCount = static_cast<std::int32_t>(s.stroke.samples.size());
        creator.axis = s.stroke.axis;
        creator.samplesPerPixel = s.stroke.samples_per_pixel;
        creator.innerRadius = s.inner_radius;
        creator.outerRadius = s.outer_radius;
        creator.coreOpacity = s.stroke.core_opacity;
        creator.monocolor = s.stroke.monocolor;
        creator.pixelFunction = s.stroke.monocolor ? &LineCreatorClass::CalculatePixelMonocolor
                                                   : &LineCreatorClass::CalculatePixelMulticolor;
        creator.level = s.level;
        creator.subRenderFunction =
            s.tables == 0 ? &LineCreatorClass::SubRenderMonocolor : &LineCreatorClass::SubRenderMulticolor;
    }

    std::byte* base() { return reinterpret_cast<std::byte*>(memory.data()); }

    std::vector<std::max_align_t> memory;
    mem_pool pool;
    fuzz::small_canvas canvas;
    fuzz::small_canvas destination;
    aeg context;
    Creator creator;
};

// The same pixels and the same tiles as the plain way, which looks at each sample within twice the radius for each
// pixel.
void compare_with_plain(scene& s, PF_InData* in_data, drawing<LineCreatorClass>& fast)
{
    if (!s.smooth)
        return;
    const auto within = static_cast<std::size_t>(2.0f * s.outer_radius + 2.0f) *
                        static_cast<std::size_t>(s.stroke.samples_per_pixel);
    const auto pixels = static_cast<std::size_t>(s.width) * static_cast<std::size_t>(s.height);
    if (pixels * std::min(within, s.stroke.samples.size()) > kMostLooks)
        return;
    drawing<plain_once> plain(s, in_data);
    plain.creator.draw();
    for (int y = 0; y < s.height; ++y)
        for (int x = 0; x < s.width; ++x)
            fuzz::require(same(fast.canvas.at(x, y), plain.canvas.at(x, y)), "a pixel is as the plain way has it");
    for (std::size_t tile = 0; tile < std::size(plain.context.tileDirty); ++tile)
        fuzz::require(fast.context.tileDirty[tile] == plain.context.tileDirty[tile],
                      "tiles are touched as by the plain way");
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::byte_reader bytes(data, size);
    scene s = read_scene(bytes);
    static fuzz::fuzz_host host; // for its table of functions alone
    drawing<LineCreatorClass> drawn(s, &host.in_data);
    drawn.creator.Render();

    fuzz::require(drawn.canvas.padding_is_untouched(), "the canvas' padding is as it was");
    if (ordinary(s))
    {
        s.stroke.coverage = drawn.creator.coverageTable;
        for (int y = 0; y < s.height; ++y)
            for (int x = 0; x < s.width; ++x)
                if (!same(drawn.canvas.at(x, y), {0, 0, 0, 0}))
                    compare_pixel(s, x, y, drawn.canvas.at(x, y));
    }
    compare_with_plain(s, &host.in_data, drawn);
    drawn.context.flush();
    for (int y = 0; y < s.height / 32 * 32; ++y)
        for (int x = 0; x < s.width / 32 * 32; ++x)
            fuzz::require(same(drawn.canvas.at(x, y), {0, 0, 0, 0}), "a flushed canvas is clear");
    return 0;
}
