#include "fuzz/frame_orders.hpp"

#include <algorithm>
#include <cmath>

namespace fuzz
{
namespace
{
enum order : std::uint8_t
{
    kLayerSize = 64,
    kRowPadding,
    kFullSize, // what the host says of the layer at full resolution
    kTime,
    kTimeStep,
    kTimeScale,
    kDownsample,
    kQuality,
    kExtent,
    kOutputExtent,
    kRefusals,
    kMissingCallbacks,
    kLaterValue,
    kPastTheLast,
};

std::int32_t in_range(byte_reader& bytes, std::int32_t lo, std::int32_t hi)
{
    return static_cast<std::int32_t>(std::int64_t{lo} +
                                     std::llround(bytes.share() * static_cast<double>(std::int64_t{hi} - lo)));
}

// In the range, on its ends and just past them, or anything.
std::int32_t ranged(byte_reader& bytes, std::int32_t lo, std::int32_t hi)
{
    switch (bytes.byte() % 4)
    {
    case 0:
        return in_range(bytes, lo, hi);
    case 1:
    {
        const std::int64_t ends[] = {lo, hi, std::int64_t{lo} - 1, std::int64_t{hi} + 1};
        return static_cast<std::int32_t>(ends[bytes.byte() % 4]);
    }
    default:
        return bytes.any_i32();
    }
}

double ranged_number(byte_reader& bytes, double lo, double hi)
{
    switch (bytes.byte() % 4)
    {
    case 0:
        return lo + bytes.share() * (hi - lo);
    case 1:
        return bytes.byte() % 2 == 0 ? lo : hi;
    default:
        return bytes.any_f64();
    }
}

void read_param(byte_reader& bytes, fuzz_host& host, int id)
{
    constexpr std::int32_t kTurns = 720 * 65536;
    PF_ParamDef& def = host.param(id);
    switch (def.param_type)
    {
    case PF_Param_SLIDER:
        def.u.sd.value = ranged(bytes, def.u.sd.valid_min, def.u.sd.valid_max);
        break;
    case PF_Param_FIX_SLIDER:
        def.u.fd.value = ranged(bytes, def.u.fd.valid_min, def.u.fd.valid_max);
        break;
    case PF_Param_FLOAT_SLIDER:
        def.u.fs_d.value = ranged_number(bytes, static_cast<double>(def.u.fs_d.valid_min),
                                         static_cast<double>(def.u.fs_d.valid_max));
        break;
    case PF_Param_ANGLE:
        def.u.ad.value = ranged(bytes, -kTurns, kTurns);
        break;
    case PF_Param_CHECKBOX: // whatever is not 0 is on
        def.u.bd.value = static_cast<std::int8_t>(bytes.byte());
        break;
    case PF_Param_POPUP:
        def.u.pd.value = ranged(bytes, 1, def.u.pd.num_choices);
        break;
    case PF_Param_COLOR:
        def.u.cd.value.alpha = bytes.byte();
        def.u.cd.value.red = bytes.byte();
        def.u.cd.value.green = bytes.byte();
        def.u.cd.value.blue = bytes.byte();
        break;
    case PF_Param_POINT:
    {
        const std::int32_t x = ranged(bytes, 0, host.layer_width() * 65536);
        host.set_point(id, x, ranged(bytes, 0, host.layer_height() * 65536));
        break;
    }
    default: // the input, topics
        break;
    }
}

PF_Rect read_rect(byte_reader& bytes)
{
    PF_Rect rect;
    rect.left = bytes.any_i32();
    rect.top = bytes.any_i32();
    rect.right = bytes.any_i32();
    rect.bottom = bytes.any_i32();
    return rect;
}

// Whole factors, or anything: 0 over 0 too.
PF_RationalScale read_scale(byte_reader& bytes)
{
    if (bytes.byte() % 2 == 0)
        return {1, 1 + bytes.byte() % 4U};
    const std::int32_t num = bytes.any_i32();
    return {num, static_cast<std::uint32_t>(bytes.any_i32())};
}

void leave_out_callbacks(byte_reader& bytes, PF_UtilCallbacks& utils)
{
    const std::uint8_t which = bytes.byte();
    if ((which & 1U) != 0)
        utils.host_new_handle = nullptr;
    if ((which & 2U) != 0)
        utils.host_lock_handle = nullptr;
    if ((which & 4U) != 0)
        utils.host_unlock_handle = nullptr;
    if ((which & 8U) != 0)
        utils.host_dispose_handle = nullptr;
}

std::int64_t lines_of(std::int32_t count)
{
    return std::clamp(count, 0, 4096);
}
} // namespace

void read_order(byte_reader& bytes, fuzz_host& host)
{
    const auto what = static_cast<std::uint8_t>(bytes.byte() % kPastTheLast);
    PF_InData& in_data = host.in_data;
    switch (what)
    {
    case kLayerSize:
    {
        const A_long width = bytes.whole(1, 512);
        host.set_layer(width, bytes.whole(1, 512));
        break;
    }
    case kRowPadding:
        host.row_padding = 4 * (bytes.byte() % 16);
        break;
    case kFullSize:
        in_data.width = ranged(bytes, 1, 4096);
        in_data.height = ranged(bytes, 1, 4096);
        break;
    case kTime:
        in_data.current_time = ranged(bytes, 0, 1000);
        break;
    case kTimeStep:
        in_data.time_step = bytes.any_i32();
        break;
    case kTimeScale:
        in_data.time_scale = bytes.u32();
        break;
    case kDownsample:
        in_data.downsample_x = read_scale(bytes);
        in_data.downsample_y = read_scale(bytes);
        break;
    case kQuality:
        in_data.quality = bytes.any_i32();
        break;
    case kExtent:
        in_data.extent_hint = read_rect(bytes);
        break;
    case kOutputExtent:
        host.output_extent = read_rect(bytes);
        host.output_extent_given = true;
        break;
    case kRefusals:
        host.refuse_first = bytes.byte();
        host.refuse_every = bytes.u16();
        break;
    case kMissingCallbacks:
        leave_out_callbacks(bytes, host.utils);
        break;
    case kLaterValue:
        host.other_value_later = true;
        host.later_value = bytes.any_f64();
        break;
    default:
        read_param(bytes, host, what);
        break;
    }
}

void read_orders(byte_reader& bytes, fuzz_host& host)
{
    while (bytes.more())
        read_order(bytes, host);
}

void keep_affordable(fuzz_host& host)
{
    constexpr std::int64_t kMost = std::int64_t{1} << 20; // lines times canvas pixels
    const bool match = host.param(kMatchLayerSize).u.bd.value != 0;
    const std::int64_t lines = lines_of(host.param(kRows).u.sd.value) + lines_of(host.param(kColumns).u.sd.value);
    A_long& width = match ? host.in_data.width : host.param(kWidth).u.sd.value;
    A_long& height = match ? host.in_data.height : host.param(kHeight).u.sd.value;
    for (;;)
    {
        // The canvas is the square of the grid's diagonal; the host has no memory for one that is too large.
        const double side = std::hypot(static_cast<double>(width), static_cast<double>(height)) + 32.0;
        const double pixels = side * side;
        if (pixels * 8.0 > static_cast<double>(fuzz_host::kMemory) ||
            pixels * static_cast<double>(lines) <= static_cast<double>(kMost))
            return;
        width /= 2;
        height /= 2;
        if (width == 0 && height == 0)
            return;
    }
}
} // namespace fuzz
