#pragma once
// What a person may have meant by a name that nothing has.

#include <string>
#include <string_view>
#include <vector>

namespace host
{
struct known_name
{
    std::string shown;                  // as a message calls it
    std::vector<std::string> spellings; // in any case; the nearest one counts
};

// 'did you mean "Rows" or "Row Height"? ', the nearest first and at most three; empty where none is near.
std::string did_you_mean(std::string_view asked, const std::vector<known_name>& known);
} // namespace host
