#include "adapters/common/own_file.hpp"
#include "adapters/common/param_hints.hpp"
#include "adapters/common/places.hpp"

#include "adapters/common/effect_loan.hpp"
#include "adapters/common/param_names.hpp"
#include "host/error.hpp"

#include <cstdlib>
#include <gtest/gtest.h>
#include <set>

TEST(own_file, is_this_program)
{
    EXPECT_EQ(adapter::own_file().filename(), "adapter_common_test");
    EXPECT_EQ(adapter::file_name_of(reinterpret_cast<const void*>(&adapter::own_file)), "adapter_common_test");
    int on_the_stack = 0;
    EXPECT_EQ(adapter::file_name_of(&on_the_stack), "");
}

TEST(places, finds_the_plugin_beside)
{
    EXPECT_EQ(adapter::plugin_file(), adapter::own_file().parent_path() / "Filigrane.so");
}

TEST(places, takes_the_plugin_that_is_named)
{
    setenv("FILIGRANE_PLUGIN", PLUGIN, 1);
    EXPECT_EQ(adapter::plugin_file(), PLUGIN);
    setenv("FILIGRANE_PLUGIN", "/nowhere/Filigrane.so", 1);
    EXPECT_THROW(adapter::plugin_file(), host::error);
    unsetenv("FILIGRANE_PLUGIN");
}

TEST(places, has_the_looks_that_ship)
{
    setenv("FILIGRANE_PRESETS", "/usr", 1);
    const auto folders = adapter::look_folders(PLUGIN);
    unsetenv("FILIGRANE_PRESETS");
    ASSERT_FALSE(folders.empty());
    EXPECT_EQ(folders.front(), "/usr");
    EXPECT_TRUE(std::filesystem::exists(folders.back() / "neon-ripples.json"));
}

TEST(effect_loan, is_one_effect_while_somebody_has_it)
{
    const auto first = adapter::borrow_effect();
    EXPECT_EQ(adapter::borrow_effect(), first);
    EXPECT_EQ(first->plugin.params().size(), 64u);
}

TEST(param_hint, explains_every_parameter)
{
    const auto effect = adapter::borrow_effect();
    for (const host::param_info& info : effect->plugin.params())
    {
        const std::string_view hint = adapter::param_hint(info.label);
        EXPECT_TRUE(!info.has_value() || hint.size() > 20) << info.label;
    }
    EXPECT_STREQ(adapter::param_hint("no such label"), "");
}

TEST(script_name, is_an_identifier_of_its_own)
{
    const auto effect = adapter::borrow_effect();
    std::set<std::string> names;
    for (const host::param_info& info : effect->plugin.params())
        if (info.has_value())
        {
            const std::string name = adapter::script_name(info);
            EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_"), std::string::npos) << name;
            EXPECT_TRUE(names.insert(name).second) << name;
        }
    EXPECT_TRUE(names.contains("normal_line_width"));
}
