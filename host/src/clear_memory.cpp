#include "clear_memory.hpp"

#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace host
{
namespace
{
// From here on a detour past the caches can pay.
constexpr std::size_t smallest_detour = std::size_t{1} << 19;

#if defined(__x86_64__)
// Stores of this kind keep no order of their own, and another thread may be handed the memory: hence the fence.
void clear_lines_sse2(std::byte* first, std::size_t lines) noexcept
{
    const __m128i zero = _mm_setzero_si128();
    for (auto* quarter = reinterpret_cast<__m128i*>(first); lines > 0; --lines, quarter += 4)
    {
        _mm_stream_si128(quarter, zero);
        _mm_stream_si128(quarter + 1, zero);
        _mm_stream_si128(quarter + 2, zero);
        _mm_stream_si128(quarter + 3, zero);
    }
    _mm_sfence();
}

void clear_lines(std::byte* first, std::size_t lines, simd_level level) noexcept
{
    if (level == simd_level::avx2)
        clear_lines_avx2(first, lines);
    else
        clear_lines_sse2(first, lines);
}
#else
void clear_lines(std::byte* first, std::size_t lines, simd_level /*level*/) noexcept
{
    std::memset(first, 0, lines * cache_line);
}
#endif
} // namespace

void clear_memory(void* first, std::size_t bytes, bool past_caches, simd_level level) noexcept
{
    if (!past_caches || bytes < smallest_detour || level == simd_level::scalar)
    {
        std::memset(first, 0, bytes);
        return;
    }
    auto* const start = static_cast<std::byte*>(first);
    const std::size_t before = -reinterpret_cast<std::uintptr_t>(start) % cache_line;
    const std::size_t lines = (bytes - before) / cache_line;
    const std::size_t after = before + lines * cache_line;
    std::memset(start, 0, before);
    clear_lines(start + before, lines, level);
    std::memset(start + after, 0, bytes - after);
}
} // namespace host
