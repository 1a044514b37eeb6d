// No file of the effect may be compiled in a way that lets the picture depend on the machine.

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace
{
struct command
{
    std::string file;
    std::vector<std::string> words;

    bool has(const std::string& word) const { return std::find(words.begin(), words.end(), word) != words.end(); }
    // The last of the words that begin so: it is the one that counts.
    std::string last(const std::string& beginning) const
    {
        std::string found;
        for (const std::string& word : words)
            if (word.starts_with(beginning))
                found = word;
        return found;
    }
};

std::vector<command> commands_of_the_effect()
{
    std::ifstream file(FILIGRANE_COMPILE_COMMANDS);
    std::vector<command> commands;
    for (const auto& entry : nlohmann::json::parse(file))
    {
        const auto path = entry.at("file").get<std::string>();
        if (path.find("/effect/") == std::string::npos || path.find("/tests/") != std::string::npos)
            continue;
        command c{path, {}};
        std::istringstream line(entry.at("command").get<std::string>());
        for (std::string word; line >> word;)
            c.words.push_back(word);
        commands.push_back(std::move(c));
    }
    return commands;
}

TEST(compile_commands, know_the_whole_effect)
{
    const std::vector<command> commands = commands_of_the_effect();
    EXPECT_GE(commands.size(), 20U);
    for (const std::string name : {"shell/plugin_entry.cpp", "model/matrix.cpp", "layout/sp_line.cpp",
                                   "raster/coverage.cpp", "raster/sp_line_draw.cpp"})
        EXPECT_TRUE(std::any_of(commands.begin(), commands.end(),
                                [&name](const command& c) { return c.file.ends_with("/effect/" + name); }))
            << name;
}

TEST(compile_commands, keep_the_effect_free_of_contraction_and_fast_arithmetic)
{
    for (const command& c : commands_of_the_effect())
    {
        EXPECT_EQ(c.last("-ffp-contract="), "-ffp-contract=off") << c.file;
        for (const char* const forbidden :
             {"-mfma", "-mfma4", "-ffast-math", "-Ofast", "-funsafe-math-optimizations", "-fassociative-math",
              "-freciprocal-math", "-ffinite-math-only", "-fno-signed-zeros", "-march=native", "-mcpu=native"})
            EXPECT_FALSE(c.has(forbidden)) << c.file << ": " << forbidden;
        // The x86-64 levels from the third on have fused multiply-add.
        const std::string level = c.last("-march=");
        EXPECT_TRUE(level.empty() || level == "-march=x86-64" || level == "-march=x86-64-v2")
            << c.file << ": " << level;
    }
}

// A narrowing that nobody wrote out, or a name that hides another, is how a picture changes by accident.
TEST(compile_commands, ask_for_every_warning_about_the_effect)
{
    for (const command& c : commands_of_the_effect())
    {
        for (const std::string wanted :
             {"all", "extra", "shadow", "conversion", "float-conversion", "double-promotion"})
        {
            EXPECT_TRUE(c.has("-W" + wanted)) << c.file << ": " << wanted;
            EXPECT_FALSE(c.has("-Wno-" + wanted)) << c.file << ": " << wanted;
        }
        EXPECT_FALSE(c.has("-w") || c.has("-Wno-error")) << c.file;
    }
}
} // namespace
