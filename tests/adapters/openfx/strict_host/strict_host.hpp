#pragma once
// A host that takes the API at its word: every handle, property, type and index is checked, what is lent is spoilt
// once it is given back, and whatever is done wrong is written down. One at a time.

#include "host/src/shared_object.hpp"
#include "tests/adapters/openfx/strict_host/objects.hpp"
#include "tests/adapters/openfx/strict_host/watch.hpp"

#include <filesystem>
#include <memory>
#include <set>
#include <string>

namespace strict
{
// The plug-in's binary, opened and let go.
class binary
{
public:
    explicit binary(const std::filesystem::path& file);

    int plugins() const;
    OfxPlugin* plugin(int nth) const;

private:
    ::host::shared_object library_;
    int (*count_)();
    OfxPlugin* (*get_)(int);
};

struct render_call
{
    double time = 0.0;
    OfxRectI window{};
    double scale_x = 1.0;
    double scale_y = 1.0;
    std::string field = "OfxFieldNone";
};

class host
{
public:
    host();
    ~host(); // complains of what was not given back
    host(const host&) = delete;
    host& operator=(const host&) = delete;

    OfxHost* table() { return &table_; }
    std::set<std::string> absent_suites;
    OfxPropertySetStruct props;

    // Sends an action; what a plug-in answers is the test's matter.
    OfxStatus act(const OfxPlugin& plugin, const char* action, const void* handle = nullptr,
                  OfxPropertySetStruct* in = nullptr, OfxPropertySetStruct* out = nullptr);

    // setHost and load; then the two descriptions into `effect`.
    OfxStatus load(const OfxPlugin& plugin);
    std::unique_ptr<OfxImageEffectStruct> describe(const OfxPlugin& plugin, const std::string& context,
                                                   OfxStatus* answer = nullptr);
    // An instance with every parameter at its default, as described. A host may have one handle for both.
    std::unique_ptr<OfxImageEffectStruct> create(const OfxPlugin& plugin, const OfxImageEffectStruct& descriptor,
                                                 const std::string& context);
    OfxStatus destroy(const OfxPlugin& plugin, std::unique_ptr<OfxImageEffectStruct> instance);

    OfxStatus render(const OfxPlugin& plugin, OfxImageEffectStruct& instance, const render_call& what);
    // The clip's name and time where the answer is OK.
    OfxStatus is_identity(const OfxPlugin& plugin, OfxImageEffectStruct& instance, const render_call& what,
                          std::string* clip = nullptr, double* time = nullptr);
    OfxStatus changed(const OfxPlugin& plugin, OfxImageEffectStruct& instance, const std::string& param,
                      const std::string& reason);
    OfxStatus clip_preferences(const OfxPlugin& plugin, OfxImageEffectStruct& instance, OfxPropertySetStruct& out);

    std::vector<std::string> complaints() const;

    // Lets go of what describe and create made.
    static void forget(OfxImageEffectStruct& effect);

private:
    OfxHost table_;
};

// Connects a clip to images: their manner is the clip's, too.
void connect(OfxImageEffectStruct& instance, const std::string& clip,
             std::function<std::shared_ptr<host_image>(double)> image, const image_manner& manner);
} // namespace strict
