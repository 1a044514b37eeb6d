#include "fuzz/fuzz_host.hpp"

#include "fuzz/require.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace fuzz
{
namespace
{
fuzz_host* current = nullptr;

constexpr std::size_t kHandleFront = 16; // before a handle's block: its master pointer

PF_Pixel* row_of(const PF_LayerDef& world, A_long y)
{
    return reinterpret_cast<PF_Pixel*>(reinterpret_cast<char*>(world.data) + std::ptrdiff_t{y} * world.rowbytes);
}

PF_Rect clipped(const PF_Rect* r, const PF_LayerDef& world)
{
    if (r == nullptr)
        return {0, 0, world.width, world.height};
    return {std::max(r->left, 0), std::max(r->top, 0), std::min(r->right, world.width),
            std::min(r->bottom, world.height)};
}

void lay_over(const PF_Pixel* from, PF_Pixel* to, A_long count)
{
    for (A_long i = 0; i < count; ++i)
        if (from[i].alpha != 0)
            to[i] = from[i];
}

std::size_t bytes_of(const PF_LayerDef& world)
{
    return static_cast<std::size_t>(world.rowbytes) * static_cast<std::size_t>(world.height);
}
} // namespace

struct fuzz_callbacks
{
    static PF_Err checkout_param(PF_ProgPtr, PF_ParamIndex index, A_long time, A_long, A_u_long, PF_ParamDef* def)
    {
        require(index > 0 && index < kParamCount, "a check-out names a parameter");
        if (current->refuses())
            return fuzz_host::kRefused;
        *def = current->param(index);
        if (current->other_value_later && time != 0)
            std::memcpy(&def->u, &current->later_value, sizeof current->later_value);
        return PF_Err_NONE;
    }

    static PF_Err checkin_param(PF_ProgPtr, PF_ParamDef*)
    {
        return current->refuses() ? fuzz_host::kRefused : PF_Err_NONE;
    }

    static PF_Err add_param(PF_ProgPtr, PF_ParamIndex, PF_ParamDef* def)
    {
        require(def->uu.id > 0 && def->uu.id < kParamCount, "an added parameter has an id of the list");
        current->param(def->uu.id) = *def;
        return PF_Err_NONE;
    }

    static PF_Err new_world(PF_ProgPtr, A_long width, A_long height, PF_NewWorldFlags flags, PF_EffectWorld* world)
    {
        require(flags == PF_NewWorldFlag_CLEAR_PIXELS, "a new world is asked for clear");
        if (current->refuses())
            return fuzz_host::kRefused;
        return current->make_world(width, height, world) ? PF_Err_NONE : PF_Err_OUT_OF_MEMORY;
    }

    static PF_Err dispose_world(PF_ProgPtr, PF_EffectWorld* world)
    {
        require(world->data != nullptr, "a world is given back once");
        current->give_back_world(world);
        return current->refuses() ? fuzz_host::kRefused : PF_Err_NONE;
    }

    static PF_Err copy(PF_ProgPtr, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_r, PF_Rect* dst_r)
    {
        require(src_r == nullptr && dst_r == nullptr, "worlds are copied whole");
        if (current->refuses())
            return fuzz_host::kRefused;
        const auto row_bytes = static_cast<std::size_t>(std::min(src->width, dst->width)) * sizeof(PF_Pixel);
        for (A_long y = 0; y < std::min(src->height, dst->height); ++y)
            std::memcpy(row_of(*dst, y), row_of(*src, y), row_bytes);
        return PF_Err_NONE;
    }

    static PF_Err fill(PF_ProgPtr, const PF_Pixel* color, const PF_Rect* rect, PF_EffectWorld* world)
    {
        if (current->refuses())
            return fuzz_host::kRefused;
        const PF_Rect area = clipped(rect, *world);
        for (A_long y = area.top; y < area.bottom && area.left < area.right; ++y)
            std::fill(row_of(*world, y) + area.left, row_of(*world, y) + area.right, *color);
        return PF_Err_NONE;
    }

    static PF_Err transfer_rect(PF_ProgPtr, PF_Quality, PF_ModeFlags, PF_Field, const PF_Rect* rect,
                                const PF_EffectWorld* src, const PF_CompositeMode*, const PF_MaskWorld* mask,
                                A_long x, A_long y, PF_EffectWorld* dst)
    {
        require(mask == nullptr, "a transfer has no mask");
        require(x == rect->left && y == rect->top, "a tile goes to its own place");
        require(rect->left >= 0 && rect->top >= 0 && rect->right <= src->width && rect->bottom <= src->height,
                "a tile lies inside the canvas");
        require(src->width == dst->width && src->height == dst->height, "a tile goes to a world of the same size");
        if (current->refuses())
            return fuzz_host::kRefused;
        for (A_long row = rect->top; row < rect->bottom && rect->left < rect->right; ++row)
            lay_over(row_of(*src, row) + rect->left, row_of(*dst, row) + rect->left, rect->right - rect->left);
        return PF_Err_NONE;
    }

    // Moves alone, by what brings the centres together.
    static PF_Err transform_world(PF_ProgPtr, PF_Quality, PF_ModeFlags, PF_Field, const PF_EffectWorld* src,
                                  const PF_CompositeMode*, const PF_MaskWorld* mask, const PF_FloatMatrix* matrix,
                                  A_long count, PF_Boolean, const PF_Rect* rect, PF_EffectWorld* dst)
    {
        require(mask == nullptr && matrix != nullptr && count == 1, "a transform has one matrix and no mask");
        if (current->refuses())
            return fuzz_host::kRefused;
        const PF_Rect area = clipped(rect, *dst);
        const A_long move_x = (src->width - dst->width) / 2;
        const A_long move_y = (src->height - dst->height) / 2;
        const A_long left = std::max(area.left, -move_x);
        const A_long right = std::min(area.right, src->width - move_x);
        const A_long bottom = std::min(area.bottom, src->height - move_y);
        for (A_long y = std::max(area.top, -move_y); y < bottom && left < right; ++y)
            lay_over(row_of(*src, y + move_y) + left + move_x, row_of(*dst, y) + left, right - left);
        return PF_Err_NONE;
    }

    static PF_Err iterate(PF_InData*, A_long, A_long, PF_EffectWorld* src, const PF_Rect* area, void* refcon,
                          PF_IteratePixel8Func function, PF_EffectWorld* dst)
    {
        require(src->width == dst->width && src->height == dst->height, "what is iterated has the output's size");
        if (current->refuses())
            return fuzz_host::kRefused;
        const PF_Rect all = clipped(area, *src);
        for (A_long y = all.top; y < all.bottom; ++y)
            for (A_long x = all.left; x < all.right; ++x)
                if (const PF_Err err = function(refcon, x, y, row_of(*src, y) + x, row_of(*dst, y) + x))
                    return err;
        return PF_Err_NONE;
    }

    // The nearest pixel; zero outside.
    static PF_Err subpixel_sample(PF_ProgPtr, PF_Fixed x, PF_Fixed y, const PF_SampPB* sampling, PF_Pixel* dst)
    {
        if (current->refuses())
            return fuzz_host::kRefused;
        const auto u = static_cast<A_long>((std::int64_t{x} + 32768) >> 16);
        const auto v = static_cast<A_long>((std::int64_t{y} + 32768) >> 16);
        const bool inside = u >= 0 && v >= 0 && u < sampling->src->width && v < sampling->src->height;
        *dst = inside ? row_of(*sampling->src, v)[u] : PF_Pixel{0, 0, 0, 0};
        return PF_Err_NONE;
    }

    static PF_Handle new_handle(std::uint64_t size)
    {
        if (current->refuses() || !current->take(size))
            return nullptr;
        auto* const block = static_cast<char*>(std::malloc(static_cast<std::size_t>(size) + kHandleFront));
        std::memset(block, current->filling, std::min<std::size_t>(size, 1 << 16) + kHandleFront);
        char* const address = block + kHandleFront;
        std::memcpy(block, &address, sizeof address);
        current->handles_.push_back(block);
        return reinterpret_cast<PF_Handle>(block);
    }

    static void* lock_handle(PF_Handle handle) { return current->refuses() ? nullptr : *handle; }
    static void unlock_handle(PF_Handle) {}

    static void dispose_handle(PF_Handle handle)
    {
        require(std::erase(current->handles_, static_cast<void*>(handle)) == 1, "a handle is given back once");
        std::free(static_cast<void*>(handle));
    }

    static void install(PF_InData& in_data, PF_UtilCallbacks& utils)
    {
        in_data.utils = &utils;
        in_data.inter.checkout_param = checkout_param;
        in_data.inter.checkin_param = checkin_param;
        in_data.inter.add_param = add_param;
        utils.new_world = new_world;
        utils.dispose_world = dispose_world;
        utils.copy = copy;
        utils.fill = fill;
        utils.transfer_rect = transfer_rect;
        utils.transform_world = transform_world;
        utils.iterate = iterate;
        utils.subpixel_sample = subpixel_sample;
        utils.host_new_handle = new_handle;
        utils.host_lock_handle = lock_handle;
        utils.host_unlock_handle = unlock_handle;
        utils.host_dispose_handle = dispose_handle;
        PF_ANSICallbacks& ansi = utils.ansi;
        ansi.atan = [](double v) { return std::atan(v); };
        ansi.ceil = [](double v) { return std::ceil(v); };
        ansi.cos = [](double v) { return std::cos(v); };
        ansi.floor = [](double v) { return std::floor(v); };
        ansi.hypot = [](double x, double y) { return std::hypot(x, y); };
        ansi.pow = [](double x, double y) { return std::pow(x, y); };
        ansi.sin = [](double v) { return std::sin(v); };
        ansi.sqrt = [](double v) { return std::sqrt(v); };
        ansi.tan = [](double v) { return std::tan(v); };
        ansi.strcpy = [](char* dst, const char* src) { return std::strcpy(dst, src); };
    }
};

fuzz_host::fuzz_host()
{
    require(current == nullptr, "one host at a time");
    current = this;
    fuzz_callbacks::install(in_data, utils);
    in_data.effect_ref = reinterpret_cast<PF_ProgPtr>(this);
    in_data.quality = PF_Quality_HI;
    in_data.appl_id = kAppAfterEffects;
    in_data.time_step = 1;
    in_data.time_scale = 25;
    in_data.downsample_x = {1, 1};
    in_data.downsample_y = {1, 1};

    std::memset(defs_.data(), 0, sizeof defs_);
    for (std::size_t i = 0; i < defs_.size(); ++i)
        pointers_[i] = &defs_[i];
    PluginEntry(PF_Cmd_PARAMS_SETUP, &in_data, &out_data, params(), nullptr, nullptr);
    set_layer(64, 48);
}

fuzz_host::~fuzz_host()
{
    for (void* const handle : handles_)
        std::free(handle);
    std::free(defs_[kInputLayer].u.ld.data);
    std::free(output_.data);
    current = nullptr;
}

void fuzz_host::set_layer(A_long width, A_long height)
{
    layer_width_ = width;
    layer_height_ = height;
    in_data.width = width;
    in_data.height = height;
    // Points are at their default percentages until they are set.
    for (const int id : {kPosition, kCompressionCenter, kVerticalStart, kHorizontalStart})
    {
        const PF_PointDef& point = param(id).u.td;
        set_point(id, point.x_dephault / 100 * width, point.y_dephault / 100 * height);
    }
}

void fuzz_host::set_point(int id, A_long x_fixed, A_long y_fixed)
{
    param(id).u.td.x_value = x_fixed;
    param(id).u.td.y_value = y_fixed;
}

PF_Err fuzz_host::render()
{
    PF_LayerDef& input = defs_[kInputLayer].u.ld;
    require(make_world(layer_width_, layer_height_, &input), "there is memory for the input");
    require(make_world(layer_width_, layer_height_, &output_), "there is memory for the output");
    // The same for every render: a frame may leave some of it as it is.
    constexpr int kOutputFilling = 0xA5;
    std::memset(static_cast<void*>(output_.data), kOutputFilling, bytes_of(output_));
    fill_padding(output_);
    for (A_long y = 0; y < input.height; ++y)
        for (A_long x = 0; x < input.width; ++x)
            row_of(input, y)[x] = {static_cast<A_u_char>(255 - x % 7), static_cast<A_u_char>(x),
                                   static_cast<A_u_char>(y), static_cast<A_u_char>(x + y)};
    const auto* const before = reinterpret_cast<const std::uint8_t*>(input.data);
    input_before_.assign(before, before + bytes_of(input));
    if (output_extent_given)
        output_.extent_hint = output_extent;
    worlds_alive_ = 0;

    const PF_Err err = PluginEntry(PF_Cmd_RENDER, &in_data, &out_data, params(), &output_, nullptr);

    require(err == PF_Err_NONE || err == PF_Err_OUT_OF_MEMORY || err == kRefused,
            "a render answers with nothing, memory, or what the host answered");
    require(worlds_alive_ == 0, "every world is given back");
    require(handles_.empty() || utils.host_dispose_handle == nullptr, "every handle is given back");
    require(std::memcmp(input.data, input_before_.data(), bytes_of(input)) == 0, "the input is as it was");
    for (A_long y = 0; y < output_.height && row_padding > 0; ++y)
    {
        const auto* const end = reinterpret_cast<const std::uint8_t*>(row_of(output_, y) + output_.width);
        require(std::all_of(end, end + row_padding, [](std::uint8_t b) { return b == kPadding; }),
                "the output's padding is as it was");
    }
    return err;
}

std::vector<std::uint8_t> fuzz_host::picture() const
{
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(output_.data);
    return {bytes, bytes + bytes_of(output_)};
}

bool fuzz_host::refuses()
{
    const std::uint32_t call = counted_++;
    return refuse_every != 0 && call >= refuse_first && (call - refuse_first) % refuse_every == 0;
}

bool fuzz_host::take(std::uint64_t bytes)
{
    if (bytes > kMemory - taken_)
        return false;
    taken_ += bytes;
    return true;
}

bool fuzz_host::make_world(A_long width, A_long height, PF_LayerDef* world)
{
    if (width <= 0 || height <= 0 || width > 65536 || height > 65536)
        return false;
    const auto rowbytes = static_cast<A_long>(static_cast<std::size_t>(width) * sizeof(PF_Pixel)) + row_padding;
    if (!take(static_cast<std::uint64_t>(rowbytes) * static_cast<std::uint64_t>(height)))
        return false;
    *world = {};
    world->width = width;
    world->height = height;
    world->rowbytes = rowbytes;
    world->extent_hint = {0, 0, width, height};
    world->data = static_cast<PF_Pixel*>(std::calloc(bytes_of(*world), 1));
    fill_padding(*world);
    ++worlds_alive_;
    return true;
}

void fuzz_host::fill_padding(const PF_LayerDef& world) const
{
    for (A_long y = 0; y < world.height && row_padding > 0; ++y)
        std::memset(static_cast<void*>(row_of(world, y) + world.width), kPadding,
                    static_cast<std::size_t>(row_padding));
}

void fuzz_host::give_back_world(PF_LayerDef* world)
{
    for (A_long y = 0; y < world->height && row_padding > 0; ++y)
    {
        const auto* const end = reinterpret_cast<const std::uint8_t*>(row_of(*world, y) + world->width);
        require(std::all_of(end, end + row_padding, [](std::uint8_t b) { return b == kPadding; }),
                "a world's padding is as it was");
    }
    taken_ -= bytes_of(*world);
    std::free(world->data);
    world->data = nullptr;
    --worlds_alive_;
}
} // namespace fuzz
