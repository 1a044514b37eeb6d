// Hosts without some of the handle callbacks, and hosts that refuse a parameter.

#include "hostile_cases.hpp"

#include "host/error.hpp"
#include "host/plugin.hpp"
#include "tests/support/effect_fixture.hpp"

#include <gtest/gtest.h>

namespace
{
// Callbacks that the host lacks: one bit each.
enum handle_bits : unsigned
{
    kNoNew = 1,
    kNoLock = 2,
    kNoUnlock = 4,
    kNoDispose = 8,
};

void remove_callbacks(PF_UtilCallbacks& utils, unsigned lacking)
{
    if (lacking & kNoNew)
        utils.host_new_handle = nullptr;
    if (lacking & kNoLock)
        utils.host_lock_handle = nullptr;
    if (lacking & kNoUnlock)
        utils.host_unlock_handle = nullptr;
    if (lacking & kNoDispose)
        utils.host_dispose_handle = nullptr;
}

// The effect under a host that lacks these callbacks.
thread_local unsigned lacking_now = 0;

PF_Err entry_with_callbacks_removed(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                                    PF_LayerDef* output, void* extra)
{
    if (cmd == PF_Cmd_RENDER)
        remove_callbacks(*in_data->utils, lacking_now);
    return PluginEntry(cmd, in_data, out_data, params, output, extra);
}

// Add calls are passed on until the one that is refused; it and those after it are only counted.
thread_local int refused_add = 0;
thread_local int adds = 0;
thread_local decltype(PF_InteractCallbacks::add_param) hosts_add_param = nullptr;

PF_Err counted_add_param(PF_ProgPtr ref, PF_ParamIndex index, PF_ParamDef* def)
{
    return ++adds < refused_add ? hosts_add_param(ref, index, def) : PF_Err_INVALID_INDEX;
}

PF_Err entry_with_add_param_refused(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                                    PF_LayerDef* output, void* extra)
{
    if (cmd == PF_Cmd_PARAMS_SETUP)
    {
        hosts_add_param = in_data->inter.add_param;
        in_data->inter.add_param = counted_add_param;
    }
    return PluginEntry(cmd, in_data, out_data, params, output, extra);
}

std::string_view name_of(const std::string& call)
{
    return std::string_view(call).substr(0, call.find(' '));
}

bool is_handle_call(const std::string& call)
{
    return name_of(call).ends_with("_handle");
}

struct fixture_render
{
    PF_Err result;
    std::vector<std::string> handle_calls;
    std::vector<std::string> other_calls;
    std::size_t handles_left;
    int worlds_left;
};

// A displaced frame under the unit tests' host, which locks any block by its master pointer, whoever made it.
fixture_render render_lacking(unsigned lacking, std::string_view refused = "")
{
    effect_fixture host(24, 20);
    host.set(kUseDisplacement, 1);
    host.on_call = [refused](std::string_view call) -> PF_Err { return call == refused ? 4 : 0; };
    remove_callbacks(host.utils, lacking);
    fixture_render r{host.render(), {}, {}, host.handles_alive(), host.worlds_alive};
    for (const std::string& line : host.log)
        (is_handle_call(line) ? r.handle_calls : r.other_calls).emplace_back(name_of(line));
    return r;
}

TEST(handles, any_of_the_callbacks_may_be_missing)
{
    const fixture_render full = render_lacking(0);
    ASSERT_GT(full.other_calls.size(), 100u);
    for (unsigned lacking = 0; lacking < 16; ++lacking)
    {
        SCOPED_TRACE(lacking);
        const fixture_render r = render_lacking(lacking);
        EXPECT_EQ(r.result, PF_Err_NONE);
        EXPECT_EQ(r.other_calls, full.other_calls);
        EXPECT_EQ(r.worlds_left, 0);
        // A block is given back by whoever made it; the host's stays where the host takes none back.
        std::vector<std::string> calls;
        if (!(lacking & kNoNew))
            calls.emplace_back("new_handle");
        if (!(lacking & kNoLock))
            calls.emplace_back("lock_handle");
        if (!(lacking & kNoUnlock))
            calls.emplace_back("unlock_handle");
        if (!(lacking & kNoNew) && !(lacking & kNoDispose))
            calls.emplace_back("dispose_handle");
        EXPECT_EQ(r.handle_calls, calls);
        EXPECT_EQ(r.handles_left, (lacking & (kNoNew | kNoDispose)) == kNoDispose ? 1u : 0u);
    }
}

TEST(handles, refused_by_those_that_are_there_are_no_memory)
{
    for (unsigned lacking = 0; lacking < 16; ++lacking)
    {
        SCOPED_TRACE(lacking);
        if (!(lacking & kNoNew))
        {
            const fixture_render r = render_lacking(lacking, "new_handle");
            EXPECT_EQ(r.result, PF_Err_OUT_OF_MEMORY);
            EXPECT_EQ(r.handle_calls, std::vector<std::string>{"new_handle"});
            EXPECT_TRUE(r.other_calls.empty());
            EXPECT_EQ(r.handles_left, 0u);
        }
        if (!(lacking & kNoLock))
        {
            const fixture_render r = render_lacking(lacking, "lock_handle");
            EXPECT_EQ(r.result, PF_Err_OUT_OF_MEMORY);
            EXPECT_TRUE(r.other_calls.empty());
            const bool hosts = !(lacking & kNoNew);
            EXPECT_EQ(r.handle_calls.back(), hosts && !(lacking & kNoDispose) ? "dispose_handle" : "lock_handle");
            EXPECT_EQ(r.handles_left, hosts && (lacking & kNoDispose) ? 1u : 0u);
        }
    }
}

// The checked host knows its own blocks alone, so it is asked only where its rules can be kept.
TEST(handles, missing_altogether_or_in_pairs_change_no_picture)
{
    const host::plugin effect(&entry_with_callbacks_removed, "the effect");
    for (const hostile::frame_case& c : hostile::all_cases())
    {
        const hostile::outcome full = hostile::render(c);
        for (const unsigned lacking : {kNoLock | kNoUnlock, kNoNew | kNoLock | kNoUnlock | kNoDispose})
        {
            lacking_now = lacking;
            const hostile::outcome o = hostile::render(effect, c);
            EXPECT_EQ(o.complaint, "") << c.name << " " << lacking;
            EXPECT_EQ(o.result, PF_Err_NONE);
            EXPECT_EQ(o.pixels, full.pixels) << c.name << " " << lacking;
        }
        EXPECT_EQ(hostile::render(c, {}, true).pixels, full.pixels) << c.name;
    }
}

TEST(handles, that_no_host_takes_back_stay_taken)
{
    const host::plugin effect(&entry_with_callbacks_removed, "the effect");
    lacking_now = kNoDispose;
    const hostile::outcome o = hostile::render(effect, hostile::case_named("ends"));
    EXPECT_NE(o.complaint.find("was never disposed of"), std::string::npos) << o.complaint;
    EXPECT_EQ(o.complaint.find("more"), std::string::npos) << o.complaint;
}

TEST(set_up, ends_at_the_first_parameter_that_is_refused)
{
    for (int nth = 1; nth < kParamCount; ++nth)
    {
        SCOPED_TRACE(nth);
        refused_add = nth;
        adds = 0;
        try
        {
            const host::plugin effect(&entry_with_add_param_refused, "the effect");
            ADD_FAILURE() << "the refusal was not looked at";
        }
        catch (const host::error& told)
        {
            const std::string text = told.what();
            EXPECT_NE(text.find("parameter set-up with error " + std::to_string(PF_Err_INVALID_INDEX)),
                      std::string::npos)
                << text;
        }
        EXPECT_EQ(adds, nth);
    }
    refused_add = kParamCount;
    adds = 0;
    const host::plugin effect(&entry_with_add_param_refused, "the effect");
    EXPECT_EQ(adds, kParamCount - 1);
    EXPECT_EQ(effect.params().size(), static_cast<std::size_t>(kParamCount));
}
} // namespace
