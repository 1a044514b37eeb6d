// The environment variable that takes a render down to simpler instructions, for a look at what differs.
#include "effect/raster/simd_level.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace
{
// Leaves the variable as it was.
class simd_level_chosen : public testing::Test
{
protected:
    simd_level_chosen()
    {
        if (const char* const value = std::getenv(kName))
            before_ = value;
    }
    ~simd_level_chosen() override { set(before_ ? before_->c_str() : nullptr); }

    static simd_level set(const char* value)
    {
        if (value != nullptr)
            setenv(kName, value, 1);
        else
            unsetenv(kName);
        return chosen_simd_level();
    }

private:
    static constexpr const char* kName = "FILIGRANE_SIMD";
    std::optional<std::string> before_;
};
} // namespace

TEST_F(simd_level_chosen, is_the_one_that_is_named)
{
    EXPECT_EQ(set("scalar"), simd_level::scalar);
    EXPECT_EQ(set("sse2"), simd_level::baseline);
}

TEST_F(simd_level_chosen, is_the_highest_there_is_where_none_is_named)
{
    const simd_level highest = set(nullptr);
    EXPECT_GE(highest, simd_level::baseline);
    EXPECT_EQ(set("avx2"), highest);
    EXPECT_EQ(set("fastest"), highest);
    EXPECT_EQ(set(""), highest);
}
