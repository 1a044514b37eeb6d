// Choosing a look sets the other parameters.

#include "tests/adapters/openfx/ofx_session.hpp"

#include "host/preset.hpp"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace
{
using namespace ofx;

int option_of(session& s, const std::string& label)
{
    const auto options = s.param("look").props.texts("OfxParamPropChoiceOption");
    const auto found = std::find(options.begin(), options.end(), label);
    EXPECT_NE(found, options.end()) << label;
    return static_cast<int>(found - options.begin());
}

TEST(openfx_looks, are_all_there)
{
    session s;
    const auto options = s.param("look").props.texts("OfxParamPropChoiceOption");
    std::size_t files = 0;
    for ([[maybe_unused]] const auto& file : std::filesystem::directory_iterator(FILIGRANE_LOOKS))
        ++files;
    EXPECT_EQ(options.size(), files + 1);
    EXPECT_EQ(options[0], "Choose a look");
    for (const auto& file : std::filesystem::directory_iterator(FILIGRANE_LOOKS))
    {
        std::string label = file.path().stem().string();
        std::replace(label.begin(), label.end(), '-', ' ');
        label[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(label[0])));
        option_of(s, label);
    }
}

TEST(openfx_looks, set_all_other_parameters)
{
    for (const auto& file : std::filesystem::directory_iterator(FILIGRANE_LOOKS))
    {
        SCOPED_TRACE(file.path().stem().string());
        host::composition comp = composition(64, 48);
        comp.time_scale = 25;
        host::param_tracks values = defaults();
        host::load_preset(file.path(), effect().params(), comp, values);

        session s(generator);
        s.instance->props.put("OfxImageEffectPropProjectSize", {64.0, 48.0});
        s.param("rows").keys = {{0.0, {50.0}}, {9.0, {60.0}}}; // what was there goes
        s.param("speed").keys = {{0.0, {50.0}}, {9.0, {60.0}}};
        s.param("rows").keys.clear();
        std::string label = file.path().stem().string();
        std::replace(label.begin(), label.end(), '-', ' ');
        label[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(label[0])));
        s.param("look").value[0] = option_of(s, label);
        EXPECT_EQ(s.host.changed(s.plugin, *s.instance, "look", "OfxChangeUserEdited"), kOfxStatOK);
        EXPECT_EQ(s.param("look").value[0], 0.0);
        EXPECT_EQ(s.instance->params.edits, 1);
        // Frames on a key, where hosts agree whatever they draw between keys.
        for (const int frame : {0, 100})
            EXPECT_EQ(difference(reference(comp, values, frame),
                                 s.draw(64, 48, {}, {.time = static_cast<double>(frame)})->read()),
                      "");
    }
}

TEST(openfx_looks, come_with_their_keys_at_the_hosts_rate)
{
    session s(generator);
    s.instance->props.put("OfxImageEffectPropFrameRate", {50.0});
    s.param("look").value[0] = option_of(s, "Slow turn");
    EXPECT_EQ(s.host.changed(s.plugin, *s.instance, "look", "OfxChangeUserEdited"), kOfxStatOK);
    const auto& keys = s.param("rotation").keys;
    ASSERT_EQ(keys.size(), 2u);
    EXPECT_EQ(keys.at(0.0)[0], 0.0);
    EXPECT_EQ(keys.at(200.0)[0], -90.0); // clockwise
}

TEST(openfx_looks, are_set_by_the_user_alone)
{
    session s(generator);
    s.param("look").value[0] = option_of(s, "Tartan");
    s.param("rows").value[0] = 33;
    EXPECT_EQ(s.host.changed(s.plugin, *s.instance, "look", "OfxChangePluginEdited"), kOfxStatReplyDefault);
    EXPECT_EQ(s.host.changed(s.plugin, *s.instance, "look", "OfxChangeTime"), kOfxStatReplyDefault);
    // Some hosts name every parameter as edited when a project is opened.
    s.param("look").value[0] = 0;
    for (const auto& param : s.instance->params.params)
        EXPECT_EQ(s.host.changed(s.plugin, *s.instance, param->name, "OfxChangeUserEdited"), kOfxStatReplyDefault);
    for (const double nonsense : {-1.0, 1000.0})
    {
        s.param("look").value[0] = nonsense;
        EXPECT_EQ(s.host.changed(s.plugin, *s.instance, "look", "OfxChangeUserEdited"), kOfxStatReplyDefault);
    }
    EXPECT_EQ(s.param("rows").value[0], 33.0);
}
} // namespace
