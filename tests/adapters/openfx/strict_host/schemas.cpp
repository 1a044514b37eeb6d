// The properties of each kind of object, as the API lists them.

#include "tests/adapters/openfx/strict_host/objects.hpp"

#include "tests/adapters/openfx/strict_host/watch.hpp"

#include <cfloat>
#include <climits>

namespace strict
{
namespace
{
using std::string;
constexpr bool read_only = true;

void* nothing()
{
    return nullptr;
}

void labels(OfxPropertySetStruct& p, const string& initial)
{
    for (const char* name : {"OfxPropLabel", "OfxPropShortLabel", "OfxPropLongLabel"})
        p.define(name, {initial});
}

void ints(OfxPropertySetStruct& p, std::initializer_list<const char*> names, int value, bool ro = false)
{
    for (const char* name : names)
        p.define(name, {value}, ro);
}
} // namespace

void make_host(OfxPropertySetStruct& p)
{
    p.what = "the host";
    p.define("OfxPropType", {string("OfxTypeImageEffectHost")}, read_only);
    p.define("OfxPropName", {string("filigrane.test.strict")}, read_only);
    p.define("OfxPropLabel", {string("Strict")}, read_only);
    p.define("OfxPropVersionLabel", {string("1")}, read_only);
    p.define_any("OfxPropAPIVersion", 0, {1, 4}, read_only);
    p.define_any("OfxPropVersion", 0, {1}, read_only);
    p.define_any("OfxImageEffectPropSupportedContexts", string(),
                 {string("OfxImageEffectContextFilter"), string("OfxImageEffectContextGeneral"),
                  string("OfxImageEffectContextGenerator")},
                 read_only);
    p.define_any("OfxImageEffectPropSupportedComponents", string(),
                 {string("OfxImageComponentRGBA"), string("OfxImageComponentRGB")}, read_only);
    p.define_any("OfxImageEffectPropSupportedPixelDepths", string(),
                 {string("OfxBitDepthByte"), string("OfxBitDepthShort"), string("OfxBitDepthFloat")}, read_only);
}

void make_effect_descriptor(OfxPropertySetStruct& p)
{
    p.what = "the effect's descriptor";
    p.define("OfxPropType", {string("OfxTypeImageEffect")}, read_only);
    p.define("OfxPluginPropFilePath", {string("/nowhere")}, read_only);
    labels(p, "");
    for (const char* name :
         {"OfxImageEffectPluginPropGrouping", "OfxPropVersionLabel", "OfxPropPluginDescription"})
        p.define(name, {string()});
    p.define_any("OfxPropVersion", 0, {0});
    p.define_any("OfxImageEffectPropSupportedContexts", string());
    p.define_any("OfxImageEffectPropSupportedPixelDepths", string());
    p.define("OfxImageEffectPluginRenderThreadSafety", {string("OfxImageEffectRenderInstanceSafe")});
    ints(p,
         {"OfxImageEffectPluginPropHostFrameThreading", "OfxImageEffectPropSupportsTiles",
          "OfxImageEffectPropSupportsMultiResolution", "OfxImageEffectPluginPropFieldRenderTwiceAlways"},
         1);
    ints(p,
         {"OfxImageEffectPropTemporalClipAccess", "OfxImageEffectPropMultipleClipDepths",
          "OfxImageEffectPropSupportsMultipleClipPARs", "OfxImageEffectPluginPropSingleInstance",
          "OfxImageEffectInstancePropSequentialRender"},
         0);
    p.define_any("OfxImageEffectPropClipPreferencesSlaveParam", string());
    p.define("OfxImageEffectPluginPropOverlayInteractV1", {nothing()});
    for (const char* name : {"OfxImageEffectPropOpenGLRenderSupported", "OfxImageEffectPropCPURenderSupported"})
        p.define(name, {string("false")});
    p.define_any("OfxPluginPropParamPageOrder", string());
    p.define("OfxPropParamSetNeedsSyncing", {0});
}

void make_effect_instance(OfxPropertySetStruct& p, const std::string& context)
{
    p.what = "the effect's instance";
    p.define("OfxPropInstanceData", {nothing()});
    ints(p, {"OfxImageEffectInstancePropSequentialRender", "OfxImageEffectPropSupportsTiles"}, 0);
    p.define("OfxPropType", {string("OfxTypeImageEffectInstance")}, read_only);
    p.define("OfxImageEffectPropContext", {context}, read_only);
    for (const char* name :
         {"OfxImageEffectPropProjectExtent", "OfxImageEffectPropProjectSize", "OfxImageEffectPropProjectOffset"})
        p.define(name, {0.0, 0.0}, read_only);
    p.define("OfxImageEffectPropPixelAspectRatio", {1.0}, read_only);
    p.define("OfxImageEffectPropFrameRate", {25.0}, read_only);
    p.define("OfxImageEffectInstancePropEffectDuration", {100.0}, read_only);
    p.define("OfxPropIsInteractive", {0}, read_only);
}

void make_clip_descriptor(OfxPropertySetStruct& p, const std::string& name)
{
    p.what = "the descriptor of clip " + name;
    p.define("OfxPropType", {string("OfxTypeClip")}, read_only);
    p.define("OfxPropName", {name}, read_only);
    labels(p, "");
    p.define_any("OfxImageEffectPropSupportedComponents", string());
    ints(p, {"OfxImageClipPropOptional", "OfxImageClipPropIsMask", "OfxImageEffectPropTemporalClipAccess"}, 0);
    p.define("OfxImageEffectPropSupportsTiles", {1});
    p.define("OfxImageClipPropFieldExtraction", {string("OfxFieldDoubled")});
}

void make_clip_instance(OfxPropertySetStruct& p)
{
    p.what = "the instance of clip " + p.text("OfxPropName");
    for (auto& [name, each] : p.props)
        each.read_only = true;
    for (const char* name : {"OfxImageEffectPropPixelDepth", "OfxImageEffectPropComponents",
                             "OfxImageClipPropUnmappedPixelDepth", "OfxImageClipPropUnmappedComponents",
                             "OfxImageEffectPropPreMultiplication", "OfxImageClipPropFieldOrder"})
        p.define(name, {string()}, read_only);
    for (const char* name :
         {"OfxImagePropPixelAspectRatio", "OfxImageEffectPropFrameRate", "OfxImageEffectPropUnmappedFrameRate"})
        p.define(name, {1.0}, read_only);
    p.define("OfxImageEffectPropFrameRange", {0.0, 100.0}, read_only);
    ints(p, {"OfxImageClipPropConnected", "OfxImageClipPropContinuousSamples"}, 0, read_only);
}

void make_image(OfxPropertySetStruct& p, const host_image& image)
{
    const image_manner& m = image.manner();
    const OfxRectI b = image.bounds();
    const OfxRectI d = image.defined;
    p.what = "an image";
    p.define("OfxPropType", {string("OfxTypeImage")}, read_only);
    p.define("OfxImageEffectPropPixelDepth", {m.depth}, read_only);
    p.define("OfxImageEffectPropComponents", {m.components}, read_only);
    p.define("OfxImageEffectPropPreMultiplication", {m.premultiplication}, read_only);
    p.define("OfxImagePropField", {m.field}, read_only);
    p.define("OfxImagePropUniqueIdentifier", {string("image")}, read_only);
    p.define("OfxImagePropData", {const_cast<host_image&>(image).data()}, read_only);
    p.define("OfxImagePropBounds", {b.x1, b.y1, b.x2, b.y2}, read_only);
    p.define("OfxImagePropRegionOfDefinition", {d.x1, d.y1, d.x2, d.y2}, read_only);
    p.define("OfxImagePropRowBytes", {image.row_bytes()}, read_only);
    p.define("OfxImageEffectPropRenderScale", {m.scale, m.scale}, read_only);
    p.define("OfxImagePropPixelAspectRatio", {m.pixel_aspect}, read_only);
    if (m.blue_first)
        p.define("OfxImageEffectPropPixelOrder", {string("OfxImagePixelOrderBGRA")}, read_only);
}

bool known_param_type(const std::string& type)
{
    for (const char* known : {"Integer", "Integer2D", "Double", "Double2D", "RGB", "RGBA", "Boolean", "Choice",
                              "String", "Group", "Page", "PushButton"})
        if (type == string("OfxParamType") + known)
            return true;
    return false;
}

void make_param(OfxPropertySetStruct& p, const std::string& type, const std::string& name)
{
    p.what = "parameter " + name;
    p.define("OfxPropType", {string("OfxTypeParameter")}, read_only);
    p.define("OfxPropName", {name}, read_only);
    p.define("OfxParamPropType", {type}, read_only);
    labels(p, name);
    p.define("OfxParamPropScriptName", {name});
    for (const char* text : {"OfxParamPropHint", "OfxParamPropParent"})
        p.define(text, {string()});
    p.define("OfxParamPropEnabled", {1});
    p.define("OfxParamPropSecret", {0});
    p.define("OfxParamPropDataPtr", {nothing()});
    p.define("OfxPropIcon", {string(), string()});
    if (type == "OfxParamTypeGroup")
    {
        p.define("OfxParamPropGroupOpen", {1});
        return;
    }

    const bool switches = type == "OfxParamTypeBoolean" || type == "OfxParamTypeChoice";
    const bool integer = type == "OfxParamTypeInteger";
    const std::size_t n = type == "OfxParamTypeRGBA" ? 4 : type == "OfxParamTypeDouble2D" ? 2 : 1;
    const auto all = [&](prop_value v) { return std::vector<prop_value>(n, v); };
    p.define("OfxParamPropDefault", switches || integer ? all(0) : all(0.0));
    p.define("OfxParamPropAnimates", {switches ? 0 : 1});
    ints(p, {"OfxParamPropPersistant", "OfxParamPropEvaluateOnChange", "OfxParamPropCanUndo"}, 1);
    p.define("OfxParamPropIsAnimating", {0}, read_only);
    p.define("OfxParamPropIsAutoKeying", {0}, read_only);
    p.define("OfxParamPropPluginMayWrite", {0});
    p.define("OfxParamPropCacheInvalidation", {string("OfxParamInvalidateValueChange")});
    if (type == "OfxParamTypeChoice")
        p.define_any("OfxParamPropChoiceOption", string());
    if (switches)
        return;

    for (const char* limit : {"OfxParamPropMin", "OfxParamPropDisplayMin"})
        p.define(limit, integer ? all(INT_MIN) : all(-DBL_MAX));
    for (const char* limit : {"OfxParamPropMax", "OfxParamPropDisplayMax"})
        p.define(limit, integer ? all(INT_MAX) : all(DBL_MAX));
    if (n > 1)
        p.define("OfxParamPropDimensionLabel", all(string("x")));
    if (integer)
        return;
    p.define("OfxParamPropIncrement", {1.0});
    p.define("OfxParamPropDigits", {2});
    if (n == 4)
        return;
    p.define("OfxParamPropDoubleType", {string("OfxParamDoubleTypePlain")});
    p.define("OfxParamPropDefaultCoordinateSystem", {string("OfxParamCoordinatesCanonical")});
}
} // namespace strict
