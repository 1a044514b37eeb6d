#include "effect/raster/simd_level.hpp"

#include <cstdlib>
#include <cstring>

namespace
{
simd_level highest_level() noexcept
{
#if defined(__x86_64__)
    const bool all = __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("bmi") != 0 &&
                     __builtin_cpu_supports("bmi2") != 0;
    return all ? simd_level::avx2 : simd_level::baseline;
#else
    return simd_level::baseline;
#endif
}
} // namespace

simd_level chosen_simd_level() noexcept
{
    const char* const wanted = std::getenv("FILIGRANE_SIMD");
    if (wanted == nullptr)
        return highest_level();
    if (std::strcmp(wanted, "scalar") == 0)
        return simd_level::scalar;
    if (std::strcmp(wanted, "sse2") == 0)
        return simd_level::baseline;
    return highest_level();
}
