#include "media/sequence_name.hpp"

#include "media/error.hpp"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

namespace media
{
namespace
{
constexpr int widest_number = 9;

// Where a name has its frame number: "%d", "%04d" or a run of '#'.
struct number_place
{
    std::size_t begin = std::string_view::npos; // npos: nowhere
    std::size_t end = 0;
    int width = 0;
};

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

// The place that begins at `at`, if one does.
number_place place_at(std::string_view name, std::size_t at)
{
    std::size_t end = at + 1;
    if (name[at] == '#')
    {
        end = std::min(name.find_first_not_of('#', at), name.size());
        return {at, end, static_cast<int>(std::min<std::size_t>(end - at, widest_number + 1))};
    }
    if (name[at] != '%')
        return {};
    while (end < name.size() && is_digit(name[end]))
        ++end;
    const std::string_view digits = name.substr(at + 1, end - at - 1);
    // A width without a leading zero would pad with spaces.
    if (end == name.size() || name[end] != 'd' || (!digits.empty() && (digits[0] != '0' || digits.size() == 1)))
        return {};
    int width = 0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), width).ec == std::errc::result_out_of_range)
        width = widest_number + 1;
    return {at, end + 1, width};
}

number_place find_place(std::string_view name)
{
    for (std::size_t at = 0; at < name.size(); ++at)
        if (const number_place place = place_at(name, at); place.begin != std::string_view::npos)
            return place;
    return {};
}

std::string padded(std::int32_t number, int width)
{
    std::string digits = std::to_string(number);
    if (static_cast<int>(digits.size()) < width)
        digits.insert(0, static_cast<std::size_t>(width) - digits.size(), '0');
    return digits;
}
} // namespace

std::optional<sequence_name> sequence_name::parse(const std::filesystem::path& path)
{
    const std::string name = path.filename().string();
    const number_place place = find_place(name);
    if (place.begin == std::string_view::npos)
        return std::nullopt;
    if (place.width > widest_number)
        throw error(path.string() + ": the frame number may have up to 9 digits, as in frame_%04d.png");

    sequence_name pattern;
    pattern.folder_ = path.parent_path();
    pattern.before_ = name.substr(0, place.begin);
    pattern.after_ = name.substr(place.end);
    pattern.width_ = place.width;
    if (find_place(pattern.after_).begin != std::string_view::npos)
        throw error(path.string() + ": more than one place for the frame number; keep one, as in frame_%04d.png");
    return pattern;
}

std::filesystem::path sequence_name::file(std::int32_t number) const
{
    return folder_ / (before_ + padded(number, width_) + after_);
}

std::vector<std::int32_t> sequence_name::numbers_present() const
{
    const std::filesystem::path folder = folder_.empty() ? "." : folder_;
    std::error_code failed;
    std::filesystem::directory_iterator entries(folder, failed);
    if (failed)
        throw error(folder.string() + ": the folder cannot be read (" + failed.message() + ")");
    std::vector<std::int32_t> numbers;
    for (const auto& entry : entries)
    {
        const std::string name = entry.path().filename().string();
        if (name.size() <= before_.size() + after_.size() || !name.starts_with(before_) || !name.ends_with(after_))
            continue;
        const char* first = name.data() + before_.size();
        const char* last = name.data() + name.size() - after_.size();
        std::int32_t number = 0;
        const auto [end, bad] = std::from_chars(first, last, number);
        // Only names that file() would make: "-1", "+1" or "01" in a sequence of width 4 are other files.
        if (bad == std::errc() && end == last && number >= 0 && padded(number, width_) == std::string(first, last))
            numbers.push_back(number);
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}
} // namespace media
