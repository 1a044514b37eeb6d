#include "host/plugin.hpp"

#include "scripted_effect.hpp"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace
{
using scripted::call;

std::string loading_error(const std::filesystem::path& file)
{
    try
    {
        const host::plugin effect(file);
    }
    catch (const host::error& failure)
    {
        return failure.what();
    }
    return "";
}

// The message of setting up the scripted effect.
std::string set_up_error(const scripted::script& on_command)
{
    const scripted::scripts use({}, on_command);
    try
    {
        const host::plugin effect(scripted::entry, "scripted");
    }
    catch (const host::error& failure)
    {
        return failure.what();
    }
    return "";
}

class files : public testing::Test
{
protected:
    files() { std::filesystem::create_directories(folder); }
    ~files() override { std::filesystem::remove_all(folder); }
    std::filesystem::path with_bytes(const char* name, const std::string& bytes) const
    {
        std::ofstream(folder / name, std::ios::binary) << bytes;
        return folder / name;
    }
    // This program's own first bytes, to be spoiled.
    static std::string own_header()
    {
        std::string bytes(4096, '\0');
        std::ifstream("/proc/self/exe", std::ios::binary).read(bytes.data(), 4096);
        return bytes;
    }

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() /
        ("plugin_test_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
};

TEST_F(files, that_are_not_there_or_folders_are_told)
{
    EXPECT_EQ(loading_error(folder / "none.so"),
              (folder / "none.so").string() + ": no such file; give the path of the effect's plug-in file");
    EXPECT_EQ(loading_error(folder), folder.string() + ": is a folder; give the path of the plug-in file in it");
}

TEST_F(files, of_another_kind_are_told)
{
    const auto text = with_bytes("text.so", "this is no code");
    const auto nothing = with_bytes("empty.so", "");
    const std::string remedy = ": is not a shared object; give a plug-in file built for this system";
    EXPECT_EQ(loading_error(text), text.string() + remedy);
    EXPECT_EQ(loading_error(nothing), nothing.string() + remedy);
}

TEST_F(files, for_another_architecture_are_told)
{
    std::string bytes = own_header();
    bytes[18] = static_cast<char>(bytes[18] ^ 0x7f);
    const auto other = with_bytes("other.so", bytes);
    EXPECT_EQ(loading_error(other),
              other.string() + ": is built for another processor architecture; give one built for this machine");
}

TEST_F(files, that_are_cut_off_are_not_loaded)
{
    const auto cut = with_bytes("cut.so", own_header().substr(0, 100));
    const std::string message = loading_error(cut);
    EXPECT_EQ(message, cut.string() + ": is cut off; copy or build the plug-in file again");
}

TEST(plugin, without_the_entry_point_is_told)
{
    EXPECT_EQ(loading_error(NO_EFFECT_FILE),
              NO_EFFECT_FILE ": has no entry point PluginEntry; give an effect plug-in file");
}

TEST(plugin, loads_from_its_file_and_renders)
{
    const host::plugin effect(std::filesystem::path(SMALLEST_EFFECT_FILE));
    EXPECT_EQ(effect.name(), SMALLEST_EFFECT_FILE);
    EXPECT_EQ(effect.params().size(), 1u);
    scripted::picture in(12, 9), out(12, 9);
    host::render_frame(effect, scripted::small_comp(), host::param_tracks(effect.params()), 0, in.const_view(),
                       out.view());
    EXPECT_TRUE(scripted::operator_equal(out.at(11, 8), {255, 10, 20, 30}));
}

TEST(plugin, loads_by_a_bare_file_name_from_the_working_folder)
{
    const std::filesystem::path file(SMALLEST_EFFECT_FILE);
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(file.parent_path());
    EXPECT_EQ(loading_error(file.filename()), "");
    std::filesystem::current_path(before);
}

TEST(plugin, sends_set_up_once_and_set_down_when_let_go)
{
    std::vector<PF_Cmd> commands;
    const scripted::scripts use({},
                                [&](const call& now)
                                {
                                    commands.push_back(now.command);
                                    return PF_Err_NONE;
                                });
    {
        const host::plugin effect(scripted::entry, "scripted");
        EXPECT_EQ(commands, (std::vector<PF_Cmd>{PF_Cmd_GLOBAL_SETUP, PF_Cmd_PARAMS_SETUP}));
        const host::param_tracks values(effect.params());
        scripted::picture in(12, 9), out(12, 9);
        for (int frame = 0; frame < 2; ++frame)
            host::render_frame(effect, scripted::small_comp(), values, frame, in.const_view(), out.view());
    }
    // A render is not told to the script: it stands between frame set-up and set-down.
    const std::vector<PF_Cmd> frame{PF_Cmd_SEQUENCE_SETUP, PF_Cmd_FRAME_SETUP, PF_Cmd_FRAME_SETDOWN,
                                    PF_Cmd_SEQUENCE_SETDOWN};
    std::vector<PF_Cmd> expected{PF_Cmd_GLOBAL_SETUP, PF_Cmd_PARAMS_SETUP};
    expected.insert(expected.end(), frame.begin(), frame.end());
    expected.insert(expected.end(), frame.begin(), frame.end());
    expected.push_back(PF_Cmd_GLOBAL_SETDOWN);
    EXPECT_EQ(commands, expected);
}

TEST(plugin, version_is_read_from_the_word)
{
    const scripted::scripts use({},
                                [](const call& now)
                                {
                                    now.out->my_version = PF_VERSION(1, 3, 2, PF_Stage_RELEASE, 5);
                                    now.out->out_flags = 0x46;
                                    now.out->out_flags2 = 8;
                                    return PF_Err_NONE;
                                });
    const host::plugin effect(scripted::entry, "scripted");
    const auto& version = effect.version();
    EXPECT_EQ(version.word, 0x99605u);
    EXPECT_EQ(version.major, 1);
    EXPECT_EQ(version.minor, 3);
    EXPECT_EQ(version.bugfix, 2);
    EXPECT_EQ(version.stage, 3);
    EXPECT_EQ(version.build, 5);
    EXPECT_EQ(version.out_flags, 0x46);
    EXPECT_EQ(version.out_flags2, 8);
}

TEST(plugin, about_is_bytes_and_text)
{
    const scripted::scripts use({},
                                [](const call& now)
                                {
                                    if (now.command == PF_Cmd_ABOUT)
                                        now.in->utils->ansi.strcpy(now.out->return_msg, "One\rTwo\r\n\xA9 Three");
                                    return PF_Err_NONE;
                                });
    const host::plugin effect(scripted::entry, "scripted");
    EXPECT_EQ(effect.about(), "One\rTwo\r\n\xA9 Three");
    EXPECT_EQ(effect.about_utf8(), "One\nTwo\n\xC2\xA9 Three");
}

TEST(plugin, refused_set_up_is_told_with_code_and_message)
{
    EXPECT_EQ(set_up_error(
                  [](const call& now)
                  {
                      std::strcpy(now.out->return_msg, "No licence\rto draw");
                      return now.command == PF_Cmd_GLOBAL_SETUP ? 4 : 0;
                  }),
              "scripted: the effect refused its global set-up with error 4 (out of memory): No licence to draw");
    EXPECT_EQ(set_up_error([](const call& now) { return now.command == PF_Cmd_PARAMS_SETUP ? 77 : 0; }),
              "scripted: the effect refused its parameter set-up with error 77");
    EXPECT_EQ(set_up_error(
                  [](const call& now) -> PF_Err
                  {
                      if (now.command == PF_Cmd_GLOBAL_SETUP)
                          throw 1;
                      return 0;
                  }),
              "scripted: an exception left the effect's entry point during command 1");
}

TEST(plugin, refused_parameter_set_up_is_followed_by_global_set_down)
{
    std::vector<PF_Cmd> commands;
    set_up_error(
        [&](const call& now)
        {
            commands.push_back(now.command);
            return now.command == PF_Cmd_PARAMS_SETUP ? 77 : 0;
        });
    EXPECT_EQ(commands, (std::vector<PF_Cmd>{PF_Cmd_GLOBAL_SETUP, PF_Cmd_PARAMS_SETUP, PF_Cmd_GLOBAL_SETDOWN}));
}

TEST(plugin, number_of_parameters_must_be_what_was_added)
{
    EXPECT_EQ(set_up_error(
                  [](const call& now)
                  {
                      if (now.command == PF_Cmd_PARAMS_SETUP)
                          now.out->num_params = 9;
                      return 0;
                  }),
              "scripted: the effect added 0 parameters but says it has 9 with the input layer; it must say 1");
}

TEST(plugin, add_param_takes_the_end_and_nothing_else)
{
    set_up_error(
        [](const call& now)
        {
            PF_ParamDef record{};
            record.param_type = PF_Param_SLIDER;
            const auto add = now.in->inter.add_param;
            if (now.command == PF_Cmd_GLOBAL_SETUP)
            {
                EXPECT_EQ(add(now.ref(), -1, &record), PF_Err_INVALID_CALLBACK);
            }
            if (now.command == PF_Cmd_PARAMS_SETUP)
            {
                EXPECT_EQ(add(now.ref(), 1, &record), PF_Err_NONE);
                EXPECT_EQ(add(now.ref(), 1, &record), PF_Err_INVALID_INDEX);
                EXPECT_EQ(add(now.ref(), 3, &record), PF_Err_INVALID_INDEX);
                EXPECT_EQ(add(now.ref(), -1, nullptr), PF_Err_BAD_CALLBACK_PARAM);
            }
            return 0;
        });
}

TEST(plugin, global_data_lives_from_set_up_to_set_down_and_is_seen_by_every_frame)
{
    int seen = 0;
    const scripted::scripts use(
        [&](const call& now)
        {
            auto* number = static_cast<int*>(now.utils().host_lock_handle(now.in->global_data));
            seen += *number;
            now.utils().host_unlock_handle(now.in->global_data);
            return PF_Err_NONE;
        },
        [](const call& now)
        {
            if (now.command == PF_Cmd_GLOBAL_SETUP)
            {
                now.out->global_data = now.utils().host_new_handle(sizeof(int));
                *static_cast<int*>(now.utils().host_lock_handle(now.out->global_data)) = 42;
                now.utils().host_unlock_handle(now.out->global_data);
            }
            if (now.command == PF_Cmd_GLOBAL_SETDOWN)
            {
                EXPECT_EQ(now.utils().host_get_handle_size(now.in->global_data), sizeof(int));
                now.utils().host_dispose_handle(now.in->global_data);
            }
            return PF_Err_NONE;
        });
    const host::plugin effect(scripted::entry, "scripted");
    const host::param_tracks values(effect.params());
    scripted::picture in(12, 9), out(12, 9);
    host::render_options checked;
    checked.checked = true;
    for (int frame = 0; frame < 3; ++frame)
        host::render_frame(effect, scripted::small_comp(), values, frame, in.const_view(), out.view(), checked);
    EXPECT_EQ(seen, 3 * 42);
}

TEST(plugin, beside_binary_is_in_this_programs_folder)
{
    const auto file = host::plugin_beside_binary();
    EXPECT_EQ(file.filename(), "Filigrane.so");
    EXPECT_EQ(file.parent_path(), std::filesystem::read_symlink("/proc/self/exe").parent_path());
}
} // namespace
