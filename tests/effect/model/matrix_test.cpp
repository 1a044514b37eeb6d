#include "effect/model/matrix.hpp"

#include "tests/support/effect_fixture.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace
{
PF_FloatMatrix odd_matrix()
{
    return {{{0.3, -1.7, 0.0}, {2.9, 0.1, 0.0}, {11.3, -7.9, 1.0}}};
}

bool same_bits(const PF_FloatMatrix& a, const PF_FloatMatrix& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

fpoint_t mapped(const PF_FloatMatrix& m, double x, double y)
{
    fpoint_t p = {x, y};
    EXPECT_EQ(AEG_TransformPoints(&m, 1, &p), 0);
    return p;
}
} // namespace

TEST(matrix, points_are_row_vectors)
{
    const PF_FloatMatrix m = {{{2, 3, 100}, {5, 7, 100}, {11, 13, 100}}};
    fpoint_t points[3] = {{1, 0}, {0, 1}, {10, 100}};
    AEG_TransformPoints(&m, 3, points);
    EXPECT_EQ(points[0].x, 13);
    EXPECT_EQ(points[0].y, 16);
    EXPECT_EQ(points[1].x, 16);
    EXPECT_EQ(points[1].y, 20);
    EXPECT_EQ(points[2].x, 531);
    EXPECT_EQ(points[2].y, 743);
}

TEST(matrix, curve_points_keep_their_angle)
{
    const PF_FloatMatrix m = {{{2, 3, 0}, {5, 7, 0}, {11, 13, 1}}};
    curve_pt_t points[2] = {{1, 2, 33.5}, {0, 0, -4}};
    EXPECT_EQ(AEG_TransformPoints(&m, 1, points), 0);
    EXPECT_EQ(points[0].x, 23);
    EXPECT_EQ(points[0].y, 30);
    EXPECT_EQ(points[0].angle, 33.5);
    EXPECT_EQ(points[1].x, 0); // not among the n
    EXPECT_EQ(AEG_TransformPoints(&m, 0, points), 0);
    EXPECT_EQ(points[0].x, 23);
}

TEST(matrix, composing_appends)
{
    effect_fixture host;
    PF_FloatMatrix m;
    EXPECT_EQ(AEG_SetIdentityMatrix(&m), 0);
    EXPECT_EQ(mapped(m, 3, 4).x, 3);
    EXPECT_EQ(AEG_TranslateMatrix(&m, 10, 20), 0);
    EXPECT_EQ(AEG_ScaleMatrix(&m, 2, 3, 1, 1), 0);
    // (3, 4) moves to (13, 24); then about (1, 1): 1 + 12 * 2, 1 + 23 * 3.
    EXPECT_EQ(mapped(m, 3, 4).x, 25);
    EXPECT_EQ(mapped(m, 3, 4).y, 70);
    const PF_FloatMatrix n = {{{0, 1, 0}, {1, 0, 0}, {5, 6, 1}}};
    EXPECT_EQ(AEG_ConcatMatrix(&n, &m), 0); // exchange, then move
    EXPECT_EQ(mapped(m, 3, 4).x, 75);
    EXPECT_EQ(mapped(m, 3, 4).y, 31);
}

TEST(matrix, concat_may_be_given_one_matrix_twice)
{
    PF_FloatMatrix m = {{{2, 0, 0}, {0, 3, 0}, {5, 7, 1}}};
    AEG_ConcatMatrix(&m, &m);
    EXPECT_EQ(mapped(m, 1, 1).x, 19);
    EXPECT_EQ(mapped(m, 1, 1).y, 37);
}

TEST(matrix, rotating_by_0_changes_no_bit)
{
    effect_fixture host;
    for (const double zero : {0.0, -0.0})
    {
        PF_FloatMatrix m = odd_matrix();
        EXPECT_EQ(AEG_RotateMatrixPlus(&m, &host.in_data, zero, 10, 20), 0);
        EXPECT_TRUE(same_bits(m, odd_matrix()));
    }
    PF_FloatMatrix m = odd_matrix();
    AEG_RotateMatrixPlus(&m, &host.in_data, 360.0, 10, 20);
    EXPECT_FALSE(same_bits(m, odd_matrix()));
}

TEST(matrix, rotation_turns_clockwise_on_screen_about_its_centre)
{
    effect_fixture host;
    PF_FloatMatrix m;
    AEG_SetIdentityMatrix(&m);
    EXPECT_EQ(AEG_RotateMatrixPlus(&m, &host.in_data, 90.0, 100, 50), 0);
    EXPECT_NEAR(mapped(m, 110, 50).x, 100, 1e-12);
    EXPECT_NEAR(mapped(m, 110, 50).y, 60, 1e-12);
    EXPECT_NEAR(mapped(m, 100, 50).x, 100, 1e-12);
    EXPECT_NEAR(mapped(m, 100, 50).y, 50, 1e-12);
}

TEST(matrix, rotation_is_exactly_the_stated_rows)
{
    effect_fixture host;
    PF_FloatMatrix m;
    AEG_SetIdentityMatrix(&m);
    AEG_RotateMatrixPlus(&m, &host.in_data, 33.25, 144, 96);
    const double a = 33.25 * 0.017453292519943295;
    const double s = std::sin(a);
    const double c = std::cos(a);
    const double expected[3][3] = {{c, s, 0}, {-s, c, 0}, {144 * (1 - c) + 96 * s, 96 * (1 - c) - 144 * s, 1}};
    for (int row = 0; row < 3; ++row)
        for (int col = 0; col < 3; ++col)
            EXPECT_EQ(m.mat[row][col], expected[row][col]) << row << ' ' << col;
}

TEST(matrix, scaling_by_exactly_1_is_skipped)
{
    PF_FloatMatrix m = odd_matrix();
    EXPECT_EQ(AEG_ScaleMatrix(&m, 1, 1, 10, 20), 0);
    EXPECT_TRUE(same_bits(m, odd_matrix()));
    AEG_ScaleMatrix(&m, 1, 1.0000001, 10, 20);
    EXPECT_FALSE(same_bits(m, odd_matrix()));
    EXPECT_EQ(m.mat[2][1], -7.9 * 1.0000001 + (1.0 - 1.0000001) * 20);
    m = odd_matrix();
    AEG_ScaleMatrix(&m, 0.5, 1, 10, 20);
    EXPECT_EQ(m.mat[2][0], 11.3 * 0.5 + 0.5 * 10);
}

TEST(matrix, fixed_points_scale_the_translation_alone)
{
    const PF_FloatMatrix m = {{{0.5, 0, 0}, {0.25, -1, 0}, {1.5, -2.25, 1}}};
    PF_FixedPoint points[2] = {{3, 2}, {-65536, 131072}};
    EXPECT_EQ(AEG_TransformFixPoints(&m, 2, points), 0);
    EXPECT_EQ(points[0].x, 98306);   // 1.5 + 0.5 + 98304
    EXPECT_EQ(points[0].y, -147458); // -2 - 147456
    EXPECT_EQ(points[1].x, 98304);
    EXPECT_EQ(points[1].y, -278528);
}

TEST(matrix, fixed_points_truncate_toward_zero_and_survive_anything)
{
    const PF_FloatMatrix m = {{{0.9, std::numeric_limits<double>::quiet_NaN(), 0}, {0, 0, 0}, {0, 0, 1}}};
    PF_FixedPoint points[2] = {{-1, 0}, {2147483647, 0}};
    AEG_TransformFixPoints(&m, 2, points);
    EXPECT_EQ(points[0].x, 0);
    EXPECT_EQ(points[0].y, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(points[1].x, 1932735282);
}

TEST(pt_perp, finds_the_foot)
{
    double x = 9;
    double y = 9;
    EXPECT_FALSE(AEG_PtPerp(&x, &y, 0, 0, 1, 0, 5, 7));
    EXPECT_EQ(x, 5);
    EXPECT_EQ(y, 0);
    EXPECT_FALSE(AEG_PtPerp(&x, &y, 3, 0, 3, -2, 5, 7));
    EXPECT_EQ(x, 3);
    EXPECT_EQ(y, 7);
    EXPECT_FALSE(AEG_PtPerp(&x, &y, 0, 10, 10, 0, 0, 0));
    EXPECT_EQ(x, 5);
    EXPECT_EQ(y, 5);
}

TEST(pt_perp, points_that_coincide_have_none)
{
    double x = 9;
    double y = 9;
    EXPECT_TRUE(AEG_PtPerp(&x, &y, 4, 5, 4, 5, 1, 1));
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, 0);
    x = 9;
    EXPECT_TRUE(AEG_PtPerp(&x, &y, 4, 5, 4.003, 5, 1, 1)); // 0.000009
    EXPECT_EQ(x, 0);
    EXPECT_FALSE(AEG_PtPerp(&x, &y, 4, 5, 4.004, 5, 1, 1)); // 0.000016
}

TEST(pt_perp, points_that_are_no_numbers_have_a_foot_that_is_none)
{
    double x = 9;
    double y = 9;
    EXPECT_FALSE(AEG_PtPerp(&x, &y, std::nan(""), 5, 4, 5, 1, 1));
    EXPECT_TRUE(std::isnan(x));
    EXPECT_TRUE(std::isnan(y));
}
