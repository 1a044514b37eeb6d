// The bundle's code takes a Mac to build, everything else in it does not: the build is configured as for a Mac,
// and the files that hosts read before they load the code are made and looked at here.

#include "packaging/property_list/property_list.hpp"
#include "tests/packaging/property_list_reader.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace
{
const std::filesystem::path build = MACOS_BUILD;
const std::filesystem::path contents = build / "Filigrane.plugin" / "Contents";

std::string text_of(const std::filesystem::path& name)
{
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The string that follows a key.
std::string plist_string(const std::string& plist, const std::string& key)
{
    const std::string begin = "<string>";
    const std::size_t at = plist.find("<key>" + key + "</key>");
    const std::size_t first = plist.find(begin, at);
    if (at == std::string::npos || first == std::string::npos)
        return {};
    return plist.substr(first + begin.size(), plist.find("</string>", first) - first - begin.size());
}

TEST(macos_bundle, has_what_hosts_read_before_they_load_it)
{
    const std::string log = build.string() + ".log";
    ASSERT_EQ(std::system((MAKE_MACOS_PARTS " >'" + log + "' 2>&1").c_str()), 0) << text_of(log);

    EXPECT_EQ(text_of(contents / "PkgInfo"), "eFKTFXTC");
    const std::string plist = text_of(contents / "Info.plist");
    EXPECT_EQ(plist_string(plist, "CFBundlePackageType"), "eFKT");
    EXPECT_EQ(plist_string(plist, "CFBundleSignature"), "FXTC");
    EXPECT_EQ(plist_string(plist, "CFBundleExecutable"), "Filigrane");
    EXPECT_EQ(plist_string(plist, "CFBundleVersion"), PROJECT_VERSION);

    const std::string rsrc = text_of(contents / "Resources" / "Filigrane.rsrc");
    const auto resources = packaging_test::read_resource_file({rsrc.begin(), rsrc.end()});
    ASSERT_EQ(resources.size(), 1U);
    EXPECT_EQ(resources[0].type, "PiPL");
    EXPECT_EQ(resources[0].id, 16000);
    EXPECT_EQ(resources[0].data, packaging::macos_property_list(packaging::filigrane()));
}
} // namespace
