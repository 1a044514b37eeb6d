#pragma once
// What must not happen to the test's own process: fewer rights, less room.

#include "temporary_folder.hpp"

#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace media_test
{
// The system's administrator may read and write everything: such a test goes on as nobody.
inline void as_anyone()
{
    if (geteuid() == 0 && seteuid(65534) != 0)
        _exit(2);
}

// Runs `action` in a process of its own, prepared by `prepare`, and answers what media::error said there.
template <class P, class A>
std::string error_in_child(P&& prepare, A&& action)
{
    int ends[2];
    if (pipe(ends) != 0)
        return "no pipe";
    const pid_t child = fork();
    if (child == 0)
    {
        prepare();
        const std::string told = error_of(action);
        const bool sent = ::write(ends[1], told.data(), told.size()) == static_cast<ssize_t>(told.size());
        _exit(sent ? 0 : 1);
    }
    close(ends[1]);
    std::string told;
    char buffer[512];
    for (ssize_t got = 0; (got = ::read(ends[0], buffer, sizeof buffer)) > 0;)
        told.append(buffer, static_cast<std::size_t>(got));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the child ended with status " << status;
    return told;
}
} // namespace media_test
