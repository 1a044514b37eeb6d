// Lines made in all five ways and everything that can be done to them, in any order, in pools of any size.

#include "effect/layout/sp_line.hpp"

#include "effect/model/curve.hpp"
#include "effect/model/frame_data.hpp"
#include "effect/model/frame_setup.hpp"
#include "effect/model/matrix.hpp"
#include "effect/model/numeric.hpp"
#include "effect/raster/aeg.hpp"
#include "fuzz/frame_orders.hpp"
#include "fuzz/require.hpp"
#include "fuzz/small_canvas.hpp"

#include <cstddef>
#include <vector>

namespace
{
// What is left of the pool past the coverage table bounds a line's points and samples, and so their product, which
// is what sampling a line costs.
constexpr std::size_t kPoolBytes = std::size_t{448} << 10;
constexpr int kMostOrders = 24;
constexpr int kMostActs = 48;

fpoint_t read_point(fuzz::byte_reader& bytes)
{
    const double x = bytes.any_f64();
    return {x, bytes.any_f64()};
}

curve_pt_t read_knot(fuzz::byte_reader& bytes)
{
    const fpoint_t p = read_point(bytes);
    return {p.x, p.y, bytes.any_f64()};
}

std::vector<fpoint_t> read_points(fuzz::byte_reader& bytes)
{
    std::vector<fpoint_t> points(bytes.byte() % 64U);
    for (fpoint_t& p : points)
        p = read_point(bytes);
    return points;
}

// A frame of any settings, and a small canvas for its lines.
class bench
{
public:
    explicit bench(fuzz::byte_reader& bytes)
        : canvas_(1 + bytes.byte() % 96, 1 + bytes.byte() % 96, 4 * (bytes.byte() % 4)),
          destination_(canvas_.layer()->width, canvas_.layer()->height, 0),
          memory_(kPoolBytes / sizeof(std::max_align_t)), rng_(1)
    {
        auto* const base = reinterpret_cast<std::byte*>(memory_.data());
        pool = {base, base, kPoolBytes - 8 * std::uint64_t{bytes.u16()} % kPoolBytes};
        for (int orders = bytes.byte() % kMostOrders; orders > 0; --orders)
            fuzz::read_order(bytes, host_);
        set_up_frame(frame, &pool, &host_.in_data, &host_.out_data, host_.params(), &host_.output());
        AEG_SetIdentityMatrix(&frame.layoutMatrix);
        if (bytes.byte() % 2 == 0)
            AEG_RotateMatrixPlus(&frame.layoutMatrix, frame.in_data, 180.0, frame.squareSize / 2,
                                 frame.squareSize / 2);
    }

    void draw(sp_line& line, float width)
    {
        if (!can_draw())
            return;
        line.draw(rng_, context_, width);
        fuzz::require(canvas_.padding_is_untouched(), "the canvas' padding is as it was");
    }

    mem_pool pool{};
    frame_data frame;

private:
    // Sets the rasteriser up, once.
    bool can_draw()
    {
        if (!set_up_)
        {
            set_up_ = true;
            context_ = pool_new<aeg>(&pool, &pool, &host_.in_data, destination_.layer(), canvas_.layer(),
                                     static_cast<unsigned char>(0), short{0}, short{0});
            LineCreatorClass& creator = frame.lineCreator;
            creator.context = context_;
            creator.pixels = canvas_.layer()->data;
            creator.width = canvas_.layer()->width;
            creator.height = canvas_.layer()->height;
            creator.rowBytes = canvas_.layer()->rowbytes;
            creator.coveredMask =
                pool_array<std::uint8_t>(&pool, std::int64_t{creator.width} * std::int64_t{creator.height});
            creator.CreateTables();
        }
        return context_ != nullptr && frame.lineCreator.coveredMask != nullptr &&
               frame.lineCreator.coverageTable != nullptr;
    }

    fuzz::fuzz_host host_;
    fuzz::small_canvas canvas_;
    fuzz::small_canvas destination_;
    std::vector<std::max_align_t> memory_;
    Loom::RandomGenerator32 rng_;
    aeg* context_ = nullptr;
    bool set_up_ = false;
};

// The next line, or null where the pool is short. `other` may be null.
sp_line* make_line(fuzz::byte_reader& bytes, bench& b, const sp_line* other)
{
    const auto way = bytes.byte();
    const auto vertical = static_cast<unsigned char>(way >> 7U);
    frame_data* const frame = &b.frame;
    switch (way % 5)
    {
    case 0:
    {
        const std::vector<fpoint_t> points = read_points(bytes);
        return pool_new<sp_line>(&b.pool, frame, vertical, points.data(), static_cast<int>(points.size()));
    }
    case 1:
    {
        const curve_pt_t first = read_knot(bytes);
        const curve_pt_t second = read_knot(bytes);
        const curve_pt_t third = read_knot(bytes);
        return pool_new<sp_line>(&b.pool, frame, vertical, first, second, third);
    }
    case 2:
    {
        const fpoint_t from = read_point(bytes);
        const fpoint_t to = read_point(bytes);
        return pool_new<sp_line>(&b.pool, frame, vertical, from, to);
    }
    case 3:
    {
        const auto seed = bytes.byte();
        const auto* const ripple = pool_new<curve>(&b.pool, frame, seed, 0, frame->frameNumber, frame->turbulence);
        const fpoint_t start = read_point(bytes);
        const auto from = low_i16(bytes.any_i32());
        const auto to = low_i16(bytes.any_i32());
        return ripple != nullptr ? pool_new<sp_line>(&b.pool, frame, vertical, start, ripple, from, to) : nullptr;
    }
    default:
        return other != nullptr ? pool_new<sp_line>(&b.pool, other) : nullptr;
    }
}

void act_on(fuzz::byte_reader& bytes, bench& b, sp_line& line)
{
    float v = 0.0f;
    switch (bytes.byte() % 6)
    {
    case 0:
    {
        const std::vector<fpoint_t> points = read_points(bytes);
        line.insert_distortion(points.data(), static_cast<int>(points.size()));
        break;
    }
    case 1:
        line.affect_compression();
        break;
    case 2:
        line.filter();
        break;
    case 3:
        if (line.has_points())
            line.value(line.points, line.num_points, bytes.any_f32(), &v);
        break;
    case 4:
        line.value(bytes.any_f32(), &v);
        break;
    default:
        b.draw(line, bytes.any_f32());
        break;
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::byte_reader bytes(data, size);
    bench b(bytes);
    sp_line* line = nullptr;
    for (int act = 0; act < kMostActs && bytes.more(); ++act)
    {
        if (line == nullptr || bytes.byte() % 4 == 0)
        {
            sp_line* const made = make_line(bytes, b, line);
            line = made != nullptr ? made : line;
        }
        else
        {
            act_on(bytes, b, *line);
        }
        fuzz::require(line == nullptr || line->points == nullptr || line->num_points <= line->room,
                      "a line has room for its points");
        fuzz::require(b.pool.remaining % 8 == 0, "the pool stays aligned");
    }
    return 0;
}
