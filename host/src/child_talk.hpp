#pragma once
// What a child process says through a pipe, and how its parent listens to it until it ends, or for too long.

#include <chrono>
#include <string>
#include <sys/types.h>

namespace host::child_talk
{
// A message is a kind, its length in eight bytes of this machine, and its text.
constexpr char stage = 'S'; // what comes next; the last one counts
constexpr char answer = 'A';
constexpr char refusal = 'R';

void say(int descriptor, char kind, const std::string& text);

struct ending
{
    std::string stage; // the last one told
    char kind = '\0';  // of the last complete message that was no stage; zero where there was none
    std::string text;
    bool timed_out = false; // and killed
    int status = 0;         // as waitpid() gives it
};

// Reads until the child has ended; after `patience` kills it and its process group. The child is waited for in any
// case. A process that the child left behind with the pipe open is not.
ending listen(int descriptor, pid_t child, std::chrono::milliseconds patience);
} // namespace host::child_talk
