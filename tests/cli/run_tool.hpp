#pragma once
// The tool itself, run as a user runs it.

#include "tests/media/temporary_folder.hpp"

#include <functional>
#include <string>
#include <vector>

namespace cli_test
{
struct outcome
{
    int status = -1; // exit status; 1000 + the signal where one ended it
    std::string out;
    std::string err;
};

// Runs the tool in its own process; `prepare` is called there before it starts.
outcome run_tool(const std::vector<std::string>& arguments, const std::function<void()>& prepare = {});

// One line that begins with the tool's name.
testing::Matcher<const std::string&> error_line(const std::string& part);

class tool_test : public media_test::temporary_folder
{
protected:
    std::string path(const std::string& name) const { return at(name).string(); }

    // Renders with the test effect.
    outcome render(std::vector<std::string> arguments, const std::function<void()>& prepare = {}) const
    {
        arguments.insert(arguments.begin(), "render");
        arguments.insert(arguments.end(), {"--plugin", TEST_EFFECT});
        return run_tool(arguments, prepare);
    }

    // Alpha, red, green and blue of the top left pixel.
    static std::vector<int> corner(const std::filesystem::path& file, int frame = 0)
    {
        media::reader in(file);
        const media::picture picture = media_test::read_one(in, frame);
        return {picture.bytes().begin(), picture.bytes().begin() + 4};
    }
};
} // namespace cli_test
