#include "bench/stages/frame_bed.hpp"

#include "effect/model/frame_setup.hpp"
#include "effect/model/matrix.hpp"

#include "host/param_text.hpp"
#include "host/render.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <vector>

extern "C" PF_Err PluginEntry(PF_Cmd command, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                              PF_LayerDef* output, void* extra);

namespace bench
{
namespace
{
constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr std::size_t kPoolBytes = std::size_t{128} << 20;

const std::function<void(frame_bed&)>* now = nullptr;

// The two canvases of a render; given back by the host at its end.
PF_EffectWorld canvas_of(const frame_data& frame)
{
    PF_EffectWorld world{};
    if (frame.in_data->utils->new_world(frame.in_data->effect_ref, frame.squareSize, frame.squareSize,
                                        PF_NewWorldFlag_CLEAR_PIXELS, &world) != PF_Err_NONE)
        throw std::bad_alloc();
    return world;
}

void work_on_frame(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output)
{
    std::vector<std::uint64_t> memory(kPoolBytes / 8);
    auto* const base = reinterpret_cast<std::byte*>(memory.data());
    mem_pool pool = {base, base, kPoolBytes};
    auto* const frame = pool_new<frame_data>(&pool);
    set_up_frame(*frame, &pool, in_data, out_data, params, output);
    const auto half = static_cast<double>(frame->squareSize / 2);
    AEG_SetIdentityMatrix(&frame->layoutMatrix);
    AEG_RotateMatrixPlus(&frame->layoutMatrix, in_data, 180.0, half, half);

    PF_EffectWorld lines = canvas_of(*frame);
    PF_EffectWorld strokes = canvas_of(*frame);
    aeg context(&pool, in_data, &lines, &strokes, static_cast<unsigned char>(0), short{0}, short{0});
    LineCreatorClass& creator = frame->lineCreator;
    creator.context = &context;
    creator.pixels = strokes.data;
    creator.width = strokes.width;
    creator.height = strokes.height;
    creator.rowBytes = strokes.rowbytes;
    creator.coveredMask = pool_array<std::uint8_t>(&pool, std::int64_t{strokes.width} * strokes.height);
    creator.CreateTables();
    frame_bed bed = {*frame, context};
    (*now)(bed);
}

PF_Err entry(PF_Cmd command, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[], PF_LayerDef* output,
             void* extra)
{
    if (command != PF_Cmd_RENDER)
        return PluginEntry(command, in_data, out_data, params, output, extra);
    work_on_frame(in_data, out_data, params, output);
    return PF_Err_NONE;
}
} // namespace

void in_a_frame(const frame_scene& scene, PF_Quality quality, const std::function<void(frame_bed&)>& work)
{
    static const host::plugin effect(entry, "the bench");
    now = &work;
    host::param_tracks values(effect.params());
    for (const auto& [label, text] : scene.settings)
    {
        const host::param_info& info = host::find_param(effect.params(), label);
        values.set(info.index, host::parse_value(info, text));
    }
    host::composition comp;
    comp.width = kWidth;
    comp.height = kHeight;
    comp.total_frames = 1000;
    comp.quality = quality;
    std::vector<std::uint8_t> pixels(std::size_t{4} * kWidth * kHeight);
    const host::const_image_view from = {pixels.data(), kWidth, kHeight, 4 * kWidth};
    const host::image_view to = {pixels.data(), kWidth, kHeight, 4 * kWidth};
    host::render_frame(effect, comp, values, scene.frame, from, to);
}
} // namespace bench
