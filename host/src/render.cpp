#include "host/render.hpp"

#include "host/error.hpp"
#include "lent_render.hpp"
#include "param_record.hpp"
#include "plugin_access.hpp"
#include "session.hpp"
#include "text.hpp"
#include "worlds.hpp"

#include <chrono>
#include <cstring>
#include <limits>

namespace host
{
namespace
{
constexpr int largest_side = 30000;

int reduced(int size, const PF_RationalScale& scale)
{
    const std::int64_t den = scale.den;
    return static_cast<int>((std::int64_t{size} * scale.num + den - 1) / den);
}

bool can_reduce(const PF_RationalScale& scale)
{
    return scale.num == 0 || (scale.num > 0 && static_cast<A_u_long>(scale.num) <= scale.den);
}

void check_composition(const composition& comp)
{
    if (comp.width < 1 || comp.height < 1 || comp.width > largest_side || comp.height > largest_side)
        throw error(text_line("a layer of ", comp.width, " by ", comp.height,
                              " pixels cannot be rendered; give 1 to ", largest_side, " each way"));
    if (comp.downsample < 1 || comp.downsample > 4)
        throw error(text_line("a downsample factor of ", comp.downsample, " is not served; give 1 to 4"));
    if (!can_reduce(comp.reduce_x) || !can_reduce(comp.reduce_y))
        throw error("a picture larger than its layer is not served; give scales above 0 and up to 1");
    if (comp.time_scale == 0)
        throw error("a time scale of 0 is no time; give the number of time units in a second");
    if (comp.quality != PF_Quality_LO && comp.quality != PF_Quality_HI && comp.quality != PF_Quality_DRAWING_AUDIO)
        throw error(text_line("a quality of ", comp.quality, " is not served; give 0 (low) or 1 (high)"));
}

void check_picture(const char* what, const void* pixels, int width, int height, int rowbytes,
                   const composition& comp)
{
    if (!pixels || width != comp.picture_width() || height != comp.picture_height() || rowbytes < 4 * width)
        throw error(text_line("the ", what, " picture is ", width, " by ", height, " pixels with rows of ",
                              rowbytes, " bytes; it must be ", comp.picture_width(), " by ", comp.picture_height(),
                              " with rows of at least ", 4 * comp.picture_width()));
}

void check_options(const render_options& options, const composition& comp)
{
    if (options.row_padding < 0 || options.row_padding % 4 != 0 || options.row_padding > (1 << 20))
        throw error(text_line("a row padding of ", options.row_padding,
                              " bytes is not served; give a multiple of 4 "
                              "up to 1048576"));
    if (!world_size_fits(comp.picture_width(), comp.picture_height(), options.row_padding))
        throw error(text_line("a picture of ", comp.picture_width(), " by ", comp.picture_height(),
                              " pixels is too large for an effect; make it smaller"));
}

// A time in units of 1/time_scale second must fit the record's signed 32 bits.
A_long units(std::int64_t frames, std::int32_t time_step)
{
    const std::int64_t time = frames * time_step;
    if (time < std::numeric_limits<A_long>::min() || time > std::numeric_limits<A_long>::max())
        throw error(text_line("frame ", frames, " at ", time_step,
                              " time units a frame lies past the last time that "
                              "can be told; use a coarser time scale"));
    return static_cast<A_long>(time);
}

// What an effect asked for at once, where it is so much that it explains a failure.
std::string asked_for(std::uint64_t bytes)
{
    const std::uint64_t mebibytes = bytes >> 20;
    return mebibytes == 0 ? "" : text_line(" (it asks for ", mebibytes, " MiB)");
}

pixel_block block_for(const composition& comp, const render_options& options, memory_reserve& reserve)
{
    pixel_block block(comp.picture_width(), comp.picture_height(), options.row_padding, true,
                      options.checked ? nullptr : &reserve);
    if (!block.data())
        throw error(text_line("out of memory for a picture of ", comp.picture_width(), " by ",
                              comp.picture_height(), " pixels"));
    return block;
}

void copy_rows(std::uint8_t* to, int to_rowbytes, const std::uint8_t* from, int from_rowbytes, int width,
               int height)
{
    for (int y = 0; y < height; ++y)
        std::memcpy(to + std::ptrdiff_t{to_rowbytes} * y, from + std::ptrdiff_t{from_rowbytes} * y,
                    static_cast<std::size_t>(width) * 4);
}

// Whether an effect can be given the pixels as they are: it counts on whole pixels, and where rows were to be
// padded or guarded they must be the host's own.
bool can_lend(image_view view, const render_options& options)
{
    return !options.checked && options.row_padding == 0 && view.rowbytes % 4 == 0 &&
           reinterpret_cast<std::uintptr_t>(view.argb) % alignof(std::uint32_t) == 0;
}

pixel_block lent(image_view view)
{
    return pixel_block::lent(reinterpret_cast<PF_Pixel*>(view.argb), view.width, view.height, view.rowbytes);
}

const_image_view to_read(image_view view)
{
    return {view.argb, view.width, view.height, view.rowbytes};
}

// One frame's conversation, from sequence set-up to sequence set-down. `lent_input` is null where the input must
// not be lent.
class frame_render
{
public:
    frame_render(const plugin& effect, const composition& comp, const param_tracks& values, std::int32_t frame,
                 const_image_view input, std::uint8_t* lent_input, image_view output,
                 const render_options& options)
        : effect_(effect), comp_(comp), frame_(frame), input_view_(input), output_view_(output),
          host_(options, &plugin_access::global_handles(effect), &plugin_access::memory(effect)),
          values_{effect.params(), values, comp}
    {
        describe(frame);
        make_input({lent_input, input.width, input.height, input.rowbytes});
        make_output();
        fill_params();
    }

    render_stats run()
    {
        PF_OutData out{};
        render_stats stats;
        stats.result = send(PF_Cmd_SEQUENCE_SETUP, out);
        if (stats.result == PF_Err_NONE)
        {
            stats.result = send(PF_Cmd_FRAME_SETUP, out);
            if (stats.result == PF_Err_NONE)
            {
                refuse_other_size(out);
                stats.result = timed_render(out, stats);
                keep_message(stats.result, out);
                send(PF_Cmd_FRAME_SETDOWN, out);
            }
            else
                keep_message(stats.result, out);
            send(PF_Cmd_SEQUENCE_SETDOWN, out);
        }
        else
            keep_message(stats.result, out);
        finish(stats);
        deliver();
        return stats;
    }

private:
    void describe(std::int32_t frame)
    {
        PF_InData& in = host_.in_data;
        in.quality = comp_.quality;
        in.num_params = static_cast<A_long>(effect_.params().size());
        in.current_time = units(frame, comp_.time_step);
        in.time_step = in.local_time_step = comp_.time_step;
        in.total_time = units(comp_.total_frames, comp_.time_step);
        in.time_scale = comp_.time_scale;
        in.width = comp_.width;
        in.height = comp_.height;
        in.extent_hint = {0, 0, comp_.picture_width(), comp_.picture_height()};
        in.downsample_x = comp_.scale_x();
        in.downsample_y = comp_.scale_y();
        in.global_data = plugin_access::global_data(effect_);
    }

    void make_input(image_view lendable)
    {
        if (lendable.argb && can_lend(lendable, host_.options))
            values_.input = host_.worlds.adopt("input", lent(lendable));
        else
        {
            values_.input = host_.worlds.adopt("input", own_block());
            copy_rows(reinterpret_cast<std::uint8_t*>(values_.input.data), values_.input.rowbytes,
                      input_view_.argb, input_view_.rowbytes, input_view_.width, input_view_.height);
        }
        values_.input.world_flags = 0; // an effect reads its input, it does not write it
        host_.frame = &values_;
    }

    // Made after the input, which the caller may have in the same memory.
    void make_output()
    {
        if (can_lend(output_view_, host_.options))
        {
            output_ = host_.worlds.adopt("output", lent(output_view_));
            fill_world(output_, nullptr, nullptr, host_.worlds.past_caches());
        }
        else
            output_ = host_.worlds.adopt("output", own_block());
    }

    pixel_block own_block() const { return block_for(comp_, host_.options, plugin_access::memory(effect_)); }

    void deliver() const
    {
        const auto* drawn = reinterpret_cast<const std::uint8_t*>(output_.data);
        if (drawn != output_view_.argb)
            copy_rows(output_view_.argb, output_view_.rowbytes, drawn, output_.rowbytes, output_view_.width,
                      output_view_.height);
    }

    void fill_params()
    {
        const double seconds = static_cast<double>(host_.in_data.current_time) / comp_.time_scale;
        for (const param_info& info : effect_.params())
            records_.push_back(
                param_record_at(info, values_.values.of(info.index), comp_, values_.input, seconds));
        for (PF_ParamDef& record : records_)
            params_.push_back(&record);
    }

    PF_Err send(PF_Cmd command, PF_OutData& out)
    {
        return host_.send(effect_.entry(), effect_.name(), command, out, params_.data(), &output_);
    }

    PF_Err timed_render(PF_OutData& out, render_stats& stats)
    {
        if (!host_.trace.timed())
            return send(PF_Cmd_RENDER, out);
        const double before = host_.trace.host_seconds();
        const auto start = std::chrono::steady_clock::now();
        const PF_Err answer = send(PF_Cmd_RENDER, out);
        stats.total_seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        stats.host_seconds = host_.trace.host_seconds() - before;
        return answer;
    }

    // Frame set-up may ask for an output of another size than the layer's; this host has only the layer's.
    void refuse_other_size(const PF_OutData& out) const
    {
        const bool none_asked = out.width == 0 && out.height == 0;
        if (!none_asked && (out.width != output_.width || out.height != output_.height))
            throw error(text_line(effect_.name(), ": the effect asks for an output of ", out.width, " by ",
                                  out.height, " pixels; only the layer's own size is served"));
    }

    void keep_message(PF_Err answer, const PF_OutData& out)
    {
        if (answer == PF_Err_OUT_OF_MEMORY)
            refusal_ = text_line(effect_.name(), ": frame ", frame_, " takes more memory than there is",
                                 asked_for(host_.largest_handle), return_text(out),
                                 "; draw a lower frame number, a smaller picture, with lower parameter values, or "
                                 "fewer frames at once");
        else if (answer != PF_Err_NONE)
            refusal_ = text_line(effect_.name(), ": the effect's render ended with error ", error_text(answer),
                                 return_text(out));
    }

    void finish(render_stats& stats)
    {
        stats.handle_bytes = host_.largest_handle;
        if (host_.found.checked())
        {
            host_.worlds.check_all();
            host_.handles.check_all(host_.found);
            host_.checkouts.check_all(host_.found);
            check_input();
        }
        if (host_.trace.kept_exception())
            std::rethrow_exception(host_.trace.kept_exception());
        const auto& texts = host_.found.texts();
        if (!texts.empty())
            throw error(text_line(effect_.name(), ": ", texts.front(),
                                  texts.size() > 1 ? text_line(" (and ", texts.size() - 1, " more)") : ""));
        if (!refusal_.empty() && !host_.options.fail)
            throw error(refusal_);
    }

    void check_input()
    {
        const auto width = static_cast<std::size_t>(input_view_.width) * 4;
        for (int y = 0; y < input_view_.height; ++y)
        {
            const char* now =
                reinterpret_cast<const char*>(values_.input.data) + std::ptrdiff_t{values_.input.rowbytes} * y;
            if (std::memcmp(now, input_view_.argb + std::ptrdiff_t{input_view_.rowbytes} * y, width) != 0)
                return host_.found.add(text_line("the input layer was written to, first in row ", y));
        }
    }

    const plugin& effect_;
    const composition& comp_;
    const std::int32_t frame_;
    const const_image_view input_view_;
    const image_view output_view_;
    session host_;
    frame_values values_;
    PF_LayerDef output_{};
    std::vector<PF_ParamDef> records_;
    std::vector<PF_ParamDef*> params_;
    std::string refusal_;
};
} // namespace

PF_RationalScale composition::scale_x() const
{
    return reduce_x.num != 0 ? reduce_x : PF_RationalScale{1, static_cast<A_u_long>(downsample)};
}

PF_RationalScale composition::scale_y() const
{
    return reduce_y.num != 0 ? reduce_y : PF_RationalScale{1, static_cast<A_u_long>(downsample)};
}

int composition::picture_width() const
{
    return reduced(width, scale_x());
}

int composition::picture_height() const
{
    return reduced(height, scale_y());
}

namespace
{
render_stats render_checked_arguments(const plugin& effect, const composition& comp, const param_tracks& values,
                                      std::int32_t frame, const_image_view input, std::uint8_t* lent_input,
                                      image_view output, const render_options& options)
{
    check_renderable(comp, options);
    check_picture("input", input.argb, input.width, input.height, input.rowbytes, comp);
    check_picture("output", output.argb, output.width, output.height, output.rowbytes, comp);
    if (values.count() != static_cast<int>(effect.params().size()))
        throw error(text_line("values for ", values.count(), " parameters do not fit the ", effect.params().size(),
                              " of ", effect.name()));
    return frame_render(effect, comp, values, frame, input, lent_input, output, options).run();
}
} // namespace

void check_renderable(const composition& comp, const render_options& options)
{
    check_composition(comp);
    check_options(options, comp);
}

render_stats render_frame(const plugin& effect, const composition& comp, const param_tracks& values,
                          std::int32_t frame, const_image_view input, image_view output,
                          const render_options& options)
{
    return render_checked_arguments(effect, comp, values, frame, input, nullptr, output, options);
}

render_stats render_lent_frame(const plugin& effect, const composition& comp, const param_tracks& values,
                               std::int32_t frame, image_view input, image_view output,
                               const render_options& options)
{
    return render_checked_arguments(effect, comp, values, frame, to_read(input), input.argb, output, options);
}
} // namespace host
