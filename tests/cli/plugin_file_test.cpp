// Given plug-in files that go wrong take no command down. What a probe tells is the host library's tests'
// business.
#include "run_tool.hpp"

using namespace cli_test;
using namespace testing;
using plugin_file = tool_test;

namespace
{
outcome with_fault(const std::string& fault, const std::vector<std::string>& arguments)
{
    return run_tool(arguments,
                    [&]
                    {
                        setenv("FILIGRANE_TEST_FAULT", fault.c_str(), 1);
                        setenv("FILIGRANE_PLUGIN_TIMEOUT", fault.ends_with("hang") ? "0.3" : "60", 1);
                    });
}
} // namespace

TEST_F(plugin_file, that_goes_wrong_is_told_by_every_command)
{
    const std::vector<std::vector<std::string>> lines = {
        {"inspect", FAULTY_EFFECT},
        {"about", "--plugin", FAULTY_EFFECT},
        {"params", "--plugin", FAULTY_EFFECT},
        {"params", "--json", "--plugin", FAULTY_EFFECT},
        {"render", "-o", path("out.png"), "--plugin", FAULTY_EFFECT},
    };
    for (const std::vector<std::string>& line : lines)
        for (const auto& [fault, told] :
             {std::pair{"load abort", "crashed while it was loaded (SIGABRT)"},
              {"global crash", "crashed in its global set-up (SIGSEGV)"},
              {"params exit", "ended the process in its parameter set-up (exit status 3)"},
              {"params hang", "did not answer within 0.3 s, in its parameter set-up"}})
        {
            SCOPED_TRACE(PrintToString(line));
            const outcome result = with_fault(fault, line);
            EXPECT_EQ(result.status, 1);
            EXPECT_THAT(result.err, error_line(std::string("filigrane: ") + FAULTY_EFFECT + ": " + told));
            EXPECT_EQ(result.out, "");
        }
    EXPECT_TRUE(names().empty());
}

TEST_F(plugin_file, inspect_runs_none_of_its_code_in_its_own_process)
{
    const outcome result = with_fault("unload abort", {"inspect", FAULTY_EFFECT});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, error_line("crashed while it was let go"));
    const outcome talks = with_fault("global print", {"inspect", FAULTY_EFFECT});
    EXPECT_EQ(talks.status, 0);
    EXPECT_THAT(talks.out, Not(HasSubstr("the effect talks")));
    EXPECT_THAT(talks.out, HasSubstr("Topic"));
}

TEST_F(plugin_file, a_time_limit_that_is_none_is_told)
{
    const outcome result =
        run_tool({"inspect", FAULTY_EFFECT}, [] { setenv("FILIGRANE_PLUGIN_TIMEOUT", "soon", 1); });
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, error_line("FILIGRANE_PLUGIN_TIMEOUT=\"soon\": give seconds"));
}
