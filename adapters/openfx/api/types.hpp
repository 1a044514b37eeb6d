#pragma once
// The OpenFX C API, image effects, API version 1: statuses, handles and records that cross the border between a
// host and a plug-in. Declarations only; 64-bit targets, natural alignment, C linkage. `layout_checks.cpp` holds
// the offsets at compile time.

using OfxStatus = int;

// Good, or an answer.
inline constexpr OfxStatus kOfxStatOK = 0;
inline constexpr OfxStatus kOfxStatReplyYes = 12;
inline constexpr OfxStatus kOfxStatReplyNo = 13;
inline constexpr OfxStatus kOfxStatReplyDefault = 14; // the action is not handled: the host does its default
// Failures.
inline constexpr OfxStatus kOfxStatFailed = 1;
inline constexpr OfxStatus kOfxStatErrFatal = 2;
inline constexpr OfxStatus kOfxStatErrUnknown = 3; // no such object or property
inline constexpr OfxStatus kOfxStatErrMissingHostFeature = 4;
inline constexpr OfxStatus kOfxStatErrUnsupported = 5;
inline constexpr OfxStatus kOfxStatErrExists = 6;
inline constexpr OfxStatus kOfxStatErrFormat = 7;
inline constexpr OfxStatus kOfxStatErrMemory = 8;
inline constexpr OfxStatus kOfxStatErrBadHandle = 9;
inline constexpr OfxStatus kOfxStatErrBadIndex = 10;
inline constexpr OfxStatus kOfxStatErrValue = 11;
inline constexpr OfxStatus kOfxStatErrImageFormat = 1000;

using OfxTime = double; // in frames of the output

struct OfxPointD
{
    double x, y;
};
struct OfxRangeD
{
    double min, max;
};
// y points up; x2 and y2 are not included.
struct OfxRectI
{
    int x1, y1, x2, y2;
};
struct OfxRectD
{
    double x1, y1, x2, y2;
};

// What stands behind a handle is the host's own.
using OfxPropertySetHandle = struct OfxPropertySetStruct*;
using OfxImageEffectHandle = struct OfxImageEffectStruct*;
using OfxImageClipHandle = struct OfxImageClipStruct*;
using OfxImageMemoryHandle = struct OfxImageMemoryStruct*;
using OfxParamHandle = struct OfxParamStruct*;
using OfxParamSetHandle = struct OfxParamSetStruct*;
using OfxMutexHandle = struct OfxMutexStruct*;

extern "C"
{
    // `handle` is an effect's, or null, as the action asks.
    using OfxPluginEntryPoint = OfxStatus(const char* action, const void* handle, OfxPropertySetHandle inArgs,
                                          OfxPropertySetHandle outArgs);
    using OfxThreadFunctionV1 = void(unsigned int threadIndex, unsigned int threadMax, void* customArg);

    struct OfxHost
    {
        OfxPropertySetHandle host;
        // Null for a name or version that the host does not have.
        const void* (*fetchSuite)(OfxPropertySetHandle host, const char* suiteName, int suiteVersion);
    };

    struct OfxPlugin
    {
        const char* pluginApi;
        int apiVersion;
        const char* pluginIdentifier;
        unsigned int pluginVersionMajor;
        unsigned int pluginVersionMinor;
        void (*setHost)(OfxHost* host);
        OfxPluginEntryPoint* mainEntry;
    };
}
