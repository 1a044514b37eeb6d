// The library's two exported functions, and the entry point of all actions: the one place that catches.

#include "adapters/openfx/actions.hpp"
#include "adapters/openfx/api/names.hpp"
#include "adapters/openfx/describe.hpp"
#include "adapters/openfx/library.hpp"
#include "adapters/openfx/properties.hpp"

#include <cstdio>
#include <exception>
#include <new>
#include <string_view>

#if defined(_WIN32)
#define FILIGRANE_EXPORT __declspec(dllexport)
#else
#define FILIGRANE_EXPORT __attribute__((visibility("default")))
#endif

namespace openfx
{
void tell(OfxImageEffectHandle effect, const char* type, const char* text) noexcept
{
    const OfxMessageSuiteV1* const suite = suites().message;
    if (effect && suite && suite->message)
        suite->message(effect, type, "", "%s", text);
    else
        (void)std::fprintf(stderr, "filigrane: %s\n", text);
}

namespace
{
OfxStatus load()
{
    if (!fetch_suites())
        return kOfxStatFailed;
    the_library();
    return kOfxStatOK;
}

OfxStatus dispatch(std::string_view action, OfxImageEffectHandle effect, OfxPropertySetHandle in_args,
                   OfxPropertySetHandle out_args)
{
    if (action == kOfxActionLoad)
        return load();
    // Renders may still run, and hosts load again what they unloaded: nothing is given up before the file is let
    // go.
    if (action == kOfxActionUnload)
        return kOfxStatOK;
    if (!suites().property)
        return kOfxStatFailed; // asked before it was loaded
    if (action == kOfxImageEffectActionRender)
        return render(the_library(), effect, in_args);
    if (action == kOfxImageEffectActionIsIdentity)
        return is_identity(the_library(), effect, in_args, out_args);
    if (action == kOfxActionDescribe)
        return describe(the_library(), effect);
    if (action == kOfxImageEffectActionDescribeInContext)
        return describe_in_context(
            the_library(), effect,
            property_set(in_args).text(kOfxImageEffectPropContext, kOfxImageEffectContextFilter));
    if (action == kOfxImageEffectActionGetClipPreferences)
        return clip_preferences(effect, out_args);
    if (action == kOfxActionInstanceChanged)
        return instance_changed(the_library(), effect, in_args);
    // Instances have no data of their own; hosts count on the answer all the same.
    if (action == kOfxActionCreateInstance || action == kOfxActionDestroyInstance)
        return kOfxStatOK;
    return kOfxStatReplyDefault;
}

OfxImageEffectHandle effect_of(const void* handle)
{
    return static_cast<OfxImageEffectHandle>(const_cast<void*>(handle));
}

OfxStatus main_entry(const char* action, const void* handle, OfxPropertySetHandle in_args,
                     OfxPropertySetHandle out_args)
{
    try
    {
        return action ? dispatch(action, effect_of(handle), in_args, out_args) : kOfxStatFailed;
    }
    catch (const std::bad_alloc&)
    {
        return kOfxStatErrMemory;
    }
    catch (const std::exception& failure)
    {
        tell(effect_of(handle), kOfxMessageLog, failure.what());
        return kOfxStatFailed;
    }
    catch (...)
    {
        return kOfxStatFailed;
    }
}

OfxPlugin the_plugin = {kOfxImageEffectPluginApi,
                        kOfxImageEffectPluginApiVersion,
                        "filigrane.lines", // never changed: projects name the effect by it
                        1,
                        0,
                        keep_host,
                        main_entry};
} // namespace
} // namespace openfx

extern "C" FILIGRANE_EXPORT int OfxGetNumberOfPlugins()
{
    return 1;
}

extern "C" FILIGRANE_EXPORT OfxPlugin* OfxGetPlugin(int nth)
{
    return nth == 0 ? &openfx::the_plugin : nullptr;
}
