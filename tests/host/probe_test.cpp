// Plug-in files that go wrong before they draw, met in a process of their own.
#include "host/probe.hpp"

#include "host/error.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace
{
using namespace std::chrono_literals;

constexpr const char* file = FAULTY_EFFECT_FILE;
const std::string remedy = "; give a plug-in file that works on this system";

// What a probe says about a file; `fault` is for the faulty effect to read.
std::string told(const std::string& fault, std::chrono::milliseconds patience = 60s,
                 const std::filesystem::path& probed = file)
{
    setenv("FILIGRANE_TEST_FAULT", fault.c_str(), 1);
    try
    {
        host::ask_in_child(probed, patience, [](const host::plugin& effect) { return effect.about(); });
    }
    catch (const host::error& failure)
    {
        unsetenv("FILIGRANE_TEST_FAULT");
        return failure.what();
    }
    unsetenv("FILIGRANE_TEST_FAULT");
    return "";
}

std::string crashed(const std::string& where, const char* signal)
{
    return std::string(file) + ": crashed " + where + " (" + signal + ")" + remedy;
}

TEST(probe, answers_what_was_asked)
{
    const std::string answer = host::ask_in_child(
        file, 60s, [](const host::plugin& effect) { return effect.name() + std::string(200000, 'x'); });
    EXPECT_EQ(answer, file + std::string(200000, 'x'));
    EXPECT_EQ(host::ask_in_child(file, 60s, [](const host::plugin&) { return std::string(); }), "");
    EXPECT_NO_THROW(host::probe_plugin(file, 60s));
}

TEST(probe, tells_a_crash_and_where_it_was)
{
    EXPECT_EQ(told("load crash"), crashed("while it was loaded", "SIGSEGV"));
    EXPECT_EQ(told("load abort"), crashed("while it was loaded", "SIGABRT"));
    EXPECT_EQ(told("global crash"), crashed("in its global set-up", "SIGSEGV"));
    EXPECT_EQ(told("params abort"), crashed("in its parameter set-up", "SIGABRT"));
    EXPECT_EQ(told("about crash"), crashed("while it was asked about itself", "SIGSEGV"));
    EXPECT_EQ(told("set-down crash"), crashed("in its global set-down", "SIGSEGV"));
    EXPECT_EQ(told("unload abort"), crashed("while it was let go", "SIGABRT"));
}

TEST(probe, tells_an_end_of_the_process)
{
    for (const auto& [step, where] :
         {std::pair{"load", "while it was loaded"}, {"global", "in its global set-up"}})
    {
        EXPECT_EQ(told(std::string(step) + " exit"),
                  std::string(file) + ": ended the process " + where + " (exit status 3)" + remedy);
    }
}

TEST(probe, gives_up_on_what_never_answers)
{
    const std::string more_time = remedy + ", or more time: FILIGRANE_PLUGIN_TIMEOUT=60";
    for (const auto& [step, where] :
         {std::pair{"load", "while it was loaded"}, {"params", "in its parameter set-up"}})
    {
        EXPECT_EQ(told(std::string(step) + " hang", 300ms),
                  std::string(file) + ": did not answer within 0.3 s, " + where + more_time);
    }
    EXPECT_EQ(told("params endless", 300ms),
              std::string(file) + ": did not answer within 0.3 s, in its parameter set-up" + more_time);
}

TEST(probe, does_not_wait_for_what_the_effect_started)
{
    // The process that is left keeps the pipe open for longer than this test may take.
    EXPECT_EQ(told("global leave"),
              std::string(file) + ": ended the process in its global set-up (exit status 4)" + remedy);
}

TEST(probe, parameters_without_end_are_refused)
{
    EXPECT_EQ(told("params endless until refused"),
              std::string(file) + ": the effect refused its parameter set-up with error 4 (out of memory)");
}

TEST(probe, exceptions_of_the_effect_and_of_the_question_arrive)
{
    EXPECT_EQ(told("global throw"),
              std::string(file) + ": an exception left the effect's entry point during command 1");
    EXPECT_THROW(host::ask_in_child(
                     file, 60s, [](const host::plugin&) -> std::string { throw host::error("asked too much"); }),
                 host::error);
}

TEST(probe, files_that_are_no_effect_are_told_as_when_loaded_here)
{
    const std::filesystem::path folder = testing::TempDir() + "filigrane_probe";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "text.so") << "no code";
    // The header of a 32-bit ARM file.
    std::string header(64, '\0');
    header.replace(0, 7,
                   "\x7f"
                   "ELF\x01\x01\x01");
    header[16] = 3;
    header[18] = 40;
    std::ofstream(folder / "arm.so", std::ios::binary) << header;
    using testing::HasSubstr;
    EXPECT_THAT(told("", 60s, folder / "none.so"), HasSubstr("none.so: no such file"));
    EXPECT_THAT(told("", 60s, folder), HasSubstr("is a folder"));
    EXPECT_THAT(told("", 60s, folder / "text.so"), HasSubstr("text.so: is not a shared object"));
    EXPECT_THAT(told("", 60s, folder / "arm.so"), HasSubstr("arm.so: is built for another processor"));
    EXPECT_THAT(told("", 60s, NO_EFFECT_FILE), HasSubstr("has no entry point PluginEntry"));
    std::filesystem::remove_all(folder);
}

TEST(probe, shows_nothing_of_what_the_effect_prints)
{
    testing::internal::CaptureStdout();
    std::printf("ours");
    EXPECT_EQ(told("global print"), "");
    EXPECT_EQ(told("global exit"),
              std::string(file) + ": ended the process in its global set-up (exit status 3)" + remedy);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "ours");
}

TEST(probe, patience_is_ten_seconds_or_what_the_environment_says)
{
    unsetenv("FILIGRANE_PLUGIN_TIMEOUT");
    EXPECT_EQ(host::plugin_patience(), 10s);
    setenv("FILIGRANE_PLUGIN_TIMEOUT", "", 1);
    EXPECT_EQ(host::plugin_patience(), 10s);
    setenv("FILIGRANE_PLUGIN_TIMEOUT", "0.25", 1);
    EXPECT_EQ(host::plugin_patience(), 250ms);
    for (const char* wrong : {"ten", "0", "-1", "nan", "1e9", "5s"})
    {
        setenv("FILIGRANE_PLUGIN_TIMEOUT", wrong, 1);
        EXPECT_THROW(host::plugin_patience(), host::error) << wrong;
    }
    unsetenv("FILIGRANE_PLUGIN_TIMEOUT");
}
} // namespace
