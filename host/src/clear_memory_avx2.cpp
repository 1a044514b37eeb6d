// Compiled for AVX2: nothing here is called on a processor without it.
#if defined(__AVX2__)
#include "clear_memory.hpp"

#include <immintrin.h>

namespace host
{
void clear_lines_avx2(std::byte* first, std::size_t lines) noexcept
{
    const __m256i zero = _mm256_setzero_si256();
    for (auto* half = reinterpret_cast<__m256i*>(first); lines > 0; --lines, half += 2)
    {
        _mm256_stream_si256(half, zero);
        _mm256_stream_si256(half + 1, zero);
    }
    _mm_sfence();
}
} // namespace host
#endif
