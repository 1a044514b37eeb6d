#include "host/probe.hpp"

#include "child_talk.hpp"
#include "host/error.hpp"
#include "text.hpp"
#include "value_text.hpp"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <new>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace host
{
namespace
{
constexpr const char* remedy = "; give a plug-in file that works on this system";

std::string signal_name(int number)
{
    static constexpr std::pair<int, const char*> names[] = {
        {SIGSEGV, "SIGSEGV"}, {SIGBUS, "SIGBUS"},   {SIGFPE, "SIGFPE"},   {SIGILL, "SIGILL"},
        {SIGABRT, "SIGABRT"}, {SIGTRAP, "SIGTRAP"}, {SIGKILL, "SIGKILL"}, {SIGTERM, "SIGTERM"},
        {SIGALRM, "SIGALRM"}, {SIGSYS, "SIGSYS"},
    };
    for (const auto& [known, name] : names)
    {
        if (known == number)
        {
            return name;
        }
    }
    return text_line("signal ", number);
}

// ---- in the child
// -----------------------------------------------------------------------------------------------

// Out of the way of this process's terminal, group, handlers and core files.
void set_apart(pid_t parent)
{
    setpgid(0, 0);
#ifdef __linux__
    prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    if (getppid() != parent)
    {
        _exit(1);
    }
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    // Whoever has handlers of crashes has them for crashes of its own.
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGTERM, SIGALRM})
    {
        (void)std::signal(number, SIG_DFL);
    }
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    {
        dup2(nowhere, stream);
    }
}

[[noreturn]] void answer_and_end(const std::filesystem::path& file, int to_parent,
                                 const std::function<std::string(const plugin& effect)>& question)
{
    const auto tell_stage = [to_parent](const char* stage)
    { child_talk::say(to_parent, child_talk::stage, stage); };
    std::string text;
    char kind = child_talk::answer;
    try
    {
        // Let go before the answer counts: an effect can crash there as well.
        const plugin effect(file, tell_stage);
        text = question(effect);
    }
    catch (const std::exception& failure)
    {
        kind = child_talk::refusal;
        text = failure.what();
    }
    catch (...)
    {
        kind = child_talk::refusal;
        text = text_line(file.string(), ": an exception of an unknown kind left the plug-in file", remedy);
    }
    child_talk::say(to_parent, kind, text);
    _exit(0);
}

// ---- in the parent
// ----------------------------------------------------------------------------------------------

std::string told_by(const child_talk::ending& end, const std::filesystem::path& file,
                    std::chrono::milliseconds patience)
{
    const std::string name = file.string();
    const std::string where = end.stage.empty() ? "before it was loaded" : end.stage;
    if (end.timed_out)
    {
        throw error(text_line(name, ": did not answer within ",
                              number_text(std::chrono::duration<double>(patience).count()), " s, ", where, remedy,
                              ", or more time: FILIGRANE_PLUGIN_TIMEOUT=60"));
    }
    if (WIFSIGNALED(end.status))
    {
        throw error(text_line(name, ": crashed ", where, " (", signal_name(WTERMSIG(end.status)), ")", remedy));
    }
    if (end.kind == child_talk::refusal)
    {
        throw error(end.text);
    }
    if (end.kind != child_talk::answer)
    {
        throw error(text_line(name, ": ended the process ", where, " (exit status ", WEXITSTATUS(end.status), ")",
                              remedy));
    }
    return end.text;
}
} // namespace

std::chrono::milliseconds plugin_patience()
{
    const char* const given = std::getenv("FILIGRANE_PLUGIN_TIMEOUT");
    if (given == nullptr || *given == '\0')
    {
        return std::chrono::seconds(10);
    }
    constexpr double most = 86400.0;
    const auto seconds = parse_number(trimmed(given));
    if (!seconds || *seconds < 0.001 || *seconds > most)
    {
        throw error("FILIGRANE_PLUGIN_TIMEOUT=" + in_quotes(given) +
                    ": give seconds from 0.001 to 86400, as in 60");
    }
    return std::chrono::milliseconds(static_cast<long>(*seconds * 1000.0));
}

std::string ask_in_child(const std::filesystem::path& file, std::chrono::milliseconds patience,
                         const std::function<std::string(const plugin& effect)>& question)
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
    {
        throw error(text_line(file.string(), ": cannot be tried (no pipe: ", std::strerror(errno), ")"));
    }
    // What waits to be written would be written by both.
    std::cout.flush();
    (void)std::fflush(nullptr);
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child == 0)
    {
        close(ends[0]);
        set_apart(parent);
        answer_and_end(file, ends[1], question);
    }
    const int failure = errno;
    close(ends[1]);
    if (child < 0)
    {
        close(ends[0]);
        throw error(text_line(file.string(), ": cannot be tried (no process: ", std::strerror(failure), ")"));
    }
    const child_talk::ending end = child_talk::listen(ends[0], child, patience);
    close(ends[0]);
    return told_by(end, file, patience);
}

void probe_plugin(const std::filesystem::path& file, std::chrono::milliseconds patience)
{
    ask_in_child(file, patience, [](const plugin&) { return std::string(); });
}
} // namespace host
