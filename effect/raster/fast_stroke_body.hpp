#pragma once
// The fast way to draw a stroke, for the level of instructions that the including file is compiled for. Internal
// to that file.

#include "effect/model/work_limits.hpp"
#include "effect/raster/covered_rows.hpp"
#include "effect/raster/line_creator.hpp"
#include "effect/raster/nearest_place.hpp"
#include "effect/raster/pixel_shade.hpp"
#include "effect/raster/row_masks.hpp"
#include "effect/raster/sample_search.hpp"
#include "effect/raster/stroke_blocks.hpp"
#include "effect/raster/stroke_canvas.hpp"
#include "effect/raster/stroke_rims.hpp"
#include "effect/raster/stroke_windows.hpp"
#include "effect/raster/swept_region.hpp"

#include <algorithm>
#include <bit>
#include <limits>
#include <memory>

namespace
{
// One stroke at work: panel by panel of 64 positions along the main axis, row by row across, and in each row tile
// by tile of eight.
template <bool Multicolor>
class fast_stroke
{
public:
    explicit fast_stroke(LineCreatorClass& creator) noexcept
        : creator_(creator), along_y_(creator.axis == 1), canvas_(creator), windows_(creator), shade_(creator)
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
        if (solid_core)
        {
            swept_region::sweep_both(creator_, outer_, core_, plane_);
        }
        else
        {
            outer_.sweep(creator_, creator_.outerRadius, plane_);
            clear_core();
        }
        if (plane_.any())
        {
            if (!in_pool || creator_.coveredMask == nullptr)
                return false;
            plane_.fill(creator_, solid_core, creator_.coveredMask);
        }
        if (!find_extent())
            return true;
        const index_window used = {windows_.at(begin_).first, windows_.at(end_ - 1).last};
        widest_ = widest(used);
        const stroke_reach reach(widest_);
        reach_squared_ = reach.squared;
        stroke_candidates places;
        scratch_memory* rest = &pool_rest;
        bool collected = places.collect(creator_, used.first, used.last, reach.distance, Multicolor, pool_rest);
        if (!collected && !plane_.any())
        {
            rest = &mask;
            collected = places.collect(creator_, used.first, used.last, reach.distance, Multicolor, mask);
        }
        if (collected && places.ascending)
            draw_listed(places, reach, *rest);
        else
            draw_unlisted(reach);
        return true;
    }

private:
    static constexpr int kPanel = row_masks::kColumns;
    static constexpr int kRowsAhead = 16; // that memory takes to come near
    static constexpr int kTilesOfPanel = kPanel / kLanes;
    static constexpr float kThin = 6.0f; // pixels: up to this reach, searches cost less than following cells
    static_assert(kPanel == swept_plane::kStretch);

    struct panel
    {
        int at; // main position of its first column
        int count;
        bool holed; // the swept pixels are those of the plane
        span rows;  // that anything may be drawn in
        alignas(stroke_tile) std::byte room[kTilesOfPanel * sizeof(stroke_tile)];
        stroke_tile& tile(int number) noexcept { return reinterpret_cast<stroke_tile*>(room)[number]; }
    };

    std::uint64_t mask_bytes() const noexcept
    {
        return static_cast<std::uint64_t>(canvas_.size) * static_cast<std::uint64_t>(canvas_.across);
    }

    bool take_arrays(scratch_memory& memory) noexcept
    {
        for (std::int32_t** array : {&outer_.first, &outer_.last, &core_.first, &core_.last})
            if ((*array = memory.take<std::int32_t>(canvas_.size)) == nullptr)
                return false;
        for (std::uint64_t** array : {&swept_toggles_, &solid_toggles_})
        {
            if ((*array = memory.take<std::uint64_t>(canvas_.across + 1)) == nullptr)
                return false;
            std::fill_n(*array, canvas_.across + 1, std::uint64_t{0});
        }
        return plane_.take(canvas_.size, memory) && canvas_.note_tiles(memory);
    }

    void clear_core() noexcept
    {
        std::fill_n(core_.first, canvas_.size, canvas_.across);
        std::fill_n(core_.last, canvas_.size, -1);
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

    float widest(index_window used) const noexcept
    {
        // Four at a time, since each comparison waits for the one before.
        constexpr int kAtOnce = 4;
        float radius[kAtOnce];
        std::fill_n(radius, kAtOnce, -std::numeric_limits<float>::infinity());
        for (int i = used.last; i <= used.first; i += kAtOnce)
            for (int n = 0; n < kAtOnce; ++n)
            {
                const float here = creator_.points[std::min(i + n, used.first)].halfWidth;
                radius[n] = here > radius[n] ? here : radius[n];
            }
        return *std::max_element(radius, radius + kAtOnce);
    }

    stroke_tile tile_at(int at) const noexcept
    {
        stroke_tile t(at);
        t.count = std::min(kLanes, canvas_.size - at);
        t.reach = {0, canvas_.across - 1};
        return t;
    }

    void draw_listed(const stroke_candidates& places, stroke_reach reach, scratch_memory& memory) noexcept
    {
        nearest_place nearest(places, reach, canvas_.across);
        windows_.judge(places);
        const covered_rows covered(creator_, places, windows_, canvas_.across);
        if (Multicolor && reach.distance > kThin && draw_blocks(covered, places, reach, memory))
            return;
        stroke_rims rims(creator_, places, canvas_, windows_);
        if (rims.make_room(widest_, Multicolor, memory))
        {
            rims.draw(
                outer_, core_, plane_,
                [&](const lane_pixels& t, int_lanes rows, unsigned needed, nearest_lanes near, int_lanes* color) {
                    return shaded(places, t, rows, needed & lane_bits(near.squared < reach.squared), near, color);
                });
            rims_ = &rims;
        }
        for (int at = begin_ - begin_ % kPanel; at < end_; at += kPanel)
            draw_panel(
                at,
                [&](stroke_tile& t)
                {
                    nearest.enter(t);
                    t.all_inside = windows_.all_inside(places, t.begin, t.end);
                    return Multicolor ? no_rows() : covered.of(t);
                },
                [&](stroke_tile& t, int row, unsigned needed) { return decide(nearest, places, t, row, needed); });
    }

    // Draws a wide stroke block by block. False, with nothing drawn, where it cannot be.
    bool draw_blocks(const covered_rows& covered, const stroke_candidates& places, stroke_reach reach,
                     scratch_memory& memory) noexcept
    {
        stroke_blocks blocks(places, canvas_, windows_, covered, plane_, widest_);
        if (!blocks.make_room(outer_.first, outer_.last, memory))
            return false;
        blocks.draw(
            [&](const lane_pixels& t, int row, unsigned needed, unsigned sure, int_lanes place, int_lanes* color)
            {
                const float_lanes dm = t.centers - gather(places.main, place);
                const float_lanes dc = static_cast<float>(row) + 0.5f - gather(places.cross, place);
                nearest_lanes near = {place, dm * dm + dc * dc};
                const unsigned rim = needed & ~sure & lane_bits(near.squared < reach.squared);
                if (doubtful(places, t, all_lanes(row), rim, near) != 0)
                    return (needed & sure) | shaded(places, t, all_lanes(row), rim, near, color);
                const float_lanes radius = gather(places.radius, place);
                return (needed & sure) |
                       (rim & lane_bits(shade_.shade(near.squared, radius, along_y_ ? dm : dc, color)));
            },
            [&](nearest_place& nearest, stroke_tile& t, int row, unsigned needed)
            { return decide(nearest, places, t, row, needed); });
        return true;
    }

    row_lanes no_rows() const noexcept { return {all_lanes(canvas_.across), all_lanes(-1)}; }

    void draw_unlisted(stroke_reach reach) noexcept
    {
        sample_search by_sample(creator_, reach);
        for (int at = begin_ - begin_ % kPanel; at < end_; at += kPanel)
            draw_panel(
                at,
                [&](stroke_tile& t)
                {
                    for (int i = 0; i < t.count; ++i)
                        t.windows[i] = windows_.at(t.at + i);
                    return no_rows();
                },
                [&](stroke_tile& t, int row, unsigned needed)
                {
                    unsigned written = 0;
                    if (creator_.sampleLooks < kMostSampleLooks)
                        creator_.sampleLooks +=
                            by_sample.search(t, row, needed,
                                             [&](int lane, const nearest_sample& near, float squared)
                                             { written |= finish(t, lane, row, near, squared); });
                    return written;
                });
    }

    // enter(tile) starts a tile and answers rows that are sure to be of the stroke's one colour where they are
    // swept; decide(tile, row, lanes) draws the others, and answers which it wrote.
    template <class Enter, class Decide>
    void draw_panel(int at, Enter enter, Decide decide) noexcept
    {
        panel p;
        p.at = at;
        p.count = std::min(kPanel, canvas_.size - at);
        p.holed = plane_.holed(at);
        p.rows = {canvas_.across, -1};
        row_masks swept(swept_toggles_);
        row_masks solid(solid_toggles_);
        for (int first = 0; first < p.count; first += kLanes)
        {
            if (rims_ != nullptr && rims_->done((at + first) / kLanes))
                continue;
            stroke_tile& t = *std::construct_at(&p.tile(first / kLanes), tile_at(at + first));
            const row_lanes covered = enter(t);
            for (int i = 0; i < t.count; ++i)
                add_column(p, t, i, {covered.first[i], covered.last[i]}, swept, solid);
        }
        draw_rows(p, swept, solid, decide);
    }

    void add_column(panel& p, const stroke_tile& t, int i, span covered, row_masks& swept,
                    row_masks& solid) noexcept
    {
        const int at = t.at + i;
        const span all = {outer_.first[at], outer_.last[at]};
        const span core = {core_.first[at], core_.last[at]};
        const span reached = {std::max(all.first, t.reach.first), std::min(all.last, t.reach.last)};
        span full = p.holed ? span{0, -1} : core;
        full = joined(full, {std::max(covered.first, all.first), std::min(covered.last, all.last)});
        swept.add(at - p.at, reached);
        solid.add(at - p.at, full);
        include(p.rows, reached);
        include(p.rows, full);
        if (p.holed)
            include(p.rows, core);
        else if (canvas_.fills_across() && full.first <= full.last)
            canvas_.fill_across(at, full, creator_.points[0].color);
    }

    static void include(span& rows, span more) noexcept
    {
        if (more.first <= more.last)
            rows = {std::min(rows.first, more.first), std::max(rows.last, more.last)};
    }

    template <class Decide>
    void draw_rows(panel& p, row_masks swept, row_masks solid, Decide decide) noexcept
    {
        const bool filled = !p.holed && canvas_.fills_across();
        std::uint64_t written = 0; // in the tiles of the row before
        for (int row = p.rows.first; row <= p.rows.last; ++row)
        {
            std::uint64_t some = swept.take(row);
            std::uint64_t full = solid.take(row);
            if (p.holed)
            {
                const std::uint64_t all = plane_.bits(p.at, p.count, row, swept_plane::kSwept);
                some &= all;
                full = (full & all) | plane_.bits(p.at, p.count, row, swept_plane::kCore);
            }
            if (row > p.rows.first && canvas_.tile_across(row) != canvas_.tile_across(row - 1))
            {
                canvas_.mark(p.at, canvas_.tile_across(row - 1), written);
                written = 0;
            }
            written |= full;
            if (!filled)
            {
                canvas_.expect(p.at, p.count, row + kRowsAhead, p.rows.last);
                canvas_.fill(p.at, row, full, creator_.points[0].color);
            }
            for (std::uint64_t left = some & ~full; left != 0;)
            {
                const int first = std::countr_zero(left) / kLanes * kLanes;
                const auto needed = static_cast<unsigned>((left >> static_cast<unsigned>(first)) & 0xff);
                const unsigned drawn = decide(p.tile(first / kLanes), row, needed);
                written |= std::uint64_t{drawn} << static_cast<unsigned>(first);
                left &= ~(std::uint64_t{0xff} << static_cast<unsigned>(first));
            }
        }
        if (p.rows.first > p.rows.last)
            return;
        canvas_.mark(p.at, canvas_.tile_across(p.rows.last), written);
        swept.take(p.rows.last + 1);
        solid.take(p.rows.last + 1);
    }

    // Draws lanes of one row of a tile, and answers which it wrote.
    unsigned decide(nearest_place& nearest, const stroke_candidates& places, stroke_tile& t, int row,
                    unsigned needed) noexcept
    {
        nearest_lanes near = nearest.search(t, row);
        needed &= lane_bits(near.place >= 0);
        if (needed == 0)
            return 0;
        int_lanes color;
        const unsigned written = shaded(places, t, all_lanes(row), needed, near, &color);
        canvas_.store(t.at, row, written, color);
        return written;
    }

    // The colours of lanes in these rows with these nearest places, and which of them are to be written.
    unsigned shaded(const stroke_candidates& places, const lane_pixels& t, int_lanes rows, unsigned needed,
                    nearest_lanes& near, int_lanes* color) const noexcept
    {
        for (unsigned left = doubtful(places, t, rows, needed, near); left != 0; left &= left - 1)
            needed = recount(places, t, rows[std::countr_zero(left)], std::countr_zero(left), needed, near);
        const int_lanes place = higher_of(near.place, all_lanes(0));
        const float_lanes radius = places.one_radius ? all_lanes(places.radius[0]) : gather(places.radius, place);
        const float_lanes offset =
            along_y_ ? t.centers - gather(places.main, place)
                     : __builtin_convertvector(rows, float_lanes) + 0.5f - gather(places.cross, place);
        if constexpr (Multicolor)
            *color = gather(places.color, place);
        else
            *color = all_lanes(std::bit_cast<std::int32_t>(creator_.points[0].color));
        return needed & lane_bits(shade_.shade(near.squared, radius, offset, color));
    }

    // Of `needed` lanes, those whose nearest place may not count for them.
    unsigned doubtful(const stroke_candidates& places, const lane_pixels& t, int_lanes rows, unsigned needed,
                      const nearest_lanes& near) const noexcept
    {
        unsigned far = needed & lane_bits(near.squared > windows_.sure_squared());
        const int_lanes place = higher_of(near.place, all_lanes(0));
        if (far != 0)
            far &= ~lane_bits(
                windows_.near_enough(t.centers - gather(places.main, place), gather(places.cross, place), rows));
        if (t.all_inside)
            return far;
        return far | (needed & ~lane_bits(windows_.inside(gather(places.main, place))));
    }

    // Looks again for a lane whose nearest place may not count for it.
    unsigned recount(const stroke_candidates& places, const lane_pixels& t, int row, int lane, unsigned needed,
                     nearest_lanes& near) const noexcept
    {
        const index_window w = windows_.at(t.at + lane);
        if (windows_.counts(places, w, row, near.place[lane]))
            return needed;
        float squared = reach_squared_;
        const int j = windows_.search(places, w, t.centers[lane], row, &squared);
        if (j < 0)
            return needed & ~(1U << static_cast<unsigned>(lane));
        near.place[lane] = j;
        near.squared[lane] = squared;
        return needed;
    }

    unsigned finish(const stroke_tile& t, int lane, int row, const nearest_sample& near, float squared) noexcept
    {
        PF_Pixel color{};
        if (!creator_.template shade<Multicolor>(near, std::sqrt(squared), &color))
            return 0;
        *canvas_.pixel(t.at + lane, row) = color;
        return 1U << static_cast<unsigned>(lane);
    }

    LineCreatorClass& creator_;
    bool along_y_;
    stroke_canvas canvas_;
    stroke_windows windows_;
    pixel_shade shade_;
    float reach_squared_ = 0.0f;
    float widest_ = 0.0f; // radius of a sample that counts anywhere
    int begin_ = 0;       // main positions that have pixels
    int end_ = 0;
    swept_region outer_{};
    swept_region core_{};
    swept_plane plane_;                 // the swept pixels one by one, where the runs have holes
    const stroke_rims* rims_ = nullptr; // what was drawn along its rims
    std::uint64_t* swept_toggles_ = nullptr;
    std::uint64_t* solid_toggles_ = nullptr;
};

bool draw_stroke(LineCreatorClass& creator, bool solid_core, bool one_color) noexcept
{
    return one_color ? fast_stroke<false>(creator).draw(solid_core) : fast_stroke<true>(creator).draw(solid_core);
}
} // namespace
