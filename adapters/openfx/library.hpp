#pragma once
// What the loaded library holds for all instances: the effect, its parameters as hosts see them, the looks. Made
// at the first load action, kept until the library's file is let go: unload comes while renders may still run, and
// hosts keep pointers to the texts.

#include "adapters/common/effect_loan.hpp"
#include "adapters/openfx/param_table.hpp"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace openfx
{
struct look
{
    std::string label; // "slow-turn" -> "Slow turn"
    std::filesystem::path file;
};

struct library
{
    explicit library(std::shared_ptr<const adapter::loaded_effect> loaded);

    std::shared_ptr<const adapter::loaded_effect> effect;
    param_table params;
    std::vector<look> looks; // by name
    std::string description; // the effect's own about text
};

// Makes it where it is not there yet; from any thread. Throws host::error where the effect cannot be loaded: the
// next call tries anew.
const library& the_library();
} // namespace openfx
