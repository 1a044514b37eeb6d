#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace pictures
{
// A hash of each function of the host's maths, over thousands of arguments of all sizes: which function it is
// where pictures differ.
std::vector<std::pair<std::string, std::uint64_t>> maths_hashes();
} // namespace pictures
