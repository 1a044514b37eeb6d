#include "effect/model/displacement.hpp"
#include "effect/model/frame_data.hpp"
#include "effect/model/frame_setup.hpp"
#include "effect/model/grid.hpp"
#include "effect/model/numeric.hpp"

namespace
{
// Draws the lines into a scratch world of the input's size and shifts the input by them. Answers the host's error
// where there is no scratch world, else what it said to its disposal.
PF_Err draw_displaced(grid& g, frame_data& frame)
{
    PF_InData* const in_data = frame.in_data;
    const PF_UtilCallbacks& utils = *in_data->utils;
    const PF_Err err = utils.new_world(in_data->effect_ref, frame.input->width, frame.input->height,
                                       PF_NewWorldFlag_CLEAR_PIXELS, &frame.scratch);
    if (err != PF_Err_NONE)
        return err;
    try
    {
        g.draw_curve(&frame.scratch, 1);
        const A_short final = low_i16(wrap_sub(frame.output->extent_hint.bottom, frame.output->extent_hint.top));
        // Nobody else wants the pool's rest by now.
        displacement_plan* const plan =
            frame.lineCreator.level != simd_level::scalar ? plan_displacement(frame) : nullptr;
        if (plan != nullptr)
            utils.iterate(in_data, 0, final, &frame.scratch, &frame.scratch.extent_hint, plan,
                          displace_img_planned, frame.output);
        else
            utils.iterate(in_data, 0, final, &frame.scratch, &frame.scratch.extent_hint, &frame, displace_img,
                          frame.output);
    }
    catch (...)
    {
        utils.dispose_world(in_data->effect_ref, &frame.scratch);
        throw;
    }
    return utils.dispose_world(in_data->effect_ref, &frame.scratch);
}
} // namespace

PF_Err grid::draw(PF_InData* in_data_, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output)
{
    in_data = in_data_;
    frame = pool_new<frame_data>(pool);
    if (frame == nullptr)
        return PF_Err_NONE;
    set_up_frame(*frame, pool, in_data, out_data, params, output);

    if (frame->useDisplacement != 0)
        return draw_displaced(*this, *frame);

    const PF_UtilCallbacks& utils = *in_data->utils;
    if (frame->compositeOnOriginal != 0)
    {
        utils.copy(in_data->effect_ref, frame->input, output, nullptr, nullptr);
    }
    else
    {
        const PF_Pixel transparent = {0, 0, 0, 0};
        utils.fill(in_data->effect_ref, &transparent, nullptr, output);
    }
    draw_curve(output, 0);
    return PF_Err_NONE;
}
