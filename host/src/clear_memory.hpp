#pragma once
// Zero bytes over what is as large as a picture.

#include "simd_level.hpp"

#include <cstddef>

namespace host
{
// `past_caches` leaves in the caches what they hold, and does not read what is written over. That is faster where
// the bytes would be gone from the caches before anybody reads them, and takes less of what memory can do, which
// all threads share; where they would not be gone, it is slower.
void clear_memory(void* first, std::size_t bytes, bool past_caches,
                  simd_level level = chosen_simd_level()) noexcept;

// The part of it that lies in whole lines of the caches.
constexpr std::size_t cache_line = 64; // bytes
void clear_lines_avx2(std::byte* first, std::size_t lines) noexcept;
} // namespace host
