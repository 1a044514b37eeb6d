#pragma once
// A canvas and a destination for fuzzers that draw without a whole render. Rows are padded, and the padding must
// survive.

#include "effect/pf/effect_api.hpp"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace fuzz
{
class small_canvas
{
public:
    small_canvas(int width, int height, int padding)
        : bytes_(static_cast<std::size_t>(4 * width + padding) * static_cast<std::size_t>(height), kPadding)
    {
        layer_.width = width;
        layer_.height = height;
        layer_.rowbytes = 4 * width + padding;
        layer_.data = reinterpret_cast<PF_Pixel*>(bytes_.data());
        for (int y = 0; y < height; ++y)
            std::fill_n(&at(0, y), width, PF_Pixel{0, 0, 0, 0});
    }

    PF_LayerDef* layer() { return &layer_; }
    PF_Pixel& at(int x, int y)
    {
        return reinterpret_cast<PF_Pixel*>(bytes_.data() + static_cast<std::ptrdiff_t>(y) * layer_.rowbytes)[x];
    }
    bool padding_is_untouched() const
    {
        for (int y = 0; y < layer_.height; ++y)
            for (int i = 4 * layer_.width; i < layer_.rowbytes; ++i)
                if (bytes_[static_cast<std::size_t>(y * layer_.rowbytes + i)] != kPadding)
                    return false;
        return true;
    }

private:
    static constexpr std::uint8_t kPadding = 0x5A;
    std::vector<std::uint8_t> bytes_;
    PF_LayerDef layer_{};
};
} // namespace fuzz
