#pragma once
// Where a rippled line crosses a straight one, the straight line is bent.

#include "effect/model/random.hpp"

class curve;
class frame_data;
class sp_line;

// Appends to `straight` the points of its bend around the rippled line whose ripple is `ripple` and whose across
// position after compression is `ripple_across`. One draw, for the bend's half length; none for a line without
// points, which is passed over. All pool memory taken on the way is given back. Points that do not fit, and the
// whole bend where the pool is short, are left out.
void distort_crossing(frame_data& frame, Loom::RandomGenerator32& rng, const curve& ripple, float ripple_across,
                      sp_line& straight);
