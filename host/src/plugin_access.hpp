#pragma once
// What the library keeps of a loaded effect beside what it tells about it.

#include "handle_store.hpp"
#include "host/plugin.hpp"

namespace host
{
struct plugin_access
{
    // The effect's own global data, null where it has none, and the store its handles stand in.
    static PF_Handle global_data(const plugin& effect);
    static handle_store& global_handles(const plugin& effect);
    // What its frames leave for the next ones.
    static memory_reserve& memory(const plugin& effect);
};

// The code in words, for messages: "4 (out of memory)".
std::string error_text(PF_Err code);
// The effect's return message as the end of a message: ": text", or nothing.
std::string return_text(const PF_OutData& out);
} // namespace host
