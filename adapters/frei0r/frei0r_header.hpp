#pragma once
// frei0r's own header, which does not say that its functions are C's.

#include <cinttypes>

extern "C"
{
#include <frei0r.h>
}
