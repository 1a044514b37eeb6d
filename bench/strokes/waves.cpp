#include "bench/strokes/waves.hpp"

#include "tests/support/bit_generator.hpp"

#include <cmath>

namespace bench
{
namespace
{
constexpr double kTurn = 6.283185307179586;

struct sine
{
    double amplitude; // pixels
    double turns;     // radians a pixel
    double phase;

    double at(double main) const { return amplitude * std::sin(turns * main + phase); }
    double slope(double main) const { return amplitude * turns * std::cos(turns * main + phase); }
};

struct wave
{
    double base;
    sine parts[3];

    double at(double main) const { return base + parts[0].at(main) + parts[1].at(main) + parts[2].at(main); }
    double slope(double main) const { return parts[0].slope(main) + parts[1].slope(main) + parts[2].slope(main); }
};

sine random_sine(bit_generator& g, double least_length, double most_length, double least_size, double most_size)
{
    const double length = least_length + (most_length - least_length) * g.fraction();
    return {least_size + (most_size - least_size) * g.fraction(), kTurn / length, kTurn * g.fraction()};
}

wave random_wave(bit_generator& g, double base)
{
    return {base,
            {random_sine(g, 150.0, 250.0, 3.0, 6.0), random_sine(g, 300.0, 450.0, 8.0, 15.0),
             random_sine(g, 500.0, 700.0, 16.0, 30.0)}};
}

wave_stroke stroke_of(const wave& w, int axis, int length, float radius)
{
    wave_stroke s;
    s.axis = axis;
    s.radius = radius;
    const auto placed = [axis](double main, double across) {
        return axis == 0 ? point{main, across} : point{across, main};
    };
    std::vector<point> other_side;
    for (int i = 2 * length; i >= 0; --i)
    {
        const double main = 0.5 * i;
        const double across = w.at(main);
        const point at = placed(main, across);
        const double swing = std::sin(main * kTurn / 333.0);
        const auto shade = static_cast<A_u_char>(127.0 + 120.0 * swing);
        StrokePoint sample = {static_cast<float>(at.x), static_cast<float>(at.y), radius, {255, 40, 90, 200}};
        s.one_color.push_back(sample);
        sample.halfWidth = radius * static_cast<float>(1.0 + 0.2 * swing);
        sample.color = {255, shade, 90, static_cast<A_u_char>(255 - shade)};
        s.per_sample.push_back(sample);
        s.center.push_back(at);

        const double slope = w.slope(main);
        const double scale = static_cast<double>(radius) / std::sqrt(1.0 + slope * slope);
        s.outline.push_back(placed(main - slope * scale, across + scale));
        other_side.push_back(placed(main + slope * scale, across - scale));
    }
    s.outline.insert(s.outline.end(), other_side.rbegin(), other_side.rend());
    return s;
}
} // namespace

std::vector<wave_stroke> wave_strokes(int width, int height, int columns, int rows, float radius)
{
    bit_generator g{7};
    std::vector<wave_stroke> strokes;
    for (int i = 0; i < rows; ++i)
        strokes.push_back(stroke_of(random_wave(g, (i + 0.5) * height / rows), 0, width, radius));
    for (int i = 0; i < columns; ++i)
        strokes.push_back(stroke_of(random_wave(g, (i + 0.5) * width / columns), 1, height, radius));
    return strokes;
}
} // namespace bench
