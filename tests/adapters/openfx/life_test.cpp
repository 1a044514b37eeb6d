// The library's life: hosts load it twice, unload it early and keep its texts.

#include "tests/adapters/openfx/ofx_session.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace
{
using namespace ofx;

// Of this process; an empty value counts as none.
void set_variable(const char* name, const char* value)
{
#ifdef _WIN32
    _putenv_s(name, value);
#else
    setenv(name, value, 1);
#endif
}

TEST(openfx_life, goes_through_load_and_unload_any_number_of_times)
{
    strict::host host;
    const strict::binary library(FILIGRANE_OFX_FILE);
    OfxPlugin& plugin = *library.plugin(0);
    EXPECT_EQ(host.load(plugin), kOfxStatOK);
    auto first = host.describe(plugin, filter);
    EXPECT_EQ(host.act(plugin, "OfxActionUnload"), kOfxStatOK);
    EXPECT_EQ(host.load(plugin), kOfxStatOK);
    EXPECT_EQ(host.act(plugin, "OfxActionLoad"), kOfxStatOK); // unpaired
    OfxStatus described = kOfxStatFailed;
    auto second = host.describe(plugin, filter, &described);
    EXPECT_EQ(described, kOfxStatOK);
    EXPECT_EQ(first->params.params.size(), second->params.params.size());
    auto instance = host.create(plugin, *second, filter);
    EXPECT_EQ(host.act(plugin, "OfxActionUnload"), kOfxStatOK);
    EXPECT_EQ(host.act(plugin, "OfxActionUnload"), kOfxStatOK);

    // Unloading takes nothing away that a render may still use.
    image_manner manner;
    auto image = std::make_shared<host_image>(30, 20, manner);
    strict::connect(
        *instance, "Output", [image](double) { return image; }, manner);
    EXPECT_EQ(host.render(plugin, *instance, {.window = {0, 0, 30, 20}}), kOfxStatOK);
    EXPECT_EQ(difference(reference(composition(30, 20), defaults(), 0), image->read()), "");
    EXPECT_EQ(host.destroy(plugin, std::move(instance)), kOfxStatOK);
    for (const auto& effect : {std::ref(first), std::ref(second)})
        strict::host::forget(*effect.get());
    EXPECT_EQ(host.complaints(), std::vector<std::string>());
}

TEST(openfx_life, keeps_the_texts_that_it_gave)
{
    strict::host host;
    const strict::binary library(FILIGRANE_OFX_FILE);
    OfxPlugin& plugin = *library.plugin(0);
    for (int round = 0; round < 2; ++round)
    {
        EXPECT_EQ(host.load(plugin), kOfxStatOK);
        strict::host::forget(*host.describe(plugin, general));
        EXPECT_EQ(host.act(plugin, "OfxActionUnload"), kOfxStatOK);
    }
    const auto& given = strict::the_watch().texts_given;
    EXPECT_GT(given.size(), 400u);
    for (const auto& [text, said] : given)
        ASSERT_EQ(text, said);
    EXPECT_EQ(host.complaints(), std::vector<std::string>());
}

TEST(openfx_life, refuses_to_load_without_what_it_needs)
{
    for (const char* needed : {"OfxPropertySuite", "OfxImageEffectSuite", "OfxParameterSuite"})
    {
        strict::host host;
        const strict::binary library(FILIGRANE_OFX_FILE);
        host.absent_suites = {needed};
        EXPECT_EQ(host.load(*library.plugin(0)), kOfxStatFailed) << needed;
        EXPECT_EQ(host.act(*library.plugin(0), "OfxActionDescribe"), kOfxStatFailed);
        host.absent_suites.clear();
        EXPECT_EQ(host.load(*library.plugin(0)), kOfxStatOK);
        EXPECT_EQ(host.complaints(), std::vector<std::string>());
    }
    strict::host host;
    const strict::binary library(FILIGRANE_OFX_FILE);
    EXPECT_EQ(host.act(*library.plugin(0), "OfxActionLoad"), kOfxStatFailed); // no host was set
    library.plugin(0)->setHost(nullptr);
    EXPECT_EQ(host.act(*library.plugin(0), "OfxActionLoad"), kOfxStatFailed);
    EXPECT_EQ(library.plugin(0)->mainEntry(nullptr, nullptr, nullptr, nullptr), kOfxStatFailed);
}

TEST(openfx_life, fails_to_load_without_the_effects_file_and_tries_anew)
{
    strict::host host;
    const strict::binary library(FILIGRANE_OFX_FILE);
    set_variable("FILIGRANE_PLUGIN", "/nowhere/Filigrane.so");
    testing::internal::CaptureStderr();
    EXPECT_EQ(host.load(*library.plugin(0)), kOfxStatFailed);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("filigrane: FILIGRANE_PLUGIN names"), std::string::npos);
    EXPECT_TRUE(strict::the_watch().messages.empty()); // there is no effect yet to tell it of
    set_variable("FILIGRANE_PLUGIN", "");
    EXPECT_EQ(host.load(*library.plugin(0)), kOfxStatOK);
    EXPECT_EQ(host.complaints(), std::vector<std::string>());
}

TEST(openfx_life, does_without_a_message_suite)
{
    session s;
    s.host.absent_suites = {"OfxMessageSuite"};
    EXPECT_EQ(s.host.load(s.plugin), kOfxStatOK);
    s.draw(200000, 1, {}, {}, kOfxStatFailed); // larger than any layer
    s.host.absent_suites.clear();
    EXPECT_EQ(s.host.load(s.plugin), kOfxStatOK);
    s.draw(200000, 1, {}, {}, kOfxStatFailed);
    ASSERT_EQ(strict::the_watch().messages.size(), 1u);
    EXPECT_NE(strict::the_watch().messages[0].find("200000"), std::string::npos);
}
#if !defined(_WIN32)
// Copied to where a host looks, the bundle brings the effect with it.
TEST(openfx_life, is_at_home_wherever_the_bundle_is_copied)
{
    const std::filesystem::path folder_of_binaries = std::filesystem::path(FILIGRANE_OFX_FILE).parent_path();
    std::string name = (std::filesystem::temp_directory_path() / "filigrane-ofx-XXXXXX").string();
    const std::filesystem::path home = mkdtemp(name.data());
    const std::filesystem::path bundle = home / "Filigrane.ofx.bundle";
    std::filesystem::copy(folder_of_binaries.parent_path().parent_path(), bundle,
                          std::filesystem::copy_options::recursive);
    {
        strict::host host;
        const strict::binary library(bundle / "Contents" / folder_of_binaries.filename() / "Filigrane.ofx");
        EXPECT_EQ(host.load(*library.plugin(0)), kOfxStatOK);
        std::ifstream maps("/proc/self/maps");
        const std::string mapped{std::istreambuf_iterator<char>(maps), {}};
        EXPECT_NE(mapped.find((bundle / "Contents" / folder_of_binaries.filename() / "Filigrane.so").string()),
                  std::string::npos);
    }
    EXPECT_TRUE(std::filesystem::exists(bundle / "Contents" / "Resources" / "presets" / "tartan.json"));
    std::filesystem::remove_all(home);
}
#endif
} // namespace
