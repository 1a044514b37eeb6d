#include "bench/frames/frame_scene.hpp"

#include "host/param_text.hpp"
#include "host/preset.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <stdexcept>

namespace bench
{
namespace
{
// The level of renders, as the effect reads it, for the time of one.
class level_of_renders
{
public:
    explicit level_of_renders(const char* level)
    {
        if (const char* const before = std::getenv(kName))
            before_ = before;
        setenv(kName, level, 1);
    }
    ~level_of_renders()
    {
        if (before_)
            setenv(kName, before_->c_str(), 1);
        else
            unsetenv(kName);
    }
    level_of_renders(const level_of_renders&) = delete;
    level_of_renders& operator=(const level_of_renders&) = delete;

private:
    static constexpr const char* kName = "FILIGRANE_SIMD";
    std::optional<std::string> before_;
};

host::composition composition_of(int width, int height, PF_Quality quality)
{
    host::composition comp;
    comp.width = width;
    comp.height = height;
    comp.total_frames = 1000;
    comp.quality = quality;
    return comp;
}

// Soft colours, to be displaced.
std::vector<std::uint8_t> input_picture(int width, int height)
{
    std::vector<std::uint8_t> pixels;
    pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
        {
            pixels.push_back(255);
            pixels.push_back(static_cast<std::uint8_t>(255 * x / width));
            pixels.push_back(static_cast<std::uint8_t>(255 * y / height));
            pixels.push_back(static_cast<std::uint8_t>((x / 8 + y / 8) % 2 != 0 ? 60 : 190));
        }
    return pixels;
}
} // namespace

const std::vector<frame_scene>& frame_scenes()
{
    static const std::vector<frame_scene> scenes = {
        {"defaults", {}},
        {"20 x 20", {{"Rows", "20"}, {"Columns", "20"}}},
        {"40 x 40, radius 10", {{"Rows", "40"}, {"Columns", "40"}, {"Normal Line Width (NLW)", "20"}}},
        {"NLW 80 blended", {{"Normal Line Width (NLW)", "80"}}},
        {"NLW 60 blended", {{"Normal Line Width (NLW)", "60"}}},
        {"NLW 60 one colour", {{"Normal Line Width (NLW)", "60"}, {"Blend Amount", "0%"}}},
        {"NLW 200", {{"Normal Line Width (NLW)", "200"}}},
        {"ends growth frame 100",
         {{"Lines Have Ends", "on"},
          {"Vertical Length", "1000"},
          {"Horizontal Length", "1800"},
          {"Vertical Growth", "8"},
          {"Horizontal Growth", "15"},
          {"Growth Randomness", "50"}},
         100},
        {"ends growth frame 500",
         {{"Lines Have Ends", "on"},
          {"Vertical Length", "1000"},
          {"Horizontal Length", "1800"},
          {"Vertical Growth", "8"},
          {"Horizontal Growth", "15"},
          {"Growth Randomness", "50"}},
         500},
        {"displacement", {{"Use Displacement", "on"}, {"Amount of Displacement", "20"}}},
        {"angular Affect 2", {{"Angular Lines", "on"}, {"Affect", "Horz Lines"}}},
        {"all randomness rotated",
         {{"Rotation", "30deg"},
          {"Line Spacing Randomness", "100%"},
          {"NLW Randomness", "100"},
          {"Distortion Randomness", "100%"},
          {"Opacity Randomness", "60%"},
          {"Length Randomness", "100"},
          {"Starting Point Randomness", "50%"},
          {"Growth Randomness", "100"},
          {"Frequency Randomness", "60%"},
          {"Size Randomness", "100"},
          {"Speed Randomness", "100"},
          {"Turbulance Randomness", "100%"}}},
    };
    return scenes;
}

std::vector<frame_scene> look_scenes()
{
    std::vector<frame_scene> scenes;
    for (const auto& entry : std::filesystem::directory_iterator(FILIGRANE_LOOKS))
        if (entry.path().extension() == ".json")
            scenes.push_back({entry.path().stem().string(), {}, 50, entry.path()});
    std::sort(scenes.begin(), scenes.end(),
              [](const frame_scene& a, const frame_scene& b) { return a.name < b.name; });
    return scenes;
}

const frame_scene& frame_scene_named(const std::string& name)
{
    for (const frame_scene& scene : frame_scenes())
        if (scene.name == name)
            return scene;
    throw std::runtime_error("there is no scene \"" + name + "\"");
}

host::param_tracks scene_values(const frame_scene& scene, const host::plugin& effect,
                                const host::composition& comp)
{
    const std::vector<host::param_info>& params = effect.params();
    host::param_tracks values(params);
    if (!scene.look.empty())
        host::load_preset(scene.look, params, comp, values);
    for (const auto& [label, text] : scene.settings)
    {
        const host::param_info& info = host::find_param(params, label);
        values.set(info.index, host::parse_value(info, text));
    }
    return values;
}

frame_case::frame_case(const frame_scene& scene, int width, int height, PF_Quality quality)
    : comp_(composition_of(width, height, quality)), values_(scene_values(scene, clocked_effect(), comp_)),
      frame_(scene.frame), input_(input_picture(width, height)), output_(input_.size())
{
}

frame_times frame_case::draw(bool plain)
{
    std::optional<level_of_renders> level;
    if (plain)
        level.emplace("scalar");
    const host::const_image_view from = {input_.data(), comp_.width, comp_.height, 4 * comp_.width};
    const host::image_view to = {output_.data(), comp_.width, comp_.height, 4 * comp_.width};
    host::render_frame(clocked_effect(), comp_, values_, frame_, from, to);
    return last_frame_times();
}
} // namespace bench
