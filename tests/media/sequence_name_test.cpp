#include "media/sequence_name.hpp"
#include "temporary_folder.hpp"

using namespace media_test;
using media::sequence_name;
using sequence_names = temporary_folder;

TEST_F(sequence_names, number_is_padded_and_never_cut)
{
    EXPECT_EQ(sequence_name::parse("a/f_%04d.png")->file(7), "a/f_0007.png");
    EXPECT_EQ(sequence_name::parse("a/f_%04d.png")->file(123456), "a/f_123456.png");
    EXPECT_EQ(sequence_name::parse("f-###x.png")->file(7), "f-007x.png");
    EXPECT_EQ(sequence_name::parse("%d.png")->file(7), "7.png");
    EXPECT_EQ(sequence_name::parse("50%_%02d.png")->file(7), "50%_07.png");
    EXPECT_EQ(sequence_name::parse("a##")->file(7), "a07");
}

TEST_F(sequence_names, plain_names_are_no_pattern)
{
    EXPECT_FALSE(sequence_name::parse("f_0001.png"));
    EXPECT_FALSE(sequence_name::parse("100%.png"));
    EXPECT_FALSE(sequence_name::parse("a%4d.png"));
    EXPECT_FALSE(sequence_name::parse("a%0d.png"));
    EXPECT_FALSE(sequence_name::parse("a%04"));
    EXPECT_FALSE(sequence_name::parse("%"));
    EXPECT_FALSE(sequence_name::parse("a_%04d/f.png")); // the folder's name is no pattern
}

TEST_F(sequence_names, two_numbers_or_a_monstrous_width_are_refused)
{
    EXPECT_THAT(error_of([] { sequence_name::parse("%d_%d.png"); }), testing::HasSubstr("%d_%d.png"));
    EXPECT_NE(error_of([] { sequence_name::parse("#_%d.png"); }), "");
    EXPECT_NE(error_of([] { sequence_name::parse("%099d.png"); }), "");
    EXPECT_NE(error_of([] { sequence_name::parse("%0999999999999d.png"); }), "");
    EXPECT_NE(error_of([] { sequence_name::parse("##########.png"); }), "");
}

TEST_F(sequence_names, only_files_of_the_pattern_are_found)
{
    for (const char* name : {"f_0002.png", "f_0010.png", "f_12345.png", "f_3.png", "f_-001.png", "f_0004.jpg",
                             "g_0005.png", "f_00006.png", "f_.png", "f_99999999999.png"})
        put(at(name), "x");
    EXPECT_THAT(sequence_name::parse(at("f_%04d.png"))->numbers_present(), testing::ElementsAre(2, 10, 12345));
}
