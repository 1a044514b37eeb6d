#include "effect/layout/sort.hpp"

#include "effect/model/numeric.hpp"

#include <algorithm>

namespace
{
// Whether the element on the left goes first: the comparator says 0 or less.
struct by_comparator
{
    point_comparator compare;
    bool operator()(const curve_pt_t& a, const curve_pt_t& b) const noexcept { return compare(&a, &b) <= 0; }
};

// The same of cmp_pt_x and cmp_pt_y, in place: a difference truncates to 0 or less below 1, and to the minimum
// where it does not fit or is no number.
struct by_coordinate
{
    double curve_pt_t::*coordinate;
    bool operator()(const curve_pt_t& a, const curve_pt_t& b) const noexcept
    {
        const double difference = a.*coordinate - b.*coordinate;
        return !(difference >= 1.0 && difference < 2147483648.0);
    }
};

// Merges the sorted runs [0, half) and [half, n); `left` has room for the first of them.
template <class LeftFirst>
void merge_buffered(curve_pt_t* points, int half, int n, LeftFirst left_first, curve_pt_t* left) noexcept
{
    // What goes first is already there.
    int out = 0;
    while (out < half && left_first(points[out], points[half]))
        ++out;
    const int count = half - out;
    std::copy(points + out, points + half, left);
    int i = 0;
    int j = half;
    while (i < count && j < n)
        points[out++] = left_first(left[i], points[j]) ? left[i++] : points[j++];
    std::copy(left + i, left + count, points + out);
}

template <class LeftFirst>
void merge_in_place(curve_pt_t* points, int half, int n, LeftFirst left_first) noexcept
{
    int i = 0;
    int j = half;
    for (; i < j && j < n; ++i)
    {
        if (left_first(points[i], points[j]))
            continue;
        std::rotate(points + i, points + j, points + j + 1);
        ++j;
    }
}

template <class LeftFirst>
void merge_sort(curve_pt_t* points, int n, LeftFirst left_first, curve_pt_t* buffer) noexcept
{
    if (n < 2)
        return;
    const int half = n / 2;
    merge_sort(points, half, left_first, buffer);
    merge_sort(points + half, n - half, left_first, buffer);
    if (buffer != nullptr)
        merge_buffered(points, half, n, left_first, buffer);
    else
        merge_in_place(points, half, n, left_first);
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
    auto* const buffer = pool_array_used<curve_pt_t>(pool, n / 2, 0);
    if (compare == cmp_pt_x)
        merge_sort(points, n, by_coordinate{&curve_pt_t::x}, buffer);
    else if (compare == cmp_pt_y)
        merge_sort(points, n, by_coordinate{&curve_pt_t::y}, buffer);
    else
        merge_sort(points, n, by_comparator{compare}, buffer);
    if (buffer != nullptr)
        pool_release(pool, buffer);
}
