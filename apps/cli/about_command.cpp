#include "about_command.hpp"

#include <cstdio>
#include <ostream>

namespace cli
{
namespace
{
struct flag_name
{
    std::int32_t bit;
    const char* name;
};

constexpr flag_name flag_names[] = {
    {PF_OutFlag_WIDE_TIME_INPUT, "asks for parameters at other times"},
    {PF_OutFlag_NON_PARAM_VARY, "varies over time by itself"},
    {PF_OutFlag_USE_OUTPUT_EXTENT, "honours the output extent"},
    {PF_OutFlag_DISPLAY_ERROR_MESSAGE, "may show error messages"},
};

std::string hexadecimal(std::uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", value);
    return text;
}

const char* stage_name(int stage)
{
    static constexpr const char* names[] = {"development", "alpha", "beta", "release"};
    return stage >= 0 && stage < 4 ? names[stage] : "unknown stage";
}
} // namespace

void print_about(const host::plugin& effect, std::ostream& out)
{
    const host::plugin_version& version = effect.version();
    const std::string about = effect.about_utf8();
    out << about << (about.ends_with('\n') ? "" : "\n");
    out << "File:     " << effect.name() << '\n';
    out << "Version:  " << version.major << '.' << version.minor << '.' << version.bugfix << ", "
        << stage_name(version.stage) << ", build " << version.build << " (" << hexadecimal(version.word) << ")\n";
    out << "Flags:    " << hexadecimal(static_cast<std::uint32_t>(version.out_flags)) << ", "
        << hexadecimal(static_cast<std::uint32_t>(version.out_flags2)) << '\n';
    for (const flag_name& flag : flag_names)
        if ((version.out_flags & flag.bit) != 0)
            out << "          " << flag.name << '\n';
}
} // namespace cli
