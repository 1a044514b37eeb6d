#pragma once
// What the media library throws: one line that names the file and, where there is one, the remedy.

#include <stdexcept>

namespace media
{
class error : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};
} // namespace media
