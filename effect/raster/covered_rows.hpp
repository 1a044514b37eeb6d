#pragma once
// The inside of a stroke of one colour: pixels that need no search, because some place is so near that the nearest
// one covers them, whichever it is.

#include "effect/raster/line_creator.hpp"
#include "effect/raster/stroke_candidates.hpp"
#include "effect/raster/stroke_tile.hpp"
#include "effect/raster/swept_boxes.hpp"

class covered_rows
{
public:
    covered_rows(const LineCreatorClass& creator, const stroke_candidates& places, int across) noexcept
        : creator_(creator), places_(places), across_(across)
    {
    }

    // Takes the thinnest radius among the tile's candidates: that of the nearest one is no less. Tiles come in
    // ascending order.
    void enter(const stroke_tile& t) noexcept;

    // Rows of lane i, of those swept, that are sure to have the stroke's one colour in full. Not all of them.
    span of(const stroke_tile& t, int i) noexcept;

private:
    const LineCreatorClass& creator_;
    const stroke_candidates& places_;
    int across_;
    float radius_ = 0.0f; // a pixel this near to any of the tile's candidates is covered
    int middle_ = 0;      // where walks along the stroke start
    int up_ = -1;         // and where they ended for the position before
    int down_ = -1;
};
