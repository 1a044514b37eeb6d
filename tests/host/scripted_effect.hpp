#pragma once
// An effect whose render is a function of the test's, with one parameter of every kind; and worlds on the heap
// with padded rows that must stay as they are.

#include "host/error.hpp"
#include "host/plugin.hpp"
#include "host/render.hpp"

#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace scripted
{
struct call
{
    PF_Cmd command;
    PF_InData* in;
    PF_OutData* out;
    PF_ParamDef** params;
    PF_LayerDef* output;

    const PF_UtilCallbacks& utils() const { return *in->utils; }
    PF_ProgPtr ref() const { return in->effect_ref; }
    PF_EffectWorld& input() const { return params[0]->u.ld; }
};

// What the effect does on a command; answers 0 where nothing is set. Set before plug-ins are made, by one test at
// a time.
using script = std::function<PF_Err(const call&)>;
inline script on_render;
inline script on_other;

enum index
{
    topic = 1,
    whole,
    share,
    real,
    turn,
    tick,
    tint,
    place,
    choice,
    topic_end,
    count,
};

inline PF_Err add(const call& now, PF_ParamDef record, const char* name, PF_ParamType type,
                  PF_ParamFlags flags = 0)
{
    record.param_type = type;
    record.flags = flags;
    std::strcpy(record.name, name);
    return now.in->inter.add_param(now.ref(), -1, &record);
}

inline PF_Err add_all(const call& now)
{
    // Labels in memory that is gone afterwards: the host must have its own copies.
    std::string label = "Tick Here";
    std::string names = "First|Second|Third";
    PF_ParamDef r{};
    add(now, r, "Topic", PF_Param_GROUP_START, 0x20);
    r.u.sd = {5, "text", "text", -10, 2000, -10, 2000, 5};
    add(now, r, "Whole", PF_Param_SLIDER);
    r = {};
    r.u.fd = {32768, "text", "text", 0, 65536, 0, 65536, 32768, 1, PF_ValueDisplayFlag_PERCENT};
    add(now, r, "Share", PF_Param_FIX_SLIDER);
    r = {};
    r.u.fs_d.value = 3.0;
    r.u.fs_d.dephault = 3.0f;
    r.u.fs_d.valid_min = 1.0f;
    r.u.fs_d.valid_max = 7.0f;
    add(now, r, "Real", PF_Param_FLOAT_SLIDER);
    r = {};
    r.u.ad.value = r.u.ad.dephault = 90 * 65536;
    add(now, r, "Turn", PF_Param_ANGLE);
    r = {};
    r.u.bd.value = r.u.bd.dephault = 1;
    r.u.bd.u.nameptr = label.c_str();
    add(now, r, "", PF_Param_CHECKBOX, PF_ParamFlag_CANNOT_TIME_VARY);
    r = {};
    r.u.cd.value = r.u.cd.dephault = {255, 1, 2, 3};
    add(now, r, "Tint", PF_Param_COLOR);
    r = {};
    r.u.td.x_value = r.u.td.x_dephault = 50 * 65536;
    r.u.td.y_value = r.u.td.y_dephault = 10 * 65536;
    add(now, r, "Place", PF_Param_POINT);
    r = {};
    r.u.pd = {3, 3, 3, {names.c_str()}};
    add(now, r, "Choice", PF_Param_POPUP);
    add(now, {}, "", PF_Param_GROUP_END);
    now.out->num_params = count;
    return PF_Err_NONE;
}

inline PF_Err entry(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* params[], PF_LayerDef* output,
                    void*)
{
    const call now{command, in, out, params, output};
    if (on_other && command != PF_Cmd_RENDER)
        if (const PF_Err answer = on_other(now))
            return answer;
    if (command == PF_Cmd_PARAMS_SETUP && out->num_params == 0)
        return add_all(now);
    return command == PF_Cmd_RENDER && on_render ? on_render(now) : PF_Err_NONE;
}

// The scripts of one test, gone with it.
struct scripts
{
    explicit scripts(script render, script other = {})
    {
        on_render = std::move(render);
        on_other = std::move(other);
    }
    ~scripts() { on_render = on_other = {}; }
};

struct picture
{
    picture(int w, int h) : width(w), height(h), pixels(static_cast<std::size_t>(w * h)) {}
    host::image_view view() { return {reinterpret_cast<std::uint8_t*>(pixels.data()), width, height, width * 4}; }
    host::const_image_view const_view() const
    {
        return {reinterpret_cast<const std::uint8_t*>(pixels.data()), width, height, width * 4};
    }
    PF_Pixel at(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }

    int width;
    int height;
    std::vector<PF_Pixel> pixels;
};

inline host::composition small_comp(int width = 12, int height = 9)
{
    host::composition comp;
    comp.width = width;
    comp.height = height;
    comp.total_frames = 100;
    return comp;
}

// Renders one frame of a render script; the input is a ramp.
struct rendered
{
    host::render_stats stats;
    picture input;
    picture output;
};

inline rendered render(const script& what, const host::render_options& options = {},
                       const host::composition& comp = small_comp(),
                       const std::function<void(host::param_tracks&)>& set = {}, std::int32_t frame = 0)
{
    const scripts use(what);
    const host::plugin effect(entry, "scripted");
    host::param_tracks values(effect.params());
    if (set)
        set(values);
    rendered result{
        {}, {comp.picture_width(), comp.picture_height()}, {comp.picture_width(), comp.picture_height()}};
    for (std::size_t i = 0; i < result.input.pixels.size(); ++i)
        result.input.pixels[i] = {static_cast<A_u_char>(255 - i % 7), static_cast<A_u_char>(i),
                                  static_cast<A_u_char>(3 * i), static_cast<A_u_char>(i / 5)};
    result.stats =
        host::render_frame(effect, comp, values, frame, result.input.const_view(), result.output.view(), options);
    return result;
}

// The message of the host::error that a render ends with; empty where it does not.
inline std::string error_of(const script& what, const host::render_options& options = {},
                            const host::composition& comp = small_comp())
{
    try
    {
        render(what, options, comp);
    }
    catch (const host::error& failure)
    {
        return failure.what();
    }
    return "";
}

inline bool operator_equal(PF_Pixel a, PF_Pixel b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// A world with padded rows, the padding filled with a value that must survive.
class padded_world
{
public:
    padded_world(int width, int height, int padding_pixels = 3)
        : stride_(width + padding_pixels), pixels_(static_cast<std::size_t>(stride_ * height), poison)
    {
        world_.data = pixels_.data();
        world_.rowbytes = stride_ * 4;
        world_.width = width;
        world_.height = height;
        world_.extent_hint = {0, 0, width, height};
    }
    padded_world(const padded_world& other) : stride_(other.stride_), pixels_(other.pixels_), world_(other.world_)
    {
        world_.data = pixels_.data();
    }

    PF_EffectWorld& world() { return world_; }
    PF_Pixel& at(int x, int y) { return pixels_[static_cast<std::size_t>(y * stride_ + x)]; }
    PF_Pixel at_or_nothing(int x, int y)
    {
        return x >= 0 && y >= 0 && x < world_.width && y < world_.height ? at(x, y) : PF_Pixel{};
    }

    // Random pixels, biased to the ends: alpha 0 and 255 are each a third.
    template <class Random>
    void scatter(Random& random)
    {
        const auto byte = [&random] { return static_cast<A_u_char>(random() >> 8); };
        for (int y = 0; y < world_.height; ++y)
            for (int x = 0; x < world_.width; ++x)
            {
                const auto ends = random() % 3;
                const A_u_char alpha = ends == 0 ? A_u_char{0} : ends == 1 ? A_u_char{255} : byte();
                at(x, y) = {alpha, byte(), byte(), byte()};
            }
    }

    // The first place where two worlds of one size differ, padding included; empty where they are the same.
    std::string difference(padded_world& other)
    {
        for (int y = 0; y < world_.height; ++y)
            for (int x = 0; x < stride_; ++x)
                if (!operator_equal(at(x, y), other.at(x, y)))
                    return "pixel " + std::to_string(x) + "," + std::to_string(y) + ": " + text(at(x, y)) +
                           " is not " + text(other.at(x, y));
        return "";
    }

private:
    static std::string text(PF_Pixel p)
    {
        return std::to_string(p.alpha) + "/" + std::to_string(p.red) + "/" + std::to_string(p.green) + "/" +
               std::to_string(p.blue);
    }
    static constexpr PF_Pixel poison{0x5a, 0xa5, 0x5a, 0xa5};

    int stride_;
    std::vector<PF_Pixel> pixels_;
    PF_EffectWorld world_{};
};
} // namespace scripted
