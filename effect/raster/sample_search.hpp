#pragma once
// The search for the nearest place without a list of places: for strokes whose samples are out of order along the
// main axis, and where there is no memory for the list. Internal to the file that includes it, as lanes are.

#include "effect/raster/line_creator.hpp"
#include "effect/raster/nearest_place.hpp"
#include "effect/raster/nearest_sample.hpp"
#include "effect/raster/stroke_tile.hpp"

#include <algorithm>
#include <bit>
#include <cmath>

namespace
{
class sample_search
{
public:
    sample_search(const LineCreatorClass& creator, stroke_reach reach) noexcept
        : creator_(creator), points_(creator.points), reach_(reach), along_y_(creator.axis == 1)
    {
    }

    // Looks, for pixels of one row of a tile (bits of `needed`), at each sample of their windows, as the plain way
    // does, but at no bridging position that is sure to be farther than another one. Calls
    // decided(lane, nearest_sample, squared distance) for each pixel that has something in reach. Answers how many
    // samples and positions it looked at.
    template <class Decided>
    std::int64_t search(const stroke_tile& t, int row, unsigned needed, Decided decided) noexcept
    {
        start(t, row, needed);
        const int first = t.windows[0].first;
        const int last = t.windows[t.count - 1].last;
        // The bridges next to the tile tell how near the nearest place is at most.
        for (int j = first - 1; j >= last; --j)
            if (is_steep(j))
                bound_by_bridge(t, j);
        main_distance_ = limit_distance_;
        for (int j = first; j >= last; --j)
        {
            if (j < first && is_steep(j))
                look_at_bridge(t, j);
            look_at_sample(t, j);
        }
        for (unsigned left = needed & lane_bits(sample_ >= 0); left != 0; left &= left - 1)
        {
            const int lane = std::countr_zero(left);
            decided(lane, found(t, lane), best_[lane]);
        }
        return looks_ + std::max(0, first - last + 1);
    }

private:
    void start(const stroke_tile& t, int row, unsigned needed) noexcept
    {
        needed_ = needed;
        looks_ = 0;
        center_ = static_cast<float>(row) + 0.5f;
        from_ = std::max(0.0f, static_cast<float>(row + 1) - creator_.outerRadius);
        to_ = std::min(static_cast<float>(along_y_ ? creator_.width : creator_.height),
                       static_cast<float>(row + 1) + creator_.outerRadius);
        for (int i = 0; i < kLanes; ++i)
        {
            window_first_[i] = t.windows[i].first;
            window_last_[i] = t.windows[i].last;
        }
        limit_ = all_lanes(reach_.squared);
        limit_distance_ = all_lanes(reach_.distance);
        main_distance_ = all_lanes(1.0f);
        best_ = all_lanes(reach_.squared);
        sample_ = all_lanes(-1);
        place_ = all_lanes(0);
    }

    float main_of(int j) const noexcept { return along_y_ ? points_[j].y : points_[j].x; }
    float cross_of(int j) const noexcept { return along_y_ ? points_[j].x : points_[j].y; }
    float center_x(const stroke_tile& t, int lane) const noexcept { return along_y_ ? center_ : t.centers[lane]; }
    float center_y(const stroke_tile& t, int lane) const noexcept { return along_y_ ? t.centers[lane] : center_; }
    static float distance_of(float squared) noexcept { return std::sqrt(squared) * 1.0001f + 0.01f; }

    gap_bridge bridge_to(int j) const noexcept
    {
        return {points_[j + 1], points_[j], along_y_, creator_.samplesPerPixel};
    }

    // Whether the step to sample j may be bridged.
    bool is_steep(int j) const noexcept { return std::fabs(cross_of(j) - cross_of(j + 1)) > 1.1f; }

    // How far the step from a to b is from `from` at least, less what its positions can lose to rounding.
    static float distance_to_step(float a, float b, float from) noexcept
    {
        const float low = a < b ? a : b;
        const float high = a < b ? b : a;
        const float off = std::max(0.0f, std::max(low - from, from - high));
        return off * 0.9999f - 0.01f - 1e-6f * (std::fabs(a) + std::fabs(b));
    }

    // The lanes that some of the step to sample j may lie within the distances of, along the main axis and across.
    unsigned lanes_near(const stroke_tile& t, int j) const noexcept
    {
        const float across = distance_to_step(cross_of(j), cross_of(j + 1), center_);
        unsigned lanes = needed_ & lane_bits(across <= limit_distance_);
        for (unsigned left = lanes; left != 0; left &= left - 1)
        {
            const int lane = std::countr_zero(left);
            if (distance_to_step(main_of(j), main_of(j + 1), t.centers[lane]) > main_distance_[lane])
                lanes &= ~(1U << static_cast<unsigned>(lane));
        }
        return lanes;
    }

    // Calls look(lane, m, squared distance) for the positions of the bridge to sample j that may be nearest to a
    // lane.
    template <class Look>
    void look_along(const stroke_tile& t, int j, Look look) noexcept
    {
        const unsigned lanes = lanes_near(t, j);
        if (lanes == 0)
            return;
        const gap_bridge bridge = bridge_to(j);
        for (unsigned left = lanes; bridge.count > 0 && left != 0; left &= left - 1)
        {
            const int lane = std::countr_zero(left);
            if (j >= window_first_[lane] || j < window_last_[lane])
                continue;
            const float x = center_x(t, lane);
            const float y = center_y(t, lane);
            const auto [begin, end] = bridge.nearest_to(x, y, limit_distance_[lane]);
            looks_ += end - begin;
            for (int m = begin; m < end; ++m)
                look(lane, m, squared_distance(x, y, bridge.x(m), bridge.y(m)));
        }
    }

    void bound_by_bridge(const stroke_tile& t, int j) noexcept
    {
        look_along(t, j,
                   [this](int lane, int, float q)
                   {
                       if (!(q < limit_[lane]))
                           return;
                       limit_[lane] = q;
                       limit_distance_[lane] = distance_of(q);
                   });
    }

    void look_at_bridge(const stroke_tile& t, int j) noexcept
    {
        look_along(t, j,
                   [&](int lane, int m, float q)
                   {
                       if (!(q < best_[lane]))
                           return;
                       best_[lane] = q;
                       sample_[lane] = j;
                       place_[lane] = m;
                   });
    }

    void look_at_sample(const stroke_tile& t, int j) noexcept
    {
        const float cross = cross_of(j);
        if (!(from_ <= cross && cross <= to_))
            return;
        const float_lanes dm = t.centers - main_of(j);
        const float dc = center_ - cross;
        const float_lanes q = dm * dm + dc * dc;
        const int_lanes nearer = (q < best_) & (window_last_ <= j) & (window_first_ >= j);
        best_ = nearer ? q : best_;
        sample_ = nearer ? all_lanes(j) : sample_;
        place_ = nearer ? all_lanes(0) : place_;
    }

    nearest_sample found(const stroke_tile& t, int lane) const noexcept
    {
        const int j = sample_[lane];
        const int m = place_[lane];
        nearest_sample near;
        near.radius = points_[j].halfWidth;
        near.row_offset = center_y(t, lane) - points_[j].y;
        near.color = points_[j].color;
        if (m != 0)
        {
            const gap_bridge bridge = bridge_to(j);
            near.radius = bridge.radius(m);
            near.row_offset = center_y(t, lane) - bridge.y(m);
            near.color = bridge.color(m);
        }
        return near;
    }

    const LineCreatorClass& creator_;
    const StrokePoint* points_;
    stroke_reach reach_;
    bool along_y_;
    unsigned needed_ = 0; // lanes
    std::int64_t looks_ = 0;
    float center_ = 0.0f; // of the row
    float from_ = 0.0f;   // samples that count lie between these across
    float to_ = 0.0f;
    int_lanes window_first_{};
    int_lanes window_last_{};
    float_lanes limit_{};          // the nearest place is no farther, squared
    float_lanes limit_distance_{}; // its root, with a margin
    float_lanes main_distance_{};  // bridges farther off along the main axis are passed over
    float_lanes best_{};
    int_lanes sample_{};
    int_lanes place_{}; // 0 for the sample itself, else the position's number in the bridge to it
};
} // namespace
