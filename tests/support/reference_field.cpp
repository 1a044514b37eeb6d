#include "tests/support/reference_field.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

// Every intermediate that has a precision is a variable of that type; nothing here is meant to be fast.
namespace reference
{
namespace
{
constexpr double kRadian = 0.017453292519943295;

double d(float v)
{
    return static_cast<double>(v);
}

float f(double v)
{
    return static_cast<float>(v);
}

struct vertex
{
    double run;
    double across;
    double slope_deg;
};

// The merge sort that glibc's qsort is, with its comparator: the difference cut to an integer.
std::vector<vertex> sorted(const std::vector<vertex>& all)
{
    if (all.size() < 2)
        return all;
    const auto middle = all.begin() + static_cast<std::ptrdiff_t>(all.size() / 2);
    std::vector<vertex> left = sorted({all.begin(), middle});
    std::vector<vertex> right = sorted({middle, all.end()});
    std::vector<vertex> merged;
    while (!left.empty() && !right.empty())
    {
        std::vector<vertex>& from = static_cast<int>(left.front().run - right.front().run) <= 0 ? left : right;
        merged.push_back(from.front());
        from.erase(from.begin());
    }
    merged.insert(merged.end(), left.begin(), left.end());
    merged.insert(merged.end(), right.begin(), right.end());
    return merged;
}

// Cubic Hermite over ascending vertices.
bool hermite(const std::vector<vertex>& v, float t, float* out)
{
    for (std::size_t i = 0; i + 1 < v.size(); ++i)
    {
        if (d(t) < v[i].run || d(t) >= v[i + 1].run)
            continue;
        const float m0 = f(std::tan(v[i].slope_deg * kRadian));
        const float m1 = f(std::tan(v[i + 1].slope_deg * kRadian));
        const double length = v[i + 1].run - v[i].run;
        const float s = f((d(t) - v[i].run) / length);
        const float square = s * s;
        const float cube = square * s;
        const float w0 = 2.0f * cube - 3.0f * square + 1.0f;
        const float w1 = -2.0f * cube + 3.0f * square;
        const float t0 = cube - 2.0f * square + s;
        const float t1 = cube - square;
        *out = f(d(w0) * v[i].across + d(w1) * v[i + 1].across + d(m0) * length * d(t0) + d(m1) * length * d(t1));
        return true;
    }
    return false;
}

struct line
{
    bool vertical = false;
    float base = 0.0f;
    float shift = 0.0f;
    std::vector<vertex> points;
};

// The frame's parameters, each converted on its own.
class field
{
public:
    explicit field(effect_fixture& host) : host_(host), chance_(0)
    {
        const PF_InData& in = host.in_data;
        width_ = raw(4) != 0 ? in.width : raw(3);
        height_ = raw(4) != 0 ? in.height : raw(2);
        columns_ = raw(8);
        rows_ = raw(7);
        const int diagonal = static_cast<int>(std::hypot(width_, height_));
        side_ = (diagonal / 32 + 1) * 32;
        frame_ = in.current_time / in.time_step;
        step_ = f(1.0 / (in.quality + 1.0));
        left_ = (side_ - width_) / 2;
        top_ = (side_ - height_) / 2;
        layer_left_ = static_cast<int>(f(pixels_x(5)) - static_cast<float>(side_ / 2));
        layer_top_ = static_cast<int>(f(pixels_y(5)) - static_cast<float>(side_ / 2));
        const bool plain = raw(28) != 0 && raw(59) == 0; // "Fast Draw"
        stressed_ = plain ? 0 : raw(17);

        const double average = (width_ + height_) * 0.5;
        const double wanted = average * (1.0 + raw(47) / 655.36 / -100.0);
        wavelength_ = std::min(std::max(f(wanted), f(std::min(average, 10.0))), f(std::max(average, 10.0)));
        chance_.reseed(static_cast<std::uint32_t>(static_cast<std::int64_t>(static_cast<float>(raw(56)))));

        // Half a turn about the middle of the square.
        const double s = std::sin(180.0 * kRadian);
        const double c = std::cos(180.0 * kRadian);
        const double half = side_ / 2;
        turn_ = {c, s, half * (1.0 - c) + half * s, half * (1.0 - c) - half * s};
    }

    std::vector<stroke> strokes()
    {
        if (raw(31) != 0)
            with_ends();
        else if (raw(55) == 3)
        {
            rippling(true, false);
            rippling(false, false);
        }
        else if (raw(55) == 2 || raw(55) == 1)
        {
            const bool vertical = raw(55) == 1;
            for (int i = 0; i < (vertical ? rows_ : columns_); ++i)
                straight_.push_back(straight(!vertical, across(!vertical, i, place(!vertical))));
            rippling(vertical, true);
            for (line& one : straight_)
            {
                const float radius = draw_radius();
                flatten(one);
                draw(one, radius);
            }
        }
        return strokes_;
    }

private:
    A_long raw(int id) const { return host_.defs[static_cast<std::size_t>(id)].u.sd.value; }
    int percent(int id) const { return static_cast<int>(raw(id) / 655.36); }
    float real(int id) const { return static_cast<float>(raw(id)); }

    double pixels_x(int id) const
    {
        const PF_RationalScale& scale = host_.in_data.downsample_x;
        return raw(id) * (1.0 / 65536) * scale.den / scale.num;
    }

    double pixels_y(int id) const
    {
        const PF_RationalScale& scale = host_.in_data.downsample_y;
        return host_.defs[static_cast<std::size_t>(id)].u.td.y_value * (1.0 / 65536) * scale.den / scale.num;
    }

    int cell(bool vertical) const
    {
        return vertical ? (columns_ != 0 ? width_ / columns_ : width_) : (rows_ != 0 ? height_ / rows_ : height_);
    }

    void turn(double& x, double& y) const
    {
        const double nx = x * turn_.c + y * -turn_.s + turn_.x;
        const double ny = x * turn_.s + y * turn_.c + turn_.y;
        x = nx;
        y = ny;
    }

    float draw_radius()
    {
        const float diameter = spread(chance_, real(15), real(16));
        return std::max(0.6f, diameter * 0.5f);
    }

    ripple draw_ripple()
    {
        const std::uint32_t seed = chance_.integer();
        const float turbulence = f(host_.defs[53].u.fs_d.value);
        const float own = spread(chance_, turbulence, static_cast<float>(percent(54)));
        return {seed,     0,        frame_,   own,         width_,
                height_,  real(49), real(50), wavelength_, f(raw(48) / 655.36),
                real(51), real(52)};
    }

    float place(bool vertical)
    {
        const int s = cell(vertical);
        const float r = spread(chance_, f(s * 0.5), static_cast<float>(percent(12)));
        return std::clamp(r, 0.0f, static_cast<float>(s));
    }

    double across(bool vertical, int i, float placed) const
    {
        const int s = cell(vertical);
        const float off = f(d(placed) - s * 0.5);
        return d(off) + ((i + 0.5) * s + (vertical ? left_ : top_));
    }

    void compress(line& one) const
    {
        const float centre_x = f(pixels_x(10)) - static_cast<float>(layer_left_);
        const float centre_y = f(pixels_y(10)) - static_cast<float>(layer_top_);
        double x = d(centre_x);
        double y = d(centre_y);
        turn(x, y);
        one.shift = f((d(one.base) - (one.vertical ? x : y)) * raw(11) / 100.0);
        one.base += one.shift;
        for (vertex& v : one.points)
            v.across += d(one.shift);
    }

    line straight(bool vertical, double where) const
    {
        const int from = vertical ? top_ : left_;
        const int to = from + (vertical ? height_ : width_);
        line one{vertical, f(where), 0.0f, {{d(static_cast<float>(from)), where, 0.0}, {1.0 * to, where, 0.0}}};
        compress(one);
        return one;
    }

    line rippled(bool vertical, double where, const ripple& wave, int from, int to) const
    {
        line one{vertical, f(where), 0.0f, {}};
        const bool angular = raw(25) != 0;
        const float step = angular ? static_cast<float>(cell(!vertical)) / real(26) : 1.0f;
        std::vector<float> at;
        for (float t = 0.0f; t < static_cast<float>(to - from); t += step)
            at.push_back(t);
        if (angular && to > from)
            at.push_back(static_cast<float>(to - from - 1));
        for (const float t : at)
        {
            float v = 0.0f;
            if (wave.sum(t, &v))
                one.points.push_back({d(static_cast<float>(from) + t), d(v) + where, 0.0});
            else
                one.points.push_back({0.0, 0.0, 0.0});
        }
        compress(one);
        return one;
    }

    void rippling(bool vertical, bool bends)
    {
        const int from = vertical ? top_ : left_;
        const int to = from + (vertical ? height_ : width_);
        for (int i = 0; i < (vertical ? columns_ : rows_); ++i)
        {
            const float radius = draw_radius();
            const ripple wave = draw_ripple();
            const double where = across(vertical, i, place(vertical));
            line one = rippled(vertical, where, wave, from, to);
            if (bends)
                for (line& crossed : straight_)
                    bend(crossed, wave, f(where + d(one.shift)), from);
            draw(one, radius);
        }
    }

    // Bends a straight line where a ripple crosses it: the sum of one bump for each octave.
    void bend(line& crossed, const ripple& wave, float where, int origin)
    {
        const float p = crossed.base;
        const float q = p - static_cast<float>(frame_);
        float reach = spread(chance_, real(18), static_cast<float>(percent(19)));
        if (reach < 1.0f)
            return;
        const float o = static_cast<float>(origin);
        const float lower = q - 1.0f;
        const float upper = q + 1.0f;
        const float e = upper - lower;
        std::vector<std::vector<vertex>> bumps(static_cast<std::size_t>(wave.octaves));
        double angle = 0.0;
        for (int k = 1; k < wave.octaves; ++k)
        {
            float c = 0.0f;
            float l = 0.0f;
            float r = 0.0f;
            if (!wave.octave(k, q - o, &c) || !wave.octave(k, lower - o, &l) || !wave.octave(k, upper - o, &r))
                continue;
            c += where;
            l += where;
            r += where;
            const float rise = r - l;
            const float ratio = e / rise;
            if (d(rise) < -1e-5)
                angle = std::atan(d(ratio));
            else if (d(e) < 1e-5)
                angle = M_PI / 2.0;
            else if (d(e) > 1e-5)
                angle = std::atan(d(ratio)) + M_PI;
            const float start = where - reach;
            const float stop = where + reach;
            bumps[static_cast<std::size_t>(k)] = sorted(
                {{d(start), d(p), 0.0}, {d(c), d(q), angle * 57.29577951308232 + 90.0}, {d(stop), d(p), 0.0}});
        }
        if (bumps.size() < 2 || bumps[1].empty())
            return;

        const float length = 2.0f * reach;
        const int samples = static_cast<int>(std::ceil(length));
        const auto position = [&](int m) { return (where - reach) + static_cast<float>(m); };
        const auto append = [&](double run, double value)
        {
            if (static_cast<double>(crossed.points.size()) < std::trunc(d(static_cast<float>(side_) / step_)))
                crossed.points.push_back({run, value, 0.0});
        };
        const auto append_sample = [&](int m)
        {
            float v = 0.0f;
            if (!hermite(bumps[1], position(m), &v))
                return;
            double value = d(v);
            for (std::size_t k = 2; k < bumps.size(); ++k)
                if (hermite(bumps[k], position(m), &v))
                    value += d(v - p) / std::pow(2.0, static_cast<double>(k) - 1.0);
            append(d(position(m)), value);
        };
        if (raw(25) == 0)
        {
            for (int m = 0; m < static_cast<int>(length); ++m)
                append_sample(m);
            return;
        }
        const float step = length / static_cast<float>(raw(26) + 1);
        for (int j = 0; j <= raw(26) + 1; ++j)
        {
            const float index = static_cast<float>(j) * step;
            if (static_cast<int>(index) < samples)
                append_sample(static_cast<int>(index));
            else
                append(d(where + reach), d(p));
        }
    }

    static void flatten(line& one)
    {
        one.points = sorted(one.points);
        for (std::size_t i = 0; i + 1 < one.points.size(); ++i)
        {
            vertex& a = one.points[i];
            vertex& b = one.points[i + 1];
            if (std::fabs(b.run - a.run) <= 1.0 && std::fabs(b.across - a.across) > 1.0)
                a.across = b.across = (a.across + b.across) * 0.5;
        }
    }

    void with_ends()
    {
        const std::uint32_t kept = chance_.integer();
        growing(true, static_cast<int>(pixels_y(36)) - layer_top_, raw(39), 41, raw(33));
        chance_.reseed(kept);
        const int from_vertical = static_cast<int>(pixels_x(36)) - layer_left_;
        const int from_horizontal = static_cast<int>(pixels_x(37)) - layer_left_;
        if (raw(32) != 0)
            growing(false, from_vertical, raw(39), 41, raw(33));
        else
            growing(false, from_horizontal, raw(40), 42, raw(34));
    }

    float grown(int id)
    {
        const std::uint32_t kept = chance_.integer();
        park_miller own(kept);
        float sum = 0.0f;
        for (int i = 0; i <= frame_; ++i)
        {
            PF_ParamDef value = host_.defs[static_cast<std::size_t>(id)];
            PF_ParamDef randomness = host_.defs[43];
            if (host_.on_checkout)
            {
                host_.on_checkout(43, i * host_.in_data.time_step, randomness);
                host_.on_checkout(id, i * host_.in_data.time_step, value);
            }
            sum += spread(own, f(value.u.fs_d.value), f(randomness.u.fs_d.value));
        }
        chance_.reseed(kept);
        return sum;
    }

    void growing(bool vertical, int start_at, int offset, int growth, int length)
    {
        const int edge = vertical ? top_ : left_;
        const float reach =
            static_cast<float>(vertical ? height_ : width_) * static_cast<float>(percent(38)) / 100.0f;
        for (int i = 0; i < (vertical ? columns_ : rows_); ++i)
        {
            const float radius = draw_radius();
            const ripple wave = draw_ripple();
            const float placed = place(vertical);
            const double jitter = -d(reach) + d(chance_.unit()) * (d(reach) - -d(reach));
            const float start = std::max(static_cast<float>(edge), f(start_at + jitter + offset));
            const float growth_px = grown(growth);
            const float longest = spread(chance_, static_cast<float>(length), real(35));
            const float a = std::min(start, start + longest);
            const float b = std::max(start, start + longest);
            float end = std::clamp(start + growth_px, a, b);
            if (raw(44) == 0)
                end = std::min(end, static_cast<float>(side_ - edge));
            if (end <= start)
                continue;
            const auto whole = static_cast<float>(side_);
            line one = rippled(vertical, across(vertical, i, placed), wave, static_cast<short>(whole - end),
                               static_cast<short>(whole - start));
            draw(one, radius);
        }
    }

    void draw(const line& one, float radius)
    {
        const float opacity = spread(chance_, static_cast<float>(percent(23)), static_cast<float>(percent(24)));
        const int alpha = std::clamp(static_cast<int>(f(d(opacity) * 2.55)), 0, 255);
        if (one.points.empty())
            return;
        const auto turned = [&](vertex v)
        {
            double x = one.vertical ? v.across : v.run;
            double y = one.vertical ? v.run : v.across;
            turn(x, y);
            return vertex{one.vertical ? y : x, one.vertical ? x : y, 0.0};
        };
        const double base = turned({0.0, d(one.base), 0.0}).across;
        std::vector<vertex> points;
        float farthest = 0.0f;
        for (const vertex& v : one.points)
        {
            points.push_back(turned(v));
            farthest = std::max(farthest, std::fabs(f(points.back().across - base)));
        }

        stroke s;
        s.axis = one.vertical ? 1 : 0;
        s.alpha = alpha;
        for (float at = f(points.front().run); d(at) > points.back().run; at -= step_)
        {
            float cross = 0.0f;
            if (!linear(points, at, &cross))
                continue;
            const float off = f(d(cross) - base);
            const float stress = std::fabs(off * radius / farthest) * static_cast<float>(stressed_);
            const float half_width = f(d(stress) / 100.0 + d(radius));
            s.samples.push_back(one.vertical ? sample{cross, at, half_width} : sample{at, cross, half_width});
        }
        if (s.samples.empty())
            return;
        const float part = static_cast<float>(stressed_) / 100.0f;
        const float thin = stressed_ < 0 ? (part + 1.0f) * radius : radius;
        const float wide = stressed_ < 0 ? radius : (1.0f + part) * radius;
        s.inner_radius = f(d(thin) / 1.4142135623730951 - 1.5);
        s.outer_radius = f(d(wide) + 1.5);
        if (raw(31) != 0 && raw(44) != 0)
            cut(s, one.vertical);
        else
            strokes_.push_back(s);
    }

    // Pieces of a line that runs over the far edge, from its low end; what lies beyond comes back by the grid's
    // size.
    void cut(const stroke& whole, bool vertical)
    {
        const auto edge = static_cast<float>(side_ - (vertical ? top_ : left_));
        const auto period = static_cast<float>(vertical ? height_ : width_);
        std::vector<sample> slots = whole.samples;
        slots.push_back({0.0f, 0.0f, 0.0f}); // the slot past the end takes part in the scan
        std::size_t end = slots.size() - 1;
        const auto main = [vertical](sample& p) -> float& { return vertical ? p.y : p.x; };
        for (;;)
        {
            std::size_t begin = end;
            while (begin > 0 && main(slots[begin]) < edge)
                --begin;
            if (begin < end)
            {
                stroke piece = whole;
                piece.samples.assign(slots.begin() + static_cast<std::ptrdiff_t>(begin),
                                     slots.begin() + static_cast<std::ptrdiff_t>(end));
                strokes_.push_back(piece);
            }
            if (begin == 0)
                return;
            for (std::size_t i = 0; i <= begin; ++i)
                main(slots[i]) -= period;
            end = begin;
        }
    }

    // Linear over descending vertices, searched from the low end.
    static bool linear(const std::vector<vertex>& v, float t, float* out)
    {
        for (std::size_t i = v.size(); i-- > 1;)
        {
            const vertex& high = v[i - 1];
            const vertex& low = v[i];
            if (d(t) < low.run || d(t) >= high.run)
                continue;
            const float part = f((d(t) - high.run) / (high.run - low.run));
            *out = f(high.across + d(part) * (high.across - low.across));
            return true;
        }
        return false;
    }

    struct half_turn
    {
        double c;
        double s;
        double x;
        double y;
    };

    effect_fixture& host_;
    park_miller chance_;
    std::vector<line> straight_;
    std::vector<stroke> strokes_;
    half_turn turn_{};
    int width_, height_, columns_, rows_, side_, left_, top_, layer_left_, layer_top_, stressed_;
    int frame_;
    float step_, wavelength_;
};
} // namespace

bool same(const stroke& a, const stroke& b)
{
    const auto equal = [](float x, float y)
    { return std::memcmp(&x, &y, sizeof x) == 0 || (std::isnan(x) && std::isnan(y)); };
    return a.axis == b.axis && a.alpha == b.alpha && equal(a.inner_radius, b.inner_radius) &&
           equal(a.outer_radius, b.outer_radius) &&
           std::equal(a.samples.begin(), a.samples.end(), b.samples.begin(), b.samples.end(),
                      [&](const sample& p, const sample& q)
                      { return equal(p.x, q.x) && equal(p.y, q.y) && equal(p.half_width, q.half_width); });
}

std::vector<stroke> strokes_of(effect_fixture& host)
{
    return field(host).strokes();
}
} // namespace reference
