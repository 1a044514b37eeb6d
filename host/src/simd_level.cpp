#include "simd_level.hpp"

#include <cstdlib>
#include <string_view>

namespace host
{
namespace
{
simd_level read_level()
{
    const simd_level best = machine_has(simd_level::avx2) ? simd_level::avx2 : simd_level::sse2;
    const char* const asked = std::getenv("FILIGRANE_SIMD");
    const std::string_view name = asked != nullptr ? asked : "";
    if (name == "scalar")
        return simd_level::scalar;
    if (name == "sse2")
        return simd_level::sse2;
    return best;
}
} // namespace

bool machine_has(simd_level level)
{
#if defined(__x86_64__)
    return level != simd_level::avx2 ||
           (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2"));
#else
    return level != simd_level::avx2;
#endif
}

simd_level chosen_simd_level()
{
    static const simd_level level = read_level();
    return level;
}
} // namespace host
