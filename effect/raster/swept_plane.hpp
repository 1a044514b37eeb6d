#pragma once
// The pixels under a stroke's swept boxes one by one, for stretches of the stroke where one run across for each
// position does not tell them: beside steep steps, and where a position just misses being entered, as rounding has
// it every now and then. Internal to the file that includes it, as lanes are.

#include "effect/raster/stroke_canvas.hpp"
#include "effect/raster/swept_boxes.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace
{
class swept_plane
{
public:
    static constexpr int kStretch = 64; // main positions
    static constexpr std::uint8_t kSwept = 1;
    static constexpr std::uint8_t kCore = 2;

    // False where `memory` has no room for the notes. `size`: of the canvas along the main axis.
    bool take(std::int64_t size, scratch_memory& memory) noexcept
    {
        const std::int64_t stretches = (size + kStretch - 1) / kStretch;
        holed_ = memory.take<std::uint8_t>(stretches);
        if (holed_ == nullptr)
            return false;
        std::fill_n(holed_, stretches, std::uint8_t{0});
        return true;
    }

    void note_hole(int at) noexcept
    {
        holed_[at / kStretch] = 1;
        first_ = std::min(first_, at / kStretch);
        last_ = std::max(last_, at / kStretch);
    }

    // Whether any stretch has a hole, and whether that of main position `at` has.
    bool any() const noexcept { return first_ <= last_; }
    bool holed(int at) const noexcept { return holed_[at / kStretch] != 0; }

    // Notes the pixels of the stretches that have holes in `bytes`, as many as the canvas has pixels: rows across
    // the main axis, one after the other along it.
    void fill(const LineCreatorClass& creator, bool solid_core, std::uint8_t* bytes) noexcept
    {
        const bool along_y = creator.axis == 1;
        bytes_ = bytes;
        size_ = along_y ? creator.height : creator.width;
        const int across = along_y ? creator.width : creator.height;
        each_stretch({0, size_ - 1},
                     [&](span places)
                     {
                         for (int c = 0; c < across; ++c)
                             std::memset(byte(places.first, c), 0, length(places));
                     });
        sweep(creator, creator.outerRadius, kSwept);
        if (solid_core)
            sweep(creator, creator.innerRadius, kCore);
    }

    // Of `count` main positions, up to 64, from `at` on: those that have `bit` in this row.
    std::uint64_t bits(int at, int count, int row, std::uint8_t bit) const noexcept
    {
        const std::uint8_t* const bytes = byte(at, row);
        std::uint64_t found = 0;
        int i = 0;
        if constexpr (std::endian::native == std::endian::little)
            for (; i + 8 <= count; i += 8)
            {
                std::uint64_t eight = 0;
                std::memcpy(&eight, bytes + i, sizeof eight);
                eight = eight >> static_cast<unsigned>(std::countr_zero(bit)) & 0x0101010101010101U;
                // The product's last byte takes one bit from each: byte k's becomes bit k.
                found |= (eight * 0x0102040810204080U >> 56U) << static_cast<unsigned>(i);
            }
        for (; i < count; ++i)
            found |= (bytes[i] & bit) != 0 ? std::uint64_t{1} << static_cast<unsigned>(i) : std::uint64_t{0};
        return found;
    }

private:
    static std::size_t length(span s) noexcept
    {
        return static_cast<std::size_t>(s.last) - static_cast<std::size_t>(s.first) + 1;
    }

    std::uint8_t* byte(int at, int row) const noexcept { return bytes_ + std::ptrdiff_t{row} * size_ + at; }

    // Calls visit(places) for what lies of `places` in each stretch that has holes.
    template <class Visit>
    void each_stretch(span places, Visit visit) const noexcept
    {
        const int last = std::min(places.last / kStretch, last_);
        for (int s = std::max(places.first / kStretch, first_); s <= last; ++s)
            if (holed_[s] != 0)
                visit({std::max(places.first, s * kStretch), std::min(places.last, s * kStretch + kStretch - 1)});
    }

    void sweep(const LineCreatorClass& creator, float radius, std::uint8_t bit) noexcept
    {
        const bool along_y = creator.axis == 1;
        const auto set = [&](span columns, span rows)
        {
            const span across = along_y ? columns : rows;
            each_stretch(along_y ? rows : columns,
                         [&](span places)
                         {
                             for (int c = across.first; c <= across.last; ++c)
                                 for (int i = places.first; i <= places.last; ++i)
                                     *byte(i, c) = static_cast<std::uint8_t>(*byte(i, c) | bit);
                         });
        };
        walk_swept_boxes(
            creator, radius, set, [&](strip columns, span rows) { set(columns.pixels(creator.width), rows); },
            [&](strip rows, span columns) { set(columns, rows.pixels(creator.height)); });
    }

    std::uint8_t* holed_ = nullptr; // for each stretch
    int first_ = std::numeric_limits<int>::max();
    int last_ = -1;
    std::uint8_t* bytes_ = nullptr;
    int size_ = 0; // of the canvas along the main axis
};
} // namespace
