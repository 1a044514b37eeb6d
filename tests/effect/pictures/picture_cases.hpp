#pragma once
// The pictures that the effect must go on making, bit for bit.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace pictures
{
struct picture_case
{
    std::string name; // of its file, too
    std::string why;
    std::vector<std::pair<std::string, std::string>> settings; // parameter by label, value as a person writes it
    std::int32_t frame = 0;
    int width = 96; // of the layer, at full resolution
    int height = 72;
    int downsample = 1;
    bool low_quality = false;
    int row_padding = 0; // bytes
};

const std::vector<picture_case>& all_cases();
} // namespace pictures
