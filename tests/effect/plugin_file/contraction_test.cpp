// A product and a sum are rounded one by one, also where the machine could do both in one step: with these tests'
// flags, which are the project's.

#include <gtest/gtest.h>

#include <cmath>

#if defined(__x86_64__)
#define FILIGRANE_FUSING __attribute__((target("fma"), noinline))
#else
#define FILIGRANE_FUSING __attribute__((noinline))
#endif

namespace
{
FILIGRANE_FUSING double multiply_add(double a, double b, double c)
{
    return a * b + c;
}

FILIGRANE_FUSING float multiply_add(float a, float b, float c)
{
    return a * b + c;
}

FILIGRANE_FUSING float multiply_subtract(float a, float b, float c, float d)
{
    return a * b - c * d;
}

bool machine_fuses()
{
#if defined(__x86_64__)
    return __builtin_cpu_supports("fma") != 0;
#else
    return true; // every 64-bit ARM does
#endif
}

// (1 + e)(1 - e) is 1 - e * e: rounded to 1 on its own, so that what is left of it shows whether it was.
TEST(contraction, rounds_the_product_before_the_sum)
{
    if (!machine_fuses())
        GTEST_SKIP() << "this machine has no fused multiply-add";
    // Volatile, lest the compiler work out the answer by itself.
    volatile double e = std::ldexp(1.0, -30);
    volatile float f = std::ldexp(1.0f, -14);
    ASSERT_NE(std::fma(1.0 + e, 1.0 - e, -1.0), 0.0) << "fusing would not show";
    EXPECT_EQ(multiply_add(1.0 + e, 1.0 - e, -1.0), 0.0);
    ASSERT_NE(std::fma(1.0f + f, 1.0f - f, -1.0f), 0.0f) << "fusing would not show";
    EXPECT_EQ(multiply_add(1.0f + f, 1.0f - f, -1.0f), 0.0f);
    EXPECT_EQ(multiply_subtract(1.0f + f, 1.0f - f, 1.0f, 1.0f), 0.0f);
}
} // namespace
