#pragma once
// What must hold for every input. A break ends the fuzzer, which then keeps the input.

#include <cstdio>
#include <cstdlib>
#include <string>

namespace fuzz
{
inline void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

// An error message is one line with something in it.
inline void require_one_line(const std::string& message)
{
    require(!message.empty(), "a message says something");
    for (const char c : message)
        require(static_cast<unsigned char>(c) >= 0x20U && c != 0x7F,
                "a message is one line without control bytes");
}
} // namespace fuzz
