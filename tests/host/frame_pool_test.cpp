#include "host/frame_pool.hpp"

#include "scripted_effect.hpp"

#include <chrono>
#include <gtest/gtest.h>
#include <mutex>
#include <numeric>
#include <thread>

namespace
{
using scripted::call;

// Adds the frame number to the input's red, with sampling and worlds between, so that renders take a while.
PF_Err shift_red(const call& now)
{
    const auto& utils = now.utils();
    PF_EffectWorld world{};
    if (const PF_Err answer = utils.new_world(now.ref(), 30, 30, PF_NewWorldFlag_CLEAR_PIXELS, &world))
        return answer;
    utils.copy(now.ref(), &now.input(), &world, nullptr, nullptr);
    PF_Handle handle = utils.host_new_handle(64);
    *static_cast<int*>(utils.host_lock_handle(handle)) = now.in->current_time;
    const auto add = [](void* refcon, A_long, A_long, PF_Pixel* in, PF_Pixel* out) -> PF_Err
    {
        *out = *in;
        out->red = static_cast<A_u_char>(in->red + *static_cast<int*>(refcon));
        return 0;
    };
    utils.iterate(now.in, 0, 0, &world, nullptr, *handle, add, now.output);
    utils.host_unlock_handle(handle);
    utils.host_dispose_handle(handle);
    return utils.dispose_world(now.ref(), &world);
}

struct run
{
    std::vector<std::int32_t> sources;
    std::vector<std::int32_t> sinks;
    std::vector<std::vector<std::uint8_t>> pictures;
    std::vector<std::string> log;
    std::int32_t delivered = 0;
    std::string error;
    int most_in_flight = 0;
};

struct plan
{
    host::frame_range range{0, 19};
    int jobs = 1;
    std::function<bool(std::int32_t)> on_source = [](std::int32_t) { return true; };
    std::function<void(std::int32_t)> on_sink = [](std::int32_t) {};
    std::function<void(std::int32_t, host::image_view)> finish = {};
    std::function<bool(std::int32_t)> wanted = {};
    const std::atomic<bool>* stop = nullptr;
    bool logged = false;
};

run carried_out(const plan& how, const scripted::script& render = shift_red)
{
    const scripted::scripts use(render);
    const host::plugin effect(scripted::entry, "scripted");
    const host::param_tracks values(effect.params());
    auto comp = scripted::small_comp();
    comp.total_frames = 1;
    run result;
    std::atomic<int> in_flight{0}, in_source{0}, in_sink{0};
    host::render_options options;
    options.checked = true;
    options.log = how.logged ? &result.log : nullptr;
    const auto source = [&](std::int32_t frame, host::image_view input)
    {
        EXPECT_EQ(++in_source, 1);
        result.most_in_flight = std::max(result.most_in_flight, ++in_flight);
        result.sources.push_back(frame);
        const bool more = how.on_source(frame);
        input.argb[0] = static_cast<std::uint8_t>(frame);
        --in_source;
        return more;
    };
    const auto sink = [&](std::int32_t frame, host::const_image_view output)
    {
        EXPECT_EQ(++in_sink, 1);
        result.sinks.push_back(frame);
        result.pictures.emplace_back(output.argb, output.argb + output.rowbytes * output.height);
        how.on_sink(frame);
        --in_sink;
        --in_flight;
    };
    try
    {
        result.delivered = host::render_frames(effect, comp, values, how.range, how.jobs, source, sink, how.stop,
                                               options, how.finish, how.wanted);
    }
    catch (const std::exception& failure)
    {
        result.error = failure.what();
    }
    return result;
}

std::vector<std::int32_t> numbers(std::int32_t first, std::int32_t last)
{
    std::vector<std::int32_t> all(static_cast<std::size_t>(std::max(last - first + 1, 0)));
    std::iota(all.begin(), all.end(), first);
    return all;
}

TEST(render_frames, gives_the_same_frames_in_order_for_any_number_of_jobs)
{
    const run one = carried_out({{-3, 40}, 1});
    EXPECT_EQ(one.delivered, 44);
    EXPECT_EQ(one.sinks, numbers(-3, 40));
    EXPECT_EQ(one.pictures[5][1], 2); // frame 2 added 2 to red 0
    for (const int jobs : {2, 3, 8, 100})
    {
        const run several = carried_out({{-3, 40}, jobs});
        EXPECT_EQ(several.delivered, 44);
        EXPECT_EQ(several.sources, numbers(-3, 40));
        EXPECT_EQ(several.sinks, numbers(-3, 40));
        EXPECT_EQ(several.pictures, one.pictures);
    }
}

TEST(render_frames, holds_no_more_than_jobs_and_two_in_flight)
{
    plan slow_sink{{0, 30}, 3};
    slow_sink.on_sink = [](std::int32_t) { std::this_thread::sleep_for(std::chrono::milliseconds(2)); };
    EXPECT_LE(carried_out(slow_sink).most_in_flight, 5);
    // However many frames there are.
    slow_sink.range = {0, 600};
    slow_sink.on_sink = [](std::int32_t) {};
    EXPECT_LE(carried_out(slow_sink).most_in_flight, 5);
}

TEST(render_frames, ends_early_where_the_source_does)
{
    for (const int jobs : {1, 4})
    {
        plan short_source{{0, 100}, jobs};
        short_source.on_source = [](std::int32_t frame) { return frame < 7; };
        const run result = carried_out(short_source);
        EXPECT_EQ(result.error, "");
        EXPECT_EQ(result.delivered, 7);
        EXPECT_EQ(result.sinks, numbers(0, 6));
        EXPECT_EQ(result.sources, numbers(0, 7));
    }
}

TEST(render_frames, throws_what_the_source_throws_after_the_frames_before)
{
    for (const int jobs : {1, 4})
    {
        plan bad_source{{0, 100}, jobs};
        bad_source.on_source = [](std::int32_t frame)
        {
            if (frame == 5)
                throw std::runtime_error("clip is damaged");
            return true;
        };
        const run result = carried_out(bad_source);
        EXPECT_EQ(result.error, "clip is damaged");
        EXPECT_EQ(result.sinks, numbers(0, 4));
        EXPECT_EQ(result.sources, numbers(0, 5));
    }
}

TEST(render_frames, throws_what_a_render_throws_after_the_frames_before)
{
    for (const int jobs : {1, 4})
    {
        const run result =
            carried_out({{0, 100}, jobs},
                        [](const call& now) -> PF_Err { return now.in->current_time >= 6 ? 77 : shift_red(now); });
        EXPECT_EQ(result.error, "scripted: the effect's render ended with error 77");
        EXPECT_EQ(result.sinks, numbers(0, 5));
    }
}

TEST(render_frames, throws_what_the_sink_throws_at_once)
{
    for (const int jobs : {1, 4})
    {
        plan bad_sink{{0, 100}, jobs};
        bad_sink.on_sink = [](std::int32_t frame)
        {
            if (frame == 3)
                throw std::runtime_error("disk is full");
        };
        const run result = carried_out(bad_sink);
        EXPECT_EQ(result.error, "disk is full");
        EXPECT_EQ(result.sinks, numbers(0, 3));
    }
}

TEST(render_frames, finish_each_frame_before_its_turn)
{
    for (const int jobs : {1, 4})
    {
        plan finished{{0, 30}, jobs};
        std::atomic<int> alive{0}, most{0};
        finished.finish = [&](std::int32_t frame, host::image_view output)
        {
            output.argb[3] = static_cast<std::uint8_t>(200 + frame % 7);
            const int now = ++alive;
            for (int before = most; before < now && !most.compare_exchange_weak(before, now);)
            {
            }
        };
        finished.on_sink = [&](std::int32_t) { --alive; };
        const run result = carried_out(finished);
        EXPECT_EQ(result.delivered, 31);
        for (std::size_t frame = 0; frame < result.pictures.size(); ++frame)
            EXPECT_EQ(result.pictures[frame][3], 200 + frame % 7);
        // What finish makes for the sink waits no longer than the frame itself.
        EXPECT_LE(most, jobs + 2);
    }
}

TEST(render_frames, throws_what_finish_throws_after_the_frames_before)
{
    for (const int jobs : {1, 4})
    {
        plan bad_finish{{0, 100}, jobs};
        bad_finish.finish = [](std::int32_t frame, host::image_view)
        {
            if (frame >= 5)
                throw std::runtime_error("no such colour in frame " + std::to_string(frame));
        };
        const run result = carried_out(bad_finish);
        EXPECT_EQ(result.error, "no such colour in frame 5");
        EXPECT_EQ(result.sinks, numbers(0, 4));
    }
}

TEST(render_frames, leave_out_what_is_not_wanted)
{
    const run all = carried_out({{0, 19}, 1});
    for (const int jobs : {1, 2, 7})
        for (const int keep : {1, 2, 3, 5, 25}) // the first, the last or both ends are left out, or all
        {
            plan some{{0, 19}, jobs};
            some.wanted = [keep](std::int32_t frame) { return frame % keep == keep - 1; };
            const run result = carried_out(some);
            EXPECT_EQ(result.error, "");
            std::vector<std::int32_t> kept;
            for (int frame = keep - 1; frame < 20; frame += keep)
                kept.push_back(frame);
            EXPECT_EQ(result.sources, kept);
            ASSERT_EQ(result.sinks, kept);
            EXPECT_EQ(result.delivered, static_cast<std::int32_t>(kept.size()));
            for (std::size_t i = 0; i < kept.size(); ++i)
                EXPECT_EQ(result.pictures[i], all.pictures[static_cast<std::size_t>(kept[i])]) << kept[i];
        }
}

TEST(render_frames, stop_asking_what_is_wanted_when_told_to_stop)
{
    std::atomic<bool> stop{false};
    int asked = 0;
    plan none{{0, 1000}, 3};
    none.stop = &stop;
    none.wanted = [&](std::int32_t frame)
    {
        stop = frame == 10;
        ++asked;
        return false;
    };
    const run result = carried_out(none);
    EXPECT_EQ(result.delivered, 0);
    EXPECT_EQ(asked, 11);
}

TEST(render_frames, throw_what_asking_throws)
{
    for (const int jobs : {1, 4})
    {
        plan failing{{0, 19}, jobs};
        failing.wanted = [](std::int32_t frame)
        {
            if (frame == 5)
                throw std::runtime_error("nobody knows");
            return true;
        };
        EXPECT_EQ(carried_out(failing).error, "nobody knows");
    }
}

TEST(render_frames, stops_when_asked_and_delivers_what_is_in_flight)
{
    for (const int jobs : {1, 4})
    {
        std::atomic<bool> stop{false};
        plan stopped{{0, 1000}, jobs};
        stopped.stop = &stop;
        stopped.on_source = [&](std::int32_t frame)
        {
            if (frame == 10)
                stop = true;
            return true;
        };
        const run result = carried_out(stopped);
        EXPECT_EQ(result.error, "");
        EXPECT_EQ(result.sources, numbers(0, 10));
        EXPECT_EQ(result.sinks, numbers(0, 10));
        EXPECT_EQ(result.delivered, 11);
    }
}

TEST(render_frames, keeps_the_logs_of_frames_apart_and_in_order)
{
    plan logged{{0, 12}, 1};
    logged.logged = true;
    const run one = carried_out(logged);
    logged.jobs = 4;
    EXPECT_EQ(one.log.size(), 13u * 8u);
    EXPECT_EQ(carried_out(logged).log, one.log);
}

TEST(render_frames, of_an_empty_range_are_none)
{
    EXPECT_EQ(carried_out({{5, 4}, 3}).delivered, 0);
    const run last = carried_out({{2147483646, 2147483647}, 3});
    EXPECT_EQ(last.sinks, (std::vector<std::int32_t>{2147483646, 2147483647}));
}

TEST(render_frames, have_a_transparent_input_without_a_source)
{
    const scripted::scripts use(shift_red);
    const host::plugin effect(scripted::entry, "scripted");
    const host::param_tracks values(effect.params());
    for (const int jobs : {1, 3})
    {
        int wrong = 0;
        const auto sink = [&](std::int32_t frame, host::const_image_view output)
        {
            for (int i = 0; i < 12 * 9 * 4; ++i)
                wrong += output.argb[i] != (i % 4 == 1 ? frame : 0);
        };
        EXPECT_EQ(host::render_frames(effect, scripted::small_comp(), values, {0, 20}, jobs, {}, sink), 21);
        EXPECT_EQ(wrong, 0);
    }
}

TEST(render_frames, need_a_job)
{
    EXPECT_EQ(carried_out({{0, 1}, 0}).error, "0 jobs cannot render anything; give 1 or more");
}
} // namespace
