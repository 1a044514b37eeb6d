// windows_file_check FILE: on Windows, what the system finds in a plug-in's file without running it, and what
// global set-up then answers, are what the description says. Exit status 1 where they are not.

#include "packaging/property_list/property_list.hpp"

#include "host/plugin.hpp"

#include <windows.h>

#include <cstdio>
#include <exception>
#include <filesystem>

namespace
{
packaging::byte_string property_list_in(const std::filesystem::path& file)
{
    const HMODULE module = LoadLibraryExW(file.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    const HRSRC place = FindResourceW(module, MAKEINTRESOURCEW(packaging::resource_id), L"PiPL");
    if (place == nullptr)
        return {};
    const auto* const first = static_cast<const std::uint8_t*>(LockResource(LoadResource(module, place)));
    const packaging::byte_string bytes(first, first + SizeofResource(module, place));
    FreeLibrary(module);
    return bytes;
}

bool check(const char* what, bool holds)
{
    std::printf("%s: %s\n", what, holds ? "as described" : "differs");
    return holds;
}

bool check_file(const std::filesystem::path& file)
{
    const packaging::effect_description& told = packaging::filigrane();
    const bool listed = check("property list", property_list_in(file) == packaging::windows_property_list(told));
    const host::plugin_version answered = host::plugin(file).version();
    const bool same = answered.word == told.version && answered.out_flags == told.out_flags &&
                      answered.out_flags2 == told.out_flags2;
    return check("global set-up", same) && listed;
}
} // namespace

int main(int count, char** words)
{
    try
    {
        return count == 2 && check_file(words[1]) ? 0 : 1;
    }
    catch (const std::exception& failure)
    {
        std::fprintf(stderr, "windows_file_check: %s\n", failure.what());
        return 1;
    }
}
