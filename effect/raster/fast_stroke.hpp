#pragma once
// The fast way to draw a stroke: the same pixels with the same values as LineCreatorClass's own sub-renders, each
// decided once.

class LineCreatorClass;

// Draws the current stroke. False, with nothing drawn, where it is left to the plain way: pixel functions of
// somebody else's, a host whose square root rounds in its own way, or no memory to work in.
bool draw_stroke_fast(LineCreatorClass& creator) noexcept;
