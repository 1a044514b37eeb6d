#include "effect/layout/sp_line.hpp"

#include "effect/model/frame_data.hpp"
#include "effect/model/matrix.hpp"
#include "effect/model/numeric.hpp"
#include "effect/model/work_limits.hpp"
#include "effect/raster/aeg.hpp"
#include "effect/raster/line_samples.hpp"
#include "effect/raster/stroke_point.hpp"

#include <algorithm>
#include <cmath>

namespace
{
// The line's alpha from its randomised opacity in percent: 100 is 255.
A_u_char alpha_of(float opacity) noexcept
{
    const auto scaled = static_cast<float>(static_cast<double>(opacity) * 2.55);
    const std::int16_t a = trunc_i16(static_cast<double>(scaled));
    return static_cast<A_u_char>(std::clamp<std::int16_t>(a, 0, 255));
}

// Carves the sample array: the stated size, or more where the sampling needs it, and one slot past the last
// sample. Null where it does not fit. Zero-filled for the plain functions alone; the fast ones write all that is
// read.
StrokePoint* carve_samples(const frame_data& frame, int num_points, float first, double last, bool plain) noexcept
{
    const std::uint64_t most = frame.pool->remaining / sizeof(StrokePoint);
    const std::uint64_t needed = (plain ? count_positions(first, last, frame.qualityStep, most)
                                        : count_positions_fast(first, last, frame.qualityStep, most)) +
                                 1;
    if (needed > most)
        return nullptr;
    const double stated = static_cast<double>(num_points) * 16.0 / static_cast<double>(frame.qualityStep);
    const std::int64_t stated_bytes = trunc_i64(stated);
    const std::uint64_t bytes = std::max(static_cast<std::uint64_t>(stated_bytes), needed * sizeof(StrokePoint));
    return static_cast<StrokePoint*>(pool_alloc_used(frame.pool, bytes, plain ? bytes : 0));
}

// Sets the radii of the square that is covered around every sample, less a margin for anti-aliasing, and of the
// widest disc, with that margin.
void set_radii(LineCreatorClass& creator, std::int32_t stressed_width, float width) noexcept
{
    constexpr double kSqrt2 = 1.4142135623730951;
    const float stress = static_cast<float>(stressed_width) / 100.0f;
    if (stressed_width < 0)
    {
        const float thinnest = (stress + 1.0f) * width;
        creator.innerRadius = static_cast<float>(static_cast<double>(thinnest) / kSqrt2 - 1.5);
        creator.outerRadius = static_cast<float>(static_cast<double>(width) + 1.5);
    }
    else
    {
        const float widest = (1.0f + stress) * width;
        creator.innerRadius = static_cast<float>(static_cast<double>(width) / kSqrt2 - 1.5);
        creator.outerRadius = static_cast<float>(static_cast<double>(widest) + 1.5);
    }
}

std::int64_t canvas_pixels(const LineCreatorClass& creator) noexcept
{
    return std::int64_t{creator.width} * creator.height;
}

// What a piece counts as: pixels of the canvas in the box around its samples, the outer radius added to each side,
// and what laying it over the destination is worth.
std::int64_t box_pixels(const LineCreatorClass& creator, const StrokePoint* samples, int count) noexcept
{
    float left = samples[0].x;
    float right = left;
    float top = samples[0].y;
    float bottom = top;
    for (int i = 1; i < count; ++i)
    {
        left = std::min(left, samples[i].x);
        right = std::max(right, samples[i].x);
        top = std::min(top, samples[i].y);
        bottom = std::max(bottom, samples[i].y);
    }
    const auto length = [&](float first, float last, std::int32_t size)
    {
        const auto limit = static_cast<float>(size);
        const float covered =
            std::min(last + creator.outerRadius, limit) - std::max(first - creator.outerRadius, 0.0f);
        if (covered < 0.0f)
            return std::int64_t{0};
        return covered < limit ? trunc_i64(static_cast<double>(covered)) + 1 : std::int64_t{size}; // or no number
    };
    return length(left, right, creator.width) * length(top, bottom, creator.height) + kPixelsOfPiece;
}

// One run of samples, drawn and laid over the destination, as one that sweeps no more than `swept` pixels.
void draw_piece(LineCreatorClass& creator, aeg* context, StrokePoint* samples, int count, std::int64_t swept)
{
    if (creator.sweptPixels > std::max(kMostCanvases * canvas_pixels(creator), kMostSweptPixels))
        return;
    creator.sweptPixels += swept;
    creator.points = samples;
    creator.pointCount = count;
    // A stroke too thin for a solid core switches the rest of the render to the path without one.
    if (creator.innerRadius < 1.0f)
        creator.subRenderFunction = &LineCreatorClass::SubRenderMulticolor;
    creator.Render();
    context->flush();
}

// Cuts the samples where the line runs over the grid's far edge (`threshold`, canvas pixels) and draws the pieces,
// the part beyond the edge moved back by `period`. The scan starts at the zeroed slot past the last sample. Draws
// no more pieces than the render may have; `drawn` counts them.
class wrapped_pieces
{
public:
    wrapped_pieces(LineCreatorClass& creator, aeg* context, StrokePoint* samples, bool vertical, float threshold,
                   float period, std::int64_t* drawn)
        : creator_(creator), context_(context), samples_(samples), vertical_(vertical), threshold_(threshold),
          period_(period), drawn_(drawn)
    {
    }

    // What remains beyond the edge moves back by a period for each piece drawn. Where every such move is exact
    // (whole periods that never take a sample below 0), the moves are made when a sample's turn comes, all at
    // once.
    void draw(int count)
    {
        const bool exact = period_ >= 1.0f && threshold_ >= period_ && std::fabs(main_of(0)) < kExact;
        float moved = 0.0f; // from where the samples lie in memory
        int slot = count;
        for (;;)
        {
            if (*drawn_ >= kMostPieces)
                return;
            const int end = slot;
            while (slot > 0 && main_of(slot) - moved < threshold_)
                --slot;
            if (slot < end)
            {
                draw_piece_at(slot, end, moved);
                ++*drawn_;
            }
            if (slot == 0)
                return;
            const float before = main_of(slot) - moved;
            if (exact)
            {
                moved += period_;
            }
            else
            {
                for (int i = slot; i >= 0; --i)
                    main_of(i) -= period_;
            }
            // A period that moves nothing would cut for ever.
            if (!(main_of(slot) - moved < before))
                return;
        }
    }

private:
    static constexpr float kExact = 8388608.0f; // 2^23: whole numbers and their halves up to here are exact

    float& main_of(int i) { return vertical_ ? samples_[i].y : samples_[i].x; }

    // The piece's first sample is the next one's end, and keeps its place for it.
    void draw_piece_at(int slot, int end, float moved)
    {
        const float kept = main_of(slot);
        for (int i = slot; i < end; ++i)
            main_of(i) -= moved;
        draw_piece(creator_, context_, samples_ + slot, end - slot,
                   box_pixels(creator_, samples_ + slot, end - slot));
        main_of(slot) = kept;
    }

    LineCreatorClass& creator_;
    aeg* context_;
    StrokePoint* samples_;
    bool vertical_;
    float threshold_;
    float period_;
    std::int64_t* drawn_;
};
} // namespace

void sp_line::draw(Loom::RandomGenerator32& rng, aeg* context, float width)
{
    LineCreatorClass& creator = frame->lineCreator;

    // Opacity: the only draw.
    const A_u_char alpha = alpha_of(
        rand_param(rng, static_cast<float>(frame->opacity), static_cast<float>(frame->opacityRandomness)));
    frame->normalColor.alpha = alpha;
    frame->stressedColor.alpha = alpha;
    if (!has_points())
        return;

    // Onto the canvas; running positions now descend.
    fpoint_t base =
        vertical != 0 ? fpoint_t{static_cast<double>(base_x), 0.0} : fpoint_t{0.0, static_cast<double>(base_y)};
    AEG_TransformPoints(&frame->layoutMatrix, 1, &base);
    AEG_TransformPoints(&frame->layoutMatrix, num_points, points);
    const double base_across = vertical != 0 ? base.x : base.y;
    const double first_run = run(points[0]);
    const double last_run = run(points[num_points - 1]);
    if (!std::isfinite(first_run) || !std::isfinite(last_run))
        return;

    // The farthest that the line gets from its base.
    float max_deviation = 0.0f;
    for (int i = num_points - 1; i >= 0; --i)
        max_deviation = std::max(max_deviation, std::fabs(static_cast<float>(across(points[i]) - base_across)));

    // Sample it at a fixed step along the main axis. The slot past the last sample is zero.
    const auto first = static_cast<float>(first_run);
    const bool plain = creator.level == simd_level::scalar;
    StrokePoint* const samples = carve_samples(*frame, num_points, first, last_run, plain);
    if (samples == nullptr)
        return;
    const line_sampling sampling = {first,
                                    last_run,
                                    frame->qualityStep,
                                    base_across,
                                    max_deviation,
                                    width,
                                    static_cast<float>(frame->stressedWidth),
                                    creator.monocolor,
                                    frame->normalColor,
                                    frame->stressedColor,
                                    low_i16(frame->normalShare)};
    const int count =
        plain ? sample_line(*this, sampling, samples) : sample_line_fast(*this, sampling, frame->pool, samples);
    samples[count] = {};
    if (creator.monocolor)
        samples[0].color =
            frame->useDisplacement != 0 || frame->normalShare == 100 ? frame->normalColor : frame->stressedColor;
    if (count == 0)
        return; // the array stays carved until the frame ends

    // Hand it over, whole or in pieces.
    creator.axis = vertical != 0 ? 1 : 0;
    set_radii(creator, frame->stressedWidth, width);
    if (frame->lineWrapping != 0 && frame->linesHaveEnds != 0)
    {
        const std::int32_t margin = vertical != 0 ? frame->marginY : frame->marginX;
        const std::int32_t period = vertical != 0 ? frame->height : frame->width;
        wrapped_pieces(creator, context, samples, vertical != 0,
                       static_cast<float>(wrap_sub(frame->squareSize, margin)), static_cast<float>(period),
                       &frame->piecesDrawn)
            .draw(count);
    }
    else
    {
        draw_piece(creator, context, samples, count, canvas_pixels(creator));
    }
    pool_release(frame->pool, samples);
}
