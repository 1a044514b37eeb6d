#include "run_tool.hpp"

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace cli_test
{
namespace
{
// An unnamed file to take a stream's text: no pipe that could fill up.
int scratch_file()
{
    std::string name = (std::filesystem::temp_directory_path() / "filigrane-out-XXXXXX").string();
    const int descriptor = mkstemp(name.data());
    unlink(name.c_str());
    return descriptor;
}

std::string all_of(int descriptor)
{
    std::string text;
    char buffer[4096];
    lseek(descriptor, 0, SEEK_SET);
    for (ssize_t got = 0; (got = ::read(descriptor, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(got));
    close(descriptor);
    return text;
}
} // namespace

outcome run_tool(const std::vector<std::string>& arguments, const std::function<void()>& prepare)
{
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(TOOL));
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const int out = scratch_file();
    const int err = scratch_file();
    const pid_t child = fork();
    if (child == 0)
    {
        dup2(out, STDOUT_FILENO);
        dup2(err, STDERR_FILENO);
        // What runs the tests may ignore them, and what is ignored stays so in the tool.
        for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
            std::signal(number, SIG_DFL);
        if (prepare)
            prepare();
        execv(TOOL, argv.data());
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    outcome result;
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
    result.out = all_of(out);
    result.err = all_of(err);
    return result;
}

testing::Matcher<const std::string&> error_line(const std::string& part)
{
    return testing::AllOf(
        testing::StartsWith("filigrane: "), testing::HasSubstr(part), testing::EndsWith("\n"),
        testing::ResultOf([](const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }, 1));
}
} // namespace cli_test
