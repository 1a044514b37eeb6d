#pragma once
// A command line that makes no sense, whatever the files may hold: exit status 2.

#include <stdexcept>

namespace cli
{
class usage_error : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

enum exit_status
{
    exit_done = 0,
    exit_failed = 1,
    exit_usage = 2, // and 128 + the signal's number for a render that was stopped
};
} // namespace cli
