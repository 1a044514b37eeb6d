#include "adapters/common/frame_rate.hpp"

#include <charconv>
#include <cmath>
#include <numeric>

namespace adapter
{
namespace
{
constexpr double slowest = 0.001;
constexpr double fastest = 1000.0;
constexpr double last_unit = 2147483647.0;

template <class Number>
std::optional<Number> all_of(std::string_view text)
{
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [stop, failed] = std::from_chars(text.data(), end, number);
    if (text.empty() || failed != std::errc() || stop != end)
        return std::nullopt;
    return number;
}

frame_rate reduced(std::int32_t num, std::int32_t den)
{
    const std::int32_t common = std::gcd(num, den);
    return {num / common, den / common};
}
} // namespace

std::optional<frame_rate> rate_of_number(double frames_a_second)
{
    if (!(frames_a_second >= slowest && frames_a_second <= fastest))
        return std::nullopt;
    // 23.976, 23.98, 29.97, 59.94 ...: a whole rate slowed by 1000/1001.
    const auto whole = static_cast<std::int32_t>(std::lround(frames_a_second * 1001 / 1000));
    if (whole >= 24 && frames_a_second != std::floor(frames_a_second) &&
        std::abs(whole * 1000.0 / 1001 - frames_a_second) < 0.0051)
        return reduced(whole * 1000, 1001);
    return reduced(static_cast<std::int32_t>(std::lround(frames_a_second * 1000)), 1000);
}

std::optional<frame_rate> rate_of_text(std::string_view text)
{
    const std::size_t slash = text.find('/');
    if (slash == std::string_view::npos)
    {
        const auto number = all_of<double>(text);
        return number ? rate_of_number(*number) : std::nullopt;
    }
    const auto num = all_of<std::int32_t>(text.substr(0, slash));
    const auto den = all_of<std::int32_t>(text.substr(slash + 1));
    if (!num || !den || *num < 1 || *den < 1)
        return std::nullopt;
    const double rate = static_cast<double>(*num) / *den;
    if (!(rate >= slowest && rate <= fastest))
        return std::nullopt;
    return reduced(*num, *den);
}

std::optional<std::int32_t> frame_at(double seconds, frame_rate rate)
{
    const double frame = std::floor(seconds * rate.num / rate.den + 0.5);
    if (!(std::abs(frame * rate.den) <= last_unit))
        return std::nullopt;
    return static_cast<std::int32_t>(frame);
}

host::composition composition_at(int width, int height, frame_rate rate, std::int32_t frame)
{
    host::composition comp;
    comp.width = width;
    comp.height = height;
    comp.time_step = rate.den;
    comp.time_scale = static_cast<std::uint32_t>(rate.num);
    comp.total_frames = frame > 0 ? frame + 1 : 1;
    return comp;
}
} // namespace adapter
