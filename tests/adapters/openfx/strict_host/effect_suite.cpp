#include "tests/adapters/openfx/strict_host/objects.hpp"
#include "tests/adapters/openfx/strict_host/watch.hpp"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace strict
{
namespace
{
// An image that is lent: its own property set, and the memory as it was.
struct lent_image
{
    OfxPropertySetStruct props;
    std::shared_ptr<host_image> image;
    std::vector<std::byte> before; // of a source, which is not to be written
    bool output = false;
    std::thread::id thread = std::this_thread::get_id();
};

std::map<OfxPropertySetHandle, std::unique_ptr<lent_image>>& lent_images()
{
    static std::map<OfxPropertySetHandle, std::unique_ptr<lent_image>> all;
    return all;
}

// Gives out a handle, or null where the test has it so.
template <class Handle>
void give(Handle* to, Handle handle)
{
    if (to)
        *to = the_watch().null_handles ? nullptr : handle;
}

OfxStatus get_property_set(OfxImageEffectHandle effect, OfxPropertySetHandle* properties)
{
    call now("getPropertySet");
    if (now.failed() != kOfxStatOK)
        return now.failed();
    if (!now.alive(effect, "the effect"))
        return kOfxStatErrBadHandle;
    give(properties, &effect->props);
    return kOfxStatOK;
}

OfxStatus get_param_set(OfxImageEffectHandle effect, OfxParamSetHandle* params)
{
    call now("getParamSet");
    if (now.failed() != kOfxStatOK)
        return now.failed();
    if (!now.alive(effect, "the effect"))
        return kOfxStatErrBadHandle;
    give(params, &effect->params);
    return kOfxStatOK;
}

OfxStatus clip_define(OfxImageEffectHandle effect, const char* name, OfxPropertySetHandle* properties)
{
    call now("clipDefine");
    if (now.failed() != kOfxStatOK)
        return now.failed();
    if (!now.alive(effect, "the effect"))
        return kOfxStatErrBadHandle;
    if (current_action() != "OfxImageEffectActionDescribeInContext")
    {
        the_watch().complain("clips are defined in describe in context alone");
        return kOfxStatFailed;
    }
    if (effect->clips.contains(name))
    {
        the_watch().complain(std::string("clip ") + name + " is defined twice");
        return kOfxStatErrExists;
    }
    auto clip = std::make_unique<OfxImageClipStruct>();
    clip->name = name;
    make_clip_descriptor(clip->props, name);
    the_watch().alive.insert(clip.get());
    the_watch().alive.insert(&clip->props);
    give(properties, &clip->props);
    effect->clips[name] = std::move(clip);
    return kOfxStatOK;
}

OfxStatus clip_get_handle(OfxImageEffectHandle effect, const char* name, OfxImageClipHandle* clip,
                          OfxPropertySetHandle* properties)
{
    call now("clipGetHandle");
    if (now.failed() != kOfxStatOK)
        return now.failed();
    if (!now.alive(effect, "the effect"))
        return kOfxStatErrBadHandle;
    if (!effect->instance)
        the_watch().complain("a descriptor's clips have no handles");
    const auto found = effect->clips.find(name);
    if (found == effect->clips.end())
        return kOfxStatErrUnknown;
    give(clip, found->second.get());
    give(properties, &found->second->props);
    return kOfxStatOK;
}

OfxStatus clip_get_property_set(OfxImageClipHandle clip, OfxPropertySetHandle* properties)
{
    call now("clipGetPropertySet");
    if (now.failed() != kOfxStatOK)
        return now.failed();
    if (!now.alive(clip, "the clip"))
        return kOfxStatErrBadHandle;
    give(properties, &clip->props);
    return kOfxStatOK;
}

OfxStatus clip_get_image(OfxImageClipHandle clip, OfxTime time, const OfxRectD*, OfxPropertySetHandle* image)
{
    call now("clipGetImage");
    if (now.failed() != kOfxStatOK)
        return now.failed();
    if (!now.alive(clip, "the clip"))
        return kOfxStatErrBadHandle;
    if (current_action() != "OfxImageEffectActionRender")
    {
        the_watch().complain("images are to be had in render alone");
        return kOfxStatFailed;
    }
    const std::shared_ptr<host_image> memory = clip->image ? clip->image(time) : nullptr;
    if (!memory)
        return kOfxStatFailed;
    auto lent = std::make_unique<lent_image>();
    lent->image = memory;
    lent->output = clip->name == "Output";
    if (!lent->output)
        lent->before = memory->bytes();
    make_image(lent->props, *memory);
    the_watch().alive.insert(&lent->props);
    const OfxPropertySetHandle handle = &lent->props;
    if (the_watch().null_handles)
    {
        *image = nullptr;
        the_watch().alive.erase(handle);
        return kOfxStatOK;
    }
    lent_images()[handle] = std::move(lent);
    *image = handle;
    return kOfxStatOK;
}

OfxStatus clip_release_image(OfxPropertySetHandle image)
{
    call now("clipReleaseImage");
    // A release that was refused has released all the same: nothing can be done about it.
    const auto found = lent_images().find(image);
    if (found == lent_images().end())
    {
        the_watch().complain("an image is released that is not lent");
        return kOfxStatErrBadHandle;
    }
    lent_image& lent = *found->second;
    if (!lent.image->guards_hold())
        the_watch().complain("an image was written outside its pixels");
    if (!lent.output)
    {
        if (lent.before != lent.image->bytes())
            the_watch().complain("a source was written to");
        lent.image->spoil(); // whoever reads on reads junk
    }
    the_watch().alive.erase(image);
    lent_images().erase(found);
    return now.failed();
}

OfxStatus clip_get_region(OfxImageClipHandle clip, OfxTime, OfxRectD* bounds)
{
    call now("clipGetRegionOfDefinition");
    if (now.failed() != kOfxStatOK)
        return now.failed();
    if (!now.alive(clip, "the clip"))
        return kOfxStatErrBadHandle;
    if (!clip->defined)
        return kOfxStatFailed;
    *bounds = *clip->defined;
    return kOfxStatOK;
}

int abort_asked(OfxImageEffectHandle effect)
{
    call now("abort");
    now.alive(effect, "the effect");
    watch& host = the_watch();
    ++host.aborts_asked;
    return host.abort_from > 0 && host.aborts_asked >= host.abort_from ? 1 : 0;
}

OfxStatus message(void*, const char* type, const char*, const char* format, ...)
{
    call now("message");
    char text[1000];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    the_watch().messages.push_back(std::string(type) + ": " + text);
    return now.failed();
}
} // namespace

int images_out_here()
{
    const std::lock_guard hold(the_watch().guard);
    int out = 0;
    for (const auto& [handle, lent] : lent_images())
        out += lent->thread == std::this_thread::get_id() ? 1 : 0;
    return out;
}

int images_out()
{
    const std::lock_guard hold(the_watch().guard);
    return static_cast<int>(lent_images().size());
}

// Image memory is nothing that this plug-in asks for.
const OfxImageEffectSuiteV1& effect_suite()
{
    static const OfxImageEffectSuiteV1 suite = {get_property_set,
                                                get_param_set,
                                                clip_define,
                                                clip_get_handle,
                                                clip_get_property_set,
                                                clip_get_image,
                                                clip_release_image,
                                                clip_get_region,
                                                abort_asked,
                                                nullptr,
                                                nullptr,
                                                nullptr,
                                                nullptr};
    return suite;
}

const OfxMessageSuiteV1& message_suite()
{
    static const OfxMessageSuiteV1 suite = {message};
    return suite;
}
} // namespace strict
