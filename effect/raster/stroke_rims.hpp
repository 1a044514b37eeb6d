#pragma once
// Draws a thin stroke, or one of one colour and one width, along its two rims: eight columns at a time, each in a
// row of its own, so that the eight follow the rim however it slopes. Internal to the file that includes it, as
// lanes are.
//
// Seen from one side of the stroke's line, distance never falls on the way outward, but for what the gaps between
// samples make of it: let a place be nearest to a pixel of some column that lies farther out than another one. If
// the place lies no farther out than the nearer pixel, it is nearer to that one. If it does, the samples between
// the column and the place pass the nearer pixel's row, none of them farther along than the place, and the first
// that does so lies less than a step, 1.2 pixels, beyond the row: the nearer pixel's squared distance is less than
// 1.44 above the farther one's. So inward of a pixel that is deep inside all are covered, and outward of one that
// is well out none is.

#include "effect/raster/covered_rows.hpp"
#include "effect/raster/nearest_place.hpp"
#include "effect/raster/place_crowd.hpp"
#include "effect/raster/row_cells.hpp"
#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/stroke_canvas.hpp"
#include "effect/raster/stroke_windows.hpp"
#include "effect/raster/swept_region.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace
{
class stroke_rims
{
public:
    stroke_rims(const LineCreatorClass& creator, const stroke_candidates& places, const stroke_canvas& canvas,
                const stroke_windows& windows) noexcept
        : creator_(creator), places_(places), canvas_(canvas), windows_(windows), crowd_(places)
    {
    }

    // `widest`: the largest radius. False where the stroke is none for this, or `memory` is short.
    bool make_room(float widest, bool many_colors, scratch_memory& memory) noexcept
    {
        if (!places_.even || places_.bridged || !windows_.known())
            return false;
        radius_ = widest;
        if (!(radius_ >= kThinnest && radius_ <= kThickest))
            return false;
        // Inside, all that are covered look alike.
        const bool uniform = !many_colors && places_.one_radius && places_.all_numbers &&
                             (creator_.samplesPerPixel <= 1 || creator_.coreOpacity == 1.0f);
        if (!uniform && radius_ > kThickestOfMany)
            return false;
        const float inside = radius_ - 1.0f;
        const float outside = radius_ + 1.0f;
        const float deep = inside * inside * (1.0f - kRounding) - kStep;
        // What lies deep inside looks at the places that cover it.
        thick_ = uniform && inside > 0.0f && deep > 1.0f && inside * inside <= windows_.sure_squared();
        deep_ = thick_ ? deep : -1.0f;
        usual_ = kLanes * creator_.samplesPerPixel + 4;
        inset_ = thick_ ? radius_ - std::sqrt(deep) + kSpare : 0.0f;
        out_ = outside * outside * (1.0f + kRounding) + kStep;
        if (!look_along() || (!gentle_ && !thick_))
            return false;
        if (!gentle_ && !take_edges(memory))
            return false;
        tiles_ = canvas_.size / kLanes;
        done_ = memory.take<std::uint8_t>(tiles_ + 1);
        first_ = memory.take<std::int32_t>(canvas_.size);
        last_ = memory.take<std::int32_t>(canvas_.size);
        opened_ = memory.take<std::int32_t>(canvas_.across);
        return done_ != nullptr && first_ != nullptr && last_ != nullptr && opened_ != nullptr;
    }

    // Draws the tiles that it can. paint(tile, rows, needed, near, &color) answers which of the needed pixels,
    // each in its own row, are to be written, and with what.
    template <class Paint>
    void draw(const swept_region& outer, const swept_region& core, const swept_plane& plane, Paint paint) noexcept
    {
        std::fill_n(done_, tiles_ + 1, std::uint8_t{0});
        std::fill_n(first_, canvas_.size, canvas_.across);
        std::fill_n(last_, canvas_.size, -1);
        for (int tile = 0; tile < tiles_; ++tile)
        {
            lane_pixels t(tile * kLanes);
            marked_ = 0;
            if (!plane.holed(t.at) && enter(t, outer, core) && draw_rim(t, upper_, paint) &&
                draw_rim(t, lower_, paint) && finish(t))
            {
                done_[tile] = 1;
            }
            else
            {
                upper_.known = false;
                lower_.known = false;
            }
        }
        fill();
    }

    // Whether this tile was drawn.
    bool done(int tile) const noexcept { return done_[tile] != 0; }

private:
    static constexpr float kStep = 1.6f; // pixels squared: more than the gaps between samples can make
    static constexpr float kRounding = 1e-5f;
    static constexpr float kSpare = 0.15f;         // pixels
    static constexpr float kThinnest = 0.5f;       // pixels
    static constexpr float kThickestOfMany = 6.0f; // pixels: radii, and colours
    static constexpr float kThickest = 280.0f;     // pixels
    static constexpr float kSteepest = 1.19f;      // of a step across, pixels
    static constexpr int kMostRows = 48;           // that a rim is looked for in
    static constexpr int kMostEdges = 72;
    static constexpr int kMostWords = 8;  // of 64 places, looked through for one that has cells
    static constexpr int kRowsBeside = 3; // that may come into sight
    static constexpr int kHeight = 32;    // of blocks between edges, or more

    struct side
    {
        int outward;
        bool known = false; // from the tile before
        int first = 0;      // of the places near its pixels
        int last = 0;
        float at = 0.0f; // where the rim lies across, in the column before the tile at work
        float slope = 0.0f;
        int_lanes inner{}; // the rows inward of those that were drawn,
        int_lanes outer{}; // and outward of them
    };

    // Looks whether squared distances along any row of pixels in reach fall once and then rise. See
    // nearest_place::rows_of_one_fall; here all bends are as sharp as the sharpest. False where steps are steep.
    bool look_along() noexcept
    {
        float_lanes steps = all_lanes(0.0f);
        float_lanes bends = all_lanes(0.0f);
        const int inner = places_.count - 1;
        for (int j = 1; j < inner; j += kLanes)
        {
            const auto before = load_lanes<float_lanes>(places_.cross + j - 1);
            const auto at = load_lanes<float_lanes>(places_.cross + j);
            const auto behind = load_lanes<float_lanes>(places_.cross + j + 1);
            const int_lanes counts = (before != stroke_candidates::kFarAway) &
                                     (at != stroke_candidates::kFarAway) &
                                     (behind != stroke_candidates::kFarAway) & (kLaneNumbers < inner - j);
            const float_lanes step = at - before;
            const float_lanes next = behind - at;
            const float_lanes steeper = higher_of(magnitude(step), magnitude(next));
            const float_lanes sharper = magnitude(next - step);
            steps = counts ? higher_of(steeper, steps) : steps;
            bends = counts ? higher_of(sharper, bends) : bends;
        }
        float steepest = 0.0f;
        float bend = 0.0f;
        for (int i = 0; i < kLanes; ++i)
        {
            steepest = std::max(steepest, steps[i]);
            bend = std::max(bend, bends[i]);
        }
        // The window reaches radius + 10 along from a pixel, whose nearest place is up to radius + 2 away on any
        // side.
        const float slope = steepest * places_.per_pixel;
        const float along = radius_ + 12.0f;
        const float across = (radius_ + 4.0f) * std::sqrt(1.0f + slope * slope) + slope * along;
        const float lost = 2e-6f * (across * across + along * along) + 1e-3f;
        const float spare = 1.0f / (places_.per_pixel * places_.per_pixel) - 0.5f * lost;
        gentle_ = places_.regular && bend * across < spare;
        return steepest < kSteepest;
    }

    // Rows whose cells tell where pixels between them look: one block's first, one beyond the canvas on each side.
    bool take_edges(scratch_memory& memory) noexcept
    {
        height_ = std::max(kHeight, canvas_.across / (kMostEdges - 4) + 1);
        const float reach = radius_ + 3.0f;
        wide_ = 4.0f * doubt_within(reach * reach, places_.per_pixel);
        slopes_ = slopes_of(places_, memory);
        if (slopes_ == nullptr)
            return false;
        for (int e = 0; e < kMostEdges; ++e)
        {
            found_[e] = false;
            if (first_row(e) <= canvas_.across + 2 * height_ && !edges_[e].take(places_, canvas_.size, memory))
                return false;
        }
        return true;
    }

    int first_row(int block) const noexcept { return (block - 1) * height_; }
    int block_of(int row) const noexcept { return (row + height_) / height_; }

    const row_cells& edge(int number) noexcept
    {
        if (!found_[number])
            edges_[number].find(places_, slopes_, first_row(number), wide_);
        found_[number] = true;
        return edges_[number];
    }

    // Finds places that the nearest ones to these pixels lie between, such that along each pixel's row squared
    // distances from those between fall once and then rise: see stroke_blocks. False where there are none.
    bool find_ends(const lane_pixels& t, int_lanes rows) noexcept
    {
        if (gentle_)
        {
            low_ = near_.begin;
            high_ = near_.end - 1;
            return true;
        }
        const int first = std::min(rows[0], rows[kLanes - 1]);
        const int last = std::max(rows[0], rows[kLanes - 1]);
        if (first < -height_ || last >= canvas_.across + height_)
            return false;
        if (ends_at_ == t.at && ends_first_ <= first && last <= ends_last_)
            return true;
        const int block = block_of(std::max(first - kRowsBeside, -height_));
        const int behind = block_of(std::min(last + kRowsBeside, canvas_.across + height_ - 1)) + 1;
        low_ = places_.count - 1;
        high_ = 0;
        for (int e = block; e <= behind; ++e)
        {
            // From the tile's start to the end of the next.
            low_ = std::min(low_, edge(e).at_start(t.at / kLanes));
            high_ = std::max(high_, edge(e).at_start(t.at / kLanes + 2));
        }
        crowded_ = false;
        for (int e = block; e <= behind && !crowded_; ++e)
            crowded_ = !edge(e).has_all(low_, high_);
        if (crowded_ && !collect(block, behind))
            return false;
        ends_at_ = t.at;
        ends_first_ = first_row(block);
        ends_last_ = first_row(behind) - 1;
        return true;
    }

    // Collects the places that may be nearest in some row from the first one of `block` to that of `behind`, where
    // not all from low_ to high_ have cells: see stroke_blocks. False where that are too many.
    bool collect(int block, int behind) noexcept
    {
        const auto unsure = [&](int word)
        {
            std::uint64_t bits = 0;
            for (int e = block; e <= behind; ++e)
                bits |= edge(e).unsure(word);
            return bits;
        };
        const auto lacking = [&](int word)
        {
            std::uint64_t bits = ~std::uint64_t{0};
            for (int e = block; e <= behind; ++e)
                bits &= edge(e).lacking(word);
            return bits;
        };
        low_ = last_clear(low_, unsure);
        high_ = first_clear(high_, unsure);
        if (low_ < 0 || high_ < 0 || wide_ > 4.0f * kMostDoubt)
            return false;
        const auto first = static_cast<float>(first_row(block));
        const auto last = static_cast<float>(first_row(behind) + 1);
        crowd_.clear();
        for (int j = low_ - low_ % kLanes; j <= high_; j += kLanes)
        {
            const auto cross = load_lanes<float_lanes>(places_.cross + j);
            unsigned some = static_cast<unsigned>(~lacking(j / 64) >> static_cast<unsigned>(j % 64) & 0xff) |
                            lane_bits((cross >= first) & (cross <= last));
            some &= lane_bits((kLaneNumbers >= low_ - j) & (kLaneNumbers <= high_ - j));
            for (; some != 0; some &= some - 1)
                if (!crowd_.add(j + std::countr_zero(some)))
                    return false;
        }
        return true;
    }

    // The last place up to `from`, or the first one from there on, whose bit is clear; -1 where there is none
    // near.
    template <class Words>
    static int last_clear(int from, Words words) noexcept
    {
        std::uint64_t clear = ~words(from / 64) & ~std::uint64_t{0} >> static_cast<unsigned>(63 - from % 64);
        int word = from / 64;
        while (clear == 0 && --word >= std::max(from / 64 - kMostWords, 0))
            clear = ~words(word);
        return clear == 0 ? -1 : word * 64 + 63 - std::countl_zero(clear);
    }
    template <class Words>
    int first_clear(int from, Words words) const noexcept
    {
        const int last_word = (places_.count - 1) / 64;
        std::uint64_t clear = ~words(from / 64) & ~std::uint64_t{0} << static_cast<unsigned>(from % 64);
        int word = from / 64;
        while (clear == 0 && ++word <= std::min(from / 64 + kMostWords, last_word))
            clear = ~words(word);
        const int found = clear == 0 ? -1 : word * 64 + std::countr_zero(clear);
        return found < places_.count ? found : -1;
    }

    // Whether the tile's pixels can be drawn: the stroke's line passes them all, and nothing near is out of place.
    bool enter(lane_pixels& t, const swept_region& outer, const swept_region& core) noexcept
    {
        const float first = t.centers[0];
        const float last = t.centers[kLanes - 1];
        near_.move(places_, first - radius_ - 3.0f, last + radius_ + 3.0f);
        if (near_.begin >= near_.end || places_.main[0] > first || places_.main[places_.count - 1] < last)
            return false;
        t.all_inside = windows_.all_inside(places_, near_.begin, near_.end);
        if (far_ < near_.begin)
            for (far_ = near_.begin; far_ < places_.count && places_.cross[far_] != stroke_candidates::kFarAway;)
                ++far_;
        if (far_ < near_.end)
            return false;
        swept_ = {load_lanes<int_lanes>(outer.first + t.at), load_lanes<int_lanes>(outer.last + t.at)};
        core_ = {load_lanes<int_lanes>(core.first + t.at), load_lanes<int_lanes>(core.last + t.at)};
        const int_lanes number = whole((t.centers - places_.main[0]) * places_.per_pixel + 0.5f);
        line_ = gather(places_.cross, lower_of(number, all_lanes(places_.count - 1)));
        return true;
    }

    // Draws one rim from somewhere in it both ways. False where it is not found.
    template <class Paint>
    bool draw_rim(const lane_pixels& t, side& s, Paint paint) noexcept
    {
        const auto outward = static_cast<float>(s.outward);
        const int_lanes rows = start(t, s);
        if (!find_ends(t, rows))
            return false;
        nearest_lanes near = nearest(t, s, rows);
        s.inner = rows;
        int count = 0;
        for (; !all_deep(t, near); ++count)
        {
            paint_row(t, s.inner, near, paint);
            if (!thick_)
                break;
            s.inner -= s.outward;
            if (count == kMostRows || !find_ends(t, s.inner))
                return false;
            near = nearest(t, s, s.inner);
        }
        learn(s, near.squared);
        s.outer = rows;
        unsigned ended = 0;
        while (ended != 0xff)
        {
            s.outer += s.outward;
            if (++count > kMostRows || !find_ends(t, s.outer))
                return false;
            near = nearest(t, s, s.outer);
            const float_lanes beyond = (__builtin_convertvector(s.outer, float_lanes) + 0.5f - line_) * outward;
            const int_lanes unswept = s.outward < 0 ? s.outer < swept_.first : s.outer > swept_.last;
            ended |= lane_bits(((near.squared >= out_) & (beyond > 0.0f)) | unswept);
            if (ended != 0xff)
                paint_row(t, s.outer, near, paint);
        }
        return true;
    }

    // Whether pixels with these nearest places are deep inside. Only places that are sure to count tell.
    bool all_deep(const lane_pixels& t, const nearest_lanes& near) const noexcept
    {
        return lane_bits(near.squared < deep_) == 0xff &&
               (t.all_inside || lane_bits(windows_.inside(gather(places_.main, near.place))) == 0xff);
    }

    // Rows that lie just inside, as far as can be told.
    int_lanes start(const lane_pixels& t, side& s) const noexcept
    {
        const float_lanes lane = __builtin_convertvector(kLaneNumbers, float_lanes);
        const auto outward = static_cast<float>(s.outward);
        if (!s.known)
        {
            s.slope = (line_[kLanes - 1] - line_[0]) / static_cast<float>(kLanes - 1);
            s.at = line_[0] - s.slope + outward * radius_ * std::sqrt(1.0f + s.slope * s.slope);
            s.first = places_.from(near_.begin, near_.end, t.centers[0]);
            s.last = s.first;
            s.known = true;
        }
        // A thin stroke's are those on either side of its line.
        if (!thick_)
            return whole(line_) - (s.outward < 0 ? 0 : -1);
        const float inward = inset_ * std::sqrt(1.0f + s.slope * s.slope);
        const float_lanes rim = s.at + s.slope * (lane + 1.0f) - outward * inward - 0.5f;
        constexpr float kAbove = 4096.0f; // makes of truncation a floor
        const float_lanes held = lower_of(higher_of(rim, all_lanes(2.0f - kAbove)), all_lanes(65536.0f));
        return whole(held + (s.outward < 0 ? kAbove + 1.0f : kAbove)) - static_cast<int>(kAbove);
    }

    // Where the rim lies, from pixels near it.
    void learn(side& s, float_lanes squared) const noexcept
    {
        const float slant = static_cast<float>(s.outward) * std::sqrt(1.0f + s.slope * s.slope);
        const float_lanes at =
            __builtin_convertvector(s.inner, float_lanes) + 0.5f + (radius_ - root(squared)) * slant;
        s.slope = (at[kLanes - 1] - at[0]) / static_cast<float>(kLanes - 1);
        s.at = at[kLanes - 1];
    }

    // What pixels, each in its own row, are nearest to.
    nearest_lanes nearest(const lane_pixels& t, side& s, int_lanes rows) const noexcept
    {
        if (crowded_)
        {
            const nearest_lanes near = crowd_.nearest(t, rows);
            s.first = near.place[0];
            s.last = near.place[kLanes - 1];
            return near;
        }
        const float_lanes center = __builtin_convertvector(rows, float_lanes) + 0.5f;
        const auto squared = [&](int j)
        {
            const float_lanes dm = t.centers - places_.main[j];
            const float_lanes dc = center - places_.cross[j];
            return dm * dm + dc * dc;
        };
        constexpr int kBeside = 2; // places more than where they were last
        int first = std::clamp(s.first - kBeside, low_, high_);
        // As many each time as it mostly takes: processors guess the end of such loops.
        const int usual = first + usual_;
        const int enough = std::clamp(std::max(s.last + kBeside, usual), low_, high_);
        for (;;)
        {
            float_lanes before = squared(first);
            float_lanes best = before;
            int_lanes falls = all_lanes(0); // minus how often they did
            unsigned falling = 0xff;
            for (int j = first + 1; j <= high_ && (j <= enough || falling != 0);)
            {
                const int end = std::min(std::max(enough, j + 1), high_);
                int_lanes fell = all_lanes(0);
                for (; j <= end; ++j)
                {
                    const float_lanes q = squared(j);
                    fell = q < before;
                    falls += fell;
                    best = lower_of(q, best);
                    before = q;
                }
                falling = lane_bits(fell);
            }
            if (first == low_ || lane_bits(falls == 0) == 0)
            {
                const int_lanes place = first - falls;
                s.first = place[0];
                s.last = place[kLanes - 1];
                return {place, best};
            }
            first = std::max(low_, first - 2 * kLanes);
        }
    }

    template <class Paint>
    void paint_row(const lane_pixels& t, int_lanes rows, nearest_lanes near, Paint paint) noexcept
    {
        const unsigned needed = lane_bits((rows >= swept_.first) & (rows <= swept_.last));
        const int_lanes solid = (rows >= core_.first) & (rows <= core_.last);
        int_lanes color;
        const unsigned bits = paint(t, rows, needed & ~lane_bits(solid), near, &color) | lane_bits(solid);
        if (bits == 0)
            return;
        color = solid ? all_lanes(std::bit_cast<std::int32_t>(creator_.points[0].color)) : color;
        canvas_.store_each(t.at, rows, bits, color);
        note(t.at, rows, bits);
    }

    // Notes that pixels were written, to mark the canvas's tiles once for many.
    void note(int at, int_lanes rows, unsigned bits) noexcept
    {
        if ((bits & ~lane_bits((rows >= marked_rows_.first) & (rows <= marked_rows_.last))) == 0)
        {
            marked_ |= bits;
            return;
        }
        for (unsigned left = bits; left != 0; left &= left - 1)
        {
            const int lane = std::countr_zero(left);
            const int tile = canvas_.tile_across(rows[lane]);
            if (tile != marked_tile_)
            {
                mark(at);
                marked_tile_ = tile;
                marked_rows_ = canvas_.tile_rows(tile);
            }
            marked_ |= 1U << static_cast<unsigned>(lane);
        }
    }

    void mark(int at) noexcept
    {
        canvas_.mark(at, marked_tile_, marked_);
        marked_ = 0;
    }

    // What is between the rims, and the tiles of the canvas in which pixels were written. False where the solid
    // core reaches beyond the rims, as it does at the canvas's ends, which boxes beyond them are moved to.
    bool finish(const lane_pixels& t) noexcept
    {
        if (lane_bits((core_.first <= core_.last) &
                      ((core_.first <= upper_.outer) | (core_.last >= lower_.outer))) != 0)
            return false;
        mark(t.at);
        if (!thick_)
            return true;
        const int_lanes first = higher_of(upper_.inner, swept_.first);
        const int_lanes last = lower_of(lower_.inner, swept_.last);
        store_lanes(first_ + t.at, first);
        store_lanes(last_ + t.at, last);
        span all = {canvas_.across, -1};
        for (int i = 0; i < kLanes; ++i)
            if (first[i] <= last[i])
                all = {std::min(all.first, static_cast<int>(first[i])),
                       std::max(all.last, static_cast<int>(last[i]))};
        for (int row = all.first; row <= all.last;)
        {
            const int tile = canvas_.tile_across(row);
            const span rows = canvas_.tile_rows(tile);
            canvas_.mark(t.at, tile, lane_bits((first <= last) & (first <= rows.last) & (last >= rows.first)));
            row = rows.last + 1;
        }
        return true;
    }

    // Fills what is inside, along the canvas's rows.
    void fill() noexcept
    {
        const PF_Pixel color = creator_.points[0].color;
        if (canvas_.fills_across())
        {
            for (int at = 0; at < canvas_.size; ++at)
                if (first_[at] <= last_[at])
                    canvas_.fill_across(at, {first_[at], last_[at]}, color);
            return;
        }
        // A row's run opens where its column has it and the one before has not.
        span open = {canvas_.across, -1};
        for (int at = 0; at <= canvas_.size; ++at)
        {
            const span here = at < canvas_.size && first_[at] <= last_[at] ? span{first_[at], last_[at]}
                                                                           : span{canvas_.across, -1};
            if (here.first == open.first && here.last == open.last)
                continue;
            each_without(open, here, [&](int row) { canvas_.fill_along({opened_[row], at - 1}, row, color); });
            each_without(here, open, [&](int row) { opened_[row] = at; });
            open = here;
        }
    }

    // Calls visit(row) for each row of `rows` that is none of `others`.
    template <class Visit>
    static void each_without(span rows, span others, Visit visit) noexcept
    {
        if (others.first > others.last)
            others = {rows.last + 1, rows.last};
        for (int row = rows.first; row <= std::min(rows.last, others.first - 1); ++row)
            visit(row);
        for (int row = std::max(rows.first, others.last + 1); row <= rows.last; ++row)
            visit(row);
    }

    const LineCreatorClass& creator_;
    const stroke_candidates& places_;
    const stroke_canvas& canvas_;
    const stroke_windows& windows_;
    float radius_ = 0.0f;
    bool thick_ = false;  // enough to be deep inside anywhere
    float deep_ = 0.0f;   // squared distance of pixels that are, and whatever is inward of them
    float out_ = 0.0f;    // and of those that are well out, and whatever is outward of them
    int usual_ = 0;       // places that eight pixels are looked for among
    bool gentle_ = false; // all bends are
    int height_ = 0;      // of blocks, between edges
    float wide_ = 0.0f;   // enough for cells not to be mixed up
    const float* slopes_ = nullptr;
    row_cells edges_[kMostEdges];
    bool found_[kMostEdges] = {};
    int low_ = 0; // places that the nearest ones lie between,
    int high_ = 0;
    bool crowded_ = false; // and whether they are those of a crowd,
    place_crowd crowd_;
    int ends_at_ = -1; // in this tile and these rows
    int ends_first_ = 0;
    int ends_last_ = 0;
    float inset_ = 0.0f; // pixels from the rim to where it is deep
    int tiles_ = 0;      // that are whole
    std::uint8_t* done_ = nullptr;
    std::int32_t* first_ = nullptr; // rows inside, at each main position
    std::int32_t* last_ = nullptr;
    std::int32_t* opened_ = nullptr; // where each row's run begins
    places_between near_;            // of the tile at work
    int far_ = -1;                   // the first place from those on that does not count
    row_lanes swept_{};
    row_lanes core_{};
    unsigned marked_ = 0; // lanes in which something was written in this row of the canvas's tiles
    int marked_tile_ = 0;
    span marked_rows_ = {0, -1};
    float_lanes line_{}; // where the stroke's line lies across
    side upper_{-1};
    side lower_{1};
};
} // namespace
