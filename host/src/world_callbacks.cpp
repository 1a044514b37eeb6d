#include "callbacks.hpp"

#include "text.hpp"
#include "transform.hpp"

#include <algorithm>
#include <cstdint>

namespace host
{
namespace
{
PF_Err new_world(PF_ProgPtr ref, A_long width, A_long height, PF_NewWorldFlags flags, PF_EffectWorld* world)
{
    session* host = session_of(ref);
    return serve(
        host, "new_world", [&] { return text_line("new_world ", width, "x", height, " flags ", flags); },
        [&](std::string& outcome)
        {
            const PF_Err answer = host->worlds.make(width, height, flags, host->options.row_padding, world);
            if (answer == PF_Err_NONE && host->trace.logging())
                outcome = " -> " + host->worlds.name_of(world);
            return answer;
        });
}

PF_Err dispose_world(PF_ProgPtr ref, PF_EffectWorld* world)
{
    session* host = session_of(ref);
    bool served = false;
    const PF_Err answer = serve(
        host, "dispose_world", [&] { return "dispose_world world " + host->worlds.name_of(world); },
        [&](std::string&)
        {
            served = true;
            return host->worlds.dispose(world);
        });
    if (host && !served)
        host->worlds.forgive(world);
    return answer;
}

PF_Err fill(PF_ProgPtr ref, const PF_Pixel* color, const PF_Rect* rect, PF_EffectWorld* world)
{
    session* host = session_of(ref);
    return serve(
        host, "fill",
        [&]
        {
            return text_line("fill world ", host->worlds.name_of(world), " rect ", rect_text(rect), " color ",
                             color_text(color));
        },
        [&](std::string&) -> PF_Err
        {
            if (!host->worlds.usable("fill", world))
                return PF_Err_BAD_CALLBACK_PARAM;
            fill_world(*world, rect, color, host->worlds.past_caches());
            return PF_Err_NONE;
        });
}

PF_Err copy(PF_ProgPtr ref, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_rect, PF_Rect* dst_rect)
{
    session* host = session_of(ref);
    return serve(
        host, "copy",
        [&]
        {
            return text_line("copy world ", host->worlds.name_of(src), " rect ", rect_text(src_rect), " -> world ",
                             host->worlds.name_of(dst), " rect ", rect_text(dst_rect));
        },
        [&](std::string&) -> PF_Err
        {
            if (!host->worlds.usable("copy", src) || !host->worlds.usable("copy", dst))
                return PF_Err_BAD_CALLBACK_PARAM;
            copy_world(*src, src_rect, *dst, dst_rect);
            return PF_Err_NONE;
        });
}

// Rows from the top, pixels from the left, on this thread; the first answer other than 0 ends it. The effect's
// function runs on the effect's clock.
PF_Err iterate_pixels(session& host, const PF_EffectWorld& src, const PF_Rect* area, void* refcon,
                      PF_IteratePixel8Func function, const PF_EffectWorld& dst)
{
    PF_Rect part = clipped(area, src);
    part.right = std::min(part.right, dst.width);
    part.bottom = std::min(part.bottom, dst.height);
    for (A_long y = part.top; y < part.bottom; ++y)
    {
        PF_Pixel* in = row_of(src, y);
        PF_Pixel* out = row_of(dst, y);
        for (A_long x = part.left; x < part.right; ++x)
        {
            const effect_time time(host.trace);
            if (const PF_Err answer = function(refcon, x, y, in + x, out + x))
                return answer;
        }
    }
    return PF_Err_NONE;
}

PF_Err iterate(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
               const PF_Rect* area, void* refcon, PF_IteratePixel8Func function, PF_EffectWorld* dst)
{
    session* host = in_data ? session_of(in_data->effect_ref) : session::current();
    return serve(
        host, "iterate",
        [&]
        {
            return text_line("iterate progress ", progress_base, " to ", progress_final, " world ",
                             host->worlds.name_of(src), " area ", rect_text(area), " -> world ",
                             host->worlds.name_of(dst));
        },
        [&](std::string&) -> PF_Err
        {
            if (!function || !host->worlds.usable("iterate", src) || !host->worlds.usable("iterate", dst))
                return PF_Err_BAD_CALLBACK_PARAM;
            return iterate_pixels(*host, *src, area, refcon, function, *dst);
        });
}

std::string mask_text(const session& host, const PF_MaskWorld* mask)
{
    return mask ? text_line(" mask world ", host.worlds.name_of(&mask->mask), " at ", mask->offset.h, ",",
                            mask->offset.v)
                : "";
}

std::string mode_text(const PF_CompositeMode* mode)
{
    return mode ? text_line(" opacity ", +mode->opacity, " rgb_only ", +mode->rgb_only, " seed ", mode->rand_seed)
                : " no composite mode";
}

// Masks are served by their alpha, as they are, and pictures as whole frames, not fields.
bool composes(session& host, const char* call, PF_Field field, const PF_EffectWorld* src,
              const PF_CompositeMode* mode, const PF_MaskWorld* mask, const PF_EffectWorld* dst)
{
    if (!mode || field != 0 || !host.worlds.usable(call, src) || !host.worlds.usable(call, dst))
        return false;
    if (mask && (mask->what_is_mask != 0 || !host.worlds.usable(call, &mask->mask)))
        return false;
    return blend{mode->xfer, mode->opacity, mode->rgb_only != 0}.known();
}

PF_Err transfer_rect(PF_ProgPtr ref, PF_Quality quality, PF_ModeFlags flags, PF_Field field,
                     const PF_Rect* src_rect, const PF_EffectWorld* src, const PF_CompositeMode* mode,
                     const PF_MaskWorld* mask, A_long dest_x, A_long dest_y, PF_EffectWorld* dst)
{
    session* host = session_of(ref);
    return serve(
        host, "transfer_rect",
        [&]
        {
            return text_line("transfer_rect quality ", quality, " mode ", mode ? mode->xfer : -1, " flags ", flags,
                             " field ", field, " src_rect ", rect_text(src_rect), " world ",
                             host->worlds.name_of(src), mask_text(*host, mask), " at ", dest_x, ",", dest_y,
                             mode_text(mode), " -> world ", host->worlds.name_of(dst));
        },
        [&](std::string&) -> PF_Err
        {
            if (!composes(*host, "transfer_rect", field, src, mode, mask, dst))
                return PF_Err_BAD_CALLBACK_PARAM;
            transfer({mode->xfer, mode->opacity, mode->rgb_only != 0}, *src, src_rect, mask, *dst, dest_x, dest_y);
            return PF_Err_NONE;
        });
}

std::string matrices_text(const PF_FloatMatrix* matrices, A_long count)
{
    std::string text;
    for (A_long i = 0; matrices && i < count; ++i)
    {
        const auto& m = matrices[i].mat;
        text +=
            text_line(" matrix ", m[0][0], ",", m[0][1], ",", m[1][0], ",", m[1][1], ",", m[2][0], ",", m[2][1]);
    }
    return text;
}

PF_Err transform_world(PF_ProgPtr ref, PF_Quality quality, PF_ModeFlags flags, PF_Field field,
                       const PF_EffectWorld* src, const PF_CompositeMode* mode, const PF_MaskWorld* mask,
                       const PF_FloatMatrix* matrices, A_long count, PF_Boolean src2dst, const PF_Rect* dest_rect,
                       PF_EffectWorld* dst)
{
    session* host = session_of(ref);
    return serve(
        host, "transform_world",
        [&]
        {
            return text_line("transform_world quality ", quality, " mode ", mode ? mode->xfer : -1, " flags ",
                             flags, " field ", field, " world ", host->worlds.name_of(src), mask_text(*host, mask),
                             matrices_text(matrices, count), " src2dst ", +src2dst, " dest_rect ",
                             rect_text(dest_rect), mode_text(mode), " -> world ", host->worlds.name_of(dst));
        },
        [&](std::string&) -> PF_Err
        {
            if (!matrices || count <= 0 || !composes(*host, "transform_world", field, src, mode, mask, dst))
                return PF_Err_BAD_CALLBACK_PARAM;
            transform_onto({mode->xfer, mode->opacity, mode->rgb_only != 0}, quality, *src, mask,
                           {matrices, count, src2dst != 0}, dest_rect, *dst);
            return PF_Err_NONE;
        });
}

// The block's radii and edge behaviour play no part: a point is sampled, and outside the world is nothing.
PF_Err subpixel_sample(PF_ProgPtr ref, PF_Fixed x, PF_Fixed y, const PF_SampPB* block, PF_Pixel* dst)
{
    session* host = session_of(ref);
    return serve(
        host, "subpixel_sample",
        [&]
        {
            return text_line("subpixel_sample ", x, ",", y, " world ",
                             host->worlds.name_of(block ? block->src : nullptr));
        },
        [&](std::string& outcome) -> PF_Err
        {
            if (!block || !dst || !host->worlds.usable("subpixel_sample", block->src))
                return PF_Err_BAD_CALLBACK_PARAM;
            *dst = sampler_for(host->in_data.quality)(*block->src, x, y);
            if (host->trace.logging())
                outcome = " -> " + color_text(dst);
            return PF_Err_NONE;
        });
}
} // namespace

void fill_world_callbacks(PF_UtilCallbacks& table)
{
    table.new_world = new_world;
    table.dispose_world = dispose_world;
    table.fill = fill;
    table.copy = copy;
    table.iterate = iterate;
    table.transfer_rect = transfer_rect;
    table.transform_world = transform_world;
    table.subpixel_sample = subpixel_sample;
}
} // namespace host
