// Checked mode: each way of breaking the rules, by an effect that does just that.
#include "scripted_effect.hpp"

#include <gtest/gtest.h>

namespace
{
using scripted::call;

std::string found(const scripted::script& what)
{
    host::render_options options;
    options.checked = true;
    options.row_padding = 8;
    return scripted::error_of(what, options);
}

PF_EffectWorld made(const call& now)
{
    PF_EffectWorld world{};
    EXPECT_EQ(now.utils().new_world(now.ref(), 6, 5, PF_NewWorldFlag_CLEAR_PIXELS, &world), PF_Err_NONE);
    return world;
}

char* bytes(const PF_EffectWorld& world)
{
    return reinterpret_cast<char*>(world.data);
}

PF_Err dispose(const call& now, PF_EffectWorld& world)
{
    return now.utils().dispose_world(now.ref(), &world);
}

TEST(checked, says_nothing_about_a_well_behaved_effect)
{
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      auto world = made(now);
                      world.data[0].red = 1;
                      now.output->data[5].blue = 3;
                      PF_Handle handle = now.utils().host_new_handle(10);
                      now.utils().host_lock_handle(handle);
                      now.utils().host_lock_handle(handle);
                      now.utils().host_unlock_handle(handle);
                      now.utils().host_unlock_handle(handle);
                      now.utils().host_dispose_handle(handle);
                      PF_ParamDef first{}, second{};
                      const auto& inter = now.in->inter;
                      inter.checkout_param(now.ref(), 2, 0, 1, 25, &first);
                      inter.checkout_param(now.ref(), 3, 0, 1, 25, &second);
                      inter.checkin_param(now.ref(), &first);
                      inter.checkin_param(now.ref(), &second);
                      return dispose(now, world);
                  }),
              "");
}

TEST(checked, finds_writes_around_a_world)
{
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      auto world = made(now);
                      bytes(world)[-1] = 0;
                      return dispose(now, world);
                  }),
              "scripted: world #1 was written to before its first pixel");
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      auto world = made(now);
                      bytes(world)[5 * world.rowbytes + 63] = 0;
                      return dispose(now, world);
                  }),
              "scripted: world #1 was written to past its last row");
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      auto world = made(now);
                      bytes(world)[2 * world.rowbytes + 24] = 0;
                      return dispose(now, world);
                  }),
              "scripted: world #1 was written to in the padding of its rows");
}

TEST(checked, finds_writes_around_the_output)
{
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      bytes(*now.output)[12 * 4] = 0;
                      return PF_Err_NONE;
                  }),
              "scripted: the output was written to in the padding of its rows");
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      bytes(*now.output)[-64] = 0;
                      return PF_Err_NONE;
                  }),
              "scripted: the output was written to before its first pixel");
}

TEST(checked, finds_writes_to_the_input)
{
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      bytes(now.input())[3 * now.input().rowbytes + 7] ^= 1;
                      return PF_Err_NONE;
                  }),
              "scripted: the input layer was written to, first in row 3");
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      bytes(now.input())[12 * 4 + 7] = 0;
                      return PF_Err_NONE;
                  }),
              "scripted: the input was written to in the padding of its rows");
}

TEST(checked, finds_worlds_that_are_not_given_back_once)
{
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      made(now);
                      return PF_Err_NONE;
                  }),
              "scripted: new_world: world #1 was never disposed of");
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      auto world = made(now);
                      dispose(now, world);
                      EXPECT_NE(dispose(now, world), PF_Err_NONE);
                      return PF_Err_NONE;
                  }),
              "scripted: dispose_world: world #1 was already disposed of");
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      auto world = made(now);
                      auto copy = world;
                      dispose(now, copy);
                      EXPECT_NE(dispose(now, world), PF_Err_NONE);
                      return PF_Err_NONE;
                  }),
              "scripted: dispose_world: world #1 was already disposed of");
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      EXPECT_NE(dispose(now, *now.output), PF_Err_NONE);
                      return PF_Err_NONE;
                  }),
              "scripted: dispose_world: the output is the host's");
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      PF_EffectWorld own{};
                      EXPECT_NE(dispose(now, own), PF_Err_NONE);
                      return PF_Err_NONE;
                  }),
              "scripted: dispose_world: a world that this host did not make");
}

TEST(checked, finds_use_after_disposal)
{
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      auto world = made(now);
                      auto copy = world;
                      dispose(now, world);
                      EXPECT_NE(now.utils().fill(now.ref(), nullptr, nullptr, &copy), PF_Err_NONE);
                      return PF_Err_NONE;
                  }),
              "scripted: fill: world #1 was already disposed of");
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      auto world = made(now);
                      PF_Pixel* pixels = world.data;
                      dispose(now, world);
                      pixels[3].green = 1;
                      return PF_Err_NONE;
                  }),
              "scripted: world #1 was written to after it was disposed of");
}

TEST(checked, finds_worlds_made_larger_than_they_are)
{
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      auto world = made(now);
                      auto larger = world;
                      larger.height = 6;
                      EXPECT_NE(now.utils().fill(now.ref(), nullptr, nullptr, &larger), PF_Err_NONE);
                      return dispose(now, world);
                  }),
              "scripted: fill: world #1 is said to be larger than it was made");
}

TEST(checked, finds_writes_around_a_handle)
{
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      PF_Handle handle = now.utils().host_new_handle(10);
                      (*handle)[-1] = 0;
                      now.utils().host_dispose_handle(handle);
                      return PF_Err_NONE;
                  }),
              "scripted: handle 1 was written to before its first byte");
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      PF_Handle handle = now.utils().host_new_handle(10);
                      (*handle)[10] = 0;
                      now.utils().host_dispose_handle(handle);
                      return PF_Err_NONE;
                  }),
              "scripted: handle 1 was written to past its last byte");
}

TEST(checked, finds_handles_that_are_not_given_back_once)
{
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      now.utils().host_new_handle(10);
                      return PF_Err_NONE;
                  }),
              "scripted: host_new_handle: handle 1 of 10 bytes was never disposed of");
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      PF_Handle handle = now.utils().host_new_handle(10);
                      now.utils().host_dispose_handle(handle);
                      now.utils().host_dispose_handle(handle);
                      return PF_Err_NONE;
                  }),
              "scripted: host_dispose_handle: handle 1 was already disposed of");
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      PF_Handle handle = now.utils().host_new_handle(10);
                      now.utils().host_dispose_handle(handle);
                      EXPECT_EQ(now.utils().host_lock_handle(handle), nullptr);
                      return PF_Err_NONE;
                  }),
              "scripted: host_lock_handle: handle 1 was already disposed of");
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      char* own = nullptr;
                      EXPECT_EQ(now.utils().host_get_handle_size(&own), 0u);
                      return PF_Err_NONE;
                  }),
              "scripted: host_get_handle_size: a handle that this host did not make");
}

TEST(checked, finds_locks_out_of_balance)
{
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      PF_Handle handle = now.utils().host_new_handle(10);
                      now.utils().host_lock_handle(handle);
                      now.utils().host_dispose_handle(handle);
                      return PF_Err_NONE;
                  }),
              "scripted: host_dispose_handle: handle 1 is still locked");
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      PF_Handle handle = now.utils().host_new_handle(10);
                      now.utils().host_unlock_handle(handle);
                      now.utils().host_dispose_handle(handle);
                      return PF_Err_NONE;
                  }),
              "scripted: host_unlock_handle: handle 1 is not locked");
}

TEST(checked, finds_checkouts_without_checkins_and_the_other_way_round)
{
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      PF_ParamDef record{};
                      return now.in->inter.checkout_param(now.ref(), 4, 7, 1, 25, &record);
                  }),
              "scripted: checkout_param 4 time 7 step 1 scale 25: was never checked in");
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      PF_ParamDef record{};
                      EXPECT_NE(now.in->inter.checkin_param(now.ref(), &record), PF_Err_NONE);
                      return PF_Err_NONE;
                  }),
              "scripted: checkin_param: a record that was not checked out");
}

TEST(checked, tells_the_first_finding_and_the_number_of_the_others)
{
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      made(now);
                      made(now);
                      now.utils().host_new_handle(1);
                      return PF_Err_NONE;
                  }),
              "scripted: new_world: world #1 was never disposed of (and 2 more)");
}

TEST(checked, comes_before_the_effects_own_error)
{
    EXPECT_EQ(found(
                  [](const call& now)
                  {
                      made(now);
                      return PF_Err{4};
                  }),
              "scripted: new_world: world #1 was never disposed of");
}

TEST(unchecked, forgives_and_frees_what_is_left_over)
{
    EXPECT_EQ(scripted::error_of(
                  [](const call& now)
                  {
                      made(now);
                      auto twice = made(now);
                      dispose(now, twice);
                      EXPECT_NE(dispose(now, twice), PF_Err_NONE);
                      now.utils().host_lock_handle(now.utils().host_new_handle(10));
                      PF_ParamDef record{};
                      return now.in->inter.checkout_param(now.ref(), 4, 7, 1, 25, &record);
                  }),
              "");
}
} // namespace
