#include "adapters/openfx/suites.hpp"

#include "adapters/openfx/api/names.hpp"

#include <atomic>

namespace openfx
{
namespace
{
std::atomic<const OfxHost*> kept_host{nullptr};
std::atomic<const OfxPropertySuiteV1*> property_suite{nullptr};
std::atomic<const OfxImageEffectSuiteV1*> effect_suite{nullptr};
std::atomic<const OfxParameterSuiteV1*> param_suite{nullptr};
std::atomic<const OfxMessageSuiteV1*> message_suite{nullptr};

template <class Suite>
const Suite* fetched(const OfxHost& host, const char* name)
{
    return static_cast<const Suite*>(host.fetchSuite(host.host, name, 1));
}
} // namespace

void keep_host(OfxHost* host) noexcept
{
    kept_host = host;
}

bool fetch_suites() noexcept
{
    const OfxHost* const host = kept_host;
    if (!host || !host->fetchSuite)
        return false;
    const auto* property = fetched<OfxPropertySuiteV1>(*host, kOfxPropertySuite);
    const auto* effect = fetched<OfxImageEffectSuiteV1>(*host, kOfxImageEffectSuite);
    const auto* param = fetched<OfxParameterSuiteV1>(*host, kOfxParameterSuite);
    if (!property || !effect || !param)
        return false;
    property_suite = property;
    effect_suite = effect;
    param_suite = param;
    message_suite = fetched<OfxMessageSuiteV1>(*host, kOfxMessageSuite);
    return true;
}

suite_set suites() noexcept
{
    return {property_suite, effect_suite, param_suite, message_suite};
}
} // namespace openfx
