#pragma once
// Floating point as programs find it when they start, for a while: hosts are known to leave threads with another
// rounding, or with tiny numbers taken for 0, and either changes pictures.

#include <cfenv>

namespace adapter
{
// Rounds to nearest, keeps tiny numbers and traps nothing until its end; then all is as it was found, raised
// exceptions included.
class plain_arithmetic
{
public:
    plain_arithmetic() noexcept
    {
        std::fegetenv(&found_);
        std::fesetenv(FE_DFL_ENV);
    }
    ~plain_arithmetic() { std::fesetenv(&found_); }
    plain_arithmetic(const plain_arithmetic&) = delete;
    plain_arithmetic& operator=(const plain_arithmetic&) = delete;

private:
    std::fenv_t found_{};
};
} // namespace adapter
