// Names and values of parameters as they are typed: understood, or refused with one line; what is understood reads
// back from its own text.

#include "fuzz/byte_reader.hpp"
#include "fuzz/effect_params.hpp"
#include "fuzz/require.hpp"
#include "host/error.hpp"
#include "host/param_text.hpp"
#include "value_text.hpp" // the host library's own

#include <cstring>

namespace
{
bool same(const host::param_value& a, const host::param_value& b)
{
    return a.x == b.x && a.y == b.y && a.percent == b.percent &&
           std::memcmp(&a.color, &b.color, sizeof a.color) == 0;
}

void check_value(const host::param_info& info, std::string_view text)
{
    try
    {
        const host::param_value value = host::parse_value(info, text);
        fuzz::require(info.has_value(), "only a parameter with a value takes one");
        const std::string shown = host::format_value(info, value);
        fuzz::require(same(value, host::parse_value(info, shown)), "a value reads back from its text");
        fuzz::require(host::format_value(info, host::parse_value(info, shown)) == shown, "its text stays");
    }
    catch (const host::error& failure)
    {
        fuzz::require_one_line(failure.what());
    }
}

void check_name(std::string_view text)
{
    try
    {
        const host::param_info& info = host::find_param(fuzz::effect_params(), text);
        fuzz::require(info.has_value(), "a parameter that is found has a value");
        fuzz::require(&info == &host::find_param(fuzz::effect_params(), host::kebab_name(info)),
                      "it is found by its key as well");
    }
    catch (const host::error& failure)
    {
        fuzz::require_one_line(failure.what());
    }
}

void check_numbers(std::string_view text)
{
    if (const auto number = host::parse_number(text))
    {
        fuzz::require(host::parse_number(host::number_text(*number)) == number, "a number reads back");
        fuzz::require(host::parse_hundredths(host::hundredfold_text(*number)) == number, "so does its percentage");
    }
    fuzz::require(host::one_line(text, 80).size() <= 83, "a shortened text is short");
    fuzz::require(host::trimmed(host::trimmed(text)) == host::trimmed(text), "trimming trims all");
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::byte_reader bytes(data, size);
    const auto& params = fuzz::effect_params();
    const std::uint8_t first = bytes.byte();
    const std::string_view text = bytes.rest();
    // Suggestions for unknown names cost more than all the rest.
    if (first >= 128)
    {
        check_name(text);
        return 0;
    }
    check_value(params[first % params.size()], text);
    check_numbers(text);
    return 0;
}
