#pragma once
// The one sort of the line generator.

#include "effect/model/points.hpp"
#include "effect/shell/mem_pool.hpp"

// Comparators over records that begin with x and y as doubles: the difference, truncated toward zero to an int.
// Points closer than 1 compare equal, so this is no ordering: what comes out depends on the very steps of the
// sort.
int cmp_pt_x(const void* a, const void* b) noexcept;
int cmp_pt_y(const void* a, const void* b) noexcept;

using point_comparator = int (*)(const void*, const void*);

// Top-down merge sort, halves of n / 2 and n - n / 2, the left element taken when the comparator says 0 or less:
// the same steps, and so the same order, on every system. Borrows n / 2 points of the pool while it runs; where
// the pool has no room it merges in place, slower, with the same result.
void sort_points(mem_pool* pool, curve_pt_t* points, int n, point_comparator compare) noexcept;
