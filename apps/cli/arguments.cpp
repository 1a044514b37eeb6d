#include "arguments.hpp"

#include "usage_error.hpp"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <optional>
#include <string_view>

namespace cli
{
namespace
{
constexpr int largest_side = 30000;
constexpr double highest_rate = 1000.0;

template <class T>
std::optional<T> whole_number(std::string_view text, int base = 10)
{
    T value{};
    const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (failed != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::optional<double> decimal(std::string_view text)
{
    double value = 0.0;
    const auto [end, failed] =
        std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    if (failed != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

[[noreturn]] void wrong(const char* option, const std::string& text, const char* example)
{
    throw usage_error(std::string(option) + " \"" + text + "\": give " + example);
}

media::rational reduced(int num, int den)
{
    const int common = std::gcd(num, den);
    return {num / common, den / common};
}
} // namespace

picture_size parse_size(const std::string& text)
{
    const char* const example = "width x height in pixels up to 30000, as in 1920x1080";
    const std::size_t cross = text.find('x');
    if (cross == std::string::npos)
        wrong("--size", text, example);
    const auto width = whole_number<int>(std::string_view(text).substr(0, cross));
    const auto height = whole_number<int>(std::string_view(text).substr(cross + 1));
    if (!width || !height || *width < 1 || *height < 1 || *width > largest_side || *height > largest_side)
        wrong("--size", text, example);
    return {*width, *height};
}

media::rational parse_rate(const std::string& text)
{
    const char* const example = "frames per second up to 1000, as in 25, 29.97 or 30000/1001";
    const std::size_t slash = text.find('/');
    if (slash != std::string::npos)
    {
        const auto num = whole_number<int>(std::string_view(text).substr(0, slash));
        const auto den = whole_number<int>(std::string_view(text).substr(slash + 1));
        if (!num || !den || *num < 1 || *den < 1 || *num > highest_rate * *den)
            wrong("--fps", text, example);
        return reduced(*num, *den);
    }
    const auto value = decimal(text);
    if (!value || *value < 0.001 || *value > highest_rate)
        wrong("--fps", text, example);
    // 23.976, 23.98, 29.97, 59.94 ...: a whole rate slowed by 1000/1001.
    const int whole = static_cast<int>(std::lround(*value * 1001 / 1000));
    const bool has_decimals = text.find('.') != std::string::npos && *value != std::floor(*value);
    if (has_decimals && whole >= 24 && std::abs(whole * 1000.0 / 1001 - *value) < 0.0051)
        return reduced(whole * 1000, 1001);
    return reduced(static_cast<int>(std::lround(*value * 1000)), 1000);
}

frame_span parse_frames(const std::string& text)
{
    const char* const example = "a frame number up to 2147483646 or a range, as in 12 or 0-99";
    const std::size_t dash = text.find('-');
    const auto first = whole_number<std::int32_t>(std::string_view(text).substr(0, dash));
    const auto last =
        dash == std::string::npos ? first : whole_number<std::int32_t>(std::string_view(text).substr(dash + 1));
    if (!first || !last || *first < 0 || *last < *first || *last == INT32_MAX)
        wrong("--frames", text, example);
    return {*first, *last};
}

media::background parse_background(const std::string& text)
{
    if (text == "transparent")
        return {};
    if (text == "checker")
        return {media::background::pattern::checker};
    std::string digits = text.starts_with('#') ? text.substr(1) : "";
    if (digits.size() == 3)
        digits = {digits[0], digits[0], digits[1], digits[1], digits[2], digits[2]};
    const auto color = digits.size() == 6 ? whole_number<std::uint32_t>(digits, 16) : std::nullopt;
    if (!color)
        wrong("--background", text, "transparent, checker or a colour as in #20304a");
    return {media::background::pattern::color, static_cast<std::uint8_t>(*color >> 16),
            static_cast<std::uint8_t>(*color >> 8), static_cast<std::uint8_t>(*color)};
}

std::string rate_text(const media::rational& rate)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", static_cast<double>(rate.num) / rate.den);
    std::string shown = text;
    shown.erase(shown.find_last_not_of('0') + 1);
    if (shown.ends_with('.'))
        shown.pop_back();
    return shown;
}
} // namespace cli
