#include "effect/model/displacement.hpp"

#include "effect/model/frame_data.hpp"
#include "effect/model/numeric.hpp"

namespace
{
// Where along `size` pixels of the matte the input's position lies, as whole pixels in 16.16.
PF_Fixed matte_position(A_long size, A_long position, A_long input_size) noexcept
{
    const float share = static_cast<float>(position) / static_cast<float>(input_size);
    return to_fixed(trunc_i32(static_cast<double>(static_cast<float>(size) * share)));
}
} // namespace

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
