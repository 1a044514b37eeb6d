#include "effect/layout/line_field.hpp"

#include "effect/layout/crossing.hpp"
#include "effect/layout/sp_line.hpp"
#include "effect/model/curve.hpp"
#include "effect/model/frame_data.hpp"
#include "effect/model/grid.hpp"
#include "effect/model/numeric.hpp"
#include "effect/model/random.hpp"
#include "effect/model/work_limits.hpp"
#include "effect/shell/param_ids.hpp"

#include <algorithm>

namespace
{
// One of the two directions that lines run in. Columns are vertical lines spread along x, rows horizontal ones
// spread along y.
struct direction
{
    unsigned char vertical;
    std::int32_t count;  // lines
    std::int32_t cell;   // size across the lines, pixels
    std::int32_t origin; // the grid's edge across the lines, canvas pixels
    std::int32_t start;  // the grid's edge along the lines
    std::int32_t length; // of the grid along the lines
};

direction columns_of(const frame_data& f)
{
    return {1, std::min(f.columns, kMostLines), f.columnSpacing, f.marginX, f.marginY, f.height};
}

direction rows_of(const frame_data& f)
{
    return {0, std::min(f.rows, kMostLines), f.rowSpacing, f.marginY, f.marginX, f.width};
}

// Where the lines of a direction start and how they grow, with "Lines Have Ends".
struct growth
{
    std::int32_t start;  // canvas pixels along the lines
    float spread;        // of the start, pixels either way
    std::int32_t offset; // added to the start
    int growth_param;
    std::int32_t length; // pixels that a line may grow to
};

class line_field
{
public:
    line_field(grid& g, frame_data& frame, aeg* context) : grid_(g), frame_(frame), context_(context), rng_(0)
    {
        rng_.ReSeed(static_cast<unsigned int>(trunc_i32(static_cast<double>(frame.randomSeed))));
    }

    // Draws for each rippled line: width; ripple seed and turbulence; placement; then the opacity, when it is
    // drawn.
    void draw_rippled(const direction& d)
    {
        for (int i = 0; i < d.count; ++i)
        {
            const float width = draw_width();
            curve* const ripple = draw_ripple();
            if (ripple == nullptr)
                return;
            sp_line* const line = endless_line(d, ripple, place(d, i, draw_jitter(d)));
            if (line != nullptr)
                line->draw(rng_, context_, width);
            pool_release(frame_.pool, ripple);
        }
    }

    // Draws: a placement for each straight line; for each rippled one width, ripple seed and turbulence,
    // placement, a bend for each crossing, the opacity; at the end for each straight line width and opacity.
    void draw_crossing(const direction& rippled, const direction& straight)
    {
        for (int i = 0; i < straight.count; ++i)
        {
            const double across = place(straight, i, draw_jitter(straight));
            sp_line* const line = straight_line(straight, across);
            if (line != nullptr)
                grid_.lines.push_back(line);
        }
        for (int i = 0; i < rippled.count; ++i)
        {
            const float width = draw_width();
            curve* const ripple = draw_ripple();
            if (ripple == nullptr)
                return;
            const double across = place(rippled, i, draw_jitter(rippled));
            sp_line* const line = endless_line(rippled, ripple, across);
            if (line != nullptr)
            {
                const auto shifted = static_cast<float>(across + static_cast<double>(line->compression_shift));
                for (sp_line* crossed : grid_.lines)
                    distort_crossing(frame_, rng_, *ripple, shifted, *crossed);
                line->draw(rng_, context_, width);
            }
            pool_release(frame_.pool, ripple);
        }
    }

    void draw_straight_lines()
    {
        for (sp_line* line : grid_.lines)
        {
            const float width = draw_width();
            line->filter();
            line->draw(rng_, context_, width);
        }
    }

    // Draws: one, kept; for each column width, ripple seed and turbulence, placement, start, growth (one step),
    // length, and the opacity when it is drawn. The generator is then reseeded with the kept draw, so that the
    // rows, which draw the same, do not depend on the columns.
    void draw_with_ends()
    {
        const frame_data& f = frame_;
        const float spread_y = static_cast<float>(f.height) * static_cast<float>(f.startRandomness) / 100.0f;
        const float spread_x = static_cast<float>(f.startRandomness) * static_cast<float>(f.width) / 100.0f;
        const unsigned int saved = rng_.GetNextRandomInt();
        draw_growing(columns_of(f),
                     {f.verticalStartY, spread_y, f.verticalOffset, kVerticalGrowth, f.verticalLength});
        rng_.ReSeed(saved);
        const growth of_rows =
            f.lockHorizontalToVertical != 0
                ? growth{f.verticalStartX, spread_x, f.verticalOffset, kVerticalGrowth, f.verticalLength}
                : growth{f.horizontalStartX, spread_x, f.horizontalOffset, kHorizontalGrowth, f.horizontalLength};
        draw_growing(rows_of(f), of_rows);
    }

private:
    void draw_growing(const direction& d, const growth& g)
    {
        for (int i = 0; i < d.count; ++i)
        {
            const float width = draw_width();
            curve* const ripple = draw_ripple();
            if (ripple == nullptr)
                return;
            const float jitter = draw_jitter(d);
            const auto spread = static_cast<double>(g.spread);
            const auto wanted =
                static_cast<float>(static_cast<double>(g.start) + MATH_Rand_IMP(rng_).random(-spread, spread) +
                                   static_cast<double>(g.offset));
            const float start = std::max(static_cast<float>(d.start), wanted);
            const float grown =
                sum_param_rnd(rng_, frame_.in_data, g.growth_param, kGrowthRandomness, growth_frames());
            const float length =
                rand_param(rng_, static_cast<float>(g.length), static_cast<float>(frame_.lengthRandomness));
            draw_ended(d, ripple, place(d, i, jitter), start, end_of(d, start, grown, length), width);
            pool_release(frame_.pool, ripple);
        }
    }

    // The last frame that growth is summed up to.
    int growth_frames() const
    {
        const std::int64_t lines =
            std::int64_t{std::max(columns_of(frame_).count, 0)} + std::max(rows_of(frame_).count, 0);
        return static_cast<int>(
            std::min(frame_.frameNumber, kMostGrowthFrames / std::max<std::int64_t>(lines, 1)));
    }

    // A line sampled from a ripple; null where the pool has no room for it or the render has had its points.
    sp_line* rippled_line(const direction& d, const curve* ripple, double across, short from, short to)
    {
        if (points_left_ <= 0)
            return nullptr;
        const fpoint_t at = {across, 0.0};
        sp_line* const line = pool_new<sp_line>(frame_.pool, &frame_, d.vertical, at, ripple, from, to);
        if (line != nullptr)
            points_left_ -= line->room;
        return line;
    }

    // Where a line ends that has grown by `grown` out of at most `length`; at the grid's far edge unless lines
    // wrap.
    float end_of(const direction& d, float start, float grown, float length) const
    {
        const float full = start + length;
        float end = std::clamp(start + grown, std::min(start, full), std::max(start, full));
        if (frame_.lineWrapping == 0)
            end = std::min(end, static_cast<float>(wrap_sub(frame_.squareSize, d.start)));
        return end;
    }

    void draw_ended(const direction& d, const curve* ripple, double across, float start, float end, float width)
    {
        if (!(end > start))
            return;
        const auto side = static_cast<float>(frame_.squareSize);
        const short from = trunc_i16(static_cast<double>(side - end));
        const short to = trunc_i16(static_cast<double>(side - start));
        sp_line* const line = rippled_line(d, ripple, across, from, to);
        if (line != nullptr)
            line->draw(rng_, context_, width);
    }

    // The stroke radius, pixels.
    float draw_width()
    {
        const float width = rand_param(rng_, static_cast<float>(frame_.normalWidth),
                                       static_cast<float>(frame_.normalWidthRandomness));
        return std::max(0.6f, width * 0.5f);
    }

    // Null where the pool has no room for the curve or its samples; the direction's loop then ends.
    curve* draw_ripple()
    {
        const unsigned int seed = rng_.GetNextRandomInt();
        const float turbulence =
            rand_param(rng_, frame_.turbulence, static_cast<float>(frame_.turbulenceRandomness));
        auto* const ripple = pool_new<curve>(frame_.pool, &frame_, seed, 0, frame_.frameNumber, turbulence);
        return ripple != nullptr && ripple->sampled() ? ripple : nullptr;
    }

    // Where in its cell a line lies, 0 to the cell's size; the middle without randomness.
    float draw_jitter(const direction& d)
    {
        const auto cell = static_cast<float>(d.cell);
        const auto middle = static_cast<float>(static_cast<double>(d.cell) * 0.5);
        const float r = rand_param(rng_, middle, static_cast<float>(frame_.spacingRandomness));
        return std::min(std::max(r, 0.0f), cell);
    }

    // Line i's across position, canvas pixels.
    static double place(const direction& d, int i, float jitter)
    {
        const auto cell = static_cast<double>(d.cell);
        const auto off_middle = static_cast<float>(static_cast<double>(jitter) - cell * 0.5);
        return static_cast<double>(off_middle) +
               ((static_cast<double>(i) + 0.5) * cell + static_cast<double>(d.origin));
    }

    sp_line* endless_line(const direction& d, const curve* ripple, double across)
    {
        return rippled_line(d, ripple, across, low_i16(d.start), low_i16(wrap_add(d.start, d.length)));
    }

    sp_line* straight_line(const direction& d, double across)
    {
        const auto first = static_cast<double>(d.start);
        const auto last = static_cast<double>(wrap_add(d.start, d.length));
        const fpoint_t a = d.vertical != 0 ? fpoint_t{across, first} : fpoint_t{first, across};
        const fpoint_t b = d.vertical != 0 ? fpoint_t{across, last} : fpoint_t{last, across};
        return pool_new<sp_line>(frame_.pool, &frame_, d.vertical, a, b);
    }

    grid& grid_;
    frame_data& frame_;
    aeg* context_;
    Loom::RandomGenerator32 rng_;
    std::int64_t points_left_ = kMostRipplePoints;
};
} // namespace

void draw_line_field(grid& g, frame_data& frame, aeg* context)
{
    line_field field(g, frame, context);
    if (frame.linesHaveEnds != 0)
    {
        field.draw_with_ends();
        return;
    }
    if (frame.affect == 3)
    {
        field.draw_rippled(columns_of(frame));
        field.draw_rippled(rows_of(frame));
    }
    else if (frame.affect == 2)
    {
        field.draw_crossing(rows_of(frame), columns_of(frame));
    }
    else if (frame.affect == 1)
    {
        field.draw_crossing(columns_of(frame), rows_of(frame));
    }
    field.draw_straight_lines();
}
