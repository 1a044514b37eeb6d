#pragma once
// What hosts are told about the effect without running any of its code, in one place for every platform. It
// repeats what global set-up answers; a test holds the two together.

#include <cstdint>
#include <string>

namespace packaging
{
struct effect_description
{
    std::string name;           // in the host's menu, at most 31 bytes
    std::string category;       // the menu's submenu, at most 31 bytes
    std::string match_name;     // what projects store: unique, never changed
    std::string entry_point;    // the symbol
    std::int16_t api_major = 0; // the API version that the effect is written for
    std::int16_t api_minor = 0;
    std::uint32_t version = 0; // my_version
    std::int32_t out_flags = 0;
    std::int32_t out_flags2 = 0;
};

const effect_description& filigrane();
} // namespace packaging
