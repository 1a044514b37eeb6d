// Writes the effect's property list for the build of a platform's plug-in file:
// `property_list windows FILE`, a raw resource, or `property_list macos FILE`, a whole .rsrc file.

#include "packaging/property_list/property_list.hpp"
#include "packaging/property_list/resource_file.hpp"

#include <cstdio>
#include <exception>
#include <fstream>
#include <optional>

namespace
{
std::optional<packaging::byte_string> bytes_for(std::string_view platform)
{
    using namespace packaging;
    if (platform == "windows")
        return windows_property_list(filigrane());
    if (platform == "macos")
        return resource_file(resource_type, resource_id, macos_property_list(filigrane()));
    return std::nullopt;
}

int write_to(const char* name, const packaging::byte_string& bytes)
{
    std::ofstream file(name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (file.flush())
        return 0;
    std::fprintf(stderr, "property_list: %s: cannot be written\n", name);
    return 1;
}
} // namespace

int main(int count, char** words)
{
    try
    {
        const auto bytes = count == 3 ? bytes_for(words[1]) : std::nullopt;
        if (bytes)
            return write_to(words[2], *bytes);
        std::fputs("property_list: give windows or macos, and the file to write\n", stderr);
        return 2;
    }
    catch (const std::exception& failure)
    {
        std::fprintf(stderr, "property_list: %s\n", failure.what());
        return 1;
    }
}
