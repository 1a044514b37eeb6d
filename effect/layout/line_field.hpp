#pragma once
// The lines of one frame: where each lies, how it ripples, grows and bends, in the order in which chance is drawn.

class aeg;
class frame_data;
class grid;

// Makes and draws every line of the frame through `context`. The grid's list of straight lines is filled and
// walked on the way; emptying it is the caller's.
void draw_line_field(grid& g, frame_data& frame, aeg* context);
