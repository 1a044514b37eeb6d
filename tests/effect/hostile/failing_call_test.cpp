// Every call that a render makes of its host is refused once. What must come of it ("as ever": no different from
// the undisturbed render; "bare": the frame without lines and grid; "untouched": nothing was written):
//
//   refused              answer         the calls that follow                              the picture
//   host_new_handle      out of memory  none                                               untouched
//   host_lock_handle     out of memory  host_dispose_handle, no unlock                     untouched
//   host_unlock_handle,
//   host_dispose_handle  none           as ever                                            as ever
//   new_world: scratch   none           the handle's return alone                          untouched
//   new_world: canvas    none           no line, no transform; a canvas made is disposed   bare
//   dispose_world        none           as ever                                            as ever
//   copy                 none           as ever                                            as on a clear output
//   fill, transfer_rect  none           as ever                                            some of it is missing
//   transform_world      none           as ever                                            bare
//   iterate              none           as ever, no pixel                                  untouched
//   subpixel_sample      none           the matte's: as ever; the input's: ends iterate    some of it is missing
//   checkout_param       none           the line is not drawn: the next one's, or the end  some of it is missing
//   checkin_param        none           as ever                                            as ever
//
// After each, all that was taken has been given back once, no guard byte is changed (the host is in its checked
// mode), and the next render is as if nothing had been.

#include "hostile_cases.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace
{
using hostile::frame_case;
using hostile::outcome;
using hostile::refusal;
using std::string_view;
using names = std::vector<string_view>;

constexpr PF_Err kCodes[] = {PF_Err_OUT_OF_MEMORY, PF_Err_INTERNAL_STRUCT_DAMAGED, 1, -7};

// What a case is without any refusal, and what its pictures are compared with.
struct expectation
{
    explicit expectation(const frame_case& one)
        : c(one), undisturbed(hostile::render(one)), bare(hostile::render(one.without_lines()).pixels),
          on_clear(hostile::render(one.with("Composite On Original", "off")).pixels),
          untouched(undisturbed.pixels.size(), 0)
    {
    }
    const frame_case& c;
    outcome undisturbed;
    std::vector<std::uint8_t> bare;
    std::vector<std::uint8_t> on_clear;
    std::vector<std::uint8_t> untouched;
};

// All of a few; of many the first 64, every 17th (of very many twenty in all) and the last; and one past the last.
// An odd step, as the samples of a pixel come in pairs.
std::set<int> chosen(int total)
{
    std::set<int> n = {total, total + 1};
    const int step = std::max(17, total / 20 | 1);
    for (int i = 1; i <= total; i += i < 64 ? 1 : step)
        n.insert(i);
    n.erase(0);
    return n;
}

names calls_after(const outcome& o, std::size_t place)
{
    return place < o.calls.size() ? names(o.calls.begin() + static_cast<std::ptrdiff_t>(place) + 1, o.calls.end())
                                  : names();
}

names repeated(string_view call, int times, const names& then)
{
    names all(static_cast<std::size_t>(times), call);
    all.insert(all.end(), then.begin(), then.end());
    return all;
}

const names kHandleReturned = {"host_unlock_handle", "host_dispose_handle"};

void expect_of_new_world(const expectation& e, const outcome& o, int nth, const names& after)
{
    const bool scratch = e.c.displaced() && nth == 1;
    EXPECT_EQ(o.pixels, scratch ? e.untouched : e.bare);
    if (!e.c.displaced())
    {
        EXPECT_EQ(after, repeated("dispose_world", nth - 1, kHandleReturned));
    }
    else if (scratch)
    {
        EXPECT_EQ(after, kHandleReturned);
    }
    else
    {
        const names iterated = calls_after(o, o.place("iterate", 1) - 1);
        EXPECT_EQ(after, repeated("dispose_world", nth - 2, iterated));
        EXPECT_EQ(iterated.front(), "iterate");
        EXPECT_EQ(o.count("transform_world"), 0);
    }
}

// How the calls that follow the refused one, and the picture, differ from the undisturbed render's.
void expect_consequence(const expectation& e, const outcome& o, string_view call, int nth)
{
    const names after = calls_after(o, o.place(call, nth));
    const bool no_memory = call == "host_new_handle" || call == "host_lock_handle";
    EXPECT_EQ(o.result, no_memory ? PF_Err_OUT_OF_MEMORY : PF_Err_NONE);

    if (call == "new_world")
        return expect_of_new_world(e, o, nth, after);
    if (call == "checkout_param")
    {
        EXPECT_TRUE(after.front() == "checkout_param" || after.front() == "transform_world") << after.front();
        return;
    }
    if (no_memory)
    {
        EXPECT_EQ(after, call == "host_new_handle" ? names() : names{"host_dispose_handle"});
        EXPECT_EQ(o.pixels, e.untouched);
        return;
    }
    const bool ends_iteration = call == "iterate" || (call == "subpixel_sample" && nth % 2 == 0);
    const bool loses_some = call == "fill" || call == "transfer_rect" || call == "subpixel_sample";
    if (ends_iteration)
    {
        EXPECT_EQ(after, repeated("dispose_world", 1, kHandleReturned));
    }
    else
    {
        EXPECT_EQ(o.calls, e.undisturbed.calls);
    }
    if (!loses_some)
    {
        EXPECT_EQ(o.pixels, call == "iterate"           ? e.untouched
                            : call == "transform_world" ? e.bare
                            : call == "copy"            ? e.on_clear
                                                        : e.undisturbed.pixels);
    }
}

void expect_all_returned(const outcome& o, const refusal& refused)
{
    EXPECT_EQ(o.complaint, "");
    const auto served = [&](string_view call) { return o.count(call) - (call == refused.call ? 1 : 0); };
    EXPECT_EQ(served("new_world"), o.count("dispose_world"));
    EXPECT_EQ(served("checkout_param"), o.count("checkin_param"));
}

class failing_call : public testing::TestWithParam<frame_case>
{
};

TEST_P(failing_call, has_its_stated_consequence_and_no_other)
{
    const expectation e(GetParam());
    ASSERT_EQ(e.undisturbed.complaint, "");
    ASSERT_NE(e.undisturbed.pixels, e.bare) << "nothing is drawn that could go missing";
    const std::set<string_view> called(e.undisturbed.calls.begin(), e.undisturbed.calls.end());
    int injected = 0;
    for (const string_view call : called)
    {
        const int total = e.undisturbed.count(call);
        for (const int nth : chosen(total))
        {
            const refusal refused = {call, nth, kCodes[static_cast<std::size_t>(nth) % std::size(kCodes)], false};
            SCOPED_TRACE(testing::Message() << call << " " << nth << " of " << total);
            const outcome o = hostile::render(GetParam(), refused);
            if (nth > total)
            {
                EXPECT_EQ(o.calls, e.undisturbed.calls);
                EXPECT_EQ(o.pixels, e.undisturbed.pixels);
                continue;
            }
            ++injected;
            expect_consequence(e, o, call, nth);
            expect_all_returned(o, refused);
            ASSERT_EQ(hostile::render(GetParam()).pixels, e.undisturbed.pixels) << "the render after";
            if (HasFailure())
                return; // the first one tells enough
        }
    }
    RecordProperty("injected", injected);
}

TEST_P(failing_call, may_go_on_failing)
{
    const expectation e(GetParam());
    std::set<string_view> called(e.undisturbed.calls.begin(), e.undisturbed.calls.end());
    int injected = 0;
    for (const string_view call : called)
    {
        const int total = e.undisturbed.count(call);
        for (const int nth : std::set<int>{1, total / 3 + 1, total / 2 + 1})
        {
            SCOPED_TRACE(testing::Message() << call << " from " << nth << " of " << total);
            const outcome o = hostile::render(GetParam(), {call, nth, PF_Err_OUT_OF_MEMORY, true});
            const bool no_memory = call == "host_new_handle" || call == "host_lock_handle";
            EXPECT_EQ(o.result, no_memory ? PF_Err_OUT_OF_MEMORY : PF_Err_NONE);
            EXPECT_EQ(o.complaint, "");
            EXPECT_EQ(hostile::render(GetParam()).pixels, e.undisturbed.pixels) << "the render after";
            ++injected;
        }
    }
    // Nothing but its own memory is left to the effect.
    const outcome alone = hostile::render(GetParam(), {"", 1, PF_Err_INTERNAL_STRUCT_DAMAGED, true}, true);
    EXPECT_EQ(alone.result, PF_Err_NONE);
    EXPECT_EQ(alone.complaint, "");
    EXPECT_EQ(alone.pixels, e.untouched);
    RecordProperty("injected", injected + 1);
}

INSTANTIATE_TEST_SUITE_P(frames, failing_call, testing::ValuesIn(hostile::all_cases()),
                         [](const testing::TestParamInfo<frame_case>& one) { return one.param.name; });

TEST(failing_calls, are_all_that_a_host_serves_during_a_render)
{
    std::set<string_view> called;
    for (const frame_case& c : hostile::all_cases())
        for (const string_view call : hostile::render(c).calls)
            called.insert(call);
    EXPECT_EQ(called, (std::set<string_view>{"checkin_param", "checkout_param", "copy", "dispose_world", "fill",
                                             "host_dispose_handle", "host_lock_handle", "host_new_handle",
                                             "host_unlock_handle", "iterate", "new_world", "subpixel_sample",
                                             "transfer_rect", "transform_world"}));
}

TEST(failing_calls, hit_each_growth_parameter)
{
    // For each column, then each row: frames 0 to 5, "Growth Randomness" and then the growth itself.
    const outcome ends = hostile::render(hostile::case_named("ends"));
    EXPECT_EQ(ends.count("checkout_param"), 6 * 2 * 2 * hostile::kLines);
    EXPECT_EQ(ends.count("checkin_param"), 6 * 2 * 2 * hostile::kLines);
}
} // namespace
