#include "effect/layout/crossing.hpp"

#include "effect/layout/rising_values.hpp"
#include "effect/layout/sp_line.hpp"
#include "effect/model/curve.hpp"
#include "effect/model/frame_data.hpp"
#include "effect/model/numeric.hpp"
#include "effect/model/work_limits.hpp"
#include "effect/shell/mem_pool.hpp"

#include <algorithm>
#include <limits>

namespace
{
// The bend of one crossing. `p` is the straight line's across position, `reach` the bend's half length along it,
// `q` where the ripple is read: p less the frame number.
struct crossing
{
    frame_data& frame;
    const curve& ripple;
    const sp_line& straight;
    float across; // of the rippled line: where along the straight line they cross
    float p;
    float q;
    float reach;

    bool vertical() const { return straight.vertical != 0; }

    // A point of the straight line's direction, given its position across and along it.
    curve_pt_t knot_point(float across_line, float along_line, double angle) const
    {
        const auto a = static_cast<double>(across_line);
        const auto l = static_cast<double>(along_line);
        return vertical() ? curve_pt_t{a, l, angle} : curve_pt_t{l, a, angle};
    }

    fpoint_t bend_point(double across_line, float along_line) const
    {
        const auto l = static_cast<double>(along_line);
        return vertical() ? fpoint_t{across_line, l} : fpoint_t{l, across_line};
    }

    // Where along the straight line sample m of the bend lies.
    float position(int m) const { return (across - reach) + static_cast<float>(m); }
};

// The direction of the ripple at the crossing, from its rise `d` over the run `e`. `previous` is kept for the one
// value of e that no case covers.
double ripple_angle(const PF_ANSICallbacks& ansi, float d, float e, double previous)
{
    constexpr double kPi = 3.141592653589793;
    if (static_cast<double>(d) < -1e-5)
        return ansi.atan(static_cast<double>(e / d));
    if (static_cast<double>(e) < 1e-5)
        return kPi / 2.0;
    if (static_cast<double>(e) > 1e-5)
        return ansi.atan(static_cast<double>(e / d)) + kPi;
    return previous;
}

// One three-point line for each harmonic from 1 on that has a value at the crossing; the others stay null.
void build_knots(const crossing& x, sp_line** knots)
{
    const frame_data& frame = x.frame;
    const PF_ANSICallbacks& ansi = frame.in_data->utils->ansi;
    const auto origin = static_cast<float>(x.vertical() ? frame.marginX : frame.marginY);
    const float before = x.q - 1.0f;
    const float after = x.q + 1.0f;
    const float e = after - before;
    double angle = 0.0;
    for (int k = 1; k < x.ripple.harmonics(); ++k)
    {
        float c = 0.0f;
        float l = 0.0f;
        float r = 0.0f;
        if (!x.ripple.F(k, x.q - origin, &c) || !x.ripple.F(k, before - origin, &l) ||
            !x.ripple.F(k, after - origin, &r))
            continue;
        c += x.across;
        l += x.across;
        r += x.across;
        angle = ripple_angle(ansi, r - l, e, angle);
        const double knot_angle = angle * 57.29577951308232 + 90.0;
        knots[k] = pool_new<sp_line>(frame.pool, &x.frame, x.straight.vertical,
                                     x.knot_point(x.p, x.across - x.reach, 0.0), x.knot_point(x.q, c, knot_angle),
                                     x.knot_point(x.p, x.across + x.reach, 0.0));
    }
}

// The bend around one crossing, from its knots: the first one's line, and each further one's departure from the
// straight line at half the weight of the one before.
class bend
{
public:
    bend(const crossing& x, sp_line* const* knots)
        : x_(x), knots_(knots), plain_(x.frame.lineCreator.level == simd_level::scalar),
          tangents_(x.frame.in_data->utils->ansi)
    {
        for (int k = 1; k < x.ripple.harmonics(); ++k)
            if (knots[k] != nullptr)
                values_[k] = rising_values(*knots[k], tangents_);
    }

    // Sample m. False where the first knot gives it no place.
    bool sample(int m, fpoint_t* out)
    {
        const float at = x_.position(m);
        float v = 0.0f;
        if (!value(1, at, &v))
            return false;
        *out = x_.bend_point(static_cast<double>(v), at);
        double& across = x_.vertical() ? out->x : out->y;
        for (int k = 2; k < x_.ripple.harmonics(); ++k)
            if (knots_[k] != nullptr && value(k, at, &v))
                across += static_cast<double>(v - x_.p) / weight(k);
        return true;
    }

private:
    bool value(int k, float at, float* v) { return plain_ ? knots_[k]->value(at, v) : values_[k].value(at, v); }

    // What knot k's departure is divided by; the host's power is asked once.
    double weight(int k)
    {
        if (plain_ || !weighed_[k])
            weight_[k] = x_.frame.in_data->utils->ansi.pow(2.0, static_cast<double>(k - 1));
        weighed_[k] = true;
        return weight_[k];
    }

    const crossing& x_;
    sp_line* const* knots_;
    bool plain_;
    tangent_memory tangents_;
    rising_values values_[curve::kMostHarmonics];
    double weight_[curve::kMostHarmonics] = {};
    bool weighed_[curve::kMostHarmonics] = {};
};

// Where the first knot's line ends; below every number where no part of it runs forward.
double bend_end(const crossing& x, const sp_line& knot)
{
    double end = -std::numeric_limits<double>::infinity();
    for (int i = 0; i + 1 < knot.num_points; ++i)
    {
        const double from = x.vertical() ? knot.points[i].y : knot.points[i].x;
        const double to = x.vertical() ? knot.points[i + 1].y : knot.points[i + 1].x;
        if (from < to)
            end = std::max(end, to);
    }
    return end;
}

// Of `count` samples, one a pixel over twice the reach, appends every one but a last fractional one; or, with
// angular lines, `tolerance` + 2 of them evenly spread, the last of which may be the point where the bend ends.
// Samples that find no room are not looked at.
void append_bend(const crossing& x, sp_line* const* knots, int count, sp_line& straight)
{
    const float length = 2.0f * x.reach;
    const double end = bend_end(x, *knots[1]);
    bend around(x, knots);
    if (x.frame.angularLines == 0)
    {
        const int whole = std::min(trunc_i32(static_cast<double>(length)), count);
        for (int m = 0; m < whole && straight.takes_points() && static_cast<double>(x.position(m)) < end; ++m)
        {
            fpoint_t point{};
            if (around.sample(m, &point))
                straight.insert_distortion(&point, 1);
        }
        return;
    }
    const std::int64_t segments = std::int64_t{x.frame.tolerance} + 1;
    const float step = length / static_cast<float>(segments);
    for (std::int64_t j = 0; j <= std::min(segments, kMostBendSegments) && straight.takes_points(); ++j)
    {
        const int m = trunc_i32(static_cast<double>(static_cast<float>(j) * step));
        fpoint_t point{};
        if (m >= count)
            point = x.bend_point(static_cast<double>(x.p), x.across + x.reach);
        else if (m < 0 || !around.sample(m, &point))
            continue;
        straight.insert_distortion(&point, 1);
    }
}

// Whether the pool has room for a place and a mark for each sample of a bend. A bend is only made where it has.
bool has_room_for(const mem_pool& pool, int count) noexcept
{
    const auto samples = static_cast<std::uint64_t>(count);
    const std::uint64_t places = (samples + 1) * sizeof(fpoint_t);
    return places <= pool.remaining && samples <= pool.remaining - places;
}
} // namespace

void distort_crossing(frame_data& frame, Loom::RandomGenerator32& rng, const curve& ripple, float ripple_across,
                      sp_line& straight)
{
    if (!straight.has_points())
        return;
    mem_pool* const pool = frame.pool;
    const float p = straight.vertical != 0 ? straight.base_x : straight.base_y;
    const float q = p - static_cast<float>(ripple.phase());
    float reach =
        rand_param(rng, static_cast<float>(frame.distortion), static_cast<float>(frame.distortionRandomness));
    if (reach < 1.0f)
        reach = 0.0f;
    const crossing x = {frame, ripple, straight, ripple_across, p, q, reach};
    if (!straight.takes_points())
        return;

    void* const mark = pool->next;
    auto* const knots = pool_array<sp_line*>(pool, std::int64_t{ripple.harmonics()} + 1);
    if (knots != nullptr)
        build_knots(x, knots);

    const float length = 2.0f * reach;
    const int whole = trunc_i32(static_cast<double>(length));
    const int count = wrap_add(whole, static_cast<float>(whole) < length ? 1 : 0);
    if (knots != nullptr && ripple.harmonics() > 1 && knots[1] != nullptr && count > 0 &&
        has_room_for(*pool, count))
        append_bend(x, knots, count, straight);
    pool_release(pool, mark);
}
