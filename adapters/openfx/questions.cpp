// What hosts ask about an instance's frames before they have them drawn.

#include "adapters/openfx/actions.hpp"

#include "adapters/openfx/api/names.hpp"
#include "adapters/openfx/library.hpp"
#include "adapters/openfx/properties.hpp"
#include "adapters/openfx/values.hpp"

namespace openfx
{
OfxStatus is_identity(const library& lib, OfxImageEffectHandle effect, OfxPropertySetHandle in_args,
                      OfxPropertySetHandle out_args)
{
    OfxImageClipHandle clip = nullptr;
    OfxPropertySetHandle clip_handle = nullptr;
    if (suites().effect->clipGetHandle(effect, kOfxImageEffectSimpleSourceClipName, &clip, &clip_handle) !=
            kOfxStatOK ||
        property_set(clip_handle).integer(kOfxImageClipPropConnected, 1) == 0)
        return kOfxStatReplyDefault;
    const OfxTime time = property_set(in_args).number(kOfxPropTime, 0.0);
    frame_values values(lib, params_of(effect), time, frame_of(time));
    // The input shows as it is where there is no line over it or all are invisible, and where it is shifted by
    // nothing. The grid has an opacity of its own.
    const bool no_lines = values.number("Rows") == 0.0 && values.number("Columns") == 0.0;
    const bool invisible = values.number("Opacity") < 0.01 && values.number("Show Grid") == 0.0;
    const bool untouched = values.number("Use Displacement") != 0.0
                               ? values.number("Amount of Displacement") == 0.0
                               : values.number("Composite On Original") != 0.0 && (no_lines || invisible);
    if (!untouched)
        return kOfxStatReplyDefault;
    const property_set answer(out_args);
    if (!answer.set(kOfxPropName, kOfxImageEffectSimpleSourceClipName))
        return kOfxStatReplyDefault;
    answer.set(kOfxPropTime, time);
    return kOfxStatOK;
}

OfxStatus clip_preferences(OfxImageEffectHandle effect, OfxPropertySetHandle out_args)
{
    const property_set answer(out_args);
    answer.set(kOfxImageEffectFrameVarying, 1);
    // Lines lie on nothing unless they are drawn over the source: by default a generator's picture, and one of an
    // opaque source, would be opaque.
    OfxImageClipHandle clip = nullptr;
    OfxPropertySetHandle clip_handle = nullptr;
    const bool sourced = suites().effect->clipGetHandle(effect, kOfxImageEffectSimpleSourceClipName, &clip,
                                                        &clip_handle) == kOfxStatOK;
    const bool premultiplied =
        sourced &&
        property_set(clip_handle).text(kOfxImageEffectPropPreMultiplication, "") == kOfxImagePreMultiplied;
    answer.set(kOfxImageEffectPropPreMultiplication,
               premultiplied ? kOfxImagePreMultiplied : kOfxImageUnPreMultiplied);
    return kOfxStatOK;
}
} // namespace openfx
