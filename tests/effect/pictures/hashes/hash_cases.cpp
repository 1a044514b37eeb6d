#include "hash_cases.hpp"

#include "tests/effect/pictures/picture_render.hpp"
#include "tests/support/bit_generator.hpp"

#include "host/param_text.hpp"
#include "host/preset.hpp"

#include <algorithm>
#include <cmath>

namespace pictures
{
namespace
{
constexpr int kFrames = 50;
constexpr int kRandomCases = 96;

void add_golden_cases(std::vector<hash_case>& cases)
{
    for (const picture_case& c : all_cases())
        cases.push_back({"golden/" + c.name, composition_of(c), values_of(c), c.frame, c.row_padding});
}

void add_looks(const host::plugin& effect, const std::filesystem::path& looks, std::vector<hash_case>& cases)
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(looks))
        if (entry.path().extension() == ".json")
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    for (const std::filesystem::path& file : files)
    {
        host::composition comp;
        comp.width = 160;
        comp.height = 90;
        comp.total_frames = kFrames;
        for (const std::int32_t frame : {0, 37})
        {
            host::param_tracks values(effect.params());
            const std::string name = host::load_preset(file, effect.params(), comp, values).name;
            cases.push_back({"look/" + name + "/" + std::to_string(frame), comp, values, frame, 0});
            comp = {.width = 131, .height = 77, .total_frames = kFrames, .quality = PF_Quality_LO};
        }
    }
}

// Whole numbers near the default three times of four, for the far ends of the ranges are mostly empty or full.
double random_number(const host::param_info& info, const host::param_value& standard, bit_generator& g)
{
    const double reach = 4.0 * std::fabs(standard.x) + 4.0;
    const bool near = g.below(4) != 0;
    const double lowest = near ? std::max(info.minimum, standard.x - reach) : info.minimum;
    const double highest = near ? std::min(info.maximum, standard.x + reach) : info.maximum;
    const double number = lowest + (highest - lowest) * g.fraction();
    const bool whole = info.kind == host::param_kind::slider || info.kind == host::param_kind::popup;
    return whole ? std::floor(number + 0.5) : number;
}

host::param_value random_value(const host::param_info& info, bit_generator& g)
{
    host::param_value value = host::default_value(info);
    switch (info.kind)
    {
    case host::param_kind::checkbox:
        value.x = g.below(2);
        break;
    case host::param_kind::angle:
        value.x = g.below(720 * 8) / 8.0 - 360.0;
        break;
    case host::param_kind::color:
        value.color = {255, static_cast<A_u_char>(g.below(256)), static_cast<A_u_char>(g.below(256)),
                       static_cast<A_u_char>(g.below(256))};
        break;
    case host::param_kind::point:
        value.percent = true;
        value.x = g.below(140) - 20;
        value.y = g.below(140) - 20;
        break;
    default:
        value.x = random_number(info, value, g);
    }
    return value;
}

int random_side(bit_generator& g, int highest)
{
    return g.below(8) == 0 ? 1 + g.below(highest) : 8 + g.below(highest / 2);
}

hash_case random_case(const host::plugin& effect, int number)
{
    bit_generator g{static_cast<std::uint64_t>(number)};
    host::composition comp;
    comp.width = random_side(g, 320);
    comp.height = random_side(g, 240);
    comp.total_frames = kFrames;
    comp.downsample = g.below(4) == 0 ? 2 + g.below(3) : 1;
    comp.quality = g.below(3) == 0 ? PF_Quality_LO : PF_Quality_HI;
    const std::int32_t frame = g.below(2) == 0 ? 0 : g.below(kFrames);
    const int row_padding = 4 * g.below(8);

    host::param_tracks values(effect.params());
    for (const host::param_info& info : effect.params())
        if (info.has_value() && g.below(2) == 0)
            values.set(info.index, random_value(info, g));
    // What would be too seldom by itself, or take too long.
    const auto set = [&](const char* name, const std::string& text)
    {
        const host::param_info& info = host::find_param(effect.params(), name);
        values.set(info.index, host::parse_value(info, text));
    };
    for (const char* const side : {"Height", "Width"})
        set(side, std::to_string(2 + g.below(400)));
    const bool wide = number % 6 == 4;
    set("Normal Line Width (NLW)", std::to_string(1 + g.below(wide ? 100 : 12)));
    for (const char* const lines : {"Rows", "Columns"})
        set(lines, std::to_string(g.below(wide ? 3 : 16)));
    const char* const affects[] = {"Vert Lines", "Horz Lines", "Both"};
    set("Affect", affects[number % 3]);
    set("Use Displacement", number % 5 == 0 ? "on" : "off");
    set("Lines Have Ends", number % 4 == 1 ? "on" : "off");
    set("Line Wrapping", number % 8 == 1 ? "on" : "off");
    set("Angular Lines", number % 7 == 2 ? "on" : "off");
    set("Show Grid", number % 11 == 3 ? "on" : "off");
    return {"random/" + std::to_string(number), comp, values, frame, row_padding};
}
} // namespace

std::vector<hash_case> hash_cases(const host::plugin& effect, const std::filesystem::path& looks)
{
    std::vector<hash_case> cases;
    add_golden_cases(cases);
    add_looks(effect, looks, cases);
    for (int number = 1; number <= kRandomCases; ++number)
        cases.push_back(random_case(effect, number));
    return cases;
}
} // namespace pictures
