// The records' sizes and offsets, which hosts of other makes count on.

#include "adapters/openfx/api/suites.hpp"

#include <cstddef>
#include <type_traits>

namespace
{
static_assert(sizeof(void*) == 8 && sizeof(int) == 4);
static_assert(sizeof(OfxRectI) == 16 && sizeof(OfxRectD) == 32 && sizeof(OfxPointD) == 16 &&
              sizeof(OfxRangeD) == 16);

#define CHECK_OFFSET(record, member, bytes) static_assert(offsetof(record, member) == (bytes))

static_assert(sizeof(OfxHost) == 16);
CHECK_OFFSET(OfxHost, host, 0);
CHECK_OFFSET(OfxHost, fetchSuite, 8);

static_assert(sizeof(OfxPlugin) == 48);
CHECK_OFFSET(OfxPlugin, pluginApi, 0);
CHECK_OFFSET(OfxPlugin, apiVersion, 8);
CHECK_OFFSET(OfxPlugin, pluginIdentifier, 16);
CHECK_OFFSET(OfxPlugin, pluginVersionMajor, 24);
CHECK_OFFSET(OfxPlugin, pluginVersionMinor, 28);
CHECK_OFFSET(OfxPlugin, setHost, 32);
CHECK_OFFSET(OfxPlugin, mainEntry, 40);

static_assert(sizeof(OfxPropertySuiteV1) == 144);
CHECK_OFFSET(OfxPropertySuiteV1, propSetPointer, 0);
CHECK_OFFSET(OfxPropertySuiteV1, propSetString, 8);
CHECK_OFFSET(OfxPropertySuiteV1, propSetDouble, 16);
CHECK_OFFSET(OfxPropertySuiteV1, propSetInt, 24);
CHECK_OFFSET(OfxPropertySuiteV1, propSetPointerN, 32);
CHECK_OFFSET(OfxPropertySuiteV1, propSetStringN, 40);
CHECK_OFFSET(OfxPropertySuiteV1, propSetDoubleN, 48);
CHECK_OFFSET(OfxPropertySuiteV1, propSetIntN, 56);
CHECK_OFFSET(OfxPropertySuiteV1, propGetPointer, 64);
CHECK_OFFSET(OfxPropertySuiteV1, propGetString, 72);
CHECK_OFFSET(OfxPropertySuiteV1, propGetDouble, 80);
CHECK_OFFSET(OfxPropertySuiteV1, propGetInt, 88);
CHECK_OFFSET(OfxPropertySuiteV1, propGetPointerN, 96);
CHECK_OFFSET(OfxPropertySuiteV1, propGetStringN, 104);
CHECK_OFFSET(OfxPropertySuiteV1, propGetDoubleN, 112);
CHECK_OFFSET(OfxPropertySuiteV1, propGetIntN, 120);
CHECK_OFFSET(OfxPropertySuiteV1, propReset, 128);
CHECK_OFFSET(OfxPropertySuiteV1, propGetDimension, 136);

static_assert(sizeof(OfxImageEffectSuiteV1) == 104);
CHECK_OFFSET(OfxImageEffectSuiteV1, getPropertySet, 0);
CHECK_OFFSET(OfxImageEffectSuiteV1, getParamSet, 8);
CHECK_OFFSET(OfxImageEffectSuiteV1, clipDefine, 16);
CHECK_OFFSET(OfxImageEffectSuiteV1, clipGetHandle, 24);
CHECK_OFFSET(OfxImageEffectSuiteV1, clipGetPropertySet, 32);
CHECK_OFFSET(OfxImageEffectSuiteV1, clipGetImage, 40);
CHECK_OFFSET(OfxImageEffectSuiteV1, clipReleaseImage, 48);
CHECK_OFFSET(OfxImageEffectSuiteV1, clipGetRegionOfDefinition, 56);
CHECK_OFFSET(OfxImageEffectSuiteV1, abort, 64);
CHECK_OFFSET(OfxImageEffectSuiteV1, imageMemoryAlloc, 72);
CHECK_OFFSET(OfxImageEffectSuiteV1, imageMemoryFree, 80);
CHECK_OFFSET(OfxImageEffectSuiteV1, imageMemoryLock, 88);
CHECK_OFFSET(OfxImageEffectSuiteV1, imageMemoryUnlock, 96);

static_assert(sizeof(OfxParameterSuiteV1) == 144);
CHECK_OFFSET(OfxParameterSuiteV1, paramDefine, 0);
CHECK_OFFSET(OfxParameterSuiteV1, paramGetHandle, 8);
CHECK_OFFSET(OfxParameterSuiteV1, paramSetGetPropertySet, 16);
CHECK_OFFSET(OfxParameterSuiteV1, paramGetPropertySet, 24);
CHECK_OFFSET(OfxParameterSuiteV1, paramGetValue, 32);
CHECK_OFFSET(OfxParameterSuiteV1, paramGetValueAtTime, 40);
CHECK_OFFSET(OfxParameterSuiteV1, paramGetDerivative, 48);
CHECK_OFFSET(OfxParameterSuiteV1, paramGetIntegral, 56);
CHECK_OFFSET(OfxParameterSuiteV1, paramSetValue, 64);
CHECK_OFFSET(OfxParameterSuiteV1, paramSetValueAtTime, 72);
CHECK_OFFSET(OfxParameterSuiteV1, paramGetNumKeys, 80);
CHECK_OFFSET(OfxParameterSuiteV1, paramGetKeyTime, 88);
CHECK_OFFSET(OfxParameterSuiteV1, paramGetKeyIndex, 96);
CHECK_OFFSET(OfxParameterSuiteV1, paramDeleteKey, 104);
CHECK_OFFSET(OfxParameterSuiteV1, paramDeleteAllKeys, 112);
CHECK_OFFSET(OfxParameterSuiteV1, paramCopy, 120);
CHECK_OFFSET(OfxParameterSuiteV1, paramEditBegin, 128);
CHECK_OFFSET(OfxParameterSuiteV1, paramEditEnd, 136);

static_assert(sizeof(OfxMessageSuiteV1) == 8);

#undef CHECK_OFFSET
} // namespace
