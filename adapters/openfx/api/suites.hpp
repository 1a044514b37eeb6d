#pragma once
// The tables of functions that an OpenFX host offers. The order of members is ABI. Members that end in `...` take,
// by the parameter's kind, pointers (get) or values (set) of int, double or char*, one for each dimension.

#include "adapters/openfx/api/types.hpp"

#include <cstddef>

extern "C"
{
    // A missing property, and a wrong type, is kOfxStatErrUnknown; `index` past the end kOfxStatErrBadIndex, but
    // that setting one past the end of a property of any dimension makes it longer.
    struct OfxPropertySuiteV1
    {
        OfxStatus (*propSetPointer)(OfxPropertySetHandle properties, const char* property, int index, void* value);
        OfxStatus (*propSetString)(OfxPropertySetHandle properties, const char* property, int index,
                                   const char* value);
        OfxStatus (*propSetDouble)(OfxPropertySetHandle properties, const char* property, int index, double value);
        OfxStatus (*propSetInt)(OfxPropertySetHandle properties, const char* property, int index, int value);
        OfxStatus (*propSetPointerN)(OfxPropertySetHandle properties, const char* property, int count,
                                     void* const* value);
        OfxStatus (*propSetStringN)(OfxPropertySetHandle properties, const char* property, int count,
                                    const char* const* value);
        OfxStatus (*propSetDoubleN)(OfxPropertySetHandle properties, const char* property, int count,
                                    const double* value);
        OfxStatus (*propSetIntN)(OfxPropertySetHandle properties, const char* property, int count,
                                 const int* value);
        OfxStatus (*propGetPointer)(OfxPropertySetHandle properties, const char* property, int index,
                                    void** value);
        OfxStatus (*propGetString)(OfxPropertySetHandle properties, const char* property, int index, char** value);
        OfxStatus (*propGetDouble)(OfxPropertySetHandle properties, const char* property, int index,
                                   double* value);
        OfxStatus (*propGetInt)(OfxPropertySetHandle properties, const char* property, int index, int* value);
        OfxStatus (*propGetPointerN)(OfxPropertySetHandle properties, const char* property, int count,
                                     void** value);
        OfxStatus (*propGetStringN)(OfxPropertySetHandle properties, const char* property, int count,
                                    char** value);
        OfxStatus (*propGetDoubleN)(OfxPropertySetHandle properties, const char* property, int count,
                                    double* value);
        OfxStatus (*propGetIntN)(OfxPropertySetHandle properties, const char* property, int count, int* value);
        OfxStatus (*propReset)(OfxPropertySetHandle properties, const char* property);
        OfxStatus (*propGetDimension)(OfxPropertySetHandle properties, const char* property, int* count);
    };

    struct OfxImageEffectSuiteV1
    {
        OfxStatus (*getPropertySet)(OfxImageEffectHandle effect, OfxPropertySetHandle* properties);
        OfxStatus (*getParamSet)(OfxImageEffectHandle effect, OfxParamSetHandle* paramSet);
        OfxStatus (*clipDefine)(OfxImageEffectHandle effect, const char* name, OfxPropertySetHandle* properties);
        OfxStatus (*clipGetHandle)(OfxImageEffectHandle effect, const char* name, OfxImageClipHandle* clip,
                                   OfxPropertySetHandle* properties);
        OfxStatus (*clipGetPropertySet)(OfxImageClipHandle clip, OfxPropertySetHandle* properties);
        // kOfxStatFailed: no image there, which is transparent black. Each image that was got is released once.
        OfxStatus (*clipGetImage)(OfxImageClipHandle clip, OfxTime time, const OfxRectD* region,
                                  OfxPropertySetHandle* image);
        OfxStatus (*clipReleaseImage)(OfxPropertySetHandle image);
        OfxStatus (*clipGetRegionOfDefinition)(OfxImageClipHandle clip, OfxTime time, OfxRectD* bounds);
        int (*abort)(OfxImageEffectHandle effect); // 1: the render is no longer wanted
        OfxStatus (*imageMemoryAlloc)(OfxImageEffectHandle effect, std::size_t bytes,
                                      OfxImageMemoryHandle* memory);
        OfxStatus (*imageMemoryFree)(OfxImageMemoryHandle memory);
        OfxStatus (*imageMemoryLock)(OfxImageMemoryHandle memory, void** data);
        OfxStatus (*imageMemoryUnlock)(OfxImageMemoryHandle memory);
    };

    struct OfxParameterSuiteV1
    {
        OfxStatus (*paramDefine)(OfxParamSetHandle paramSet, const char* paramType, const char* name,
                                 OfxPropertySetHandle* properties);
        OfxStatus (*paramGetHandle)(OfxParamSetHandle paramSet, const char* name, OfxParamHandle* param,
                                    OfxPropertySetHandle* properties);
        OfxStatus (*paramSetGetPropertySet)(OfxParamSetHandle paramSet, OfxPropertySetHandle* properties);
        OfxStatus (*paramGetPropertySet)(OfxParamHandle param, OfxPropertySetHandle* properties);
        OfxStatus (*paramGetValue)(OfxParamHandle param, ...);
        OfxStatus (*paramGetValueAtTime)(OfxParamHandle param, OfxTime time, ...);
        OfxStatus (*paramGetDerivative)(OfxParamHandle param, OfxTime time, ...);
        OfxStatus (*paramGetIntegral)(OfxParamHandle param, OfxTime time1, OfxTime time2, ...);
        OfxStatus (*paramSetValue)(OfxParamHandle param, ...);
        OfxStatus (*paramSetValueAtTime)(OfxParamHandle param, OfxTime time, ...);
        OfxStatus (*paramGetNumKeys)(OfxParamHandle param, unsigned int* keys);
        OfxStatus (*paramGetKeyTime)(OfxParamHandle param, unsigned int nth, OfxTime* time);
        OfxStatus (*paramGetKeyIndex)(OfxParamHandle param, OfxTime time, int direction, int* index);
        OfxStatus (*paramDeleteKey)(OfxParamHandle param, OfxTime time);
        OfxStatus (*paramDeleteAllKeys)(OfxParamHandle param);
        OfxStatus (*paramCopy)(OfxParamHandle to, OfxParamHandle from, OfxTime offset, const OfxRangeD* range);
        OfxStatus (*paramEditBegin)(OfxParamSetHandle paramSet, const char* name);
        OfxStatus (*paramEditEnd)(OfxParamSetHandle paramSet);
    };

    struct OfxMessageSuiteV1
    {
        OfxStatus (*message)(void* effect, const char* messageType, const char* messageId, const char* format,
                             ...);
    };
}
