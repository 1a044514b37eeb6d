#pragma once
// What the host offers: the pointer that it set, and the tables of functions that were fetched with it. Any thread
// may ask at any time, also while a host loads the plug-in once more.

#include "adapters/openfx/api/suites.hpp"

namespace openfx
{
// The tables; null where the host has none of that name. While an effect is described, made or rendered the first
// three are there.
struct suite_set
{
    const OfxPropertySuiteV1* property = nullptr;
    const OfxImageEffectSuiteV1* effect = nullptr;
    const OfxParameterSuiteV1* param = nullptr;
    const OfxMessageSuiteV1* message = nullptr;
};

// Only keeps the pointer: no suite may be fetched yet.
void keep_host(OfxHost* host) noexcept;

// Fetches all of them anew. False, and the earlier ones stay, where one of the first three is missing.
bool fetch_suites() noexcept;

suite_set suites() noexcept;
} // namespace openfx
