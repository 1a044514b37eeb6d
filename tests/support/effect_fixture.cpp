#include "tests/support/effect_fixture.hpp"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace
{
effect_fixture* current = nullptr;

constexpr std::size_t kHandleFront = 16; // before a handle's block: its master pointer

std::string text(const char* format, auto... values)
{
    char line[400];
    std::snprintf(line, sizeof line, format, values...);
    return line;
}

std::string text_of(const PF_Rect* r)
{
    return r == nullptr ? "all" : text("[%d %d %d %d]", r->left, r->top, r->right, r->bottom);
}

std::string text_of(const PF_CompositeMode* m)
{
    return text("mode(%d %d %d %d)", m->xfer, m->rand_seed, m->opacity, m->rgb_only);
}

PF_Rect clipped(const PF_Rect* r, const PF_LayerDef& world)
{
    if (r == nullptr)
        return {0, 0, world.width, world.height};
    return {std::max(r->left, 0), std::max(r->top, 0), std::min(r->right, world.width),
            std::min(r->bottom, world.height)};
}
} // namespace

struct fixture_callbacks
{
    static PF_Err asked(const char* name) { return current->on_call ? current->on_call(name) : PF_Err_NONE; }

    static PF_Err checkout_param(PF_ProgPtr, PF_ParamIndex index, A_long time, A_long step, A_u_long scale,
                                 PF_ParamDef* def)
    {
        current->note(text("checkout %d at %d step %d scale %u", index, time, step, scale));
        if (const PF_Err err = asked("checkout"))
            return err;
        *def = current->defs[effect_fixture::at(index)];
        if (current->on_checkout)
            current->on_checkout(index, time, *def);
        return PF_Err_NONE;
    }

    static PF_Err checkin_param(PF_ProgPtr, PF_ParamDef*)
    {
        current->note("checkin");
        return asked("checkin");
    }

    static PF_Err add_param(PF_ProgPtr, PF_ParamIndex index, PF_ParamDef* def)
    {
        current->note(text("add_param %d", index));
        if (const PF_Err err = asked("add_param"))
            return err;
        current->added.push_back(*def);
        return PF_Err_NONE;
    }

    static PF_Err new_world(PF_ProgPtr, A_long width, A_long height, PF_NewWorldFlags flags, PF_EffectWorld* world)
    {
        current->note(text("new_world %d %d flags %d", width, height, flags));
        if (const PF_Err err = asked("new_world"))
            return err;
        if (width <= 0 || height <= 0 || std::int64_t{width} * height > 64'000'000)
            return PF_Err_OUT_OF_MEMORY;
        *world = current->make_world(width, height, flags & PF_NewWorldFlag_CLEAR_PIXELS ? 0 : 0xEE);
        if (current->recording)
            current->names_[world->data] = text("world%d", ++current->worlds_made_);
        ++current->worlds_alive;
        return PF_Err_NONE;
    }

    static PF_Err dispose_world(PF_ProgPtr, PF_EffectWorld* world)
    {
        current->note("dispose_world " + current->name_of(world));
        if (world->data == nullptr)
            throw std::logic_error("a world disposed of twice");
        std::free(world->data);
        world->data = nullptr;
        --current->worlds_alive;
        return asked("dispose_world");
    }

    static PF_Err copy(PF_ProgPtr, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_r, PF_Rect* dst_r)
    {
        current->note("copy " + current->name_of(src) + " " + current->name_of(dst) + " " + text_of(src_r) + " " +
                      text_of(dst_r));
        if (const PF_Err err = asked("copy"))
            return err;
        for (A_long y = 0; y < std::min(src->height, dst->height); ++y)
            for (A_long x = 0; x < std::min(src->width, dst->width); ++x)
                *effect_fixture::pixel(*dst, x, y) = *effect_fixture::pixel(*src, x, y);
        return PF_Err_NONE;
    }

    static PF_Err fill(PF_ProgPtr, const PF_Pixel* color, const PF_Rect* rect, PF_EffectWorld* world)
    {
        const PF_Pixel c = color != nullptr ? *color : PF_Pixel{0, 0, 0, 0};
        current->note(text("fill %d %d %d %d ", c.alpha, c.red, c.green, c.blue) + text_of(rect) + " " +
                      current->name_of(world));
        if (const PF_Err err = asked("fill"))
            return err;
        const PF_Rect area = clipped(rect, *world);
        for (A_long y = area.top; y < area.bottom; ++y)
            for (A_long x = area.left; x < area.right; ++x)
                *effect_fixture::pixel(*world, x, y) = c;
        return PF_Err_NONE;
    }

    static PF_Err transfer_rect(PF_ProgPtr, PF_Quality quality, PF_ModeFlags flags, PF_Field field,
                                const PF_Rect* src_rect, const PF_EffectWorld* src, const PF_CompositeMode* mode,
                                const PF_MaskWorld* mask, A_long x, A_long y, PF_EffectWorld* dst)
    {
        current->note(text("transfer quality %d flags %d field %d ", quality, flags, field) + text_of(src_rect) +
                      " " + current->name_of(src) + " " + text_of(mode) + (mask ? " masked" : "") +
                      text(" at %d %d ", x, y) + current->name_of(dst));
        if (const PF_Err err = asked("transfer"))
            return err;
        if (current->on_transfer)
            current->on_transfer(*src_rect);
        const PF_Rect area = clipped(src_rect, *src);
        for (A_long v = area.top; v < area.bottom; ++v)
            for (A_long u = area.left; u < area.right; ++u)
                if (const PF_Pixel p = *effect_fixture::pixel(*src, u, v); p.alpha != 0)
                    *effect_fixture::pixel(*dst, u, v) = p;
        return PF_Err_NONE;
    }

    static PF_Err transform_world(PF_ProgPtr, PF_Quality quality, PF_ModeFlags flags, PF_Field field,
                                  const PF_EffectWorld* src, const PF_CompositeMode* mode,
                                  const PF_MaskWorld* mask, const PF_FloatMatrix* m, A_long count,
                                  PF_Boolean src2dst, const PF_Rect* rect, PF_EffectWorld* dst)
    {
        std::string matrix;
        for (const auto& row : m->mat)
            matrix += text(" %.17g %.17g %.17g", row[0] + 0.0, row[1] + 0.0, row[2] + 0.0);
        current->note(text("transform quality %d flags %d field %d ", quality, flags, field) +
                      current->name_of(src) + " " + text_of(mode) + (mask ? " masked" : "") +
                      text(" %d matrix", count) + matrix + text(" src2dst %d ", src2dst) + text_of(rect) + " " +
                      current->name_of(dst));
        return asked("transform");
    }

    static PF_Err iterate(PF_InData*, A_long base, A_long final, PF_EffectWorld* src, const PF_Rect* area,
                          void* refcon, PF_IteratePixel8Func function, PF_EffectWorld* dst)
    {
        current->note(text("iterate %d %d ", base, final) + current->name_of(src) + " " + text_of(area) + " " +
                      current->name_of(dst));
        if (const PF_Err err = asked("iterate"))
            return err;
        const PF_Rect whole = clipped(area, *src);
        for (A_long y = whole.top; y < whole.bottom; ++y)
            for (A_long x = whole.left; x < whole.right; ++x)
                if (const PF_Err err = function(refcon, x, y, effect_fixture::pixel(*src, x, y),
                                                effect_fixture::pixel(*dst, x, y)))
                    return err;
        return PF_Err_NONE;
    }

    // The nearest pixel; zero outside.
    static PF_Err subpixel_sample(PF_ProgPtr, PF_Fixed x, PF_Fixed y, const PF_SampPB* sampling, PF_Pixel* dst)
    {
        current->note(text("sample %d %d ", x, y) + current->name_of(sampling->src));
        if (const PF_Err err = asked("sample"))
            return err;
        const auto u = static_cast<A_long>((std::int64_t{x} + 32768) >> 16);
        const auto v = static_cast<A_long>((std::int64_t{y} + 32768) >> 16);
        const bool inside = u >= 0 && v >= 0 && u < sampling->src->width && v < sampling->src->height;
        *dst = inside ? *effect_fixture::pixel(*sampling->src, u, v) : PF_Pixel{0, 0, 0, 0};
        return PF_Err_NONE;
    }

    static PF_Handle new_handle(std::uint64_t size)
    {
        current->note("new_handle " + std::to_string(size));
        if (asked("new_handle") != PF_Err_NONE || size > 1'000'000'000)
            return nullptr;
        auto* const block = static_cast<char*>(std::malloc(static_cast<std::size_t>(size) + kHandleFront));
        std::memset(block, 0xA5, static_cast<std::size_t>(size) + kHandleFront);
        char* const address = block + kHandleFront;
        std::memcpy(block, &address, sizeof address);
        current->handles_.push_back(block);
        return reinterpret_cast<PF_Handle>(block);
    }

    static void* lock_handle(PF_Handle handle)
    {
        current->note("lock_handle");
        return asked("lock_handle") != PF_Err_NONE ? nullptr : *handle;
    }

    static void unlock_handle(PF_Handle)
    {
        current->note("unlock_handle");
        asked("unlock_handle");
    }

    static void dispose_handle(PF_Handle handle)
    {
        current->note("dispose_handle");
        asked("dispose_handle");
        if (std::erase(current->handles_, static_cast<void*>(handle)) != 1)
            throw std::logic_error("a handle disposed of that is not taken");
        std::free(static_cast<void*>(handle));
    }

    static char* copy_text(char* dst, const char* src)
    {
        current->note(std::string("strcpy ") + src);
        asked("strcpy");
        return std::strcpy(dst, src);
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
        ansi.strcpy = copy_text;
    }
};

effect_fixture::effect_fixture(A_long width, A_long height)
{
    current = this;
    fixture_callbacks::install(in_data, utils);
    in_data.effect_ref = reinterpret_cast<PF_ProgPtr>(this);
    in_data.quality = PF_Quality_HI;
    in_data.appl_id = kAppAfterEffects;
    in_data.time_step = 1;
    in_data.time_scale = 25;
    in_data.downsample_x = {1, 1};
    in_data.downsample_y = {1, 1};
    in_data.width = width;
    in_data.height = height;

    recording = false;
    command(PF_Cmd_PARAMS_SETUP);
    recording = true;
    defs.resize(1);
    defs.insert(defs.end(), added.begin(), added.end());
    for (PF_ParamDef& def : defs)
        pointers_.push_back(&def);
    for (const int id : {5, 10, 36, 37})
    {
        const PF_PointDef& point = defs[at(id)].u.td;
        set_point(id, point.x_dephault / 65536.0 * width / 100.0, point.y_dephault / 65536.0 * height / 100.0);
    }
    input() = make_world(width, height, 0x40);
    output = make_world(width, height, 0x77);
    names_[input().data] = "input";
    names_[output.data] = "output";
}

effect_fixture::~effect_fixture()
{
    for (void* const handle : handles_)
        std::free(handle);
    std::free(input().data);
    std::free(output.data);
    current = nullptr;
}

PF_LayerDef effect_fixture::make_world(A_long width, A_long height, int fill_byte)
{
    constexpr A_long kPadding = 12;
    PF_LayerDef world{};
    world.width = width;
    world.height = height;
    world.rowbytes = width * 4 + kPadding;
    world.extent_hint = {0, 0, width, height};
    const std::size_t bytes = static_cast<std::size_t>(world.rowbytes) * static_cast<std::size_t>(height);
    world.data = static_cast<PF_Pixel*>(std::malloc(bytes));
    std::memset(static_cast<void*>(world.data), fill_byte, bytes);
    return world;
}

void effect_fixture::set_percent(int id, double percent)
{
    defs[at(id)].u.fd.value = static_cast<A_long>(std::ceil(percent * 655.36 - 1e-6));
}

void effect_fixture::set_angle(int id, double degrees)
{
    defs[at(id)].u.ad.value = static_cast<A_long>(std::lround(degrees * 65536.0));
}

void effect_fixture::set_point(int id, double x, double y)
{
    defs[at(id)].u.td.x_value = static_cast<A_long>(std::lround(x * 65536.0));
    defs[at(id)].u.td.y_value = static_cast<A_long>(std::lround(y * 65536.0));
}

PF_Err effect_fixture::command(PF_Cmd cmd)
{
    return PluginEntry(cmd, &in_data, &out_data, params(), &output, nullptr);
}

PF_Pixel* effect_fixture::pixel(const PF_LayerDef& world, A_long x, A_long y)
{
    return reinterpret_cast<PF_Pixel*>(reinterpret_cast<char*>(world.data) + std::ptrdiff_t{y} * world.rowbytes) +
           x;
}

std::vector<std::string> effect_fixture::calls(std::initializer_list<std::string_view> words) const
{
    std::vector<std::string> found;
    for (const std::string& line : log)
        for (const std::string_view word : words)
            if (line.substr(0, line.find(' ')) == word)
                found.push_back(line);
    return found;
}

void effect_fixture::note(const std::string& line)
{
    if (recording)
        log.push_back(line);
}

std::string effect_fixture::name_of(const PF_LayerDef* world) const
{
    const auto found = names_.find(world->data);
    return found != names_.end() ? found->second : "unknown";
}

pool_block::pool_block(std::size_t bytes)
    : memory_((bytes + sizeof(std::max_align_t) - 1) / sizeof(std::max_align_t) + 1)
{
    std::memset(static_cast<void*>(memory_.data()), 0xA5, memory_.size() * sizeof(std::max_align_t));
    auto* const base = reinterpret_cast<std::byte*>(memory_.data());
    pool = {base, base, bytes};
}
