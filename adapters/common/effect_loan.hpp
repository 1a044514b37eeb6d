#pragma once
// The effect, loaded once for a process however many instances a host makes, and let go with the last of them.

#include "host/plugin.hpp"

#include <filesystem>
#include <memory>
#include <vector>

namespace adapter
{
struct loaded_effect
{
    explicit loaded_effect(const std::filesystem::path& file);

    host::plugin plugin;                             // may render on several threads at once
    std::vector<std::filesystem::path> look_folders; // see places.hpp
};

// A share of the effect: loads it where nobody has it, from the file that plugin_file() finds. From any thread.
// Whoever holds a share may render, whatever others gave back. Throws host::error where there is no file or it
// cannot be loaded; the next call tries anew.
std::shared_ptr<const loaded_effect> borrow_effect();
} // namespace adapter
