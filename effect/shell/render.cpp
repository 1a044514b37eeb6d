#include "effect/shell/render.hpp"

#include "effect/model/grid.hpp"
#include "effect/model/numeric.hpp"
#include "effect/shell/host_block.hpp"
#include "effect/shell/mem_pool.hpp"
#include "effect/shell/param_ids.hpp"

std::optional<std::uint64_t> pool_size(const PF_InData* in_data, PF_ParamDef** params)
{
    const PF_ANSICallbacks& ansi = in_data->utils->ansi;
    const auto integer = [params](param_id id) { return params[id]->u.sd.value; };
    const auto at_least_one = [](A_long count) { return count == 0 ? 1 : count; };

    const bool match = integer(kMatchLayerSize) != 0;
    const A_long width = match ? in_data->width : integer(kWidth);
    const A_long height = match ? in_data->height : integer(kHeight);
    const std::int64_t diagonal = trunc_i64(ansi.hypot(static_cast<double>(height), static_cast<double>(width)));

    // Ripples of all lines: their samples cover the diagonal and what has slid past by now.
    const A_long frame = div_i32(in_data->current_time, in_data->time_step);
    const double slid = static_cast<double>(wrap_mul(frame, integer(kSpeed)));
    const double length = slid + static_cast<double>(diagonal);
    const auto randomness = static_cast<double>(params[kTurbulenceRandomness]->u.fd.value);
    const double turbulence = params[kTurbulence]->u.fs_d.value;
    const double a_line = (randomness / 655.36 / 200.0 + 1.0) * turbulence * 4.0 * length;
    const A_long lines = wrap_mul(at_least_one(integer(kRows)), at_least_one(integer(kColumns)));
    const double ripples = static_cast<double>(lines) * a_line;

    const auto side = static_cast<std::uint64_t>(diagonal);
    const double stated = static_cast<double>(side * side) + ripples;
    constexpr double kMebibyte = 1048576.0;
    const double size = ansi.ceil((stated + kMebibyte) * (1.0 / kMebibyte)) * kMebibyte;
    return trunc_u64(size);
}

PF_Err render_with_pool(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output,
                        std::uint64_t size)
{
    host_block block(*in_data->utils, size);
    if (block.data() == nullptr)
        return PF_Err_OUT_OF_MEMORY;

    auto* const base = static_cast<std::byte*>(block.data());
    mem_pool pool = {base, base, size};
    grid* const frame = pool_new<grid>(&pool, &pool);
    if (frame != nullptr)
        frame->draw(in_data, out_data, params, output);
    block.release();
    return PF_Err_NONE;
}

PF_Err Render(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output)
{
    const std::optional<std::uint64_t> size = pool_size(in_data, params);
    return size ? render_with_pool(in_data, out_data, params, output, *size) : PF_Err_OUT_OF_MEMORY;
}
