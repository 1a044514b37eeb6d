#pragma once
// A frame in bytes: a list of orders, each changing one thing of the default frame. No bytes are the default
// frame.

#include "fuzz/byte_reader.hpp"
#include "fuzz/fuzz_host.hpp"

namespace fuzz
{
// Reads one order and gives it to the host. The first byte says what it changes: 0 to 63 the parameter of that id,
// 64 and above the frame's surroundings (see the .cpp); the bytes after it are the value.
void read_order(byte_reader& bytes, fuzz_host& host);

// Reads orders until the bytes end.
void read_orders(byte_reader& bytes, fuzz_host& host);

// Makes the layer and the grid smaller where many lines are asked for: a frame's honest work is lines times canvas
// area, minutes for hundreds of lines on a large canvas, and says nothing that a small canvas does not. Each value
// alone may still be anything.
void keep_affordable(fuzz_host& host);
} // namespace fuzz
