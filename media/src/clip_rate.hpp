#pragma once
// How fast a clip runs.

#include "av.hpp"
#include "media/rational.hpp"

namespace media
{
// The stream's constant frame rate; for a clip whose frames last unequally long, the rate that fits its times or,
// where that would be absurdly high, the standard rate nearest to its average.
rational clip_rate(const AVStream* stream);
} // namespace media
