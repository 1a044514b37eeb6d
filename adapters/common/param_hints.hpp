#pragma once
// What a parameter does, in a sentence or two for a person: the words of docs/parameter-notes.json.

#include <string_view>

namespace adapter
{
// The words for the parameter of that label, UTF-8, kept as long as the adapter's file is loaded; empty for a
// label that is not explained.
const char* param_hint(std::string_view label);
} // namespace adapter
