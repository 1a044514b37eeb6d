#pragma once
// Which pixels of a panel, 64 neighbours along a stroke's main axis, lie in given runs across it: a word for each
// row, bit i for main position i of the panel.

#include "effect/raster/swept_boxes.hpp"

#include <cstdint>

class row_masks
{
public:
    static constexpr int kColumns = 64;

    // `toggles` is one word more than there are rows, all of them 0; they are 0 again when all rows were taken.
    explicit row_masks(std::uint64_t* toggles) noexcept : toggles_(toggles) {}

    void add(int column, span rows) noexcept
    {
        if (rows.first > rows.last)
            return;
        const std::uint64_t bit = std::uint64_t{1} << static_cast<unsigned>(column);
        toggles_[rows.first] ^= bit;
        toggles_[rows.last + 1] ^= bit;
    }

    // The mask of a row. Every row from the first one added to on, in order, and the one past the last.
    std::uint64_t take(int row) noexcept
    {
        mask_ ^= toggles_[row];
        toggles_[row] = 0;
        return mask_;
    }

private:
    std::uint64_t* toggles_;
    std::uint64_t mask_ = 0;
};
