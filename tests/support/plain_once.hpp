#pragma once
// The plain way to draw a stroke, but each pixel is decided the first time alone: writing it again writes the
// same.

#include "effect/raster/line_creator.hpp"

#include <cstddef>
#include <cstdint>
#include <vector>

class plain_once : public LineCreatorClass
{
public:
    // Draws the current stroke, with the pixel function and the sub-render that are set.
    void draw()
    {
        decided_.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0);
        each_ = pixelFunction;
        pixelFunction = static_cast<void (LineCreatorClass::*)(int, int)>(&plain_once::decide);
        (this->*subRenderFunction)();
        pixelFunction = each_;
    }

private:
    void decide(int x, int y)
    {
        const auto at =
            static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
        if (decided_[at] != 0)
            return;
        decided_[at] = 1;
        (this->*each_)(x, y);
    }

    void (LineCreatorClass::*each_)(int, int) = nullptr;
    std::vector<std::uint8_t> decided_;
};
