#pragma once
// Whole frames of the plug-in's file through the host library.

#include "bench/frames/effect_clock.hpp"

#include "host/render.hpp"

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace bench
{
struct frame_scene
{
    std::string name;
    std::vector<std::pair<std::string, std::string>> settings; // parameter by label, value as a person writes it
    std::int32_t frame = 0;
    std::filesystem::path look = {}; // a preset's file; its values come first
};

const std::vector<frame_scene>& frame_scenes();
// The looks that come with the effect, at a frame in the middle of a shot.
std::vector<frame_scene> look_scenes();
const frame_scene& frame_scene_named(const std::string& name);

// Its values, of the effect's parameters.
host::param_tracks scene_values(const frame_scene& scene, const host::plugin& effect,
                                const host::composition& comp);

// A scene at a size and quality, ready to be drawn again and again.
class frame_case
{
public:
    frame_case(const frame_scene& scene, int width, int height, PF_Quality quality = PF_Quality_HI);

    // Draws the frame. `plain`: by the functions that define the picture alone.
    frame_times draw(bool plain = false);
    const std::vector<std::uint8_t>& picture() const { return output_; }

private:
    host::composition comp_;
    host::param_tracks values_;
    std::int32_t frame_;
    std::vector<std::uint8_t> input_;
    std::vector<std::uint8_t> output_;
};
} // namespace bench
