// Sizes, rates, ranges of frames and backgrounds as they are typed.

#include "apps/cli/arguments.hpp"
#include "apps/cli/usage_error.hpp"
#include "fuzz/byte_reader.hpp"
#include "fuzz/require.hpp"

#include <limits>
#include <numeric>

namespace
{
void check_size(const std::string& text)
{
    const cli::picture_size size = cli::parse_size(text);
    fuzz::require(size.width >= 1 && size.width <= 30000 && size.height >= 1 && size.height <= 30000,
                  "a size is within its limits");
}

void check_rate(const std::string& text)
{
    const media::rational rate = cli::parse_rate(text);
    fuzz::require(rate.num > 0 && rate.den > 0 && rate.num / rate.den <= 1000, "a rate is within its limits");
    fuzz::require(std::gcd(rate.num, rate.den) == 1, "a rate is in lowest terms");
    fuzz::require(!cli::rate_text(rate).empty(), "a rate can be shown");
}

void check_frames(const std::string& text)
{
    const cli::frame_span span = cli::parse_frames(text);
    fuzz::require(span.first >= 0 && span.last >= span.first &&
                      span.last < std::numeric_limits<std::int32_t>::max(),
                  "frames are counted up from 0");
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::byte_reader bytes(data, size);
    const auto which = bytes.byte() % 4;
    const std::string text(bytes.rest());
    try
    {
        if (which == 0)
            check_size(text);
        else if (which == 1)
            check_rate(text);
        else if (which == 2)
            check_frames(text);
        else
            cli::parse_background(text);
    }
    catch (const cli::usage_error& wrong)
    {
        fuzz::require(*wrong.what() != '\0', "a message says something");
    }
    return 0;
}
