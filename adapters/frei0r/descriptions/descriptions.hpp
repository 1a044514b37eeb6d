#pragma once
// What editors read to show the parameters to a person, each in its editor's own form, and the same for people.

#include "adapters/frei0r/param_table.hpp"

#include <string>
#include <vector>

namespace frei0r
{
struct description_input
{
    std::vector<param_row> rows;
    std::vector<std::string> looks; // names, sorted
};

// Kdenlive's effect. `is_generator`: the same for its list of generators.
std::string kdenlive_xml(const description_input& from, bool is_generator);
// Shotcut's pair of a filter's folder.
std::string shotcut_meta(const description_input& from);
std::string shotcut_ui(const description_input& from);
// An entry of Flowblade's list of filters.
std::string flowblade_xml(const description_input& from);
// docs/frei0r-parameters.md: every parameter, and what 0 and 1 stand for.
std::string mapping_text(const description_input& from);

// Frame rates that a list offers, the default first.
std::vector<std::string> common_rates();

struct described_file
{
    std::string name; // below the repository
    std::string text;
};

std::vector<described_file> all_descriptions(const description_input& from);
} // namespace frei0r
