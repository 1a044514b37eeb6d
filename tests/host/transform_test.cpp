#include "transform.hpp"

#include "scripted_effect.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>

namespace
{
using scripted::operator_equal;
using scripted::padded_world;

// A sample in real numbers: the alpha and alpha-weighted channels of the four pixels around.
struct real_sample
{
    double alpha = 0, red = 0, green = 0, blue = 0;
};

real_sample in_real_numbers(padded_world& world, double x, double y)
{
    real_sample sum;
    const int left = static_cast<int>(std::floor(x)), top = static_cast<int>(std::floor(y));
    for (int j = 0; j < 2; ++j)
        for (int i = 0; i < 2; ++i)
        {
            const double weight = (1.0 - std::abs(x - (left + i))) * (1.0 - std::abs(y - (top + j)));
            const PF_Pixel p = world.at_or_nothing(left + i, top + j);
            sum.alpha += weight * p.alpha;
            sum.red += weight * p.alpha * p.red;
            sum.green += weight * p.alpha * p.green;
            sum.blue += weight * p.alpha * p.blue;
        }
    if (sum.alpha > 0)
        sum = {sum.alpha, sum.red / sum.alpha, sum.green / sum.alpha, sum.blue / sum.alpha};
    return sum;
}

bool is_nearest(A_u_char got, double exact)
{
    return std::abs(got - exact) <= 0.5 + 1e-6;
}

TEST(sample_bilinear, is_the_alpha_weighted_mean_of_four_pixels)
{
    std::mt19937 random(1);
    padded_world world(9, 7);
    for (int round = 0; round < 100000; ++round)
    {
        if (round % 50 == 0)
            world.scatter(random);
        if (round % 300 == 0) // one alpha everywhere
            for (int y = 0; y < 7; ++y)
                for (int x = 0; x < 9; ++x)
                    world.at(x, y).alpha = static_cast<A_u_char>(round / 300);
        // Whole and half positions are likely, and so are ones just past the edges.
        const auto step = random() % 4 == 0 ? 32768 : 1;
        const auto x = (static_cast<int>(random() % (12 * 65536)) - 2 * 65536) / step * step;
        const auto y = (static_cast<int>(random() % (10 * 65536)) - 2 * 65536) / step * step;
        const PF_Pixel got = host::sample_bilinear(world.world(), x, y);
        const real_sample exact = in_real_numbers(world, x / 65536.0, y / 65536.0);
        if (exact.alpha == 0.0 && (x | y) % 65536 != 0)
        {
            ASSERT_TRUE(operator_equal(got, {}));
            continue;
        }
        if (exact.alpha == 0.0)
            continue;
        ASSERT_TRUE(is_nearest(got.alpha, exact.alpha) && is_nearest(got.red, exact.red) &&
                    is_nearest(got.green, exact.green) && is_nearest(got.blue, exact.blue))
            << "round " << round << " at " << x << "," << y;
    }
}

TEST(sample_bilinear, on_a_pixel_centre_is_the_pixel)
{
    std::mt19937 random(2);
    padded_world world(6, 5);
    world.scatter(random);
    for (int y = -2; y < 8; ++y)
        for (int x = -2; x < 9; ++x)
        {
            EXPECT_TRUE(operator_equal(host::sample_bilinear(world.world(), x * 65536, y * 65536),
                                       world.at_or_nothing(x, y)));
        }
}

TEST(sample_bilinear, halves_go_upwards)
{
    padded_world world(2, 1);
    world.at(0, 0) = {255, 0, 10, 0};
    world.at(1, 0) = {255, 1, 13, 255};
    const PF_Pixel between = host::sample_bilinear(world.world(), 32768, 0);
    EXPECT_TRUE(operator_equal(between, {255, 1, 12, 128})); // 0.5, 11.5, 127.5
    world.at(1, 0).alpha = 0;
    EXPECT_TRUE(operator_equal(host::sample_bilinear(world.world(), 32768, 0), {128, 0, 10, 0}));
    EXPECT_TRUE(operator_equal(host::sample_bilinear(world.world(), -32768, 0), {128, 0, 10, 0}));
}

TEST(sample_nearest, takes_the_pixel_whose_square_holds_the_position)
{
    std::mt19937 random(3);
    padded_world world(6, 5);
    world.scatter(random);
    for (int y = -100000; y < 400000; y += 4096)
        for (int x = -100000; x < 500000; x += 4096)
        {
            const int column = static_cast<int>(std::floor(x / 65536.0 + 0.5));
            const int row = static_cast<int>(std::floor(y / 65536.0 + 0.5));
            ASSERT_TRUE(
                operator_equal(host::sample_nearest(world.world(), x, y), world.at_or_nothing(column, row)));
        }
}

// Affine maps as six numbers, row vectors: x' = a*x + c*y + e, y' = b*x + d*y + f.
PF_FloatMatrix matrix(double a, double b, double c, double d, double e, double f)
{
    return {{{a, b, 0}, {c, d, 0}, {e, f, 1}}};
}

PF_FloatMatrix rotation(double degrees, double cx, double cy, double scale = 1.0)
{
    const double angle = degrees * 0.017453292519943295;
    const double c = std::cos(angle) * scale, s = std::sin(angle) * scale;
    return matrix(c, s, -s, c, cx - cx * c + cy * s, cy - cx * s - cy * c);
}

PF_FloatMatrix inverse(const PF_FloatMatrix& of)
{
    const auto& m = of.mat;
    const double det = m[0][0] * m[1][1] - m[0][1] * m[1][0];
    return matrix(m[1][1] / det, -m[0][1] / det, -m[1][0] / det, m[0][0] / det,
                  (m[1][0] * m[2][1] - m[1][1] * m[2][0]) / det, (m[0][1] * m[2][0] - m[0][0] * m[2][1]) / det);
}

std::int64_t position(double pixels)
{
    return static_cast<std::int64_t>(std::floor(pixels * 65536.0 + 0.5));
}

// Every pixel of the rectangle on its own: where its centre comes from, the sample there, the blend.
void reference(const host::blend& how, PF_Quality quality, padded_world& src, const PF_FloatMatrix& to_source,
               const PF_Rect& rect, padded_world& dst)
{
    const auto& m = to_source.mat;
    for (int y = std::max(rect.top, 0); y < std::min(rect.bottom, dst.world().height); ++y)
        for (int x = std::max(rect.left, 0); x < std::min(rect.right, dst.world().width); ++x)
        {
            const double px = x + 0.5, py = y + 0.5;
            const auto sx = position((m[0][0] * px + m[1][0] * py + m[2][0]) - 0.5);
            const auto sy = position((m[0][1] * px + m[1][1] * py + m[2][1]) - 0.5);
            const PF_Pixel sample = quality == PF_Quality_HI ? host::sample_bilinear(src.world(), sx, sy)
                                                             : host::sample_nearest(src.world(), sx, sy);
            dst.at(x, y) = host::blended(how, sample, dst.at(x, y), 255);
        }
}

TEST(transform_onto, is_the_reference_for_every_kind_of_matrix)
{
    std::mt19937 random(4);
    const PF_FloatMatrix back[] = {
        matrix(1, 0, 0, 1, 0, 0),
        matrix(1, 0, 0, 1, 3, -2),
        matrix(1, 0, 0, 1, 2.5, 0.25),
        matrix(2, 0, 0, 2, 0, 0),
        matrix(0.5, 0, 0, 0.5, 1, 2),
        matrix(-1, 0, 0, 1, 20, 0),
        rotation(30, 10, 8),
        rotation(90, 10, 10),
        rotation(-133.7, 4, 9, 1.7),
        matrix(1, 0.4, -0.3, 1.2, 1, 2.2),
        matrix(1, 0, 0, 1, 4000, -9000),
        matrix(1e-12, 0, 0, 1e-12, 5, 5),
        matrix(1, 0, 0, 1, -30, 0),
        matrix(1, 0, 0, 1, 1e9, 1e300),
    };
    int number = 0;
    for (const PF_FloatMatrix& to_source : back)
    {
        ++number;
        for (const PF_Quality quality : {PF_Quality_LO, PF_Quality_HI})
            for (const PF_TransferMode mode : {PF_Xfer_COPY, PF_Xfer_BEHIND, PF_Xfer_IN_FRONT})
                for (const unsigned opacity : {255u, 90u})
                {
                    padded_world src(20, 17), dst(23, 19);
                    src.scatter(random);
                    dst.scatter(random);
                    padded_world expected(dst);
                    const PF_Rect rect{2, -3, 40, 16};
                    const host::blend how{mode, opacity, false};
                    if (number != 14) // its positions do not fit the reference's integers, and so draw nothing
                        reference(how, quality, src, to_source, rect, expected);
                    else if (mode == PF_Xfer_COPY)
                        continue;
                    host::transform_onto(how, quality, src.world(), nullptr, {&to_source, 1, false}, &rect,
                                         dst.world());
                    ASSERT_EQ(dst.difference(expected), "")
                        << "matrix " << number << " quality " << quality << " mode " << mode;
                }
    }
}

// Worlds wide enough for runs of samples: what lines look like, flat cover, and anything at all.
void draw(padded_world& world, int kind, std::mt19937& random)
{
    world.scatter(random);
    for (int y = 0; y < world.world().height; ++y)
        for (int x = 0; x < world.world().width; ++x)
        {
            PF_Pixel& pixel = world.at(x, y);
            if (kind == 0 && (x + 2 * y) % 40 > 9)
                pixel = {0, pixel.red, 0, 0};
            if (kind == 1)
                pixel.alpha = y < 30 ? 255 : 77;
            if (kind == 2 && random() % 3 != 0)
                pixel.alpha = static_cast<A_u_char>(random() % 4);
        }
}

TEST(transform_onto, is_the_reference_at_every_level)
{
    std::mt19937 random(40);
    const PF_FloatMatrix back[] = {
        matrix(1, 0, 0, 1, 0, 0),
        matrix(1, 0, 0, 1, 2.5, 0.25),
        matrix(2, 0, 0, 2, 0, 0),
        matrix(0.5, 0, 0, 0.5, 1, 2),
        matrix(-1, 0, 0, 1, 120, 0),
        matrix(-0.7, 0, 0, -0.3, 99, 60),
        rotation(30, 60, 40),
        rotation(90, 60, 40),
        rotation(-133.7, 50, 44, 0.6),
        rotation(0.01, 0, 0),
        matrix(0, 1, 0.9, 0.25, 3, 1.5),
        matrix(1, 0.4, -0.3, 1.2, 1, 2.2),
        matrix(1e-12, 0, 0, 1, 9, 5),
        matrix(1, 0, 0, 1, -200.5, 0),
        matrix(1, 0, 1e13, 1, 0.5, 0.5),
    };
    for (const host::simd_level level : {host::simd_level::scalar, host::simd_level::sse2, host::simd_level::avx2})
    {
        if (!host::machine_has(level))
            continue;
        int number = 0;
        for (const PF_FloatMatrix& to_source : back)
        {
            ++number;
            for (int kind = 0; kind < 4; ++kind)
                for (const PF_Quality quality : {PF_Quality_LO, PF_Quality_HI})
                {
                    padded_world src(120, 83), dst(133, 90);
                    draw(src, kind, random);
                    dst.scatter(random);
                    padded_world expected(dst);
                    const PF_Rect rect{1, 0, 132, 90};
                    const host::blend how{kind % 2 ? PF_Xfer_COPY : PF_Xfer_IN_FRONT};
                    if (number == 15) // its positions do not fit the reference's integers
                    {
                        host::transform_onto(how, quality, src.world(), nullptr, {&to_source, 1, false}, &rect,
                                             expected.world(), host::simd_level::scalar);
                    }
                    else
                        reference(how, quality, src, to_source, rect, expected);
                    host::transform_onto(how, quality, src.world(), nullptr, {&to_source, 1, false}, &rect,
                                         dst.world(), level);
                    ASSERT_EQ(dst.difference(expected), "")
                        << "level " << static_cast<int>(level) << " matrix " << number << " kind " << kind
                        << " quality " << quality;
                }
        }
    }
}

TEST(transform_onto, is_the_reference_where_means_are_halves_or_nearly)
{
    // Small alphas and points a quarter of a pixel apart make halves; points next to pixels and colours at the
    // ends make the largest sums.
    std::mt19937 random(41);
    const double offsets[] = {0.0, 0.25, 0.5, 0.75, 1.0 / 65536.0, 65535.0 / 65536.0};
    for (const host::simd_level level : {host::simd_level::scalar, host::simd_level::sse2, host::simd_level::avx2})
    {
        if (!host::machine_has(level))
            continue;
        for (const double across : offsets)
            for (const double down : offsets)
                for (const double step : {1.0, 1.25})
                    for (const int alphas : {2, 3, 4, 256})
                    {
                        padded_world src(150, 12), dst(110, 8);
                        src.scatter(random);
                        for (int y = 0; y < 12; ++y)
                            for (int x = 0; x < 150; ++x)
                            {
                                PF_Pixel& pixel = src.at(x, y);
                                pixel.alpha =
                                    static_cast<A_u_char>(255 - random() % static_cast<unsigned>(alphas));
                                if (random() % 2 != 0)
                                    pixel.alpha = static_cast<A_u_char>(255 - pixel.alpha);
                                pixel.red = random() % 2 != 0 ? 255 : 0;
                            }
                        padded_world expected(dst);
                        const PF_FloatMatrix to_source = matrix(step, 0, 0, 1, across + 2, down + 1);
                        const PF_Rect rect{0, 0, 110, 8};
                        reference({PF_Xfer_COPY}, PF_Quality_HI, src, to_source, rect, expected);
                        host::transform_onto({PF_Xfer_COPY}, PF_Quality_HI, src.world(), nullptr,
                                             {&to_source, 1, false}, &rect, dst.world(), level);
                        ASSERT_EQ(dst.difference(expected), "")
                            << "level " << static_cast<int>(level) << " offsets " << across << ", " << down
                            << " step " << step << " alphas " << alphas;
                    }
    }
}

TEST(transform_onto, is_the_reference_where_rows_are_far_apart)
{
    // Further than 31 bits count, in memory of which four rows alone are touched.
    constexpr int width = 50, height = 4, rowbytes = 0x30000000;
    std::unique_ptr<char, decltype(&std::free)> memory(
        static_cast<char*>(std::malloc(std::size_t{rowbytes} * (height - 1) + std::size_t{4} * width)),
        &std::free);
    if (!memory)
        GTEST_SKIP() << "not that much memory";
    PF_EffectWorld src{};
    src.data = reinterpret_cast<PF_Pixel*>(memory.get());
    src.width = width;
    src.height = height;
    src.rowbytes = rowbytes;
    std::mt19937 random(14);
    padded_world pixels(width, height);
    pixels.scatter(random);
    for (int y = 0; y < height; ++y)
        std::copy_n(&pixels.at(0, y), width, host::row_of(src, y));

    const PF_FloatMatrix to_source = matrix(1, 0.02, 0, 1, 0.3, 0.2);
    for (const host::simd_level level : {host::simd_level::sse2, host::simd_level::avx2})
    {
        if (!host::machine_has(level))
            continue;
        for (const PF_Quality quality : {PF_Quality_LO, PF_Quality_HI})
        {
            padded_world dst(width, height), expected(width, height);
            reference({PF_Xfer_COPY}, quality, pixels, to_source, {0, 0, width, height}, expected);
            host::transform_onto({PF_Xfer_COPY}, quality, src, nullptr, {&to_source, 1, false}, nullptr,
                                 dst.world(), level);
            EXPECT_EQ(dst.difference(expected), "")
                << "level " << static_cast<int>(level) << " quality " << quality;
        }
    }
}

TEST(transform_onto, goes_forward_where_the_matrix_maps_the_source)
{
    std::mt19937 random(5);
    // Matrices whose inverse is exact, so that both ways are the same numbers.
    const PF_FloatMatrix forward[] = {matrix(1, 0, 0, 1, 5, 3),     matrix(2, 0, 0, 2, -4, 1),
                                      matrix(0.5, 0, 0, 0.5, 2, 2), matrix(0, 1, -1, 0, 17, 0),
                                      matrix(-1, 0, 0, -1, 20, 17), matrix(1, 0, 0, 1, 0.5, 0.25)};
    for (const PF_FloatMatrix& to_destination : forward)
    {
        padded_world src(20, 17), there(23, 19), back(23, 19);
        src.scatter(random);
        const PF_FloatMatrix to_source = inverse(to_destination);
        host::fill_world(there.world(), nullptr, nullptr);
        host::fill_world(back.world(), nullptr, nullptr);
        const host::blend how{PF_Xfer_IN_FRONT};
        host::transform_onto(how, 1, src.world(), nullptr, {&to_destination, 1, true}, nullptr, there.world());
        reference(how, 1, src, to_source, {0, 0, 23, 19}, back);
        EXPECT_EQ(there.difference(back), "");
    }
}

TEST(transform_onto, a_quarter_turn_about_the_middle_maps_the_square_onto_itself)
{
    std::mt19937 random(6);
    padded_world src(16, 16), dst(16, 16), expected(16, 16);
    src.scatter(random);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x) // clockwise: the left column becomes the top row
            expected.at(x, y) = src.at(y, 15 - x);
    const PF_FloatMatrix turn = rotation(90, 8, 8);
    host::transform_onto({PF_Xfer_COPY}, 1, src.world(), nullptr, {&turn, 1, true}, nullptr, dst.world());
    EXPECT_EQ(dst.difference(expected), "");
}

TEST(transform_onto, half_size_is_the_mean_of_four_pixels)
{
    padded_world src(4, 2), dst(2, 1);
    for (int x = 0; x < 4; ++x)
        for (int y = 0; y < 2; ++y)
            src.at(x, y) = {255, static_cast<A_u_char>(40 * x + 10 * y), 0, 100};
    const PF_FloatMatrix half = matrix(0.5, 0, 0, 0.5, 0, 0);
    host::transform_onto({PF_Xfer_COPY}, 1, src.world(), nullptr, {&half, 1, true}, nullptr, dst.world());
    EXPECT_TRUE(operator_equal(dst.at(0, 0), {255, 25, 0, 100}));
    EXPECT_TRUE(operator_equal(dst.at(1, 0), {255, 105, 0, 100}));
}

TEST(transform_onto, matrices_that_cannot_be_inverted_draw_nothing)
{
    std::mt19937 random(8);
    padded_world src(8, 8), dst(8, 8);
    src.scatter(random);
    dst.scatter(random);
    padded_world before(dst);
    const double nan = std::nan("");
    for (const PF_FloatMatrix& bad :
         {matrix(0, 0, 0, 0, 0, 0), matrix(1, 2, 2, 4, 0, 0), matrix(nan, 0, 0, 1, 0, 0),
          matrix(1, 0, 0, 1, nan, 0), matrix(1e200, 0, 0, 1e200, 0, 0)})
        for (const bool src2dst : {false, true})
            host::transform_onto({PF_Xfer_COPY}, 1, src.world(), nullptr, {&bad, 1, src2dst}, nullptr,
                                 dst.world());
    EXPECT_EQ(dst.difference(before), "");
}

TEST(transform_onto, several_matrices_give_the_mean_of_their_samples)
{
    padded_world src(3, 1), dst(3, 1);
    src.at(0, 0) = {255, 200, 0, 10};
    src.at(1, 0) = {0, 9, 9, 9};
    src.at(2, 0) = {85, 100, 0, 10};
    const PF_FloatMatrix maps[] = {matrix(1, 0, 0, 1, 0, 0), matrix(1, 0, 0, 1, -2, 0)};
    host::transform_onto({PF_Xfer_COPY}, 1, src.world(), nullptr, {maps, 2, true}, nullptr, dst.world());
    // Pixel 0 sees source pixels 0 and 2: alpha 340/2, red (255*200 + 85*100)/340 = 175.
    EXPECT_TRUE(operator_equal(dst.at(0, 0), {170, 175, 0, 10}));
    EXPECT_TRUE(operator_equal(dst.at(1, 0), {}));
    EXPECT_TRUE(operator_equal(dst.at(2, 0), {43, 100, 0, 10}));
}

TEST(transform_onto, the_mask_weighs_the_source)
{
    padded_world src(2, 1), dst(2, 1), cover(1, 1);
    src.at(0, 0) = {200, 1, 2, 3};
    src.at(1, 0) = {255, 4, 5, 6};
    cover.at(0, 0) = {128, 0, 0, 0};
    PF_MaskWorld mask{};
    mask.mask = cover.world();
    const PF_FloatMatrix still = matrix(1, 0, 0, 1, 0, 0);
    for (const PF_TransferMode mode : {PF_Xfer_COPY, PF_Xfer_IN_FRONT})
    {
        host::fill_world(dst.world(), nullptr, nullptr);
        host::transform_onto({mode}, 1, src.world(), &mask, {&still, 1, true}, nullptr, dst.world());
        EXPECT_TRUE(operator_equal(dst.at(0, 0), {100, 1, 2, 3})); // 200 * 128 / 255 = 100.4
        EXPECT_EQ(dst.at(1, 0).alpha, 0);
    }
}

TEST(transform_onto, onto_itself_reads_before_it_writes)
{
    std::mt19937 random(9);
    padded_world world(12, 9);
    world.scatter(random);
    padded_world src(world), expected(world);
    const PF_FloatMatrix turn = rotation(20, 6, 4);
    reference({PF_Xfer_IN_FRONT}, 1, src, turn, {0, 0, 12, 9}, expected);
    host::transform_onto({PF_Xfer_IN_FRONT}, 1, world.world(), nullptr, {&turn, 1, false}, nullptr, world.world());
    EXPECT_EQ(world.difference(expected), "");
}
} // namespace
