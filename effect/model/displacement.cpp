#include "effect/model/displacement.hpp"

#include "effect/model/frame_data.hpp"
#include "effect/model/numeric.hpp"
#include "effect/shell/mem_pool.hpp"

namespace
{
// Where along `size` pixels of the matte the input's position lies, as whole pixels in 16.16.
PF_Fixed matte_position(A_long size, A_long position, A_long input_size) noexcept
{
    const float share = static_cast<float>(position) / static_cast<float>(input_size);
    return to_fixed(trunc_i32(static_cast<double>(static_cast<float>(size) * share)));
}

displacement_plan::line* plan_lines(mem_pool* pool, A_long count, A_long matte_size,
                                    PF_Fixed displacement) noexcept
{
    auto* const lines = pool_array_used<displacement_plan::line>(pool, count, 0);
    for (A_long i = 0; lines != nullptr && i < count; ++i)
        lines[i] = {matte_position(matte_size, i, count), static_cast<float>(to_fixed(i)),
                    to_fixed(i) < displacement || displacement > to_fixed(wrap_sub(count, i))};
    return lines;
}
} // namespace

displacement_plan* plan_displacement(frame_data& frame) noexcept
{
    const PF_LayerDef& input = frame.params[0]->u.ld;
    constexpr A_long kWidest = 16384; // pixels, of the input; half of what a displaced position may be
    constexpr PF_Fixed kFarthest = kWidest * 65536;
    const auto near = [](PF_Fixed by) { return by > -kFarthest && by < kFarthest; };
    if (input.width > kWidest || input.height > kWidest || !near(frame.displaceX) || !near(frame.displaceY))
        return nullptr;
    auto* const plan = pool_array_used<displacement_plan>(frame.pool, 1, 0);
    if (plan == nullptr)
        return nullptr;
    plan->frame = &frame;
    plan->sample = frame.in_data->utils->subpixel_sample;
    plan->host = frame.in_data->effect_ref;
    plan->matte = plan->input = frame.sampling;
    plan->matte.src = &frame.scratch;
    plan->input.src = frame.input;
    plan->width = input.width;
    plan->height = input.height;
    plan->columns = plan_lines(frame.pool, plan->width, frame.scratch.width, frame.displaceX);
    plan->rows = plan_lines(frame.pool, plan->height, frame.scratch.height, frame.displaceY);
    for (int alpha = 0; alpha < 256; ++alpha)
    {
        const float a = static_cast<float>(alpha) / 255.0f;
        plan->shift_x[alpha] = static_cast<float>(frame.displaceX) * a;
        plan->shift_y[alpha] = static_cast<float>(frame.displaceY) * a;
    }
    return plan->columns != nullptr && plan->rows != nullptr ? plan : nullptr;
}

PF_Err displace_img(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out)
{
    frame_data& frame = *static_cast<frame_data*>(refcon);
    PF_InData* const in_data = frame.in_data;
    const auto subpixel_sample = in_data->utils->subpixel_sample;
    const A_long width = frame.params[0]->u.ld.width;
    const A_long height = frame.params[0]->u.ld.height;
    const PF_Fixed fixed_x = to_fixed(x);
    const PF_Fixed fixed_y = to_fixed(y);

    if (fixed_x < frame.displaceX || fixed_y < frame.displaceY || frame.displaceX > to_fixed(wrap_sub(width, x)) ||
        frame.displaceY > to_fixed(wrap_sub(height, y)))
    {
        *out = *in;
        return PF_Err_NONE;
    }

    frame.sampling.src = &frame.scratch;
    subpixel_sample(in_data->effect_ref, matte_position(frame.scratch.width, x, width),
                    matte_position(frame.scratch.height, y, height), &frame.sampling, out);

    frame.sampling.src = frame.input;
    const float a = static_cast<float>(out->alpha) / 255.0f;
    const float to_y = static_cast<float>(fixed_y) + static_cast<float>(frame.displaceY) * a;
    const float to_x = static_cast<float>(fixed_x) + static_cast<float>(frame.displaceX) * a;
    return subpixel_sample(in_data->effect_ref, trunc_i32(static_cast<double>(to_x)),
                           trunc_i32(static_cast<double>(to_y)), &frame.sampling, out);
}

PF_Err displace_img_planned(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out)
{
    const displacement_plan& plan = *static_cast<const displacement_plan*>(refcon);
    if (x < 0 || x >= plan.width || y < 0 || y >= plan.height)
        return displace_img(plan.frame, x, y, in, out);
    const displacement_plan::line& column = plan.columns[x];
    const displacement_plan::line& row = plan.rows[y];
    if (column.bare || row.bare)
    {
        *out = *in;
        return PF_Err_NONE;
    }

    plan.sample(plan.host, column.matte, row.matte, &plan.matte, out);

    // Most of a matte is empty. A processor that guesses so begins the second sample before the first is done.
    const A_u_char alpha = out->alpha;
    if (alpha == 0)
        return plan.sample(plan.host, to_fixed(x), to_fixed(y), &plan.input, out);
    const float to_y = row.place + plan.shift_y[alpha];
    const float to_x = column.place + plan.shift_x[alpha];
    return plan.sample(plan.host, trunc_i32_fitting(to_x), trunc_i32_fitting(to_y), &plan.input, out);
}
