#include "composite.hpp"

#include "scripted_effect.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace
{
using host::blend;
using scripted::operator_equal;

// The formulas in real numbers, as the header states them.
struct real_pixel
{
    double alpha, red, green, blue;
    bool weightless;
};

real_pixel in_real_numbers(const blend& how, PF_Pixel src, PF_Pixel dst, unsigned mask)
{
    const double s = src.alpha / 255.0;
    const double d = dst.alpha / 255.0;
    const double t = how.opacity / 255.0 * (mask / 255.0);
    double from = s * t;
    double to = d * (1.0 - s * t);
    if (how.mode == PF_Xfer_COPY)
        to = d * (1.0 - t);
    if (how.mode == PF_Xfer_BEHIND)
        from = s * t * (1.0 - d), to = d;
    const double sum = from + to;
    const auto channel = [&](double a, double b) { return (from * a + to * b) / sum; };
    return {255.0 * sum, channel(src.red, dst.red), channel(src.green, dst.green), channel(src.blue, dst.blue),
            sum == 0.0};
}

// Rounded to nearest; on a half, which real numbers hit only nearly, either neighbour would pass.
bool is_nearest(A_u_char got, double exact)
{
    return std::abs(got - exact) <= 0.5 + 1e-9;
}

void expect_blended(const blend& how, PF_Pixel src, PF_Pixel dst, unsigned mask)
{
    const PF_Pixel got = blended(how, src, dst, mask);
    const real_pixel exact = in_real_numbers(how, src, dst, mask);
    const bool copied = how.mode == PF_Xfer_COPY && how.opacity == 255 && mask == 255;
    bool right = copied ? operator_equal(got, src) : operator_equal(got, dst);
    if (!copied && !exact.weightless)
        right = is_nearest(got.alpha, exact.alpha) && is_nearest(got.red, exact.red) &&
                is_nearest(got.green, exact.green) && is_nearest(got.blue, exact.blue);
    ASSERT_TRUE(right) << "mode " << how.mode << " opacity " << how.opacity << " mask " << mask << " alphas "
                       << +src.alpha << " on " << +dst.alpha;
}

const PF_TransferMode modes[] = {PF_Xfer_COPY, PF_Xfer_BEHIND, PF_Xfer_IN_FRONT};

TEST(composite, every_pair_of_alphas_is_the_formula_rounded_to_nearest)
{
    for (const PF_TransferMode mode : modes)
        for (const unsigned opacity : {0u, 1u, 100u, 255u})
            for (const unsigned mask : {0u, 77u, 255u})
                for (int s = 0; s < 256; ++s)
                    for (int d = 0; d < 256; ++d)
                        expect_blended({mode, opacity, false}, {static_cast<A_u_char>(s), 255, 0, 17},
                                       {static_cast<A_u_char>(d), 0, 255, 200}, mask);
}

TEST(composite, halves_go_upwards)
{
    // Equal weights for the channels: alpha 2 by 1/3 and alpha 1 by 2/3.
    const PF_Pixel mean = host::blended({PF_Xfer_COPY, 85, false}, {2, 3, 0, 8}, {1, 0, 1, 1}, 255);
    EXPECT_EQ(mean.red, 2);   // (3 + 0) / 2 = 1.5
    EXPECT_EQ(mean.green, 1); // 0.5
    EXPECT_EQ(mean.blue, 5);  // 4.5
    EXPECT_EQ(mean.alpha, 1); // 4/3
}

TEST(composite, rgb_only_keeps_the_destination_alpha_and_takes_the_channels)
{
    for (const PF_TransferMode mode : modes)
        for (int d = 0; d < 256; ++d)
        {
            const PF_Pixel src{200, 10, 20, 30};
            const PF_Pixel dst{static_cast<A_u_char>(d), 90, 80, 70};
            const PF_Pixel all = host::blended({mode, 180, false}, src, dst, 255);
            const PF_Pixel rgb = host::blended({mode, 180, true}, src, dst, 255);
            EXPECT_EQ(rgb.alpha, d);
            EXPECT_TRUE(operator_equal({all.alpha, rgb.red, rgb.green, rgb.blue}, all));
        }
}

TEST(composite, a_row_is_its_pixels_one_by_one)
{
    std::mt19937 random(7);
    for (int round = 0; round < 3000; ++round)
    {
        const int count = static_cast<int>(random() % 40);
        const auto how = blend{modes[random() % 3], random() % 2 ? 255u : static_cast<unsigned>(random() % 256),
                               random() % 4 == 0};
        scripted::padded_world src(count + 1, 1), dst(count + 1, 1);
        src.scatter(random);
        dst.scatter(random);
        if (round % 3 == 0) // long transparent runs with a lone pixel
            for (int x = 0; x < count; ++x)
                src.at(x, 0).alpha = x == count / 2 ? 9 : 0;
        scripted::padded_world expected(dst);
        for (int x = 0; x < count; ++x)
            expected.at(x, 0) = blended(how, src.at(x, 0), dst.at(x, 0), 255);
        blend_row(how, &src.at(0, 0), &dst.at(0, 0), count);
        ASSERT_EQ(dst.difference(expected), "") << "round " << round << " mode " << how.mode;
    }
}

TEST(composite, a_row_in_front_is_right_for_every_pair_of_alphas)
{
    const blend how{PF_Xfer_IN_FRONT, 255, false};
    for (int s = 0; s < 256; ++s)
        for (int d = 0; d < 256; ++d)
        {
            const PF_Pixel src{static_cast<A_u_char>(s), static_cast<A_u_char>(d ^ 85), 0, 255};
            PF_Pixel dst{static_cast<A_u_char>(d), static_cast<A_u_char>(s ^ 170), 255, 1};
            const PF_Pixel expected = blended(how, src, dst, 255);
            blend_row(how, &src, &dst, 1);
            ASSERT_TRUE(operator_equal(dst, expected)) << s << " on " << d;
        }
}
} // namespace
