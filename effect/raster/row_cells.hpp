#pragma once
// Which of a stroke's places are nearest to anything in one row of pixels across, and which of them where each
// tile of the row starts. Internal to the file that includes it, as lanes are.
//
// From a row of pixels' centres the squared distance to place j is x^2 - 2 m x + (m^2 + d^2), m being where the
// place lies along and d how far off it is across. But for x^2, which all share, that is a straight line in x,
// which falls the faster the higher j is. So the places that are nearest anywhere form the lower envelope of
// straight lines, in their order, and the boundary of two that follow each other in it is their bisector. Where
// the bisectors of neighbouring places come in order, all of them are in the envelope. One whose bisectors come
// the wrong way round is not; nor is one that then lies above those beside the gap.

#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/stroke_tile.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace
{
// For each place but the first, what it lies across from the one before it by what it lies along.
inline float* slopes_of(const stroke_candidates& places, scratch_memory& memory) noexcept
{
    auto* const slopes = memory.take<float>(places.count + stroke_candidates::kPadding);
    if (slopes == nullptr)
        return nullptr;
    slopes[0] = 0.0f;
    for (int j = 1; j < places.count; j += kLanes)
        store_lanes(slopes + j,
                    (load_lanes<float_lanes>(places.cross + j) - load_lanes<float_lanes>(places.cross + j - 1)) /
                        (load_lanes<float_lanes>(places.main + j) - load_lanes<float_lanes>(places.main + j - 1)));
    return slopes;
}

// How near, in pixels along, a pixel's centre can be to the bisector of neighbouring places and lie on either side
// of it, as distances are rounded; of pixels up to `squared` (squared distance) from their places, with bisectors
// that lean no more than row_cells::kMostLeaning.
constexpr float kOwnRounding = 5e-4f; // of the bisector itself
constexpr float kMostDoubt = 0.05f;   // that anything here is meant for
inline float doubt_within(float squared, float per_pixel) noexcept
{
    // Two distances, each off by four halves of an ulp or so, of places 1 / per_pixel apart.
    constexpr float kRounding = 3e-7f;
    return kRounding * squared * per_pixel + kOwnRounding;
}

class row_cells
{
public:
    static constexpr float kMostLeaning = 700.0f; // pixels: what a bisector may move along from between its places
    static constexpr float kSurelyWide = 4e-3f;   // pixels: a cell that seems so wide is one

    // Room for a row of `size` pixels. False where `memory` is short.
    bool take(const stroke_candidates& places, int size, scratch_memory& memory) noexcept
    {
        tiles_ = (size + kLanes - 1) / kLanes;
        const int words = places.count / 64 + 1;
        leaning_ = memory.take<float>(places.count + stroke_candidates::kPadding);
        nearest_ = memory.take<std::int32_t>(tiles_ + 2);
        dropped_ = memory.take<std::uint64_t>(words);
        unsure_ = memory.take<std::uint64_t>(words);
        absent_ = memory.take<std::uint64_t>(words);
        return leaning_ != nullptr && nearest_ != nullptr && dropped_ != nullptr && unsure_ != nullptr &&
               absent_ != nullptr;
    }

    // Finds the cells. `slope`: see slopes_of. Those that are not `wide`, pixels, count as none that are sure.
    void find(const stroke_candidates& places, const float* slope, int row, float wide = kSurelyWide) noexcept
    {
        find(places, slope, row, wide, {0, places.count - 1}, {0, tiles_ + 1});
    }

    // The same of these places alone, as if there were no others, and of these tiles' starts, up to that of the
    // second tile behind the canvas's last.
    void find(const stroke_candidates& places, const float* slope, int row, float wide, span some,
              span tiles) noexcept
    {
        places_ = &places;
        wide_ = std::max(wide, kSurelyWide);
        center_ = static_cast<float>(row) + 0.5f;
        first_ = some.first;
        last_ = some.last;
        const int word = first_ / 64;
        const int words = last_ / 64 + 1 - word;
        std::fill_n(dropped_ + word, words, std::uint64_t{0});
        std::fill_n(unsure_ + word, words, std::uint64_t{0});
        std::fill_n(absent_ + word, words, std::uint64_t{0});
        lean(slope);
        gaps_ = judge();
        if (gaps_)
            close_gaps();
        walk(tiles);
    }

    // The place nearest to the point of the row where a tile of eight pixels starts, half a pixel before its first
    // pixel's centre; or, where the point is within kOwnRounding of a boundary, the one beside it. That is so of
    // what has a cell for sure; the others may be some places off.
    int at_start(int tile) const noexcept { return nearest_[tile]; }

    // Whether this place is sure to be the nearest one somewhere in the row.
    bool has(int place) const noexcept { return !bit(unsure_, place); }

    // Whether all places from `first` to `last` are.
    bool has_all(int first, int last) const noexcept
    {
        for (int word = first / 64; word <= last / 64; ++word)
        {
            std::uint64_t asked = ~std::uint64_t{0};
            if (word == first / 64)
                asked &= ~std::uint64_t{0} << static_cast<unsigned>(first % 64);
            if (word == last / 64)
                asked &= ~std::uint64_t{0} >> static_cast<unsigned>(63 - last % 64);
            if ((unsure_[word] & asked) != 0)
                return false;
        }
        return true;
    }

    // Whether it is sure to be the nearest one nowhere in the row, however distances are rounded that are no
    // larger than a bisector's doubt allows: its bisectors are kClearly and more the wrong way round.
    bool lacks(int place) const noexcept { return bit(absent_, place); }

    // Bit i of word n: that it is not sure of place 64 n + i, or lacks it.
    std::uint64_t unsure(int word) const noexcept { return unsure_[word]; }
    std::uint64_t lacking(int word) const noexcept { return absent_[word]; }

private:
    static constexpr float kSurelyNone = -2e-3f;
    static constexpr double kClearly = 0.2;

    static bool bit(const std::uint64_t* words, int number) noexcept
    {
        return (words[number / 64] >> static_cast<unsigned>(number % 64) & 1U) != 0;
    }
    static void set(std::uint64_t* words, int number) noexcept
    {
        words[number / 64] |= std::uint64_t{1} << static_cast<unsigned>(number % 64);
    }

    // Numbers from `first` on, one for each of eight bits.
    static void set_eight(std::uint64_t* words, int first, unsigned bits) noexcept
    {
        const auto shift = static_cast<unsigned>(first % 64);
        words[first / 64] |= std::uint64_t{bits} << shift;
        if (shift > 64 - kLanes && bits >> (64 - shift) != 0)
            words[first / 64 + 1] |= bits >> (64 - shift);
    }

    // How far along each bisector is off the middle of its two places.
    void lean(const float* slope) noexcept
    {
        for (int j = first_ + 1; j <= last_; j += kLanes)
        {
            const auto cross = load_lanes<float_lanes>(places_->cross + j);
            const auto before = load_lanes<float_lanes>(places_->cross + j - 1);
            store_lanes(leaning_ + j,
                        load_lanes<float_lanes>(slope + j) * (0.5f * ((cross - center_) + (before - center_))));
        }
    }

    // Half of the way from the place before each of eight to the one behind it.
    float_lanes between_neighbours(int j) const noexcept
    {
        if (places_->regular)
            return all_lanes(1.0f / places_->per_pixel);
        const auto main = load_lanes<float_lanes>(places_->main + j);
        return 0.5f * ((load_lanes<float_lanes>(places_->main + j + 1) - main) +
                       (main - load_lanes<float_lanes>(places_->main + j - 1)));
    }

    // Takes out the places that have no cell between their neighbours'. False where that is none.
    bool judge() noexcept
    {
        bool gaps = false;
        for (int j = first_ + 1; j < last_; j += kLanes)
        {
            const auto before = load_lanes<float_lanes>(leaning_ + j);
            const auto behind = load_lanes<float_lanes>(leaning_ + j + 1);
            const float_lanes width = between_neighbours(j) + (behind - before);
            const int_lanes exact = (magnitude(before) <= kMostLeaning) & (magnitude(behind) <= kMostLeaning);
            const unsigned doubtful = lane_bits(((exact & (width >= wide_)) == 0) & (kLaneNumbers < last_ - j));
            if (doubtful == 0)
                continue;
            const unsigned none = doubtful & lane_bits(exact & (width <= kSurelyNone));
            // Twice as much, since these are in single precision.
            const unsigned clearly = doubtful & lane_bits(exact & (width <= static_cast<float>(-2.0 * kClearly)));
            set_eight(unsure_, j, doubtful);
            set_eight(dropped_, j, none);
            set_eight(absent_, j, clearly);
            gaps = gaps || none != 0;
            for (unsigned left = doubtful & ~none; left != 0; left &= left - 1)
            {
                const int here = j + std::countr_zero(left);
                if (boundary(here - 1, here) < boundary(here, here + 1))
                    continue;
                set(dropped_, here);
                gaps = true;
            }
        }
        return gaps;
    }

    // Where the bisector of places i < j crosses the row.
    double boundary(int i, int j) const noexcept
    {
        const auto main_i = static_cast<double>(places_->main[i]);
        const auto main_j = static_cast<double>(places_->main[j]);
        const auto cross_i = static_cast<double>(places_->cross[i]);
        const auto cross_j = static_cast<double>(places_->cross[j]);
        return 0.5 * (main_i + main_j) + (cross_j - cross_i) / (main_j - main_i) *
                                             (0.5 * (cross_i + cross_j) - static_cast<double>(center_));
    }

    // The next place either way that was not taken out, as the outer two never are: by words, since a long gap's
    // ends may be looked for as often.
    int before(int j) const noexcept
    {
        int word = (j - 1) / 64;
        std::uint64_t left = ~dropped_[word] & ~std::uint64_t{0} >> static_cast<unsigned>(63 - (j - 1) % 64);
        while (left == 0)
            left = ~dropped_[--word];
        return word * 64 + 63 - std::countl_zero(left);
    }
    int behind(int j) const noexcept
    {
        int word = (j + 1) / 64;
        std::uint64_t left = ~dropped_[word] & ~std::uint64_t{0} << static_cast<unsigned>((j + 1) % 64);
        while (left == 0)
            left = ~dropped_[++word];
        return word * 64 + std::countr_zero(left);
    }

    // Takes out what lies above the envelope beside the gaps; the outer places stay, which are in it far out.
    void close_gaps() noexcept
    {
        for (int j = first_ + 1; j < last_;)
        {
            if (dropped_[j / 64] >> static_cast<unsigned>(j % 64) == 0)
                j = j / 64 * 64 + 64;
            else if (!bit(dropped_, j))
                ++j;
            else
                j = close_gap(before(j), behind(j));
        }
    }

    // The same for the gap between places l and r. Answers the place behind it.
    int close_gap(int l, int r) noexcept
    {
        // Boundaries beyond the two.
        double left = left_of(l);
        double right = right_of(r);
        for (;;)
        {
            const double between = boundary(l, r);
            const bool left_is_past = left >= between;
            const bool right_is_past = between >= right;
            if (!left_is_past && !right_is_past)
                break;
            if (left_is_past)
            {
                l = before(l);
                left = left_of(l);
            }
            // That place l was taken out does not matter here: what lies above it and the next one does so, too,
            // above any two of which it lies above.
            if (right_is_past)
            {
                r = behind(r);
                right = right_of(r);
            }
        }
        for (int j = l + 1; j < r; j += kLanes)
        {
            const unsigned some = 0xffU >> static_cast<unsigned>(std::max(kLanes - (r - j), 0));
            set_eight(dropped_, j, some);
            set_eight(unsure_, j, some);
            set_eight(absent_, j, some & lane_bits(clearly_past(j, l, r)));
        }
        set(unsure_, l);
        set(unsure_, r);
        return r;
    }

    // Which of eight places from j on, between l and r, have their bisectors with these kClearly the wrong way
    // round, and more by a quarter and by what single precision loses.
    int_lanes clearly_past(int j, int l, int r) const noexcept
    {
        const auto main = load_lanes<float_lanes>(places_->main + j);
        const auto cross = load_lanes<float_lanes>(places_->cross + j);
        float_lanes lost = all_lanes(0.0f);
        const auto leaning_to = [&](int k)
        {
            // Of what was not rounded yet, which a slope would make much of.
            const float_lanes half_slope = (places_->cross[k] - cross) / (places_->main[k] - main) * 0.5f;
            const float_lanes off = cross - center_;
            const float off_other = places_->cross[k] - center_;
            lost += magnitude(half_slope) * (magnitude(off) + std::fabs(off_other)) * 1e-6f;
            return half_slope * (off_other + off);
        };
        const float_lanes past = 0.5f * (places_->main[l] - places_->main[r]) + (leaning_to(l) - leaning_to(r));
        return past >= static_cast<float>(1.25 * kClearly) + lost;
    }

    // Where the bisector of a place and the next one that was not taken out crosses the row.
    double left_of(int l) const noexcept
    {
        return l > first_ ? boundary(before(l), l) : -std::numeric_limits<double>::infinity();
    }
    double right_of(int r) const noexcept
    {
        return r < last_ ? boundary(r, behind(r)) : std::numeric_limits<double>::infinity();
    }

    // Whether any of place j - 1 and the eight from j on was taken out.
    bool gaps_beside(int j) const noexcept
    {
        const int first = j - 1;
        const std::uint64_t low = dropped_[first / 64] >> static_cast<unsigned>(first % 64);
        return (low & 0x1ff) != 0 ||
               (first % 64 > 64 - 9 && first / 64 < last_ / 64 && dropped_[first / 64 + 1] != 0);
    }

    // Walks along the tiles' starts, and along the places that were not taken out.
    void walk(span tiles) noexcept
    {
        int nearest = first_;
        for (int tile = tiles.first; tile <= tiles.last; ++tile)
        {
            nearest = nearest_to(static_cast<float>(tile * kLanes), nearest);
            nearest_[tile] = nearest;
        }
    }

    // The last place whose boundary lies before this point, from one on that does.
    int nearest_to(float point, int from) const noexcept
    {
        int nearest = from;
        for (int j = nearest + 1; j <= last_;)
        {
            if (gaps_ && gaps_beside(j))
            {
                const int next = behind(nearest);
                if (boundary(nearest, next) > static_cast<double>(point))
                    return nearest;
                nearest = next;
                j = next + 1;
                continue;
            }
            const auto main = load_lanes<float_lanes>(places_->main + j);
            const auto before = load_lanes<float_lanes>(places_->main + j - 1);
            const auto leaning = load_lanes<float_lanes>(leaning_ + j);
            const float_lanes beyond = 0.5f * ((main - point) + (before - point)) + leaning;
            const int_lanes there = kLaneNumbers <= last_ - j;
            // Boundaries that lean too much are none to stop at: what was computed of them may be out of order.
            const unsigned stops = lane_bits(there & (beyond > 0.0f) & (magnitude(leaning) <= kMostLeaning));
            const unsigned passed = lane_bits(there & (beyond <= 0.0f)) & ((stops & (0U - stops)) - 1U);
            nearest = passed != 0 ? j + 31 - std::countl_zero(passed) : nearest;
            if (stops != 0)
                return nearest;
            j += kLanes;
        }
        return nearest;
    }

    const stroke_candidates* places_ = nullptr;
    int tiles_ = 0; // of the canvas along the main axis
    int first_ = 0; // of the places that are looked at
    int last_ = 0;
    bool gaps_ = false; // some were taken out
    float center_ = 0.0f;
    float wide_ = 0.0f;
    float* leaning_ = nullptr;
    std::int32_t* nearest_ = nullptr;
    std::uint64_t* dropped_ = nullptr; // places that have no cell
    std::uint64_t* unsure_ = nullptr;  // those, and others that may have none
    std::uint64_t* absent_ = nullptr;  // those that clearly have none
};
} // namespace
