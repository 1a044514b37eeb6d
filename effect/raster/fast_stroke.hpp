#pragma once
// The fast way to draw a stroke: the same pixels with the same values as LineCreatorClass's own sub-renders, each
// decided once.

class LineCreatorClass;

// Draws the current stroke. False, with nothing drawn, where it is left to the plain way: pixel functions of
// somebody else's, a host whose square root rounds in its own way, or no memory to work in.
bool draw_stroke_fast(LineCreatorClass& creator) noexcept;

// The same for strokes that it takes, with a solid core or without, of one colour or of many, at one level of
// instructions. The second is there on 64-bit x86 alone.
bool draw_stroke_baseline(LineCreatorClass& creator, bool solid_core, bool one_color) noexcept;
bool draw_stroke_avx2(LineCreatorClass& creator, bool solid_core, bool one_color) noexcept;
