#pragma once
// Small frames of every kind that the effect draws, rendered by the embedded host in its checked mode while it
// refuses chosen calls.

#include "host/render.hpp"

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace hostile
{
constexpr int kWidth = 64; // of the layer
constexpr int kHeight = 48;
constexpr int kLines = 3; // rows, and columns

struct frame_case
{
    std::string name;
    std::vector<std::pair<std::string, std::string>> settings; // parameter by label, value as a person writes it
    std::int32_t frame = 0;
    int downsample = 1;
    bool low_quality = false;
    int row_padding = 0;

    bool has(std::string_view label, std::string_view value) const;
    bool displaced() const { return has("Use Displacement", "on"); }
    bool on_original() const { return has("Composite On Original", "on"); }
    // The same frame with one more setting, which wins over an earlier one.
    frame_case with(const std::string& label, const std::string& value) const;
    // The frame as it is where no line and no grid is drawn.
    frame_case without_lines() const { return with("Rows", "0").with("Columns", "0").with("Show Grid", "off"); }
};

inline void PrintTo(const frame_case& c, std::ostream* out)
{
    *out << c.name;
}

const std::vector<frame_case>& all_cases();
const frame_case& case_named(std::string_view name);

// Calls that the host refuses: the nth of that name (every name where it is empty), and those after it if wanted.
struct refusal
{
    std::string_view call;
    int nth = 0; // 0: none
    PF_Err code = PF_Err_NONE;
    bool from_then_on = false;
};

struct outcome
{
    PF_Err result = PF_Err_NONE;
    std::uint64_t block_bytes = 0; // of the effect's memory
    std::vector<std::uint8_t> pixels;
    std::vector<std::string_view> calls; // names of the host's callbacks, in order
    std::string complaint;               // what the checked host had to say; empty where all was well

    int count(std::string_view call) const;
    // The place of the nth call of that name among all calls; calls.size() where there are fewer.
    std::size_t place(std::string_view call, int nth) const;
};

// The effect that is linked in.
const host::plugin& linked_effect();

outcome render(const host::plugin& effect, const frame_case& c, const refusal& refused = {},
               bool no_handle_callbacks = false);
inline outcome render(const frame_case& c, const refusal& refused = {}, bool no_handle_callbacks = false)
{
    return render(linked_effect(), c, refused, no_handle_callbacks);
}
} // namespace hostile
