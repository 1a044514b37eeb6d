#pragma once
// What the host library throws: one line that names the thing that failed and, where there is one, the remedy.

#include <stdexcept>

namespace host
{
class error : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};
} // namespace host
