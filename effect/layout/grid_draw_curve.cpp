#include "effect/model/grid.hpp"

#include "effect/layout/line_field.hpp"
#include "effect/model/frame_data.hpp"
#include "effect/model/matrix.hpp"
#include "effect/model/numeric.hpp"
#include "effect/model/work_limits.hpp"
#include "effect/raster/aeg.hpp"

#include <algorithm>

namespace
{
// The two worlds of a render, squareSize x squareSize, cleared: lines are composited onto `lines`, each stroke is
// drawn on `strokes` first. Given back in the order of making.
class canvas_pair
{
public:
    explicit canvas_pair(PF_InData* in_data) : in_data_(in_data) {}
    canvas_pair(const canvas_pair&) = delete;
    canvas_pair& operator=(const canvas_pair&) = delete;
    ~canvas_pair()
    {
        for (int i = 0; i < made_; ++i)
            in_data_->utils->dispose_world(in_data_->effect_ref, &worlds_[i]);
    }

    PF_Err make(A_long side)
    {
        for (PF_EffectWorld& world : worlds_)
        {
            const PF_Err err =
                in_data_->utils->new_world(in_data_->effect_ref, side, side, PF_NewWorldFlag_CLEAR_PIXELS, &world);
            if (err != PF_Err_NONE)
                return err;
            ++made_;
        }
        return PF_Err_NONE;
    }

    PF_EffectWorld* lines() { return &worlds_[0]; }
    PF_EffectWorld* strokes() { return &worlds_[1]; }

private:
    PF_InData* in_data_;
    PF_EffectWorld worlds_[2] = {};
    int made_ = 0;
};

// Leaves the list empty on every way out: no destructor runs for the grid.
class emptied_on_exit
{
public:
    explicit emptied_on_exit(std::list<sp_line*>& list) : list_(list) {}
    emptied_on_exit(const emptied_on_exit&) = delete;
    emptied_on_exit& operator=(const emptied_on_exit&) = delete;
    ~emptied_on_exit() { list_.clear(); }

private:
    std::list<sp_line*>& list_;
};

double factor(const PF_RationalScale& scale)
{
    return static_cast<double>(scale.num) / static_cast<double>(scale.den);
}

// Canvas to target: turn and scale about the canvas centre, then bring the centre to the grid's position.
PF_FloatMatrix output_matrix(const frame_data& frame)
{
    PF_InData* const in_data = frame.in_data;
    const auto half = static_cast<double>(frame.squareSize / 2);
    const double scale_x = factor(in_data->downsample_x);
    const double scale_y = factor(in_data->downsample_y);
    const float move_x = frame.positionX * static_cast<float>(scale_x) - static_cast<float>(frame.squareSize / 2);
    const float move_y = frame.positionY * static_cast<float>(scale_y) - static_cast<float>(frame.squareSize / 2);
    PF_FloatMatrix m;
    AEG_SetIdentityMatrix(&m);
    AEG_RotateMatrixPlus(&m, in_data, static_cast<double>(frame.rotation), half, half);
    AEG_ScaleMatrix(&m, scale_x, scale_y, half, half);
    AEG_TranslateMatrix(&m, static_cast<double>(move_x), static_cast<double>(move_y));
    return m;
}

void set_up_matrices(frame_data& frame)
{
    const auto half = static_cast<double>(frame.squareSize / 2);
    AEG_SetIdentityMatrix(&frame.rotationMatrix);
    AEG_RotateMatrixPlus(&frame.rotationMatrix, frame.in_data, static_cast<double>(frame.rotation), half, half);
    AEG_SetIdentityMatrix(&frame.layoutMatrix);
    AEG_RotateMatrixPlus(&frame.layoutMatrix, frame.in_data, 180.0, half, half);
}

// Points the rasteriser at the context's canvas and carves what it needs. False where the pool is short: then no
// line can be drawn.
bool set_up_rasteriser(frame_data& frame, aeg* context)
{
    LineCreatorClass& creator = frame.lineCreator;
    const PF_LayerDef* canvas = context->canvas;
    creator.context = context;
    creator.pixels = canvas->data;
    creator.width = canvas->width;
    creator.height = canvas->height;
    creator.rowBytes = canvas->rowbytes;
    // Every stroke that needs the mask clears it first; most pages of it are never touched.
    creator.coveredMask =
        pool_array_used<std::uint8_t>(frame.pool, std::int64_t{canvas->width} * canvas->height, 0);
    creator.CreateTables();
    return creator.coveredMask != nullptr && creator.coverageTable != nullptr;
}

// The inner borders of the grid's cells, one pixel wide.
void show_grid(const frame_data& frame, bool displacement_pass, PF_EffectWorld* world)
{
    PF_InData* const in_data = frame.in_data;
    const PF_Pixel color = {127, static_cast<A_u_char>(displacement_pass ? 0 : 255), 0, 0};
    for (A_long c = 1; c < std::min(frame.columns, kMostLines); ++c)
    {
        const A_long x = wrap_add(frame.marginX, wrap_mul(c, frame.columnSpacing));
        const PF_Rect rect = {x, frame.marginY, wrap_add(x, 1), wrap_add(frame.marginY, frame.height)};
        in_data->utils->fill(in_data->effect_ref, &color, &rect, world);
    }
    for (A_long r = 1; r < std::min(frame.rows, kMostLines); ++r)
    {
        const A_long y = wrap_add(frame.marginY, wrap_mul(r, frame.rowSpacing));
        const PF_Rect rect = {frame.marginX, y, wrap_add(frame.marginX, frame.width), wrap_add(y, 1)};
        in_data->utils->fill(in_data->effect_ref, &color, &rect, world);
    }
}
} // namespace

PF_Err grid::draw_curve(PF_LayerDef* target_, unsigned char displacement_pass)
{
    target = target_;
    const emptied_on_exit emptied(lines);
    set_up_matrices(*frame);
    const PF_FloatMatrix to_target = output_matrix(*frame);

    canvas_pair canvas(in_data);
    const PF_Err err = canvas.make(frame->squareSize);
    if (err != PF_Err_NONE)
        return err;

    // A displacement matte is drawn in white.
    if (displacement_pass != 0)
    {
        frame->normalColor.red = 255;
        frame->normalColor.green = 255;
        frame->normalColor.blue = 255;
    }

    const unsigned char wraps = frame->linesHaveEnds != 0 ? frame->lineWrapping : std::uint8_t{0};
    context = pool_new<aeg>(pool, pool, in_data, canvas.lines(), canvas.strokes(), wraps, short{0}, short{0});
    const bool can_draw = context != nullptr && set_up_rasteriser(*frame, context);
    if (frame->showGrid != 0)
        show_grid(*frame, displacement_pass != 0, canvas.lines());
    if (can_draw)
        draw_line_field(*this, *frame, context);

    PF_CompositeMode mode{};
    mode.xfer = PF_Xfer_IN_FRONT;
    mode.rand_seed = 456321;
    mode.opacity = 255;
    return in_data->utils->transform_world(in_data->effect_ref, in_data->quality, 0, 0, canvas.lines(), &mode,
                                           nullptr, &to_target, 1, 1, &target->extent_hint, target);
}
