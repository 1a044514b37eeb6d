#pragma once
// The looks that ship with the tool, listed and shown.

#include <string>

namespace cli
{
void list_presets();
void show_preset(const std::string& name_or_file);
} // namespace cli
