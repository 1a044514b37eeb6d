#include "effect/layout/sort.hpp"

#include "effect/model/numeric.hpp"

#include <algorithm>

namespace
{
// Merges the sorted runs [0, half) and [half, n); `left` has room for the first of them.
void merge_buffered(curve_pt_t* points, int half, int n, point_comparator compare, curve_pt_t* left) noexcept
{
    std::copy(points, points + half, left);
    int i = 0;
    int j = half;
    int out = 0;
    while (i < half && j < n)
        points[out++] = compare(&left[i], &points[j]) <= 0 ? left[i++] : points[j++];
    std::copy(left + i, left + half, points + out);
}

void merge_in_place(curve_pt_t* points, int half, int n, point_comparator compare) noexcept
{
    int i = 0;
    int j = half;
    for (; i < j && j < n; ++i)
    {
        if (compare(&points[i], &points[j]) <= 0)
            continue;
        std::rotate(points + i, points + j, points + j + 1);
        ++j;
    }
}

void merge_sort(curve_pt_t* points, int n, point_comparator compare, curve_pt_t* buffer) noexcept
{
    if (n < 2)
        return;
    const int half = n / 2;
    merge_sort(points, half, compare, buffer);
    merge_sort(points + half, n - half, compare, buffer);
    if (buffer != nullptr)
        merge_buffered(points, half, n, compare, buffer);
    else
        merge_in_place(points, half, n, compare);
}
} // namespace

int cmp_pt_x(const void* a, const void* b) noexcept
{
    return trunc_i32(static_cast<const fpoint_t*>(a)->x - static_cast<const fpoint_t*>(b)->x);
}

int cmp_pt_y(const void* a, const void* b) noexcept
{
    return trunc_i32(static_cast<const fpoint_t*>(a)->y - static_cast<const fpoint_t*>(b)->y);
}

void sort_points(mem_pool* pool, curve_pt_t* points, int n, point_comparator compare) noexcept
{
    if (n < 2)
        return;
    auto* const buffer = pool_array<curve_pt_t>(pool, n / 2);
    merge_sort(points, n, compare, buffer);
    if (buffer != nullptr)
        pool_release(pool, buffer);
}
