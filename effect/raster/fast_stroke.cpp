#include "effect/raster/fast_stroke.hpp"

#include "effect/model/work_limits.hpp"
#include "effect/raster/covered_rows.hpp"
#include "effect/raster/line_creator.hpp"
#include "effect/raster/nearest_place.hpp"
#include "effect/raster/sample_search.hpp"
#include "effect/raster/stroke_canvas.hpp"
#include "effect/raster/swept_region.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace
{
// One stroke at work, tile by tile along the main axis and row by row across.
template <bool Multicolor>
class fast_stroke
{
public:
    explicit fast_stroke(LineCreatorClass& creator) noexcept
        : creator_(creator), along_y_(creator.axis == 1), canvas_(creator),
          first_main_(along_y_ ? creator.points[0].y : creator.points[0].x)
    {
    }

    // False, with nothing drawn, where there is no memory to work in.
    bool draw(bool solid_core) noexcept
    {
        // The pool's free rest, and the mask, which only the plain way needs.
        scratch_memory pool_rest(creator_.pool->next, creator_.pool->remaining);
        scratch_memory mask(creator_.coveredMask, creator_.coveredMask != nullptr ? mask_bytes() : 0);
        const bool in_pool = take_arrays(pool_rest);
        if (!in_pool && !take_arrays(mask))
            return false;
        bool whole = outer_.sweep(creator_, creator_.outerRadius);
        if (solid_core)
            whole = core_.sweep(creator_, creator_.innerRadius) && whole;
        else
            clear_core();
        if (!whole)
        {
            if (!in_pool || creator_.coveredMask == nullptr)
                return false;
            make_plane(solid_core);
        }
        if (!find_extent())
            return true;
        for (int i = begin_; i < end_; ++i)
            creator_.sweptPixels += std::max(0, outer_.last[i] - outer_.first[i] + 1);

        const index_window used = {window(begin_).first, window(end_ - 1).last};
        const stroke_reach reach(widest(used));
        stroke_candidates places;
        const bool collected =
            places.collect(creator_, used.first, used.last, reach.distance, pool_rest) ||
            (plane_ == nullptr && places.collect(creator_, used.first, used.last, reach.distance, mask));
        const bool listed = collected && places.ascending;
        nearest_place nearest(creator_, places, reach, canvas_.across, corner_, corner_at_);
        covered_rows covered(creator_, places, canvas_.across);
        sample_search by_sample(creator_, reach);
        for (int at = begin_ - begin_ % kLanes; at < end_; at += kLanes)
        {
            stroke_tile t = tile_at(at);
            span rows = {0, canvas_.across - 1};
            if (listed)
            {
                nearest.enter(t);
                rows = nearest.rows_in_reach(t);
                if (!Multicolor)
                {
                    covered.enter(t);
                    for (int i = 0; i < t.count; ++i)
                        if (t.swept_first[i] <= t.swept_last[i])
                            add_solid(t, i, covered.of(t, i));
                }
            }
            draw_tile(t, rows,
                      [&](int row, unsigned needed)
                      {
                          if (listed)
                              decide_listed(nearest, places, t, row, needed);
                          else if (creator_.sampleLooks < kMostSampleLooks)
                              creator_.sampleLooks +=
                                  by_sample.search(t, row, needed,
                                                   [&](int lane, const nearest_sample& near, float squared)
                                                   { finish(t, lane, row, near, squared); });
                      });
        }
        return true;
    }

private:
    static constexpr std::uint8_t kSwept = 1;
    static constexpr std::uint8_t kCore = 2;

    std::uint64_t mask_bytes() const noexcept
    {
        return static_cast<std::uint64_t>(canvas_.size) * static_cast<std::uint64_t>(canvas_.across);
    }

    bool take_arrays(scratch_memory& memory) noexcept
    {
        for (std::int32_t** array : {&outer_.first, &outer_.last, &core_.first, &core_.last})
            if ((*array = memory.take<std::int32_t>(canvas_.size)) == nullptr)
                return false;
        for (std::int32_t** array : {&corner_, &corner_at_})
            if ((*array = memory.take<std::int32_t>(canvas_.across)) == nullptr)
                return false;
        std::fill_n(corner_at_, canvas_.across, -1);
        return canvas_.note_tiles(memory);
    }

    void clear_core() noexcept
    {
        std::fill_n(core_.first, canvas_.size, canvas_.across);
        std::fill_n(core_.last, canvas_.size, -1);
    }

    // Notes the swept pixels one by one.
    void make_plane(bool solid_core) noexcept
    {
        plane_ = creator_.coveredMask;
        std::memset(plane_, 0, mask_bytes());
        sweep_plane(creator_, creator_.outerRadius, kSwept, plane_);
        if (solid_core)
            sweep_plane(creator_, creator_.innerRadius, kCore, plane_);
    }

    // The main positions that have pixels at all.
    bool find_extent() noexcept
    {
        begin_ = 0;
        end_ = canvas_.size;
        const auto empty = [this](int i)
        { return outer_.last[i] < outer_.first[i] && core_.last[i] < core_.first[i]; };
        while (begin_ < end_ && empty(begin_))
            ++begin_;
        while (begin_ < end_ && empty(end_ - 1))
            --end_;
        return begin_ < end_;
    }

    index_window window(int at) const noexcept
    {
        const float from = std::max(0.0f, static_cast<float>(at + 1) - creator_.outerRadius);
        const float to =
            std::min(static_cast<float>(canvas_.size), static_cast<float>(at + 1) + creator_.outerRadius);
        return {sample_at(first_main_, from, creator_.samplesPerPixel, creator_.pointCount),
                sample_at(first_main_, to, creator_.samplesPerPixel, creator_.pointCount)};
    }

    float widest(index_window used) const noexcept
    {
        float radius = -std::numeric_limits<float>::infinity();
        for (int i = used.last; i <= used.first; ++i)
            radius = creator_.points[i].halfWidth > radius ? creator_.points[i].halfWidth : radius;
        return radius;
    }

    stroke_tile tile_at(int at) const noexcept
    {
        stroke_tile t{};
        t.at = at;
        t.count = std::min(kLanes, canvas_.size - at);
        for (int i = 0; i < kLanes; ++i)
        {
            const bool inside = i < t.count;
            const bool runs = inside && plane_ == nullptr;
            t.centers[i] = static_cast<float>(at + i) + 0.5f;
            t.windows[i] = inside ? window(at + i) : index_window{0, 0};
            t.swept_first[i] = inside ? outer_.first[at + i] : canvas_.across;
            t.swept_last[i] = inside ? outer_.last[at + i] : -1;
            t.solid_first[i] = runs ? core_.first[at + i] : canvas_.across;
            t.solid_last[i] = runs ? core_.last[at + i] : -1;
        }
        return t;
    }

    static void add_solid(stroke_tile& t, int i, span rows) noexcept
    {
        const span solid = joined({t.solid_first[i], t.solid_last[i]}, rows);
        t.solid_first[i] = solid.first;
        t.solid_last[i] = solid.last;
    }

    // Fills what is solid, and calls decide(row, lanes) for what is swept otherwise and lies in `reach`.
    template <class Decide>
    void draw_tile(const stroke_tile& t, span reach, Decide decide) noexcept
    {
        span rows = {canvas_.across, -1};
        const auto include = [&rows](int first, int last)
        {
            if (first > last)
                return;
            rows = {std::min(rows.first, first), std::max(rows.last, last)};
        };
        // Rows of which the whole tile is solid are filled without a look at each lane.
        span bulk = {0, t.count == kLanes && plane_ == nullptr ? canvas_.across : -1};
        for (int i = 0; i < t.count; ++i)
        {
            if (plane_ != nullptr)
                include(core_.first[t.at + i], core_.last[t.at + i]);
            include(t.solid_first[i], t.solid_last[i]);
            include(std::max(t.swept_first[i], reach.first), std::min(t.swept_last[i], reach.last));
            bulk = {std::max(bulk.first, t.solid_first[i]), std::min(bulk.last, t.solid_last[i])};
        }
        if (bulk.first > bulk.last)
        {
            draw_rows(t, rows, reach, decide);
            return;
        }
        draw_rows(t, {rows.first, bulk.first - 1}, reach, decide);
        for (int row = bulk.first; row <= bulk.last; ++row)
            canvas_.fill(t.at, row, creator_.points[0].color);
        draw_rows(t, {bulk.last + 1, rows.last}, reach, decide);
    }

    template <class Decide>
    void draw_rows(const stroke_tile& t, span rows, span reach, Decide decide) noexcept
    {
        const auto swept_first = load_lanes<int_lanes>(t.swept_first);
        const auto swept_last = load_lanes<int_lanes>(t.swept_last);
        const auto solid_first = load_lanes<int_lanes>(t.solid_first);
        const auto solid_last = load_lanes<int_lanes>(t.solid_last);
        for (int row = rows.first; row <= rows.last; ++row)
        {
            const int_lanes at = all_lanes(row);
            unsigned solid = lane_bits((solid_first <= at) & (at <= solid_last));
            unsigned swept = lane_bits((swept_first <= at) & (at <= swept_last));
            if (plane_ != nullptr)
            {
                swept = plane_bits(t, row, kSwept);
                solid = (solid & swept) | plane_bits(t, row, kCore);
            }
            for (unsigned left = solid; left != 0; left &= left - 1)
                canvas_.store(t.at + std::countr_zero(left), row, creator_.points[0].color);
            const unsigned needed = swept & ~solid;
            if (needed != 0 && reach.first <= row && row <= reach.last)
                decide(row, needed);
        }
    }

    unsigned plane_bits(const stroke_tile& t, int row, unsigned bit) const noexcept
    {
        const std::uint8_t* const bytes = plane_ + static_cast<std::ptrdiff_t>(row) * canvas_.size + t.at;
        unsigned bits = 0;
        for (int i = 0; i < t.count; ++i)
            bits |= (bytes[i] & bit) != 0 ? 1U << static_cast<unsigned>(i) : 0U;
        return bits;
    }

    void decide_listed(nearest_place& nearest, const stroke_candidates& places, const stroke_tile& t, int row,
                       unsigned needed) noexcept
    {
        int_lanes found;
        float_lanes squared;
        nearest.search(t, row, &found, &squared);
        for (unsigned left = needed & lane_bits(found >= 0); left != 0; left &= left - 1)
        {
            const int lane = std::countr_zero(left);
            int j = found[lane];
            float q = squared[lane];
            if (!nearest.counts(t.windows[lane], row, j))
                j = nearest.search_counting(t.windows[lane], t.at + lane, row, &q);
            if (j < 0)
                continue;
            nearest_sample near;
            near.radius = places.radius[j];
            near.row_offset =
                along_y_ ? t.centers[lane] - places.main[j] : static_cast<float>(row) + 0.5f - places.cross[j];
            if constexpr (Multicolor)
                near.color = color_of(places, j);
            finish(t, lane, row, near, q);
        }
    }

    PF_Pixel color_of(const stroke_candidates& places, int j) const noexcept
    {
        const StrokePoint* const cur = &creator_.points[places.sample[j]];
        if (places.place[j] == 0)
            return cur->color;
        return gap_bridge(cur[1], cur[0], along_y_, creator_.samplesPerPixel).color(places.place[j]);
    }

    void finish(const stroke_tile& t, int lane, int row, const nearest_sample& near, float squared) noexcept
    {
        PF_Pixel color{};
        if (creator_.template shade<Multicolor>(near, std::sqrt(squared), &color))
            canvas_.store(t.at + lane, row, color);
    }

    LineCreatorClass& creator_;
    bool along_y_;
    stroke_canvas canvas_;
    float first_main_;
    int begin_ = 0; // main positions that have pixels
    int end_ = 0;
    swept_region outer_{};
    swept_region core_{};
    std::uint8_t* plane_ = nullptr; // the swept pixels one by one, where the runs have holes
    std::int32_t* corner_ = nullptr;
    std::int32_t* corner_at_ = nullptr;
};

// The fast way takes the processor's square root, correctly rounded as the arithmetic everywhere demands. A host
// whose own differs is asked for every pixel.
bool rounds_correctly(const PF_ANSICallbacks& ansi)
{
    for (const double v : {0.0, 0.1, 0.7, 2.0, 3.0, 5.5, 1234.5678, 16777215.0})
        if (ansi.sqrt(v) != std::sqrt(v))
            return false;
    return true;
}
} // namespace

bool draw_stroke_fast(LineCreatorClass& creator) noexcept
{
    const bool solid_core = creator.subRenderFunction == &LineCreatorClass::SubRenderMonocolor;
    const bool one_color = creator.pixelFunction == &LineCreatorClass::CalculatePixelMonocolor;
    const bool ours = (solid_core || creator.subRenderFunction == &LineCreatorClass::SubRenderMulticolor) &&
                      (one_color || creator.pixelFunction == &LineCreatorClass::CalculatePixelMulticolor);
    if (!ours || (creator.axis != 0 && creator.axis != 1) || creator.pointCount <= 0)
        return false;
    const float first_main = creator.axis == 1 ? creator.points[0].y : creator.points[0].x;
    if (!(std::fabs(first_main) < 1e8f) || creator.pool == nullptr ||
        !rounds_correctly(creator.in_data->utils->ansi))
        return false;
    return one_color ? fast_stroke<false>(creator).draw(solid_core) : fast_stroke<true>(creator).draw(solid_core);
}
