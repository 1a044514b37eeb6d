#include "hostile_cases.hpp"

#include "host/error.hpp"
#include "host/param_text.hpp"

#include <algorithm>
#include <stdexcept>

extern "C" PF_Err PluginEntry(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                              PF_LayerDef* output, void* extra);

namespace hostile
{
namespace
{
std::vector<std::uint8_t> input_pixels(int width, int height)
{
    std::vector<std::uint8_t> pixels;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (const int channel : {x + y < 12 ? 96 : 255, 4 * x, 5 * y, (x / 8 + y / 8) % 2 != 0 ? 60 : 190})
                pixels.push_back(static_cast<std::uint8_t>(channel));
    return pixels;
}

host::param_tracks values_of(const host::plugin& effect, const frame_case& c)
{
    host::param_tracks values(effect.params());
    const auto set = [&](const std::string& label, const std::string& text)
    {
        const host::param_info& info = host::find_param(effect.params(), label);
        values.set(info.index, host::parse_value(info, text));
    };
    // Few lines and low ripples: a test makes thousands of renders, and steep steps take the rasteriser's time.
    set("Rows", std::to_string(kLines));
    set("Columns", std::to_string(kLines));
    set("Size", "4");
    for (const auto& [label, text] : c.settings)
        set(label, text);
    return values;
}
} // namespace

const std::vector<frame_case>& all_cases()
{
    static const std::vector<frame_case> cases = {
        {"both_ripple", {{"Affect", "Both"}}},
        {"columns_ripple", {{"Affect", "Vert Lines"}, {"Distortion", "20"}}},
        {"rows_ripple", {{"Affect", "Horz Lines"}, {"Distortion", "20"}}, 3},
        {"angular", {{"Angular Lines", "on"}, {"Tolerance", "5"}, {"Affect", "Vert Lines"}}},
        {"angular_both", {{"Angular Lines", "on"}, {"Tolerance", "3"}, {"Affect", "Both"}}},
        {"grid", {{"Show Grid", "on"}, {"Rotation", "30deg"}}},
        {"grid_on_original", {{"Show Grid", "on"}, {"Composite On Original", "on"}, {"Affect", "Horz Lines"}}},
        {"one_colour", {{"Normal Line Width (NLW)", "12"}, {"Blend Amount", "0%"}, {"Stressed Line Width", "20"}}},
        {"ends", {{"Lines Have Ends", "on"}, {"Growth Randomness", "60"}, {"Vertical Growth", "9"}}, 5},
        {"wrapping",
         {{"Lines Have Ends", "on"},
          {"Line Wrapping", "on"},
          {"Lock Horizontal To Vertical", "on"},
          {"Vertical Starting Point", "60%,60%"},
          {"Vertical Length", "90"},
          {"Vertical Growth", "60"}},
         3},
        {"displaced",
         {{"Use Displacement", "on"},
          {"Angle of Displacement", "45deg"},
          {"Amount of Displacement", "6"},
          {"Normal Line Width (NLW)", "4"}}},
        {"displaced_grid",
         {{"Use Displacement", "on"},
          {"Show Grid", "on"},
          {"Affect", "Vert Lines"},
          {"Amount of Displacement", "5"},
          {"Normal Line Width (NLW)", "3"}}},
        {"displaced_ends",
         {{"Use Displacement", "on"},
          {"Lines Have Ends", "on"},
          {"Amount of Displacement", "5"},
          {"Normal Line Width (NLW)", "4"},
          {"Vertical Growth", "9"}},
         3},
        {"low_quality", {{"Normal Line Width (NLW)", "3"}}, 0, 1, true},
        {"half_resolution", {{"Composite On Original", "on"}, {"Normal Line Width (NLW)", "4"}}, 0, 2, false, 12},
    };
    return cases;
}

const frame_case& case_named(std::string_view name)
{
    for (const frame_case& c : all_cases())
        if (c.name == name)
            return c;
    throw std::logic_error("no case " + std::string(name));
}

bool frame_case::has(std::string_view label, std::string_view value) const
{
    return std::any_of(settings.begin(), settings.end(),
                       [&](const auto& one) { return one.first == label && one.second == value; });
}

frame_case frame_case::with(const std::string& label, const std::string& value) const
{
    frame_case changed = *this;
    changed.settings.emplace_back(label, value);
    return changed;
}

int outcome::count(std::string_view call) const
{
    return static_cast<int>(std::count(calls.begin(), calls.end(), call));
}

std::size_t outcome::place(std::string_view call, int nth) const
{
    for (std::size_t i = 0; i < calls.size(); ++i)
        if (calls[i] == call && --nth == 0)
            return i;
    return calls.size();
}

const host::plugin& linked_effect()
{
    static const host::plugin effect(&PluginEntry, "the effect");
    return effect;
}

outcome render(const host::plugin& effect, const frame_case& c, const refusal& refused, bool no_handle_callbacks)
{
    host::composition comp;
    comp.width = kWidth;
    comp.height = kHeight;
    comp.total_frames = 50;
    comp.downsample = c.downsample;
    comp.quality = c.low_quality ? PF_Quality_LO : PF_Quality_HI;
    const int width = comp.picture_width();
    const int height = comp.picture_height();
    const std::vector<std::uint8_t> input = input_pixels(width, height);

    outcome out;
    out.pixels.resize(input.size());
    host::render_options options;
    options.checked = true;
    options.row_padding = c.row_padding;
    options.no_handle_callbacks = no_handle_callbacks;
    options.fail = [&](const char* call, int nth)
    {
        out.calls.emplace_back(call);
        const bool meant = refused.call.empty() || refused.call == call;
        const bool now = refused.nth != 0 && (refused.from_then_on ? nth >= refused.nth : nth == refused.nth);
        return meant && now ? refused.code : PF_Err_NONE;
    };
    try
    {
        const host::render_stats stats = host::render_frame(
            effect, comp, values_of(effect, c), c.frame, {input.data(), width, height, 4 * width},
            {out.pixels.data(), width, height, 4 * width}, options);
        out.result = stats.result;
        out.block_bytes = stats.handle_bytes;
    }
    catch (const host::error& told)
    {
        out.complaint = told.what();
    }
    return out;
}
} // namespace hostile
