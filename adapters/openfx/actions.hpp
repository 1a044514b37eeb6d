#pragma once
// What a host may ask of an instance, one function for each action that is handled.

#include "adapters/openfx/suites.hpp"

namespace openfx
{
struct library;

// A frame. OK also where the host no longer wants it.
OfxStatus render(const library& lib, OfxImageEffectHandle effect, OfxPropertySetHandle in_args);

// OK, and the source's name and time, where the frame is the source as it is.
OfxStatus is_identity(const library& lib, OfxImageEffectHandle effect, OfxPropertySetHandle in_args,
                      OfxPropertySetHandle out_args);

// Frames differ with the same parameters; what alpha is like.
OfxStatus clip_preferences(OfxImageEffectHandle effect, OfxPropertySetHandle out_args);

// Where the user chose a look, sets all parameters to it.
OfxStatus instance_changed(const library& lib, OfxImageEffectHandle effect, OfxPropertySetHandle in_args);

// A line for the host's user, where the host has a way to show it: not before there is an effect. Otherwise it
// goes to the standard error.
void tell(OfxImageEffectHandle effect, const char* type, const char* text) noexcept;

// The frame of a time. Hosts' arithmetic leaves times a little below the frame that is meant, and a field's time
// is half a frame later; times past 32 bits become the last that can be told, what is no time frame 0.
int frame_of(OfxTime time);
} // namespace openfx
