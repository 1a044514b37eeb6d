#include "bench/report.hpp"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <utility>

namespace bench
{
std::string figure(double value)
{
    const int digits = value >= 100.0 ? 0 : value >= 10.0 ? 1 : value >= 1.0 ? 2 : value >= 0.1 ? 3 : 4;
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

table::table(std::string title, std::vector<std::string> columns)
    : title_(std::move(title)), columns_(std::move(columns))
{
}

void table::print() const
{
    std::vector<std::size_t> widths;
    for (std::size_t c = 0; c < columns_.size(); ++c)
    {
        std::size_t width = columns_[c].size();
        for (const auto& row : rows_)
            width = std::max(width, row[c].size());
        widths.push_back(width);
    }
    // Names to the left, figures to the right.
    const auto print_row = [&](const std::vector<std::string>& row)
    {
        for (std::size_t c = 0; c < row.size(); ++c)
        {
            const int width = static_cast<int>(widths[c]);
            std::printf("%s%*s", c == 0 ? "" : "  ", c == 0 ? -width : width, row[c].c_str());
        }
        std::printf("\n");
    };
    std::printf("\n%s\n", title_.c_str());
    print_row(columns_);
    for (const auto& row : rows_)
        print_row(row);
    std::fflush(stdout);
}

void table::write(const std::filesystem::path& folder, const std::string& name) const
{
    if (folder.empty())
        return;
    std::filesystem::create_directories(folder);
    std::ofstream file(folder / (name + ".csv"));
    const auto write_row = [&file](const std::vector<std::string>& row)
    {
        for (std::size_t c = 0; c < row.size(); ++c)
        {
            const bool quoted = row[c].find(',') != std::string::npos;
            file << (c == 0 ? "" : ",") << (quoted ? "\"" + row[c] + "\"" : row[c]);
        }
        file << '\n';
    };
    write_row(columns_);
    for (const auto& row : rows_)
        write_row(row);
}

std::string demand::must() const
{
    if (what == asked::nothing)
        return "";
    return (what == asked::at_most ? "<= " : ">= ") + figure(bound);
}

std::string demand::met(double value) const
{
    if (what == asked::nothing)
        return "";
    return (what == asked::at_most ? value <= bound : value >= bound) ? "yes" : "no";
}
} // namespace bench
