#pragma once
// What checked mode found wrong. Found inside callbacks, where nothing may be thrown; told when the render is
// over.

#include <string>
#include <vector>

namespace host
{
class findings
{
public:
    explicit findings(bool checked) : checked_(checked) {}

    bool checked() const { return checked_; }
    void add(std::string text)
    {
        if (checked_)
            texts_.push_back(std::move(text));
    }
    const std::vector<std::string>& texts() const { return texts_; }

private:
    bool checked_ = false;
    std::vector<std::string> texts_;
};
} // namespace host
