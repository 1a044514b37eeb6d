#pragma once
// Small frames, each with parameters, size and host of its own that follow from its number alone: every kind of
// picture, a share of values that no slider gives, and now and then a host that refuses a call.

#include "host/plugin.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace changing
{
enum class kind
{
    plain,
    grid,
    columns_ripple,
    rows_ripple,
    angular,
    ends,
    wrapping,
    displacement,
};
constexpr int kKinds = 8;

// What became of one frame.
struct outcome
{
    PF_Err result = PF_Err_NONE;
    bool refused = false;  // the host refused a call
    bool drawn = false;    // the picture is not all one colour
    std::string complaint; // of the checked host; empty where all was well
    std::vector<std::uint8_t> pixels;

    // Stands for all of it: FNV-1a over the result, the complaint and the pixels.
    std::uint64_t digest() const;
};

kind kind_of(std::uint32_t number);

outcome render(const host::plugin& effect, std::uint32_t number);

// Renders are fewer where each of them is slow.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif
} // namespace changing
