#include "packaging/property_list/description.hpp"

#include "effect/pf/effect_api.hpp"

namespace packaging
{
const effect_description& filigrane()
{
    static const effect_description description{
        .name = "Filigrane",
        .category = "Generate",
        .match_name = "Filigrane",
        .entry_point = "PluginEntry",
        .api_major = 13,
        .api_minor = 0,
        .version = PF_VERSION(1, 3, 2, PF_Stage_RELEASE, 0),
        .out_flags = PF_OutFlag_WIDE_TIME_INPUT | PF_OutFlag_NON_PARAM_VARY | PF_OutFlag_USE_OUTPUT_EXTENT,
        .out_flags2 = 0,
    };
    return description;
}
} // namespace packaging
