#pragma once
// The strings of the OpenFX API that this project uses: actions, suites, properties and values. The customary name
// of a string is the string with a k in front; the exceptions are marked.

// ---- the API and its suites
inline constexpr char kOfxImageEffectPluginApi[] = "OfxImageEffectPluginAPI"; // spelt so
inline constexpr int kOfxImageEffectPluginApiVersion = 1;
inline constexpr char kOfxPropertySuite[] = "OfxPropertySuite";
inline constexpr char kOfxImageEffectSuite[] = "OfxImageEffectSuite";
inline constexpr char kOfxParameterSuite[] = "OfxParameterSuite";
inline constexpr char kOfxMessageSuite[] = "OfxMessageSuite";
inline constexpr char kOfxMessageLog[] = "OfxMessageLog";
inline constexpr char kOfxMessageError[] = "OfxMessageError";

// ---- actions
inline constexpr char kOfxActionLoad[] = "OfxActionLoad";
inline constexpr char kOfxActionUnload[] = "OfxActionUnload";
inline constexpr char kOfxActionDescribe[] = "OfxActionDescribe";
inline constexpr char kOfxActionCreateInstance[] = "OfxActionCreateInstance";
inline constexpr char kOfxActionDestroyInstance[] = "OfxActionDestroyInstance";
inline constexpr char kOfxActionInstanceChanged[] = "OfxActionInstanceChanged";
inline constexpr char kOfxImageEffectActionDescribeInContext[] = "OfxImageEffectActionDescribeInContext";
inline constexpr char kOfxImageEffectActionGetClipPreferences[] = "OfxImageEffectActionGetClipPreferences";
inline constexpr char kOfxImageEffectActionIsIdentity[] = "OfxImageEffectActionIsIdentity";
inline constexpr char kOfxImageEffectActionRender[] = "OfxImageEffectActionRender";

// ---- properties of every object
inline constexpr char kOfxPropType[] = "OfxPropType";
inline constexpr char kOfxPropName[] = "OfxPropName";
inline constexpr char kOfxPropLabel[] = "OfxPropLabel";
inline constexpr char kOfxPropShortLabel[] = "OfxPropShortLabel";
inline constexpr char kOfxPropLongLabel[] = "OfxPropLongLabel";
inline constexpr char kOfxPropVersion[] = "OfxPropVersion";
inline constexpr char kOfxPropVersionLabel[] = "OfxPropVersionLabel";
inline constexpr char kOfxPropPluginDescription[] = "OfxPropPluginDescription";
inline constexpr char kOfxPropTime[] = "OfxPropTime";
inline constexpr char kOfxPropChangeReason[] = "OfxPropChangeReason";
inline constexpr char kOfxChangeUserEdited[] = "OfxChangeUserEdited";
inline constexpr char kOfxTypeParameter[] = "OfxTypeParameter";

// ---- the effect
inline constexpr char kOfxPluginPropFilePath[] = "OfxPluginPropFilePath";
inline constexpr char kOfxImageEffectPluginPropGrouping[] = "OfxImageEffectPluginPropGrouping";
inline constexpr char kOfxImageEffectPropContext[] = "OfxImageEffectPropContext";
inline constexpr char kOfxImageEffectPropSupportedContexts[] = "OfxImageEffectPropSupportedContexts";
inline constexpr char kOfxImageEffectPropSupportedPixelDepths[] = "OfxImageEffectPropSupportedPixelDepths";
inline constexpr char kOfxImageEffectPropSupportedComponents[] = "OfxImageEffectPropSupportedComponents";
inline constexpr char kOfxImageEffectPluginRenderThreadSafety[] = "OfxImageEffectPluginRenderThreadSafety";
inline constexpr char kOfxImageEffectPluginPropHostFrameThreading[] = "OfxImageEffectPluginPropHostFrameThreading";
inline constexpr char kOfxImageEffectPluginPropFieldRenderTwiceAlways[] =
    "OfxImageEffectPluginPropFieldRenderTwiceAlways";
inline constexpr char kOfxImageEffectPluginPropSingleInstance[] = "OfxImageEffectPluginPropSingleInstance";
inline constexpr char kOfxImageEffectPropSupportsTiles[] = "OfxImageEffectPropSupportsTiles";
inline constexpr char kOfxImageEffectPropSupportsMultiResolution[] = "OfxImageEffectPropSupportsMultiResolution";
inline constexpr char kOfxImageEffectPropTemporalClipAccess[] = "OfxImageEffectPropTemporalClipAccess";
inline constexpr char kOfxImageEffectPropSupportsMultipleClipDepths[] =
    "OfxImageEffectPropMultipleClipDepths"; // spelt so
inline constexpr char kOfxImageEffectPropSupportsMultipleClipPARs[] = "OfxImageEffectPropSupportsMultipleClipPARs";
inline constexpr char kOfxImageEffectPropProjectSize[] = "OfxImageEffectPropProjectSize";
inline constexpr char kOfxImageEffectPropProjectExtent[] = "OfxImageEffectPropProjectExtent";
inline constexpr char kOfxImageEffectPropFrameRate[] = "OfxImageEffectPropFrameRate";

inline constexpr char kOfxImageEffectContextFilter[] = "OfxImageEffectContextFilter";
inline constexpr char kOfxImageEffectContextGeneral[] = "OfxImageEffectContextGeneral";
inline constexpr char kOfxImageEffectContextGenerator[] = "OfxImageEffectContextGenerator";
inline constexpr char kOfxImageEffectRenderFullySafe[] = "OfxImageEffectRenderFullySafe";

// ---- clips and images
inline constexpr char kOfxImageEffectOutputClipName[] = "Output";       // no k string
inline constexpr char kOfxImageEffectSimpleSourceClipName[] = "Source"; // no k string
inline constexpr char kOfxImageClipPropOptional[] = "OfxImageClipPropOptional";
inline constexpr char kOfxImageClipPropConnected[] = "OfxImageClipPropConnected";
inline constexpr char kOfxImageClipPropFieldExtraction[] = "OfxImageClipPropFieldExtraction";
inline constexpr char kOfxImageEffectFrameVarying[] = "OfxImageEffectFrameVarying";
inline constexpr char kOfxImageEffectPropPreMultiplication[] = "OfxImageEffectPropPreMultiplication";
inline constexpr char kOfxImageEffectPropPixelDepth[] = "OfxImageEffectPropPixelDepth";
inline constexpr char kOfxImageEffectPropComponents[] = "OfxImageEffectPropComponents";
inline constexpr char kOfxImageEffectPropPixelOrder[] = "OfxImageEffectPropPixelOrder"; // of one family of hosts
inline constexpr char kOfxImageEffectPropRenderScale[] = "OfxImageEffectPropRenderScale";
inline constexpr char kOfxImageEffectPropRenderWindow[] = "OfxImageEffectPropRenderWindow";
inline constexpr char kOfxImageEffectPropFieldToRender[] = "OfxImageEffectPropFieldToRender";
inline constexpr char kOfxImagePropData[] = "OfxImagePropData";
inline constexpr char kOfxImagePropBounds[] = "OfxImagePropBounds";
inline constexpr char kOfxImagePropRegionOfDefinition[] = "OfxImagePropRegionOfDefinition";
inline constexpr char kOfxImagePropRowBytes[] = "OfxImagePropRowBytes";
inline constexpr char kOfxImagePropField[] = "OfxImagePropField";
inline constexpr char kOfxImagePropPixelAspectRatio[] = "OfxImagePropPixelAspectRatio";

inline constexpr char kOfxBitDepthByte[] = "OfxBitDepthByte";
inline constexpr char kOfxBitDepthShort[] = "OfxBitDepthShort";
inline constexpr char kOfxBitDepthFloat[] = "OfxBitDepthFloat";
inline constexpr char kOfxImageComponentRGBA[] = "OfxImageComponentRGBA";
inline constexpr char kOfxImageComponentRGB[] = "OfxImageComponentRGB";
inline constexpr char kOfxImagePixelOrderBGRA[] = "OfxImagePixelOrderBGRA";
inline constexpr char kOfxImageOpaque[] = "OfxImageOpaque";
inline constexpr char kOfxImagePreMultiplied[] = "OfxImageAlphaPremultiplied";     // spelt so
inline constexpr char kOfxImageUnPreMultiplied[] = "OfxImageAlphaUnPremultiplied"; // spelt so
inline constexpr char kOfxImageFieldNone[] = "OfxFieldNone";                       // spelt so, all of these
inline constexpr char kOfxImageFieldBoth[] = "OfxFieldBoth";
inline constexpr char kOfxImageFieldLower[] = "OfxFieldLower";
inline constexpr char kOfxImageFieldUpper[] = "OfxFieldUpper";
inline constexpr char kOfxImageFieldSingle[] = "OfxFieldSingle";

// ---- parameters
inline constexpr char kOfxParamTypeInteger[] = "OfxParamTypeInteger";
inline constexpr char kOfxParamTypeDouble[] = "OfxParamTypeDouble";
inline constexpr char kOfxParamTypeDouble2D[] = "OfxParamTypeDouble2D";
inline constexpr char kOfxParamTypeRGBA[] = "OfxParamTypeRGBA";
inline constexpr char kOfxParamTypeBoolean[] = "OfxParamTypeBoolean";
inline constexpr char kOfxParamTypeChoice[] = "OfxParamTypeChoice";
inline constexpr char kOfxParamTypeGroup[] = "OfxParamTypeGroup";
inline constexpr char kOfxParamPropScriptName[] = "OfxParamPropScriptName";
inline constexpr char kOfxParamPropHint[] = "OfxParamPropHint";
inline constexpr char kOfxParamPropParent[] = "OfxParamPropParent";
inline constexpr char kOfxParamPropDefault[] = "OfxParamPropDefault";
inline constexpr char kOfxParamPropAnimates[] = "OfxParamPropAnimates";
inline constexpr char kOfxParamPropPersistant[] = "OfxParamPropPersistant"; // spelt so
inline constexpr char kOfxParamPropEvaluateOnChange[] = "OfxParamPropEvaluateOnChange";
inline constexpr char kOfxParamPropCacheInvalidation[] = "OfxParamPropCacheInvalidation";
inline constexpr char kOfxParamInvalidateValueChangeToEnd[] = "OfxParamInvalidateValueChangeToEnd";
inline constexpr char kOfxParamPropMin[] = "OfxParamPropMin";
inline constexpr char kOfxParamPropMax[] = "OfxParamPropMax";
inline constexpr char kOfxParamPropDisplayMin[] = "OfxParamPropDisplayMin";
inline constexpr char kOfxParamPropDisplayMax[] = "OfxParamPropDisplayMax";
inline constexpr char kOfxParamPropIncrement[] = "OfxParamPropIncrement";
inline constexpr char kOfxParamPropDigits[] = "OfxParamPropDigits";
inline constexpr char kOfxParamPropDoubleType[] = "OfxParamPropDoubleType";
inline constexpr char kOfxParamDoubleTypePlain[] = "OfxParamDoubleTypePlain";
inline constexpr char kOfxParamDoubleTypeAngle[] = "OfxParamDoubleTypeAngle";
inline constexpr char kOfxParamPropChoiceOption[] = "OfxParamPropChoiceOption";
inline constexpr char kOfxParamPropGroupOpen[] = "OfxParamPropGroupOpen";
