#include "effect/shell/host_strcpy.hpp"
#include "tests/support/effect_fixture.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <stdexcept>

namespace
{
std::string about_text(effect_fixture& host)
{
    EXPECT_EQ(host.command(PF_Cmd_ABOUT), PF_Err_NONE);
    return host.out_data.return_msg;
}
} // namespace

TEST(plugin_entry, about_text_reaches_other_hosts_unchanged)
{
    effect_fixture host;
    const std::string text = about_text(host);
    EXPECT_EQ(text.substr(0, text.find('\r')), "Filigrane 1.4");
    EXPECT_EQ(text[text.find('\r') + 1], '\xA9');
    EXPECT_EQ(host.log, std::vector<std::string>{"strcpy " + text});
}

TEST(plugin_entry, about_text_spells_out_the_circled_c_for_one_host)
{
    effect_fixture host;
    const std::string plain = about_text(host);
    host.log.clear();
    host.in_data.appl_id = 0x4B657947; // 'KeyG'
    const std::string spelled = about_text(host);
    EXPECT_EQ(spelled.size(), plain.size() + 2);
    std::string expected = plain;
    expected.replace(expected.find('\xA9'), 1, "(C)");
    EXPECT_EQ(spelled, expected);
    EXPECT_TRUE(host.log.empty());
}

TEST(host_strcpy, pairs_two_bytes_with_letters_in_brackets)
{
    effect_fixture host;
    host.in_data.appl_id = 0x4B657947;
    char text[32];
    std::memset(text, 'x', sizeof text);
    Loom::Host::AE::strcpy(&host.in_data, text,
                           "a\xA9"
                           "b\xAA"
                           "c\xA8\xAE");
    EXPECT_STREQ(text, "a(C)b(R)c\xA8\xAE");
    EXPECT_EQ(text[12], 'x'); // nothing after the end
    Loom::Host::AE::strcpy(&host.in_data, text, "");
    EXPECT_EQ(text[0], '\0');
    EXPECT_EQ(text[1], '(');
}

TEST(host_strcpy, the_code_is_compared_whole)
{
    for (const A_AppID id : {0x4779654B, 0x4B657946, 0x46585443, 0})
    {
        effect_fixture host;
        host.in_data.appl_id = id;
        char text[8];
        Loom::Host::AE::strcpy(&host.in_data, text, "\xA9");
        EXPECT_STREQ(text, "\xA9");
        EXPECT_EQ(host.log.size(), 1u);
    }
}

TEST(plugin_entry, global_setup_answers_version_and_adds_its_flags)
{
    effect_fixture host;
    host.out_data.out_flags = 0x40000010;
    host.out_data.out_flags2 = 0x123;
    EXPECT_EQ(host.command(PF_Cmd_GLOBAL_SETUP), PF_Err_NONE);
    EXPECT_EQ(host.out_data.my_version, 0x99600u);
    EXPECT_EQ(host.out_data.out_flags, 0x40000056);
    EXPECT_EQ(host.out_data.out_flags2, 0x123);
    EXPECT_TRUE(host.log.empty());
}

TEST(plugin_entry, every_other_command_changes_nothing)
{
    for (PF_Cmd cmd = -2; cmd < 40; ++cmd)
    {
        if (cmd == PF_Cmd_ABOUT || cmd == PF_Cmd_GLOBAL_SETUP || cmd == PF_Cmd_PARAMS_SETUP ||
            cmd == PF_Cmd_RENDER)
            continue;
        effect_fixture host;
        std::memset(static_cast<void*>(&host.out_data), 0x5A, sizeof host.out_data);
        const PF_OutData before = host.out_data;
        EXPECT_EQ(host.command(cmd), PF_Err_NONE) << cmd;
        EXPECT_EQ(std::memcmp(&before, &host.out_data, sizeof before), 0) << cmd;
        EXPECT_TRUE(host.log.empty()) << cmd;
        // With nothing at hand either.
        EXPECT_EQ(PluginEntry(cmd, nullptr, nullptr, nullptr, nullptr, nullptr), PF_Err_NONE);
    }
}

// What each callback of a render and of the set-up may throw.
class plugin_entry_exceptions : public testing::TestWithParam<const char*>
{
protected:
    PF_Err run(effect_fixture& host)
    {
        host.set(31, 1); // lines with ends: check-outs
        host.set(9, 1);  // fills
        const std::string name = GetParam();
        if (name == "copy")
            host.set(27, 1);
        if (name == "iterate" || name == "sample")
            host.set(59, 1);
        host.in_data.current_time = 20;
        return host.command(name == "add_param" ? PF_Cmd_PARAMS_SETUP : PF_Cmd_RENDER);
    }
};

TEST_P(plugin_entry_exceptions, bad_alloc_is_out_of_memory)
{
    effect_fixture host;
    host.on_call = [](std::string_view name) -> PF_Err
    { return name == GetParam() ? throw std::bad_alloc() : PF_Err_NONE; };
    EXPECT_EQ(run(host), 4);
    EXPECT_STREQ(host.out_data.return_msg, "");
    EXPECT_EQ(host.out_data.out_flags, 0);
    EXPECT_EQ(host.worlds_alive, 0);
}

TEST_P(plugin_entry_exceptions, anything_else_is_an_internal_error)
{
    for (const bool standard : {true, false})
    {
        effect_fixture host;
        host.out_data.out_flags = 2;
        host.on_call = [standard](std::string_view name) -> PF_Err
        {
            if (name != GetParam())
                return PF_Err_NONE;
            if (standard)
                throw std::runtime_error("the host's own trouble");
            throw 42;
        };
        EXPECT_EQ(run(host), 512);
        EXPECT_STREQ(host.out_data.return_msg, "Unknown internal error");
        EXPECT_EQ(host.log.back(), "strcpy Unknown internal error");
        EXPECT_EQ(host.out_data.out_flags, 0x102);
        EXPECT_EQ(host.worlds_alive, 0);
    }
}

INSTANTIATE_TEST_SUITE_P(callbacks, plugin_entry_exceptions,
                         testing::Values("add_param", "new_handle", "lock_handle", "copy", "fill", "new_world",
                                         "transfer", "transform", "iterate", "sample", "checkout", "checkin"),
                         [](const auto& name) { return std::string(name.param); });
