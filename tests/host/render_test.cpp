#include "host/render.hpp"

#include "portable_math.hpp"
#include "scripted_effect.hpp"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using scripted::call;
using scripted::operator_equal;

TEST(render_frame, describes_the_frame)
{
    auto comp = scripted::small_comp(101, 51);
    comp.downsample = 2;
    comp.time_step = 1001;
    comp.time_scale = 30000;
    comp.total_frames = 12;
    comp.quality = PF_Quality_LO;
    host::render_options options;
    options.appl_id = 0x4B657947;
    scripted::render(
        [](const call& now)
        {
            const PF_InData& in = *now.in;
            EXPECT_EQ(in.width, 101);
            EXPECT_EQ(in.height, 51);
            EXPECT_EQ(in.downsample_x.num, 1);
            EXPECT_EQ(in.downsample_x.den, 2u);
            EXPECT_EQ(in.downsample_y.num, 1);
            EXPECT_EQ(in.downsample_y.den, 2u);
            EXPECT_EQ(in.current_time, -3 * 1001);
            EXPECT_EQ(in.time_step, 1001);
            EXPECT_EQ(in.time_scale, 30000u);
            EXPECT_EQ(in.total_time, 12 * 1001);
            EXPECT_EQ(in.quality, PF_Quality_LO);
            EXPECT_EQ(in.appl_id, 0x4B657947);
            EXPECT_EQ(in.num_params, scripted::count);
            for (const PF_LayerDef* world : {now.output, &now.input()})
            {
                EXPECT_EQ(world->width, 51);
                EXPECT_EQ(world->height, 26);
                EXPECT_EQ(world->extent_hint.left, 0);
                EXPECT_EQ(world->extent_hint.top, 0);
                EXPECT_EQ(world->extent_hint.right, 51);
                EXPECT_EQ(world->extent_hint.bottom, 26);
            }
            return PF_Err_NONE;
        },
        options, comp, {}, -3);
}

TEST(render_frame, reduces_each_way_for_itself)
{
    auto comp = scripted::small_comp(100, 90);
    comp.downsample = 4;
    comp.reduce_x = {3, 7};
    comp.reduce_y = {1, 1};
    scripted::render(
        [](const call& now)
        {
            EXPECT_EQ(now.in->downsample_x.num, 3);
            EXPECT_EQ(now.in->downsample_x.den, 7u);
            EXPECT_EQ(now.in->downsample_y.num, 1);
            EXPECT_EQ(now.in->downsample_y.den, 1u);
            EXPECT_EQ(now.in->width, 100);
            EXPECT_EQ(now.in->height, 90);
            EXPECT_EQ(now.output->width, 43);
            EXPECT_EQ(now.output->height, 90);
            EXPECT_EQ(now.params[scripted::place]->u.td.x_value, 1404343); // 50 * 3 / 7
            return PF_Err_NONE;
        },
        {}, comp,
        [](host::param_tracks& values) {
            values.set(scripted::place, host::param_value{50.0, 0.0, true});
        });
}

TEST(render_frame, hands_pictures_through_padded_rows)
{
    for (const int padding : {0, 4, 64})
    {
        host::render_options options;
        options.checked = true;
        options.row_padding = padding;
        const auto result = scripted::render(
            [&](const call& now)
            {
                EXPECT_EQ(now.output->rowbytes, 12 * 4 + padding);
                EXPECT_EQ(now.input().rowbytes, 12 * 4 + padding);
                return now.utils().copy(now.ref(), &now.input(), now.output, nullptr, nullptr);
            },
            options);
        for (std::size_t i = 0; i < result.input.pixels.size(); ++i)
            ASSERT_TRUE(operator_equal(result.input.pixels[i], result.output.pixels[i]));
    }
}

TEST(render_frame, tells_what_cannot_be_rendered)
{
    const auto nothing = [](const call&) { return PF_Err_NONE; };
    const auto error_with = [&](auto change)
    {
        auto comp = scripted::small_comp();
        host::render_options options;
        change(comp, options);
        return scripted::error_of(nothing, options, comp);
    };
    using host::composition;
    using host::render_options;
    EXPECT_EQ(error_with([](composition& c, render_options&) { c.downsample = 5; }),
              "a downsample factor of 5 is not served; give 1 to 4");
    EXPECT_EQ(error_with(
                  [](composition& c, render_options&) {
                      c.reduce_x = {3, 2};
                  }),
              "a picture larger than its layer is not served; give scales above 0 and up to 1");
    EXPECT_EQ(error_with([](composition& c, render_options&) { c.time_scale = 0; }),
              "a time scale of 0 is no time; give the number of time units in a second");
    EXPECT_EQ(error_with([](composition& c, render_options&) { c.quality = 7; }),
              "a quality of 7 is not served; give 0 (low) or 1 (high)");
    EXPECT_EQ(error_with([](composition&, render_options& o) { o.row_padding = 3; }),
              "a row padding of 3 bytes is not served; give a multiple of 4 up to 1048576");
    EXPECT_EQ(error_with([](composition& c, render_options&) { c.time_step = 1 << 30; }),
              "frame 100 at 1073741824 time units a frame lies past the last time that can be told; use a coarser "
              "time scale");
    EXPECT_EQ(error_with([](composition& c, render_options&) { c.time_step = 0; }), "");
}

TEST(render_frame, tells_of_pictures_of_the_wrong_size)
{
    const scripted::scripts use({});
    const host::plugin effect(scripted::entry, "scripted");
    const host::param_tracks values(effect.params());
    scripted::picture right(12, 9), wrong(12, 8);
    const auto try_with = [&](host::const_image_view in, host::image_view out)
    { host::render_frame(effect, scripted::small_comp(), values, 0, in, out); };
    EXPECT_THROW(try_with(wrong.const_view(), right.view()), host::error);
    EXPECT_THROW(try_with(right.const_view(), wrong.view()), host::error);
    auto narrow = right.view();
    narrow.rowbytes = 44;
    EXPECT_THROW(try_with(right.const_view(), narrow), host::error);
    EXPECT_THROW(try_with({}, right.view()), host::error);
    EXPECT_NO_THROW(try_with(right.const_view(), right.view()));
}

TEST(render_frame, tells_the_effects_error)
{
    EXPECT_EQ(scripted::error_of(
                  [](const call& now)
                  {
                      std::strcpy(now.out->return_msg, "Unknown internal error");
                      return PF_Err{512};
                  }),
              "scripted: the effect's render ended with error 512 (internal structure damaged): "
              "Unknown internal error");
    EXPECT_EQ(scripted::error_of([](const call&) -> PF_Err { throw 5; }),
              "scripted: an exception left the effect's entry point during command 11");
}

TEST(render_frame, tells_what_memory_was_short_for)
{
    const std::string remedy =
        "; draw a lower frame number, a smaller picture, with lower parameter values, or fewer "
        "frames at once";
    EXPECT_EQ(scripted::error_of(
                  [](const call& now)
                  { return now.utils().host_new_handle(std::uint64_t{3} << 40) ? 0 : PF_Err_OUT_OF_MEMORY; }),
              "scripted: frame 0 takes more memory than there is (it asks for 3145728 MiB)" + remedy);
    EXPECT_EQ(scripted::error_of([](const call&) -> PF_Err { return PF_Err_OUT_OF_MEMORY; }),
              "scripted: frame 0 takes more memory than there is" + remedy);
}

TEST(render_frame, low_quality_samples_the_nearest_pixel)
{
    for (const PF_Quality quality : {PF_Quality_LO, PF_Quality_HI})
    {
        auto comp = scripted::small_comp();
        comp.quality = quality;
        scripted::render(
            [&](const call& now)
            {
                PF_SampPB block{};
                block.src = &now.input();
                block.src->data[0] = {255, 0, 0, 0};
                block.src->data[1] = {255, 100, 0, 0};
                PF_Pixel sample{};
                now.utils().subpixel_sample(now.ref(), 20000, 0, &block, &sample);
                EXPECT_EQ(sample.red, quality == PF_Quality_HI ? 31 : 0); // 100 * 20000/65536 = 30.5
                return PF_Err_NONE;
            },
            {}, comp);
    }
}

TEST(new_world, is_cleared_when_asked_and_poisoned_when_not)
{
    host::render_options options;
    options.checked = true;
    options.row_padding = 8;
    scripted::render(
        [](const call& now)
        {
            PF_EffectWorld clear{}, raw{};
            EXPECT_EQ(now.utils().new_world(now.ref(), 5, 4, PF_NewWorldFlag_CLEAR_PIXELS, &clear), PF_Err_NONE);
            EXPECT_EQ(now.utils().new_world(now.ref(), 5, 4, PF_NewWorldFlag_NONE, &raw), PF_Err_NONE);
            EXPECT_EQ(clear.rowbytes, 28);
            EXPECT_EQ(clear.extent_hint.right, 5);
            EXPECT_EQ(clear.extent_hint.bottom, 4);
            for (int y = 0; y < 4; ++y)
                for (int x = 0; x < 5; ++x)
                {
                    const auto at = [&](const PF_EffectWorld& world) { return world.data[y * 7 + x]; };
                    EXPECT_TRUE(operator_equal(at(clear), {}));
                    EXPECT_FALSE(operator_equal(at(raw), {}));
                }
            EXPECT_EQ(now.utils().dispose_world(now.ref(), &clear), PF_Err_NONE);
            return now.utils().dispose_world(now.ref(), &raw);
        },
        options);
}

TEST(new_world, refuses_sizes_that_no_world_has)
{
    scripted::render(
        [](const call& now)
        {
            PF_EffectWorld world{};
            const auto make = [&](A_long width, A_long height, PF_NewWorldFlags flags = 0)
            { return now.utils().new_world(now.ref(), width, height, flags, &world); };
            EXPECT_EQ(make(0, 5), PF_Err_BAD_CALLBACK_PARAM);
            EXPECT_EQ(make(5, -1), PF_Err_BAD_CALLBACK_PARAM);
            EXPECT_EQ(make(5, 5, PF_NewWorldFlag_DEEP_PIXELS), PF_Err_BAD_CALLBACK_PARAM);
            EXPECT_EQ(make(2147483647, 1), PF_Err_OUT_OF_MEMORY);
            EXPECT_EQ(make(40000, 40000), PF_Err_OUT_OF_MEMORY);
            EXPECT_EQ(now.utils().new_world(now.ref(), 5, 5, 0, nullptr), PF_Err_BAD_CALLBACK_PARAM);
            EXPECT_EQ(now.utils().new_world(nullptr, 5, 5, 0, &world), PF_Err_BAD_CALLBACK_PARAM);
            return PF_Err_NONE;
        });
}

struct visit
{
    const call* now;
    std::vector<std::pair<int, int>> seen;
    std::size_t end_after = 1000000;
};

PF_Err note_pixel(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out)
{
    auto& to = *static_cast<visit*>(refcon);
    EXPECT_EQ(reinterpret_cast<char*>(in),
              reinterpret_cast<char*>(to.now->input().data) + y * to.now->input().rowbytes + x * 4);
    EXPECT_EQ(reinterpret_cast<char*>(out),
              reinterpret_cast<char*>(to.now->output->data) + y * to.now->output->rowbytes + x * 4);
    to.seen.emplace_back(x, y);
    return to.seen.size() == to.end_after ? 99 : 0;
}

TEST(iterate, visits_the_clipped_area_row_by_row_and_ends_at_the_first_error)
{
    host::render_options padded;
    padded.row_padding = 16;
    scripted::render(
        [](const call& now)
        {
            const auto run = [&](const PF_Rect* area, visit& to)
            { return now.utils().iterate(now.in, 0, 9, &now.input(), area, &to, note_pixel, now.output); };
            visit all{&now, {}};
            EXPECT_EQ(run(nullptr, all), PF_Err_NONE);
            EXPECT_EQ(all.seen.size(), 12u * 9u);
            for (std::size_t i = 0; i < all.seen.size(); ++i)
                EXPECT_EQ(all.seen[i], (std::pair<int, int>(static_cast<int>(i % 12), static_cast<int>(i / 12))));

            const PF_Rect corner{10, 7, 50, 50};
            visit part{&now, {}};
            EXPECT_EQ(run(&corner, part), PF_Err_NONE);
            EXPECT_EQ(part.seen, (std::vector<std::pair<int, int>>{{10, 7}, {11, 7}, {10, 8}, {11, 8}}));

            visit early{&now, {}, 14};
            EXPECT_EQ(run(nullptr, early), 99);
            EXPECT_EQ(early.seen.size(), 14u);
            return PF_Err_NONE;
        },
        padded);
}

TEST(iterate, is_clipped_to_the_smaller_world)
{
    scripted::render(
        [](const call& now)
        {
            PF_EffectWorld large{};
            now.utils().new_world(now.ref(), 20, 20, PF_NewWorldFlag_CLEAR_PIXELS, &large);
            int count = 0;
            const auto tally = [](void* refcon, A_long, A_long, PF_Pixel*, PF_Pixel*) -> PF_Err
            {
                ++*static_cast<int*>(refcon);
                return PF_Err_NONE;
            };
            now.utils().iterate(now.in, 0, 0, &large, nullptr, &count, tally, now.output);
            EXPECT_EQ(count, 12 * 9);
            return now.utils().dispose_world(now.ref(), &large);
        });
}

TEST(callbacks, refuse_worlds_and_modes_that_they_cannot_serve)
{
    scripted::render(
        [](const call& now)
        {
            const auto& utils = now.utils();
            PF_EffectWorld empty{}, narrow = *now.output, deep = *now.output;
            narrow.rowbytes = 8;
            deep.world_flags |= PF_WorldFlag_DEEP;
            for (PF_EffectWorld* bad : {static_cast<PF_EffectWorld*>(nullptr), &empty, &narrow, &deep})
            {
                EXPECT_EQ(utils.fill(now.ref(), nullptr, nullptr, bad), PF_Err_BAD_CALLBACK_PARAM);
                EXPECT_EQ(utils.copy(now.ref(), bad, now.output, nullptr, nullptr), PF_Err_BAD_CALLBACK_PARAM);
                EXPECT_EQ(utils.copy(now.ref(), &now.input(), bad, nullptr, nullptr), PF_Err_BAD_CALLBACK_PARAM);
            }
            PF_CompositeMode mode{};
            const auto transfer = [&](PF_Field field, const PF_CompositeMode* how) {
                return utils.transfer_rect(now.ref(), 1, 0, field, nullptr, &now.input(), how, nullptr, 0, 0,
                                           now.output);
            };
            mode.xfer = 3;
            EXPECT_EQ(transfer(0, &mode), PF_Err_BAD_CALLBACK_PARAM);
            EXPECT_EQ(transfer(0, nullptr), PF_Err_BAD_CALLBACK_PARAM);
            mode.xfer = PF_Xfer_COPY;
            EXPECT_EQ(transfer(1, &mode), PF_Err_BAD_CALLBACK_PARAM);
            EXPECT_EQ(transfer(0, &mode), PF_Err_NONE);
            const PF_FloatMatrix still{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
            const auto transform = [&](const PF_FloatMatrix* matrices, A_long count)
            {
                return utils.transform_world(now.ref(), 1, 0, 0, &now.input(), &mode, nullptr, matrices, count, 1,
                                             nullptr, now.output);
            };
            EXPECT_EQ(transform(&still, 0), PF_Err_BAD_CALLBACK_PARAM);
            EXPECT_EQ(transform(nullptr, 1), PF_Err_BAD_CALLBACK_PARAM);
            EXPECT_EQ(transform(&still, 1), PF_Err_NONE);
            return PF_Err_NONE;
        });
}

TEST(callbacks, offer_the_hosts_own_maths_and_the_c_librarys_text_functions)
{
    std::vector<std::string> log;
    for (const bool logged : {false, true})
    {
        host::render_options options;
        options.log = logged ? &log : nullptr;
        scripted::render(
            [](const call& now)
            {
                const auto& ansi = now.utils().ansi;
                EXPECT_EQ(ansi.atan(0.3), host::maths::atan(0.3));
                EXPECT_EQ(ansi.atan2(0.3, -2), host::maths::atan2(0.3, -2.0));
                EXPECT_EQ(ansi.ceil(0.3), 1.0);
                EXPECT_EQ(ansi.cos(0.3), host::maths::cos(0.3));
                EXPECT_EQ(ansi.exp(0.3), host::maths::exp(0.3));
                EXPECT_EQ(ansi.fabs(-0.3), 0.3);
                EXPECT_EQ(ansi.floor(-0.3), -1.0);
                EXPECT_EQ(ansi.fmod(7.5, 2), 1.5);
                EXPECT_EQ(ansi.hypot(3, 4), 5.0);
                EXPECT_EQ(ansi.log(0.3), host::maths::log(0.3));
                EXPECT_EQ(ansi.log10(0.3), host::maths::log10(0.3));
                EXPECT_EQ(ansi.pow(2, 10), 1024.0);
                EXPECT_EQ(ansi.sin(0.3), host::maths::sin(0.3));
                EXPECT_EQ(ansi.sqrt(2), std::sqrt(2.0));
                EXPECT_EQ(ansi.tan(0.3), host::maths::tan(0.3));
                EXPECT_EQ(ansi.asin(0.3), host::maths::asin(0.3));
                EXPECT_EQ(ansi.acos(0.3), host::maths::acos(0.3));
                char text[40];
                EXPECT_EQ(ansi.sprintf(text, "%d-%s", 7, "x"), 3);
                EXPECT_STREQ(text, "7-x");
                EXPECT_EQ(ansi.strcpy(text, "copied"), text);
                EXPECT_STREQ(text, "copied");
                return PF_Err_NONE;
            },
            options);
    }
    EXPECT_EQ(log.size(), 19u);
    EXPECT_THAT(log, testing::IsSupersetOf({"ansi.hypot 3,4 -> 5", "ansi.floor -0.29999999999999999 -> -1",
                                            "ansi.sprintf -> \"7-x\"", "ansi.strcpy \"copied\""}));
}

TEST(handles, are_blocks_of_the_asked_size)
{
    host::render_options options;
    options.checked = true;
    const auto result = scripted::render(
        [](const call& now)
        {
            const auto& utils = now.utils();
            for (const std::uint64_t size : {0, 1, 17, 4096})
            {
                PF_Handle handle = utils.host_new_handle(size);
                EXPECT_EQ(utils.host_get_handle_size(handle), size);
                void* memory = utils.host_lock_handle(handle);
                EXPECT_EQ(memory, *handle);
                EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % 16, 0u);
                std::memset(memory, 1, size);
                utils.host_unlock_handle(handle);
                utils.host_dispose_handle(handle);
            }
            EXPECT_EQ(utils.host_new_handle(~std::uint64_t{0}), nullptr);
            return PF_Err_NONE;
        },
        options);
    EXPECT_EQ(result.stats.handle_bytes, ~std::uint64_t{0});
}

TEST(handles, callbacks_may_be_left_out)
{
    host::render_options options;
    options.no_handle_callbacks = true;
    scripted::render(
        [](const call& now)
        {
            EXPECT_EQ(now.utils().host_new_handle, nullptr);
            EXPECT_EQ(now.utils().host_lock_handle, nullptr);
            EXPECT_EQ(now.utils().host_unlock_handle, nullptr);
            EXPECT_EQ(now.utils().host_dispose_handle, nullptr);
            return PF_Err_NONE;
        },
        options);
}

// A render that makes one call of each kind.
PF_Err one_of_each(const call& now)
{
    const auto& utils = now.utils();
    PF_EffectWorld world{};
    if (const PF_Err answer = utils.new_world(now.ref(), 6, 5, 1, &world))
        return answer;
    const PF_Pixel color{9, 8, 7, 6};
    PF_Rect rect{0, 1, 4, 5};
    utils.fill(now.ref(), &color, &rect, &world);
    utils.fill(now.ref(), nullptr, nullptr, now.output);
    utils.copy(now.ref(), &now.input(), now.output, nullptr, &rect);
    PF_CompositeMode mode{PF_Xfer_IN_FRONT, 3256874, 255, 0, 0};
    utils.transfer_rect(now.ref(), 1, 0, 0, &rect, &world, &mode, nullptr, 2, -3, now.output);
    const PF_FloatMatrix matrix{{{1, 0, 0}, {0, 0.5, 0}, {-3, 4, 1}}};
    utils.transform_world(now.ref(), 0, 0, 0, &world, &mode, nullptr, &matrix, 1, 1, &rect, now.output);
    PF_SampPB block{};
    block.src = &now.input();
    PF_Pixel sample{};
    utils.subpixel_sample(now.ref(), 65536, 0, &block, &sample);
    PF_ParamDef record{};
    if (now.in->inter.checkout_param(now.ref(), 2, 3, 1, 25, &record) == PF_Err_NONE)
        now.in->inter.checkin_param(now.ref(), &record);
    now.in->inter.abort(now.ref());
    now.in->inter.progress(now.ref(), 1, 2);
    if (PF_Handle handle = utils.host_new_handle(100))
    {
        if (utils.host_lock_handle(handle))
            utils.host_unlock_handle(handle);
        utils.host_dispose_handle(handle);
    }
    return utils.dispose_world(now.ref(), &world);
}

TEST(log, has_one_line_a_call_with_its_arguments)
{
    std::vector<std::string> log;
    host::render_options options;
    options.log = &log;
    scripted::render(one_of_each, options);
    EXPECT_EQ(log,
              (std::vector<std::string>{
                  "new_world 6x5 flags 1 -> #1",
                  "fill world #1 rect 0,1,4,5 color 9,8,7,6",
                  "fill world output rect all color none",
                  "copy world input rect all -> world output rect 0,1,4,5",
                  "transfer_rect quality 1 mode 2 flags 0 field 0 src_rect 0,1,4,5 world #1 at 2,-3 opacity 255 "
                  "rgb_only 0 seed 3256874 -> world output",
                  "transform_world quality 0 mode 2 flags 0 field 0 world #1 matrix 1,0,0,0.5,-3,4 src2dst 1 "
                  "dest_rect 0,1,4,5 opacity 255 rgb_only 0 seed 3256874 -> world output",
                  "subpixel_sample 65536,0 world input -> 254,1,3,0",
                  "checkout_param 2 time 3 step 1 scale 25",
                  "checkin_param",
                  "abort",
                  "progress 1 of 2",
                  "host_new_handle 100 -> handle 1",
                  "host_lock_handle handle 1",
                  "host_unlock_handle handle 1",
                  "host_dispose_handle handle 1",
                  "dispose_world world #1",
              }));
}

TEST(log, tells_failed_calls)
{
    std::vector<std::string> log;
    host::render_options options;
    options.log = &log;
    scripted::render(
        [](const call& now)
        {
            PF_EffectWorld world{};
            now.utils().new_world(now.ref(), 0, 4, 0, &world);
            now.utils().fill(now.ref(), nullptr, nullptr, &world);
            return PF_Err_NONE;
        },
        options);
    EXPECT_EQ(log, (std::vector<std::string>{"new_world 0x4 flags 0 -> error 516",
                                             "fill world ? rect all color none -> error 516"}));
}

TEST(fail, makes_the_named_call_fail_and_the_effect_is_not_blamed)
{
    // Every call that one_of_each makes, failing alone; checked mode finds nothing to say about any of them.
    for (const std::string name :
         {"new_world", "fill", "copy", "transfer_rect", "transform_world", "subpixel_sample", "checkout_param",
          "checkin_param", "abort", "progress", "host_new_handle", "host_lock_handle", "host_unlock_handle",
          "host_dispose_handle", "dispose_world"})
    {
        std::vector<std::string> log;
        host::render_options options;
        options.checked = true;
        options.log = &log;
        int asked = 0;
        options.fail = [&](const char* callback, int nth) -> PF_Err
        {
            if (callback != name)
                return 0;
            EXPECT_EQ(nth, ++asked);
            return nth == 1 ? 321 : 0;
        };
        const auto result = scripted::render(one_of_each, options);
        EXPECT_GE(asked, 1) << name;
        EXPECT_EQ(result.stats.result, name == "new_world" || name == "dispose_world" ? 321 : 0) << name;
        const auto failed =
            std::count_if(log.begin(), log.end(),
                          [&](const std::string& line)
                          { return line.rfind(name, 0) == 0 && line.find("-> error 321") != std::string::npos; });
        EXPECT_EQ(failed, 1) << name;
    }
}

TEST(fail, does_not_do_the_calls_work)
{
    host::render_options options;
    options.fail = [](const char* callback, int nth)
    { return std::string(callback) == "fill" && nth == 2 ? 4 : 0; };
    const auto result = scripted::render(
        [](const call& now)
        {
            const PF_Pixel first{1, 1, 1, 1}, second{2, 2, 2, 2};
            EXPECT_EQ(now.utils().fill(now.ref(), &first, nullptr, now.output), PF_Err_NONE);
            EXPECT_EQ(now.utils().fill(now.ref(), &second, nullptr, now.output), 4);
            return PF_Err_NONE;
        },
        options);
    EXPECT_EQ(result.output.at(3, 3).red, 1);
}

TEST(fail, may_throw_and_the_exception_comes_out_of_the_render)
{
    host::render_options options;
    options.fail = [](const char*, int) -> PF_Err { throw std::out_of_range("enough"); };
    EXPECT_THROW(scripted::render(one_of_each, options), std::out_of_range);
}

TEST(timed, host_time_is_part_of_the_whole)
{
    host::render_options options;
    EXPECT_EQ(scripted::render(one_of_each, options).stats.total_seconds, 0.0);
    options.timed = true;
    const auto stats = scripted::render(one_of_each, options).stats;
    EXPECT_GT(stats.host_seconds, 0.0);
    EXPECT_LT(stats.host_seconds, stats.total_seconds);
}
} // namespace
