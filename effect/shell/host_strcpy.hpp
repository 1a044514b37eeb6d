#pragma once
// Copying texts into a host's buffers.

#include "effect/pf/effect_api.hpp"

namespace Loom::Host::AE
{
// Copies a zero-terminated string. For the host 'KeyG', whose character set lacks them, the bytes 0xA9 and 0xAA
// become
// "(C)" and "(R)"; every other host gets the bytes as they are, through its own strcpy. No length check.
void strcpy(PF_InData* in_data, char* dst, const char* src);
} // namespace Loom::Host::AE
