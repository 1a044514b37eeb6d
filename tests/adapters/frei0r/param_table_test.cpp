#include "adapters/common/effect_loan.hpp"
#include "adapters/frei0r/frei0r_header.hpp"
#include "adapters/frei0r/param_table.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace frei0r;

namespace
{
const std::vector<param_row>& rows()
{
    static const std::vector<param_row> all = make_table(adapter::borrow_effect()->plugin.params());
    return all;
}

const param_row& row(const std::string& name)
{
    const auto found =
        std::find_if(rows().begin(), rows().end(), [&](const param_row& r) { return r.name == name; });
    if (found == rows().end())
        throw std::runtime_error(name);
    return *found;
}

double value(const std::string& name, double x)
{
    return natural_value(row(name), x);
}
} // namespace

TEST(param_table, begins_with_the_adapters_own)
{
    EXPECT_EQ(rows()[0].name, "Look");
    EXPECT_EQ(rows()[1].name, "Frame Rate");
    EXPECT_EQ(rows()[2].name, "Time Unit");
    EXPECT_EQ(rows()[3].name, "Height");
    EXPECT_EQ(rows().back().name, "Soften");
    EXPECT_EQ(row("Look").type(), F0R_PARAM_STRING);
    EXPECT_EQ(row("Show Grid").type(), F0R_PARAM_BOOL);
    EXPECT_EQ(row("Normal Color").type(), F0R_PARAM_COLOR);
    EXPECT_EQ(row("Position X").type(), F0R_PARAM_DOUBLE);
}

TEST(param_table, maps_what_people_type_to_decimals)
{
    EXPECT_EQ(value("Rows", 0.12), 12.0);
    EXPECT_EQ(value("Height", 0.1), 200.0);
    EXPECT_EQ(value("Height", 0.0), 2.0); // the lowest there is
    EXPECT_EQ(value("Stressed Line Width", 0.5), 0.0);
    EXPECT_EQ(value("Stressed Line Width", 0.15), -70.0);
    EXPECT_EQ(value("Blend Amount", 0.3), 0.3);
    EXPECT_EQ(value("Rotation", 0.515), 30.0);
    EXPECT_EQ(value("Rotation", 0.0), -1000.0);
    EXPECT_EQ(value("Position X", 0.5), 50.0);
    EXPECT_EQ(value("Position Y", 0.42), 10.0);
    EXPECT_EQ(value("Position Y", 1.0), 300.0);
    EXPECT_EQ(value("Vertical Growth", 0.037), 3.7);
    EXPECT_EQ(value("Turbulance", 1.0), 7.0);
    EXPECT_EQ(value("Turbulance", 0.428571), 3.0); // with six digits, as hosts save it
    EXPECT_EQ(value("Random Seed", 0.012345), 12345.0);
    EXPECT_EQ(value("Random Seed", 1.0), 1000000.0);
}

TEST(param_table, divides_choices_into_equal_steps)
{
    EXPECT_EQ(value("Affect", 0.0), 1.0);
    EXPECT_EQ(value("Affect", 0.33), 1.0);
    EXPECT_EQ(value("Affect", 0.34), 2.0);
    EXPECT_EQ(value("Affect", 0.5), 2.0);
    EXPECT_EQ(value("Affect", 0.67), 3.0);
    EXPECT_EQ(value("Affect", 1.0), 3.0);
    EXPECT_EQ(value("Show Grid", 0.49), 0.0);
    EXPECT_EQ(value("Show Grid", 0.5), 1.0);
}

TEST(param_table, defaults_are_the_effects)
{
    const auto effect = adapter::borrow_effect();
    for (const param_row& r : rows())
    {
        if (r.is_text() || r.kind == row_kind::color)
            continue;
        const host::param_value standard =
            host::default_value(effect->plugin.params()[static_cast<std::size_t>(r.index)]);
        EXPECT_EQ(natural_value(r, r.normal), r.kind == row_kind::point_y ? standard.y : standard.x) << r.name;
    }
}

TEST(param_table, every_value_has_its_share)
{
    for (const param_row& r : rows())
    {
        if (r.is_text() || r.kind == row_kind::color || r.step != 1e-9)
            continue;
        const double last = std::min(r.maximum, r.high);
        const double step = std::max(1.0, std::floor((last - r.minimum) / 5000));
        for (double natural = r.minimum; natural <= last; natural += r.kind == row_kind::toggle ? 1.0 : step)
            ASSERT_EQ(natural_value(r, normal_value(r, natural)), natural) << r.name;
    }
}
