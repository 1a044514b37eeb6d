#pragma once
// One line of the field: an ordered run of points along one axis. Record and points are the frame pool's and go
// with it.
//
// A line has a running axis and an across axis: a horizontal one runs along x, a vertical one along y. Coordinates
// are canvas pixels, mirrored: drawing turns every point by 180 degrees about the canvas centre, so that a line
// meant to cover positions a to b of a canvas of side D is built with running positions D - b to D - a.

#include "effect/model/ae_obj.hpp"
#include "effect/model/points.hpp"
#include "effect/model/random.hpp"
#include "effect/pf/effect_api.hpp"

#include <cstdint>

class aeg;
class curve;
class frame_data;
struct mem_pool;

class sp_line : public ae_obj
{
public:
    // From n points, sorted along the running axis. No compression.
    sp_line(frame_data* frame, unsigned char vertical, const fpoint_t* pts, int n);

    // From three points with their tangents, sorted along the running axis. No compression.
    sp_line(frame_data* frame, unsigned char vertical, const curve_pt_t& a, const curve_pt_t& b,
            const curve_pt_t& c);

    // Straight from a to b, with room for the points that its crossings append. Compressed.
    sp_line(frame_data* frame, unsigned char vertical, const fpoint_t& a, const fpoint_t& b);

    // Sampled from a ripple between the running positions `from` and `to` (`to` excluded), one point a pixel, or
    // `tolerance` segments a grid cell and a closing point with angular lines. The across position is start.x, for
    // either direction. A position where the ripple has no value leaves a zero point. Compressed.
    sp_line(frame_data* frame, unsigned char vertical, const fpoint_t& start, const curve* c, short from,
            short to);

    explicit sp_line(const sp_line* other);

    // Appends points while there is room; not sorted.
    bool takes_points() const noexcept { return num_points < max_points && num_points < room; }
    void insert_distortion(const fpoint_t* pts, int n) noexcept
    {
        for (int i = 0; i < n && takes_points(); ++i, ++num_points)
        {
            points[num_points].x = pts[i].x;
            points[num_points].y = pts[i].y;
        }
    }

    // The across coordinate at running position t, linear, over points in descending running order. False outside
    // them (the first point's own position included).
    bool value(const curve_pt_t* pts, int n, float t, float* out) const noexcept;

    // The same over the line's own points in ascending running order, cubic Hermite with the points' tangents.
    // False outside them (the last point's own position included).
    bool value(float t, float* out) const;

    // Pushes the line away from the compression centre by "Line Compression" percent of its distance.
    void affect_compression() noexcept;

    // Sorts the points and flattens pairs at almost the same running position that lie far apart across.
    void filter() noexcept;

    // Strokes the line with radius `width` (pixels) onto the context's canvas and flushes it. One random draw, for
    // the opacity, which overwrites the alpha of the frame's two line colours.
    void draw(Loom::RandomGenerator32& rng, aeg* context, float width);

    bool has_points() const noexcept { return points != nullptr && num_points > 0; }

    std::int64_t max_points = 0; // insert_distortion never goes past it
    std::uint8_t vertical = 0;
    std::uint8_t fixed_points = 0; // made from two or three given points; for the record only
    float base_y = 0.0f;           // across position of a horizontal line
    float base_x = 0.0f;           // across position of a vertical line
    PF_InData* in_data = nullptr;
    frame_data* frame = nullptr;
    curve_pt_t* points = nullptr; // null where the pool had no room
    std::int32_t num_points = 0;  // in use
    float compression_shift = 0.0f;
    std::int64_t room = 0; // points carved

private:
    friend class falling_values;
    friend class rising_values;

    sp_line(frame_data* frame, unsigned char vertical) noexcept;

    // Whether `at` lies on the falling segment from p0 to p1, p0's position excluded; the across coordinate there.
    bool on_segment(const curve_pt_t& p0, const curve_pt_t& p1, double at) const noexcept
    {
        return run(p1) <= at && at < run(p0);
    }
    float value_on(const curve_pt_t& p0, const curve_pt_t& p1, double at) const noexcept;

    double run(const curve_pt_t& p) const noexcept { return vertical != 0 ? p.y : p.x; }
    double across(const curve_pt_t& p) const noexcept { return vertical != 0 ? p.x : p.y; }
    double& across(curve_pt_t& p) const noexcept { return vertical != 0 ? p.x : p.y; }
    curve_pt_t point_at(double running, double crossing) const noexcept;

    // A point of a rippled line: `t` beyond `from` along it, `v` off its base.
    curve_pt_t rippled(short from, float t, double base, float v) const noexcept;

    // Samples a ripple at 0, step, 2 step, ... below `end` into the first points; how many. The fast way has the
    // same result.
    int follow(const curve& c, double base, short from, float end, float step) noexcept;
    int follow_fast(const curve& c, double base, short from, float end, float step) noexcept;
    void set_base(double x, double y) noexcept;
    void sort() noexcept;
    void carve(std::int64_t count) noexcept;
};
