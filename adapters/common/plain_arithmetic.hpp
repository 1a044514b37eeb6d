#pragma once
// Floating point as programs find it when they start, for a while: hosts are known to leave threads with another
// rounding, or with tiny numbers taken for 0, and either changes pictures.

#include <cfenv>
#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

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
#if defined(__SSE2__)
        _mm_setcsr(plain_sse);
#endif
    }
    ~plain_arithmetic()
    {
        std::fesetenv(&found_);
#if defined(__SSE2__)
        _mm_setcsr(found_sse_);
#endif
    }
    plain_arithmetic(const plain_arithmetic&) = delete;
    plain_arithmetic& operator=(const plain_arithmetic&) = delete;

private:
    std::fenv_t found_{};
#if defined(__SSE2__)
    // MinGW's environment leaves out the register that SSE computes by.
    static constexpr unsigned plain_sse = 0x1F80; // as a process finds it: to nearest, everything masked
    unsigned found_sse_ = _mm_getcsr();
#endif
};
} // namespace adapter
