#pragma once
// Tables for people and for files, and what is asked of the figures in them.

#include <filesystem>
#include <string>
#include <vector>

namespace bench
{
// Digits enough to tell two figures apart: "0.0123", "1.23", "12.3", "1234".
std::string figure(double value);

class table
{
public:
    table(std::string title, std::vector<std::string> columns);
    void add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }
    // Aligned, under the title, on standard output.
    void print() const;
    // As comma-separated values; no folder, no file. The cells hold no quotes.
    void write(const std::filesystem::path& folder, const std::string& name) const;

private:
    std::string title_;
    std::vector<std::string> columns_;
    std::vector<std::vector<std::string>> rows_;
};

enum class asked
{
    nothing,
    at_most,
    at_least,
};

// Cells "must" and "met" for a ratio.
struct demand
{
    asked what = asked::nothing;
    double bound = 0.0;

    std::string must() const;
    std::string met(double value) const;
};
inline demand at_most(double bound)
{
    return {asked::at_most, bound};
}
inline demand at_least(double bound)
{
    return {asked::at_least, bound};
}

// What a run was asked for, and what came of it.
struct run
{
    std::filesystem::path csv; // where tables are written to; empty for nowhere
    double effort = 1.0;       // factor of the time spent on each case
    bool brief = false;        // the comparisons that steer, no more
    bool failed = false;       // something was not what it is compared as

    void show(const table& t, const std::string& name) const
    {
        t.print();
        t.write(csv, name);
    }
};
} // namespace bench
