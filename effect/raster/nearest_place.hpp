#pragma once
// Which of a stroke's places each pixel of a tile is nearest to, exactly as a search through all of them finds it:
// the smallest squared distance in single precision, the first of equals.

#include "effect/raster/line_creator.hpp"
#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/stroke_tile.hpp"
#include "effect/raster/swept_boxes.hpp"

// How far a pixel can be from what it takes its value from, with a margin for rounding: a nearest place farther
// off writes nothing, so that it need not be told from none.
struct stroke_reach
{
    float squared = 0.0f; // 0 where no radius reaches anything
    float distance = 0.0f;

    // Of a stroke whose largest radius (NaN aside) is `widest`.
    explicit stroke_reach(float widest) noexcept;
};

class nearest_place
{
public:
    // `places` are ascending; `corners` are two arrays of a number for each row, the second all -1.
    nearest_place(const LineCreatorClass& creator, const stroke_candidates& places, stroke_reach reach, int across,
                  std::int32_t* corner, std::int32_t* corner_at) noexcept
        : creator_(creator), places_(places), reach_(reach), across_(across), corner_(corner),
          corner_at_(corner_at)
    {
    }

    // Sets the candidates in reach of the tile. Tiles come in ascending order.
    void enter(stroke_tile& t) noexcept;

    // The rows in which a pixel of the tile can be in reach of a candidate.
    span rows_in_reach(const stroke_tile& t) const noexcept;

    // For one row of the tile: each lane's nearest place and its squared distance, -1 where none is in reach.
    void search(const stroke_tile& t, int row, int_lanes* found, float_lanes* squared) noexcept;

    // Whether a pixel in this row, with this window, looks at place j at all.
    bool counts(index_window w, int row, int j) const noexcept;

    // The search with every condition, for the rare pixel whose nearest place does not count for it.
    int search_counting(index_window w, int at, int row, float* squared) const noexcept;

private:
    void narrow(const stroke_tile& t, int row, int* begin, int* end) noexcept;
    int nearest_on(const stroke_tile& t, int at, int row, int begin, int hint) const noexcept;
    int place_from(int begin, int end, float main_at) const noexcept;
    float slack_at(int j, int at, int row) const noexcept;

    const LineCreatorClass& creator_;
    const stroke_candidates& places_;
    stroke_reach reach_;
    int across_;
    std::int32_t* corner_;    // per row: the place nearest to a pixel there
    std::int32_t* corner_at_; // and that pixel's main position
    int window_begin_ = 0;
    int window_end_ = 0;
    int hint_ = -1;
};
