#pragma once
// Values as they are typed on the command line. Each parser throws usage_error with the option's name and an
// example.

#include "media/compose.hpp"
#include "media/rational.hpp"

#include <cstdint>
#include <string>

namespace cli
{
struct picture_size
{
    int width = 1920;
    int height = 1080;
};

struct frame_span
{
    std::int32_t first = 0;
    std::int32_t last = 0; // included
};

// "1920x1080"
picture_size parse_size(const std::string& text);
// "25", "12.5", "30000/1001"; the decimals that people write for x/1001 rates ("29.97") mean those.
media::rational parse_rate(const std::string& text);
// "12" or "0-99"
frame_span parse_frames(const std::string& text);
// "transparent", "checker" or "#rrggbb"
media::background parse_background(const std::string& text);

// "30000/1001" -> "29.97", "25/1" -> "25"
std::string rate_text(const media::rational& rate);
} // namespace cli
