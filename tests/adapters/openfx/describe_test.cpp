// What a host is told before there is an instance.

#include "tests/adapters/openfx/ofx_session.hpp"

#include <cctype>
#include <gmock/gmock.h>

namespace
{
using namespace ofx;
using testing::ElementsAre;

TEST(openfx_describe, exports_one_plugin_that_stays_where_it_is)
{
    const strict::binary library(FILIGRANE_OFX_FILE);
    EXPECT_EQ(library.plugins(), 1);
    const OfxPlugin* plugin = library.plugin(0);
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(library.plugin(0), plugin);
    EXPECT_EQ(library.plugin(1), nullptr);
    EXPECT_EQ(library.plugin(-1), nullptr);
    EXPECT_STREQ(plugin->pluginApi, "OfxImageEffectPluginAPI");
    EXPECT_EQ(plugin->apiVersion, 1);
    EXPECT_STREQ(plugin->pluginIdentifier, "filigrane.lines");
    EXPECT_EQ(plugin->pluginVersionMajor, 1u);
}

TEST(openfx_describe, says_what_the_effect_can_do)
{
    session s;
    const OfxPropertySetStruct& d = s.descriptor->props;
    EXPECT_THAT(d.texts("OfxImageEffectPropSupportedContexts"), ElementsAre(filter, general, generator));
    EXPECT_THAT(d.texts("OfxImageEffectPropSupportedPixelDepths"),
                ElementsAre("OfxBitDepthByte", "OfxBitDepthShort", "OfxBitDepthFloat"));
    EXPECT_EQ(d.text("OfxPropLabel"), "Filigrane");
    EXPECT_NE(d.text("OfxImageEffectPluginPropGrouping"), "");
    EXPECT_NE(d.text("OfxPropPluginDescription").find("hand-drawn"), std::string::npos);
    EXPECT_EQ(d.integer("OfxPropVersion", 0), effect().version().major);
    EXPECT_EQ(d.integer("OfxPropVersion", 1), effect().version().minor);
    EXPECT_EQ(d.text("OfxImageEffectPluginRenderThreadSafety"), "OfxImageEffectRenderFullySafe");
    for (const char* off :
         {"OfxImageEffectPluginPropHostFrameThreading", "OfxImageEffectPropSupportsTiles",
          "OfxImageEffectPropSupportsMultiResolution", "OfxImageEffectPluginPropFieldRenderTwiceAlways",
          "OfxImageEffectPropTemporalClipAccess", "OfxImageEffectPropMultipleClipDepths",
          "OfxImageEffectPluginPropSingleInstance"})
        EXPECT_EQ(d.integer(off), 0) << off;
}

TEST(openfx_describe, defines_the_clips_of_each_context)
{
    for (const std::string& context : {filter, general, generator})
    {
        session s(context);
        const auto& clips = s.descriptor->clips;
        EXPECT_EQ(clips.size(), context == generator ? 1u : 2u) << context;
        ASSERT_TRUE(clips.contains("Output"));
        EXPECT_EQ(clips.contains("Source"), context != generator);
        for (const auto& [name, clip] : clips)
        {
            EXPECT_THAT(clip->props.texts("OfxImageEffectPropSupportedComponents"),
                        ElementsAre("OfxImageComponentRGBA", "OfxImageComponentRGB"));
            EXPECT_EQ(clip->props.integer("OfxImageEffectPropSupportsTiles"), 0);
            EXPECT_EQ(clip->props.integer("OfxImageEffectPropTemporalClipAccess"), 0);
            EXPECT_EQ(clip->props.integer("OfxImageClipPropOptional"),
                      name == "Source" && context == general ? 1 : 0);
        }
    }
}

bool is_name(const std::string& name)
{
    for (const char c : name)
        if (!std::isalnum(static_cast<unsigned char>(c)))
            return false;
    return !name.empty() && std::isalpha(static_cast<unsigned char>(name[0])) != 0;
}

bool is_plain(const std::string& label)
{
    for (const char c : label)
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != ' ')
            return false;
    return !label.empty() && label.back() != ' ';
}

std::string kind_of(const host::param_info& info)
{
    switch (info.kind)
    {
    case host::param_kind::slider:
        return "Integer";
    case host::param_kind::point:
        return "Double2D";
    case host::param_kind::color:
        return "RGBA";
    case host::param_kind::checkbox:
        return "Boolean";
    case host::param_kind::popup:
        return "Choice";
    default:
        return "Double";
    }
}

// Labels without what some hosts warn of.
std::string plain(const std::string& label)
{
    std::string kept;
    for (const char c : label)
        if (c != '(' && c != ')')
            kept += c;
    return kept;
}

TEST(openfx_describe, names_every_parameter_of_the_effect_in_its_group)
{
    session s;
    const auto& defined = s.descriptor->params.params;
    std::size_t next = 0;
    ASSERT_EQ(defined[next]->name, "look");
    ++next;
    std::string group_label, group_name;
    for (const host::param_info& info : effect().params())
    {
        if (info.kind == host::param_kind::group_start)
        {
            const OfxParamStruct& group = *defined.at(next++);
            EXPECT_EQ(group.type, "OfxParamTypeGroup");
            EXPECT_EQ(group.props.text("OfxPropLabel"), info.label);
            EXPECT_TRUE(is_name(group.name));
            group_name = group.name;
            group_label = info.label;
        }
        if (!info.has_value())
            continue;
        const OfxParamStruct& param = *defined.at(next++);
        SCOPED_TRACE(info.label);
        EXPECT_EQ(param.type, "OfxParamType" + kind_of(info));
        EXPECT_TRUE(is_name(param.name)) << param.name;
        const std::string label = param.props.text("OfxPropLabel");
        EXPECT_TRUE(is_plain(label)) << label;
        EXPECT_EQ(label, plain(info.label));
        EXPECT_EQ(param.props.text("OfxPropShortLabel"), label);
        EXPECT_EQ(param.props.text("OfxPropLongLabel"), label);
        EXPECT_EQ(param.props.text("OfxParamPropScriptName"), param.name);
        EXPECT_EQ(param.props.text("OfxParamPropParent"), info.topic.empty() ? "" : group_name);
        EXPECT_EQ(info.topic, group_label);
        EXPECT_GT(param.props.text("OfxParamPropHint").size(), 20u);
        EXPECT_EQ(param.props.integer("OfxParamPropAnimates"), info.animatable ? 1 : 0);
        EXPECT_EQ(param.props.text("OfxParamPropCacheInvalidation"),
                  info.animatable ? "OfxParamInvalidateValueChangeToEnd" : "OfxParamInvalidateValueChange");
        EXPECT_EQ(param.props.integer("OfxParamPropPersistant"), 1);
    }
    EXPECT_EQ(next, defined.size());
    EXPECT_LT(defined.size(), 1000u);
}

double bound(const OfxParamStruct& param, const char* name, int i)
{
    return param.whole() ? param.props.integer(name, i) : param.props.number(name, i);
}

TEST(openfx_describe, gives_every_number_limits_and_a_default_within_them)
{
    session s;
    for (const auto& param : s.descriptor->params.params)
    {
        if (param->type == "OfxParamTypeGroup" || param->type == "OfxParamTypeBoolean" ||
            param->type == "OfxParamTypeChoice")
            continue;
        for (int i = 0; i < param->dimension(); ++i)
        {
            SCOPED_TRACE(param->name);
            const double least = bound(*param, "OfxParamPropMin", i), most = bound(*param, "OfxParamPropMax", i);
            const double shown_least = bound(*param, "OfxParamPropDisplayMin", i);
            const double shown_most = bound(*param, "OfxParamPropDisplayMax", i);
            const double initial = bound(*param, "OfxParamPropDefault", i);
            EXPECT_LT(most, 2147483648.0); // not the type's own
            EXPECT_GT(least, -40000.0);
            EXPECT_LT(shown_least, shown_most);
            EXPECT_LE(least, shown_least);
            EXPECT_GE(most, shown_most);
            EXPECT_LE(shown_least, initial);
            EXPECT_GE(shown_most, initial);
        }
        if (!param->whole())
        {
            EXPECT_GT(param->props.number("OfxParamPropIncrement"), 0.0);
        }
    }
}

TEST(openfx_describe, turns_values_into_the_hosts_manner)
{
    session s;
    const auto expect = [&](const char* name, std::array<double, 4> initial, double least, double most)
    {
        const OfxParamStruct& param = *s.descriptor->params.find(name);
        for (int i = 0; i < param.dimension(); ++i)
            EXPECT_NEAR(bound(param, "OfxParamPropDefault", i), initial[static_cast<std::size_t>(i)], 1e-9)
                << name;
        EXPECT_EQ(bound(param, "OfxParamPropMin", 0), least) << name;
        EXPECT_EQ(bound(param, "OfxParamPropMax", 0), most) << name;
    };
    expect("rows", {4}, 0, 100);
    expect("normalLineWidth", {2}, 1, 200);
    expect("randomSeed", {12345}, 1, 2147483647);
    expect("blendAmount", {0.5}, 0, 1);
    expect("verticalGrowth", {3}, 0, 100);
    expect("rotation", {0}, -32767, 32767);
    expect("position", {0.5, 0.5}, -100, 100);
    expect("verticalStartingPoint", {0.5, 0.9}, -100, 100); // 10 % from the top
    expect("horizontalStartingPoint", {0.1, 0.5}, -100, 100);
    expect("normalColor", {0, 0, 1, 1}, 0, 1);
    EXPECT_EQ(s.descriptor->params.find("rotation")->props.text("OfxParamPropDoubleType"),
              "OfxParamDoubleTypeAngle");
    EXPECT_EQ(s.descriptor->params.find("blendAmount")->props.text("OfxParamPropDoubleType"),
              "OfxParamDoubleTypePlain");
    EXPECT_EQ(s.descriptor->params.find("makeSizeMatchLayerSize")->props.integer("OfxParamPropDefault"), 1);
    const OfxPropertySetStruct& affect = s.descriptor->params.find("affect")->props;
    EXPECT_EQ(affect.integer("OfxParamPropDefault"), 2);
    EXPECT_THAT(affect.texts("OfxParamPropChoiceOption"), ElementsAre("Vert Lines", "Horz Lines", "Both"));
}

TEST(openfx_describe, sets_clip_preferences)
{
    image_manner premultiplied, opaque;
    premultiplied.premultiplication = "OfxImageAlphaPremultiplied";
    opaque.premultiplication = "OfxImageOpaque";
    for (const image_manner& manner : {image_manner{}, premultiplied, opaque})
    {
        session s;
        s.show(sample_picture(4, 4), manner);
        OfxPropertySetStruct answer;
        EXPECT_EQ(s.host.clip_preferences(s.plugin, *s.instance, answer), kOfxStatOK);
        EXPECT_EQ(answer.integer("OfxImageEffectFrameVarying"), 1);
        EXPECT_EQ(answer.text("OfxImageEffectPropPreMultiplication"),
                  manner.premultiplication == "OfxImageAlphaPremultiplied" ? manner.premultiplication
                                                                           : "OfxImageAlphaUnPremultiplied");
    }
    session alone(generator);
    OfxPropertySetStruct answer;
    EXPECT_EQ(alone.host.clip_preferences(alone.plugin, *alone.instance, answer), kOfxStatOK);
    EXPECT_EQ(answer.text("OfxImageEffectPropPreMultiplication"), "OfxImageAlphaUnPremultiplied");
}

TEST(openfx_describe, leaves_other_actions_to_the_host)
{
    session s;
    for (const char* action :
         {"OfxActionBeginInstanceEdit", "OfxActionEndInstanceEdit", "OfxActionSyncPrivateData",
          "OfxActionPurgeCaches", "OfxImageEffectActionGetRegionOfDefinition",
          "OfxImageEffectActionGetRegionsOfInterest", "OfxImageEffectActionGetFramesNeeded",
          "OfxImageEffectActionGetTimeDomain", "OfxImageEffectActionBeginSequenceRender",
          "OfxImageEffectActionEndSequenceRender", "OfxActionOpenGLContextAttached", "no such action", ""})
        EXPECT_EQ(s.host.act(s.plugin, action, s.instance.get()), kOfxStatReplyDefault) << action;
}
} // namespace
