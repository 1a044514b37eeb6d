#pragma once
// Counts the blocks of the general heap, of all threads together. A test that calls either function gets the
// counting operators new and delete for its whole executable.

long heap_blocks_alive();
long heap_blocks_made();
