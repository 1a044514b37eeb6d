#include "bench/frames/effect_clock.hpp"

#include "bench/measure.hpp"

#include <chrono>

namespace bench
{
namespace
{
using wall_clock = std::chrono::steady_clock;

struct render_clock
{
    PF_UtilCallbacks utils;
    PF_InteractCallbacks inter;
    const PF_LayerDef* input = nullptr;
    double host = 0.0;          // wall seconds
    double iterating = 0.0;     // processor seconds, the measuring included
    double iterated = 0.0;      // of which the iteration took
    double host_iterated = 0.0; // and the host's part of it
};

render_clock now;
frame_times last;

double seconds_since(wall_clock::time_point start)
{
    return std::chrono::duration<double>(wall_clock::now() - start).count();
}

class hosts_turn
{
public:
    hosts_turn() : start_(wall_clock::now()) {}
    ~hosts_turn() { now.host += seconds_since(start_); }
    hosts_turn(const hosts_turn&) = delete;
    hosts_turn& operator=(const hosts_turn&) = delete;

private:
    wall_clock::time_point start_;
};

// A function of a table on the host's time: clocked<&Table::function>::call stands in for it.
template <auto Function>
struct clocked;
template <class R, class... Args, R (*PF_UtilCallbacks::*Function)(Args...)>
struct clocked<Function>
{
    static R call(Args... args)
    {
        const hosts_turn turn;
        return (now.utils.*Function)(args...);
    }
};
template <class R, class... Args, R (*PF_InteractCallbacks::*Function)(Args...)>
struct clocked<Function>
{
    static R call(Args... args)
    {
        const hosts_turn turn;
        return (now.inter.*Function)(args...);
    }
};

template <auto Function, class Table>
void wrap(Table& table)
{
    if (table.*Function != nullptr)
        table.*Function = clocked<Function>::call;
}

struct two_samples
{
    PF_ProgPtr host;
    PF_SampPB matte;
    PF_SampPB input;
};

PF_Err take_two_samples(void* refcon, A_long x, A_long y, PF_Pixel*, PF_Pixel* out)
{
    const auto& how = *static_cast<const two_samples*>(refcon);
    const PF_Fixed fixed_x = x * 65536;
    const PF_Fixed fixed_y = y * 65536;
    now.utils.subpixel_sample(how.host, fixed_x, fixed_y, &how.matte, out);
    return now.utils.subpixel_sample(how.host, fixed_x, fixed_y, &how.input, out);
}

// The pixels of the area row by row: the effect's iteration and the same without the effect, one after the other
// and first in turn, so that what else the machine does hits both alike.
PF_Err iterate_rows(PF_InData* in_data, PF_EffectWorld* src, PF_Rect area, void* refcon,
                    PF_IteratePixel8Func function, PF_EffectWorld* dst, PF_EffectWorld* unseen)
{
    two_samples how{};
    how.host = in_data->effect_ref;
    how.matte.src = src;
    how.input.src = const_cast<PF_LayerDef*>(now.input);
    PF_Err answer = PF_Err_NONE;
    for (A_long y = area.top; y < area.bottom && answer == PF_Err_NONE; ++y)
    {
        const PF_Rect row = {area.left, y, area.right, y + 1};
        for (const bool effects : {y % 2 == 0, y % 2 != 0})
        {
            const double before = thread_seconds();
            if (effects)
                answer = now.utils.iterate(in_data, 0, 1, src, &row, refcon, function, dst);
            else
                now.utils.iterate(in_data, 0, 1, src, &row, &how, take_two_samples, unseen);
            (effects ? now.iterated : now.host_iterated) += thread_seconds() - before;
        }
    }
    return answer;
}

PF_Err clocked_iterate(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                       const PF_Rect* area, void* refcon, PF_IteratePixel8Func function, PF_EffectWorld* dst)
{
    const double before = thread_seconds();
    PF_EffectWorld unseen{};
    if (now.utils.new_world(in_data->effect_ref, dst->width, dst->height, 0, &unseen) != PF_Err_NONE)
        return now.utils.iterate(in_data, progress_base, progress_final, src, area, refcon, function, dst);
    const PF_Pixel touched = {1, 1, 1, 1};
    now.utils.fill(in_data->effect_ref, &touched, nullptr, &unseen);
    const PF_Rect whole = {0, 0, src->width, src->height};
    const PF_Err answer =
        iterate_rows(in_data, src, area != nullptr ? *area : whole, refcon, function, dst, &unseen);
    now.utils.dispose_world(in_data->effect_ref, &unseen);
    now.iterating += thread_seconds() - before;
    return answer;
}

void wrap_tables(PF_UtilCallbacks& utils, PF_InteractCallbacks& inter)
{
    wrap<&PF_UtilCallbacks::copy>(utils);
    wrap<&PF_UtilCallbacks::fill>(utils);
    wrap<&PF_UtilCallbacks::new_world>(utils);
    wrap<&PF_UtilCallbacks::dispose_world>(utils);
    wrap<&PF_UtilCallbacks::transfer_rect>(utils);
    wrap<&PF_UtilCallbacks::transform_world>(utils);
    wrap<&PF_UtilCallbacks::host_new_handle>(utils);
    wrap<&PF_UtilCallbacks::host_lock_handle>(utils);
    wrap<&PF_UtilCallbacks::host_unlock_handle>(utils);
    wrap<&PF_UtilCallbacks::host_dispose_handle>(utils);
    utils.iterate = clocked_iterate;
    wrap<&PF_InteractCallbacks::checkout_param>(inter);
    wrap<&PF_InteractCallbacks::checkin_param>(inter);
    wrap<&PF_InteractCallbacks::abort>(inter);
    wrap<&PF_InteractCallbacks::progress>(inter);
}

const host::plugin& plugin_file()
{
    static const host::plugin loaded(FILIGRANE_BUILT_PLUGIN);
    return loaded;
}

PF_Err clocked_entry(PF_Cmd command, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                     PF_LayerDef* output, void* extra)
{
    const PF_EntryPoint entry = plugin_file().entry();
    if (command != PF_Cmd_RENDER)
        return entry(command, in_data, out_data, params, output, extra);

    now = {*in_data->utils, in_data->inter, &params[0]->u.ld};
    wrap_tables(*in_data->utils, in_data->inter);
    const double cpu_before = thread_seconds();
    const auto start = wall_clock::now();
    const PF_Err answer = entry(command, in_data, out_data, params, output, extra);
    const double wall = seconds_since(start);
    const double cpu = thread_seconds() - cpu_before;
    const double host = now.host * cpu / wall;
    *in_data->utils = now.utils;
    in_data->inter = now.inter;
    last = {cpu - now.iterating + now.iterated - now.host_iterated - host, host + now.host_iterated};
    return answer;
}
} // namespace

const host::plugin& clocked_effect()
{
    static const host::plugin clocked(clocked_entry, plugin_file().name());
    return clocked;
}

frame_times last_frame_times()
{
    return last;
}
} // namespace bench
