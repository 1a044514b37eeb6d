// What editors read names the parameters that the plug-in has.
#include "frei0r_file.hpp"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <set>

using namespace frei0r_test;

namespace
{
std::string contents(const std::string& name)
{
    std::ifstream in(std::string(EDITORS) + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// What the pattern's first group matches, each time.
std::multiset<std::string> found(const std::string& text, const char* pattern)
{
    const std::regex expression(pattern);
    std::multiset<std::string> all;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match)
        all.insert((*match)[1]);
    return all;
}

// All but the unit of time, which no editor needs.
std::multiset<std::string> names_of(const frei0r_file& file)
{
    f0r_plugin_info_t about{};
    file.get_plugin_info(&about);
    std::multiset<std::string> names;
    for (int i = 0; i < about.num_params; ++i)
    {
        f0r_param_info_t info{};
        file.get_param_info(&info, i);
        names.insert(info.name);
    }
    names.erase("Time Unit");
    return names;
}
} // namespace

TEST(editors, name_every_parameter_once)
{
    for (const auto& [file, description, pattern] :
         {std::tuple{FILTER, "kdenlive/effects/frei0r_filigrane.xml", "<parameter [^>]* name=\"([^\"]*)\">"},
          {GENERATOR, "kdenlive/generators/frei0r_filigrane_generator.xml", "<parameter [^>]* name=\"([^\"]*)\">"},
          {FILTER, "shotcut/filigrane/ui.qml", "property: '([^']*)', kind"},
          {FILTER, "flowblade/filigrane.xml", "<property name=\"([^\"]*)\""}})
    {
        const frei0r_file plugin(file);
        plugin.init();
        EXPECT_EQ(found(contents(description), pattern), names_of(plugin)) << description;
        plugin.deinit();
    }
}

TEST(editors, have_defaults_that_are_the_plugins)
{
    const frei0r_file plugin(FILTER);
    plugin.init();
    f0r_instance_t instance = plugin.construct(8, 8);
    const std::string text = contents("kdenlive/effects/frei0r_filigrane.xml");
    const std::regex expression("type=\"(?:animated|constant|bool)\" default=\"([^\"]*)\".* name=\"([^\"]*)\"");
    int count = 0;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match, ++count)
    {
        double value = -1.0;
        plugin.get_param_value(instance, &value, plugin.index_of((*match)[2]));
        EXPECT_NEAR(std::stod((*match)[1]), value, 1e-9) << (*match)[2];
    }
    EXPECT_EQ(count, 60 - 3 - 2 - 1); // all but texts, colours and the choice
    plugin.destruct(instance);
    plugin.deinit();
}
