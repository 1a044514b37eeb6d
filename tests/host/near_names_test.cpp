#include "host/near_names.hpp"

#include <gtest/gtest.h>

namespace
{
const std::vector<host::known_name> looks = {
    {"neon-ripples", {"neon-ripples"}},
    {"night-traffic", {"night-traffic"}},
    {"Tartan", {"Tartan", "plaid"}},
};

TEST(near_names, slips_of_the_pen_are_understood)
{
    EXPECT_EQ("did you mean \"neon-ripples\"? ", host::did_you_mean("neon-rippls", looks));
    EXPECT_EQ("did you mean \"neon-ripples\"? ", host::did_you_mean("NEON RIPPLES", looks));
    EXPECT_EQ("did you mean \"Tartan\"? ", host::did_you_mean("tratan", looks));
}

TEST(near_names, any_spelling_counts_and_parts_do)
{
    EXPECT_EQ("did you mean \"Tartan\"? ", host::did_you_mean("plad", looks));
    EXPECT_EQ("did you mean \"night-traffic\"? ", host::did_you_mean("traffic", looks));
}

TEST(near_names, far_empty_and_endless_names_are_not_guessed_at)
{
    EXPECT_EQ("", host::did_you_mean("waterfall", looks));
    EXPECT_EQ("", host::did_you_mean("", looks));
    EXPECT_EQ("", host::did_you_mean(std::string(1000000, 'n'), looks));
    EXPECT_EQ("", host::did_you_mean("tartan", {}));
}
} // namespace
