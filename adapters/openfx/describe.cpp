#include "adapters/openfx/describe.hpp"

#include "adapters/openfx/api/names.hpp"
#include "adapters/openfx/describe_params.hpp"
#include "adapters/openfx/library.hpp"
#include "adapters/openfx/properties.hpp"

namespace openfx
{
namespace
{
constexpr const char* contexts[] = {kOfxImageEffectContextFilter, kOfxImageEffectContextGeneral,
                                    kOfxImageEffectContextGenerator};
constexpr const char* depths[] = {kOfxBitDepthByte, kOfxBitDepthShort, kOfxBitDepthFloat};
constexpr const char* components[] = {kOfxImageComponentRGBA, kOfxImageComponentRGB};

// False where the host takes none of them; one that it does not know is left out.
template <std::size_t N>
bool set_any(const property_set& properties, const char* name, const char* const (&values)[N])
{
    int taken = 0;
    for (const char* value : values)
        if (properties.set(name, value, taken))
            ++taken;
    return taken > 0;
}

bool define_clip(OfxImageEffectHandle effect, const char* name, bool optional)
{
    OfxPropertySetHandle handle = nullptr;
    if (suites().effect->clipDefine(effect, name, &handle) != kOfxStatOK)
        return false;
    const property_set clip(handle);
    clip.set(kOfxPropLabel, name);
    clip.set(kOfxImageClipPropOptional, optional ? 1 : 0);
    clip.set(kOfxImageEffectPropTemporalClipAccess, 0);
    clip.set(kOfxImageEffectPropSupportsTiles, 0);
    // A field is drawn as every other row of the whole frame, so its own rows are all that is wanted.
    clip.set(kOfxImageClipPropFieldExtraction, kOfxImageFieldSingle);
    return set_any(clip, kOfxImageEffectPropSupportedComponents, components);
}
} // namespace

OfxStatus describe(const library& lib, OfxImageEffectHandle effect)
{
    OfxPropertySetHandle handle = nullptr;
    if (suites().effect->getPropertySet(effect, &handle) != kOfxStatOK)
        return kOfxStatErrBadHandle;
    const property_set properties(handle);
    properties.set(kOfxPropLabel, "Filigrane");
    properties.set(kOfxPropShortLabel, "Filigrane");
    properties.set(kOfxPropLongLabel, "Filigrane");
    properties.set(kOfxImageEffectPluginPropGrouping, "Draw");
    properties.set(kOfxPropPluginDescription, lib.description.c_str());
    properties.set(kOfxPropVersionLabel, FILIGRANE_VERSION);
    const host::plugin_version& version = lib.effect->plugin.version();
    int index = 0;
    for (const int part : {version.major, version.minor, version.bugfix})
        if (!properties.set(kOfxPropVersion, part, index++))
            break; // there is no index past one that is missing

    // Where lines lie depends on the whole frame: no tiles, and no frame cut up over threads. Nothing is kept
    // between frames, so any number of them may be drawn at once.
    properties.set(kOfxImageEffectPluginRenderThreadSafety, kOfxImageEffectRenderFullySafe);
    properties.set(kOfxImageEffectPluginPropHostFrameThreading, 0);
    properties.set(kOfxImageEffectPropSupportsTiles, 0);
    properties.set(kOfxImageEffectPropSupportsMultiResolution, 0);
    properties.set(kOfxImageEffectPluginPropFieldRenderTwiceAlways, 0);
    properties.set(kOfxImageEffectPluginPropSingleInstance, 0);
    // Growth reads parameters of earlier frames, never pictures.
    properties.set(kOfxImageEffectPropTemporalClipAccess, 0);
    properties.set(kOfxImageEffectPropSupportsMultipleClipDepths, 0);
    properties.set(kOfxImageEffectPropSupportsMultipleClipPARs, 0);

    const bool usable = set_any(properties, kOfxImageEffectPropSupportedContexts, contexts) &&
                        set_any(properties, kOfxImageEffectPropSupportedPixelDepths, depths);
    return usable ? kOfxStatOK : kOfxStatFailed;
}

OfxStatus describe_in_context(const library& lib, OfxImageEffectHandle effect, const std::string& context)
{
    // A generator has no source: hosts show one for every clip that is defined, and have no picture for it.
    const bool sourced = context != kOfxImageEffectContextGenerator;
    if (sourced &&
        !define_clip(effect, kOfxImageEffectSimpleSourceClipName, context == kOfxImageEffectContextGeneral))
        return kOfxStatFailed;
    if (!define_clip(effect, kOfxImageEffectOutputClipName, false))
        return kOfxStatFailed;
    OfxParamSetHandle params = nullptr;
    if (suites().effect->getParamSet(effect, &params) != kOfxStatOK)
        return kOfxStatFailed;
    define_params(lib, params);
    return kOfxStatOK;
}
} // namespace openfx
