#include "value_text.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace host
{
std::string lower_case(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower)
    {
        if (c >= 'A' && c <= 'Z')
        {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return lower;
}

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
    {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string one_line(std::string_view text, std::size_t longest)
{
    std::size_t shown = std::min(text.size(), longest);
    // A cut never splits a UTF-8 character: bytes 10xxxxxx continue one.
    while (shown < text.size() && shown > 0 && (static_cast<unsigned char>(text[shown]) & 0xC0U) == 0x80U)
    {
        --shown;
    }
    std::string line;
    for (const char c : text.substr(0, shown))
    {
        const auto byte = static_cast<unsigned char>(c);
        line += byte < 0x20U || byte == 0x7FU ? '?' : c;
    }
    return line + (shown < text.size() ? "..." : "");
}

std::string in_quotes(std::string_view text)
{
    return "\"" + one_line(text, 80) + "\"";
}

std::optional<double> parse_number(std::string_view text)
{
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
    {
        text.remove_prefix(1);
    }
    double number = 0.0;
    const char* const end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, number);
    if (failure != std::errc() || stop != end || !std::isfinite(number))
    {
        return std::nullopt;
    }
    return number;
}

std::optional<double> parse_hundredths(std::string_view text)
{
    // The exponent is moved in the text: dividing the number read would round a second time.
    if (text.empty() || text.find_first_not_of("+-.0123456789") != std::string_view::npos)
    {
        return std::nullopt;
    }
    return parse_number(std::string(text) + "e-2");
}

std::string number_text(double number)
{
    std::array<char, 32> buffer;
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    return {buffer.data(), written.ptr};
}

std::string hundredfold_text(double number)
{
    // The smallest double has 324 zeros after the point before its digits begin.
    std::array<char, 512> buffer;
    const auto written =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::fabs(number), std::chars_format::fixed);
    std::string digits(buffer.data(), written.ptr);

    // Move the point two places to the right.
    const auto point = std::min(digits.find('.'), digits.size());
    std::string fraction = point < digits.size() ? digits.substr(point + 1) : "";
    fraction.append(fraction.size() < 2 ? 2 - fraction.size() : 0, '0');
    std::string whole = digits.substr(0, point) + fraction.substr(0, 2);
    whole.erase(0, std::min(whole.find_first_not_of('0'), whole.size() - 1));
    fraction.erase(0, 2);
    return (std::signbit(number) ? "-" : "") + whole + (fraction.empty() ? "" : "." + fraction);
}

std::string one_of(const std::vector<std::string>& words)
{
    std::string list;
    for (std::size_t i = 0; i < words.size(); ++i)
    {
        if (i > 0)
        {
            list += i + 1 == words.size() ? " or " : ", ";
        }
        list += words[i];
    }
    return list;
}
} // namespace host
