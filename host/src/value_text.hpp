#pragma once
// Small text helpers for parameters and presets: numbers without a locale, and text quoted for one-line messages.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host
{
// ASCII letters in lower case; every other byte as it is.
std::string lower_case(std::string_view text);

// Without spaces and tabs at either end.
std::string_view trimmed(std::string_view text);

// On one line and of bounded length: control bytes become '?', a text past `longest` bytes is cut with "...".
std::string one_line(std::string_view text, std::size_t longest);

// A short one_line() in double quotes, for messages.
std::string in_quotes(std::string_view text);

// A finite decimal number that fills `text` whole ("12", "-0.5", "+3", "1e3"); nothing for anything else.
std::optional<double> parse_number(std::string_view text);

// The number in `text` divided by 100, rounded once; no exponent is read.
std::optional<double> parse_hundredths(std::string_view text);

// The shortest text that reads back to the same number, and the same of the number times 100.
std::string number_text(double number);
std::string hundredfold_text(double number);

// "a", "a or b", "a, b or c".
std::string one_of(const std::vector<std::string>& words);
} // namespace host
