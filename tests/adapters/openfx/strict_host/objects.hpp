#pragma once
// The strict host's objects behind handles: effects (descriptors and instances), their clips and parameters,
// images.

#include "tests/adapters/openfx/strict_host/host_image.hpp"
#include "tests/adapters/openfx/strict_host/property_store.hpp"

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct OfxParamStruct
{
    std::string name;
    std::string type;
    OfxPropertySetStruct props;
    std::array<double, 4> value{};
    std::map<double, std::array<double, 4>> keys; // linear between them

    bool whole() const; // int for a plug-in
    int dimension() const;
    std::array<double, 4> at(double time) const;
};

struct OfxParamSetStruct
{
    std::vector<std::unique_ptr<OfxParamStruct>> params;
    OfxPropertySetStruct* props = nullptr; // the effect's
    int edits_open = 0;
    int edits = 0;

    OfxParamStruct* find(const std::string& name) const;
};

struct OfxImageClipStruct
{
    std::string name;
    OfxPropertySetStruct props;
    // What clipGetImage lends, for a time; null where there is none then.
    std::function<std::shared_ptr<strict::host_image>(double time)> image;
    std::optional<OfxRectD> defined; // canonical; the answer is a failure without
};

struct OfxImageEffectStruct
{
    OfxPropertySetStruct props;
    OfxParamSetStruct params;
    std::map<std::string, std::unique_ptr<OfxImageClipStruct>> clips;
    bool instance = false;
};

namespace strict
{
// Gives each kind of object its properties.
void make_host(OfxPropertySetStruct& props);
void make_effect_descriptor(OfxPropertySetStruct& props);
void make_effect_instance(OfxPropertySetStruct& props, const std::string& context);
void make_clip_descriptor(OfxPropertySetStruct& props, const std::string& name);
void make_clip_instance(OfxPropertySetStruct& props);
void make_param(OfxPropertySetStruct& props, const std::string& type, const std::string& name);
void make_image(OfxPropertySetStruct& props, const host_image& image);
bool known_param_type(const std::string& type);

const OfxImageEffectSuiteV1& effect_suite();
const OfxParameterSuiteV1& param_suite();
const OfxMessageSuiteV1& message_suite();
int images_out();      // lent and not released
int images_out_here(); // of these, to this thread
} // namespace strict
