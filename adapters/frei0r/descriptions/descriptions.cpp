#include "adapters/frei0r/descriptions/descriptions.hpp"

namespace frei0r
{
std::vector<std::string> common_rates()
{
    return {"25", "24000/1001", "24", "30000/1001", "30", "48", "50", "60000/1001", "60"};
}

std::vector<described_file> all_descriptions(const description_input& from)
{
    const std::string editors = "adapters/frei0r/editors/";
    return {{editors + "kdenlive/effects/frei0r_filigrane.xml", kdenlive_xml(from, false)},
            {editors + "kdenlive/generators/frei0r_filigrane_generator.xml", kdenlive_xml(from, true)},
            {editors + "shotcut/filigrane/meta.qml", shotcut_meta(from)},
            {editors + "shotcut/filigrane/ui.qml", shotcut_ui(from)},
            {editors + "flowblade/filigrane.xml", flowblade_xml(from)},
            {"docs/frei0r-parameters.md", mapping_text(from)}};
}
} // namespace frei0r
