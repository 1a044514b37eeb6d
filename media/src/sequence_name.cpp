#include "media/sequence_name.hpp"

#include "media/error.hpp"

#include <algorithm>
#include <charconv>
#include <regex>
#include <system_error>

namespace media
{
namespace
{
constexpr int widest_number = 9;

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
    static const std::regex number("%(0[0-9]+)?d|#+");
    const std::string name = path.filename().string();
    std::smatch match;
    if (!std::regex_search(name, match, number))
        return std::nullopt;

    sequence_name pattern;
    pattern.folder_ = path.parent_path();
    pattern.before_ = match.prefix();
    pattern.after_ = match.suffix();
    const std::string found = match.str();
    int width = 0;
    if (found[0] == '#')
        width = static_cast<int>(std::min<std::size_t>(found.size(), widest_number + 1));
    else if (match[1].matched &&
             std::from_chars(found.data() + 1, found.data() + found.size(), width).ec != std::errc())
        width = widest_number + 1;
    if (width > widest_number)
        throw error(path.string() + ": the frame number may have up to 9 digits, as in frame_%04d.png");
    pattern.width_ = width;
    if (std::regex_search(pattern.after_, number))
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
