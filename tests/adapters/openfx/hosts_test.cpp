// Hosts that lack things, fail, or are known for their own ways.

#include "tests/adapters/openfx/ofx_session.hpp"

#include "tests/support/bit_generator.hpp"

#include <climits>
#include <cmath>
#include <cstring>

namespace
{
using namespace ofx;

void over_the_source(session& s)
{
    s.param("compositeOnOriginal").value[0] = 1;
    s.param("rows").value[0] = 3;
}

host::param_tracks over_the_source()
{
    host::param_tracks values = defaults();
    set(values, "Composite On Original", "on");
    set(values, "Rows", "3");
    return values;
}

// Each call of an action fails once: the action answers something, releases all and uses nothing that it was not
// given. Of an action with thousands of calls only every so manieth is failed.
template <class Action>
void fail_each_call(session& s, Action action, int step = 1)
{
    strict::watch& now = strict::the_watch();
    for (int fails = 1;; fails += step)
    {
        now.calls = 0;
        now.fail = [fails](const char*, int nth) { return nth == fails ? kOfxStatFailed : kOfxStatOK; };
        action();
        const bool past_the_end = now.calls < fails;
        now.fail = {};
        ASSERT_EQ(s.host.complaints(), std::vector<std::string>()) << "call " << fails;
        if (past_the_end)
            break;
        ASSERT_LT(fails, 5000);
    }
}

TEST(openfx_hosts, may_fail_any_call_of_a_render)
{
    session s;
    const plain_picture source = sample_picture(12, 10);
    s.show(source);
    over_the_source(s);
    auto image = std::make_shared<host_image>(12, 10, image_manner{});
    strict::connect(*s.instance, "Output", [image](double) { return image; }, {});
    fail_each_call(s, [&] { s.host.render(s.plugin, *s.instance, {.window = {0, 0, 12, 10}}); });
}

TEST(openfx_hosts, may_fail_any_call_of_a_description)
{
    session s;
    OfxStatus answer = kOfxStatOK;
    fail_each_call(
        s,
        [&]
        {
            for (const std::string& context : {filter, generator})
                strict::host::forget(*s.host.describe(s.plugin, context, &answer));
            EXPECT_TRUE(answer == kOfxStatOK || answer == kOfxStatFailed || answer == kOfxStatErrBadHandle);
        },
        17);
}

TEST(openfx_hosts, may_fail_any_call_of_the_small_actions)
{
    session s;
    s.show(sample_picture(12, 10));
    s.param("useDisplacement").value[0] = 1;
    fail_each_call(s, [&] { s.host.is_identity(s.plugin, *s.instance, {}); });
    fail_each_call(s,
                   [&]
                   {
                       OfxPropertySetStruct answer;
                       s.host.clip_preferences(s.plugin, *s.instance, answer);
                   });
    fail_each_call(s,
                   [&]
                   {
                       s.param("look").value[0] = 3;
                       s.host.changed(s.plugin, *s.instance, "look", "OfxChangeUserEdited");
                   });
}

TEST(openfx_hosts, may_fail_all_calls_of_one_kind)
{
    const plain_picture source = sample_picture(20, 16);
    const plain_picture initial = reference(composition(20, 16), defaults(), 6);
    for (const std::string function : {"paramGetValueAtTime", "paramGetValue", "paramGetHandle", "getParamSet"})
    {
        session s(generator);
        s.param("rows").value[0] = 9;
        strict::the_watch().fail = [&](const char* called, int)
        { return called == function ? kOfxStatErrMissingHostFeature : kOfxStatOK; };
        const plain_picture drawn = s.draw(20, 16, {}, {.time = 6.0})->read();
        strict::the_watch().fail = {};
        host::param_tracks nine = defaults();
        set(nine, "Rows", "9");
        // Values come from elsewhere, or are the defaults.
        const bool told = function.starts_with("paramGetValue");
        EXPECT_EQ(difference(told ? reference(composition(20, 16), nine, 6) : initial, drawn), "") << function;
    }
    session s;
    s.show(source);
    over_the_source(s);
    strict::the_watch().fail = [&](const char* called, int)
    { return std::strcmp(called, "clipGetImage") == 0 ? kOfxStatFailed : kOfxStatOK; };
    s.draw(20, 16, {}, {}, kOfxStatFailed);
    strict::the_watch().fail = [&](const char* called, int)
    { return std::strcmp(called, "clipGetRegionOfDefinition") == 0 ? kOfxStatFailed : kOfxStatOK; };
    EXPECT_EQ(difference(reference(composition(20, 16), over_the_source(), 0, &source), s.draw(20, 16)->read()),
              "");
    strict::the_watch().fail = {};
}

TEST(openfx_hosts, may_give_null_handles)
{
    session s;
    s.show(sample_picture(20, 16));
    strict::the_watch().null_handles = true;
    OfxStatus answer = kOfxStatOK;
    strict::host::forget(*s.host.describe(s.plugin, filter, &answer));
    EXPECT_NE(answer, kOfxStatOK);
    s.draw(20, 16, {}, {}, kOfxStatFailed);
    EXPECT_EQ(s.host.is_identity(s.plugin, *s.instance, {}), kOfxStatReplyDefault);
    OfxPropertySetStruct preferences;
    EXPECT_EQ(s.host.clip_preferences(s.plugin, *s.instance, preferences), kOfxStatOK);
    s.param("look").value[0] = 3;
    s.host.changed(s.plugin, *s.instance, "look", "OfxChangeUserEdited");
    strict::the_watch().null_handles = false;
}

TEST(openfx_hosts, may_lack_properties)
{
    const plain_picture source = sample_picture(20, 16);
    const plain_picture expected = reference(composition(20, 16), over_the_source(), 0, &source);
    for (const char* name :
         {"OfxImageEffectPropPreMultiplication", "OfxImagePropField", "OfxImagePropPixelAspectRatio",
          "OfxImageEffectPropRenderScale", "OfxImageEffectPropRenderWindow", "OfxImagePropRegionOfDefinition",
          "OfxImagePropRowBytes", "OfxImageClipPropConnected", "OfxImageEffectPropProjectSize", "OfxPropTime",
          "OfxImageEffectPropFieldToRender"})
    {
        session s;
        s.show(source);
        over_the_source(s);
        strict::the_watch().missing = {name};
        EXPECT_EQ(difference(expected, s.draw(20, 16)->read()), "") << name;
        strict::the_watch().missing.clear();
    }
    for (const char* name : {"OfxImagePropData", "OfxImagePropBounds", "OfxImageEffectPropPixelDepth",
                             "OfxImageEffectPropComponents"})
    {
        session s;
        strict::the_watch().missing = {name};
        s.draw(20, 16, {}, {}, kOfxStatErrImageFormat);
        strict::the_watch().missing.clear();
    }
}

// As where the arguments of a description are the host's own properties.
TEST(openfx_hosts, may_not_say_the_context)
{
    session s;
    OfxStatus answer = kOfxStatFailed;
    strict::the_watch().missing = {"OfxImageEffectPropContext"};
    auto described = s.host.describe(s.plugin, generator, &answer);
    EXPECT_EQ(answer, kOfxStatOK);
    EXPECT_TRUE(described->clips.contains("Source"));
    strict::host::forget(*described);
    strict::the_watch().missing.clear();
}

TEST(openfx_hosts, may_lack_properties_of_descriptors_and_parameters)
{
    session s;
    for (const auto& [name, each] : s.descriptor->props.props)
    {
        const bool needed =
            name == "OfxImageEffectPropSupportedContexts" || name == "OfxImageEffectPropSupportedPixelDepths";
        OfxStatus answer = kOfxStatOK;
        strict::the_watch().missing = {name};
        auto again = s.host.describe(s.plugin, filter, &answer);
        EXPECT_EQ(answer, needed ? kOfxStatFailed : kOfxStatOK) << name;
        if (!needed)
        {
            EXPECT_EQ(again->params.params.size(), s.descriptor->params.params.size()) << name;
        }
        strict::host::forget(*again);
    }
    for (const char* param : {"rows", "position", "normalColor", "affect", "showGrid", "gridGroup"})
        for (const auto& [name, each] : s.descriptor->params.find(param)->props.props)
        {
            OfxStatus answer = kOfxStatFailed;
            strict::the_watch().missing = {name};
            strict::host::forget(*s.host.describe(s.plugin, filter, &answer));
            EXPECT_EQ(answer, kOfxStatOK) << name;
        }
    strict::the_watch().missing.clear();
}

// A frame with everything that hosts ask around it, in their order and with all arguments.
TEST(openfx_hosts, may_ask_everything_around_a_frame)
{
    const plain_picture source = sample_picture(20, 16);
    session s;
    s.show(source);
    over_the_source(s);
    OfxPropertySetStruct preferences;
    EXPECT_EQ(s.host.clip_preferences(s.plugin, *s.instance, preferences), kOfxStatOK);

    OfxPropertySetStruct in;
    in.what = "the arguments";
    in.define("OfxPropTime", {2.0}, true);
    in.define("OfxImageEffectPropRenderScale", {1.0, 1.0}, true);
    in.define("OfxImageEffectPropThumbnailRender", {std::string("false")}, true);
    in.define("OfxImageEffectPropRegionOfInterest", {0.0, 0.0, 20.0, 16.0}, true);
    in.define("OfxImageEffectPropFrameRange", {2.0, 2.0}, true);
    in.define("OfxImageEffectPropFrameStep", {1.0}, true);
    in.define("OfxPropIsInteractive", {0}, true);
    OfxPropertySetStruct out;
    out.what = "the answer";
    out.define("OfxImageEffectPropRegionOfDefinition", {0.0, 0.0, 0.0, 0.0});
    out.define("OfxImageClipPropRoI_Source", {0.0, 0.0, 0.0, 0.0});
    out.define_any("OfxImageClipPropFrameRange_Source", 0.0);
    const auto ask = [&](const char* action, OfxPropertySetStruct* answer)
    { return s.host.act(s.plugin, action, s.instance.get(), &in, answer); };
    // The host's own answers are right: the source's region, the region asked for, the one frame.
    EXPECT_EQ(ask("OfxImageEffectActionGetRegionOfDefinition", &out), kOfxStatReplyDefault);
    EXPECT_EQ(s.host.is_identity(s.plugin, *s.instance, {.time = 2.0}), kOfxStatReplyDefault);
    EXPECT_EQ(ask("OfxImageEffectActionGetRegionsOfInterest", &out), kOfxStatReplyDefault);
    EXPECT_EQ(ask("OfxImageEffectActionGetFramesNeeded", &out), kOfxStatReplyDefault);
    EXPECT_EQ(ask("OfxImageEffectActionBeginSequenceRender", nullptr), kOfxStatReplyDefault);
    EXPECT_EQ(difference(reference(composition(20, 16), over_the_source(), 2, &source),
                         s.draw(20, 16, {}, {.time = 2.0})->read()),
              "");
    EXPECT_EQ(ask("OfxImageEffectActionEndSequenceRender", nullptr), kOfxStatReplyDefault);
}

// One handle for descriptor and instance, and the descriptions again before each frame.
TEST(openfx_hosts, may_have_one_handle_for_descriptor_and_instance)
{
    session s(generator);
    for (int frame = 0; frame < 3; ++frame)
    {
        EXPECT_EQ(s.host.load(s.plugin), kOfxStatOK);
        auto effect = s.host.describe(s.plugin, generator);
        strict::make_effect_instance(effect->props, generator);
        effect->instance = true;
        for (const auto& param : effect->params.params)
            if (param->type != "OfxParamTypeGroup")
                for (int i = 0; i < param->dimension(); ++i)
                    param->value[static_cast<std::size_t>(i)] =
                        param->whole() ? param->props.integer("OfxParamPropDefault", i)
                                       : param->props.number("OfxParamPropDefault", i);
        strict::make_clip_instance(effect->clips.at("Output")->props);
        auto image = std::make_shared<host_image>(20, 16, image_manner{});
        strict::connect(*effect, "Output", [image](double) { return image; }, {});
        EXPECT_EQ(s.host.act(s.plugin, "OfxActionCreateInstance", effect.get()), kOfxStatOK);
        EXPECT_EQ(s.host.render(s.plugin, *effect, {.time = static_cast<double>(frame), .window = {0, 0, 20, 16}}),
                  kOfxStatOK);
        EXPECT_EQ(difference(reference(composition(20, 16), defaults(), frame), image->read()), "");
        EXPECT_EQ(s.host.act(s.plugin, "OfxActionDestroyInstance", effect.get()), kOfxStatOK);
        strict::host::forget(*effect);
    }
}

// Nonsense in every number that a host tells of its pictures: refused or drawn, but nothing outside them is
// touched.
TEST(openfx_hosts, may_tell_any_numbers)
{
    bit_generator dice{5};
    const double numbers[] = {0.0, -1.0, 0.5, 1.0, 3.0, 1e9, -1e300, 1e-300, INFINITY, NAN, 40.0, 2147483647.0};
    const auto number = [&] { return numbers[dice.below(static_cast<int>(std::size(numbers)))]; };
    const int wholes[] = {INT_MIN, INT_MAX, -1, 0, 1, 7, 20, 40, 1 << 20, -(1 << 29)};
    const auto whole = [&] { return wholes[dice.below(static_cast<int>(std::size(wholes)))]; };
    const char* fields[] = {"OfxFieldNone", "OfxFieldBoth", "OfxFieldLower", "OfxFieldUpper", "nonsense"};
    session s;
    s.param("compositeOnOriginal").value[0] = 1;
    for (int round = 0; round < 600; ++round)
    {
        image_manner manner;
        manner.field = fields[dice.below(5)];
        manner.pixel_aspect = dice.below(3) == 0 ? number() : 1.0;
        manner.left = dice.below(41) - 20;
        manner.bottom = dice.below(41) - 20;
        manner.top_down = dice.below(2) == 0;
        manner.padding = dice.below(9);
        s.show(sample_picture(1 + dice.below(30), 1 + dice.below(30)), manner);
        s.instance->props.put("OfxImageEffectPropProjectSize", {number(), number()});
        auto image = std::make_shared<host_image>(1 + dice.below(30), 1 + dice.below(30), manner);
        if (dice.below(2) == 0)
            image->defined = {whole(), whole(), whole(), whole()};
        strict::connect(
            *s.instance, "Output", [image](double) { return image; }, manner);
        for (const char* clip : {"Source", "Output"})
            if (dice.below(2) == 0)
                s.instance->clips.at(clip)->defined = OfxRectD{number(), number(), number(), number()};
        strict::render_call what = {.time = number(),
                                    .window = image->bounds(),
                                    .scale_x = number(),
                                    .scale_y = number(),
                                    .field = fields[dice.below(5)]};
        if (dice.below(3) == 0)
            what.window = {whole(), whole(), whole(), whole()};
        // Growth and ripples of a frame in billions are another test's matter.
        if (std::abs(what.time) > 1e6)
            what.time = 2.0;
        const OfxStatus answer = s.host.render(s.plugin, *s.instance, what);
        EXPECT_TRUE(answer == kOfxStatOK || answer == kOfxStatFailed || answer == kOfxStatErrMemory) << answer;
        ASSERT_EQ(s.host.complaints(), std::vector<std::string>()) << "round " << round;
    }
}

// Sizes that come up, each drawn once with every order of rows.
TEST(openfx_hosts, may_ask_for_any_size)
{
    const int sizes[][2] = {{1, 1}, {1, 40}, {40, 1}, {2, 3}, {127, 5}, {640, 1}, {33, 257}};
    for (const auto& size : sizes)
        for (const char* depth : {"OfxBitDepthByte", "OfxBitDepthShort", "OfxBitDepthFloat"})
        {
            image_manner manner;
            manner.depth = depth;
            manner.top_down = size[0] % 2 == 1;
            manner.padding = 2;
            session s(generator);
            EXPECT_EQ(difference(reference(composition(size[0], size[1]), defaults(), 1),
                                 s.draw(size[0], size[1], manner, {.time = 1.0})->read()),
                      "");
        }
}
} // namespace
